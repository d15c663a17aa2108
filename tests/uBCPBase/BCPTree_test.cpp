#include "platenest/uBCPBase/BCPTree.h"

#include <gmock/gmock.h>

#include <random>
#include <string>
#include <utility>

#include "CuttingStock1D.h"
#include "FakeClock.h"
#include "ForEachSeed.h"

namespace platenest {
namespace {

using TTree = TBCPTree<TBarPattern>;
using TNode = TTree::TNode;

struct TProbe : TTree {
  using TTree::Branch, TTree::CompareNodes, TTree::DeleteSearch, TTree::GreedySolve, TTree::NodeHeap, TTree::RootNode,
      TTree::Select, TTree::TTree;
};

bool Never() {
  return false;
}

int Bars(const TBarSolution& Solution) {
  int bars = 0;
  for (const auto& pair : Solution) bars += pair.Value;
  return bars;
}

// A poor start: each piece from a bar of its own.
bool OnePerBar(const TBCPProblem<TBarPattern>& Problem, TBarSolution& Solution) {
  for (int row = 0; row < Size(Problem.BVec()); ++row) {
    TIntegerDynArray counts(Problem.BVec().size());
    counts[row] = 1;
    Solution.AddSubSolution(dynamic_cast<const TBarProblem&>(Problem).MakePattern(counts),
                            Round<int>(Problem.BVec()[row]));
  }
  return true;
}

TBCPSolverManager<TBarPattern> PoorSolvers(const TBarProblem& Problem) {
  TBCPSolverManager<TBarPattern> manager(&Problem);
  manager.AddSubProblemSolver(PriceBar);
  manager.AddGreedySolver(OnePerBar);
  return manager;
}

// From a poor start this takes some sixty nodes.
const TBarProblem kDeep(245, {109, 164, 45, 74, 42, 71, 37}, {16, 4, 10, 9, 14, 15, 8});

// Nodes whose LP was solved.
int Walked(const TNode& Node) {
  int count = int{Node.LPRounds() > 0};
  for (const auto& child : Node.ChildNodes) count += Walked(*child);
  return count;
}

TBarProblem RandomBars(unsigned Seed, int MostPieces) {
  std::mt19937 random(Seed);
  TIntegerDynArray lengths, demand;
  for (int pieces = 2 + static_cast<int>(random() % static_cast<unsigned>(MostPieces)); pieces > 0;) {
    demand.push_back(1 + static_cast<int>(random() % 3));
    lengths.push_back(20 + static_cast<int>(random() % 50));
    pieces -= demand.back();
  }
  return {100, lengths, demand};
}

// The least number of bars, by trying each piece in each bar; Pieces from the last on.
int LeastBars(const TIntegerDynArray& Pieces, std::size_t Next, TIntegerDynArray& Bars, int Best) {
  if (Size(Bars) >= Best) return Best;
  if (Next == Pieces.size()) return Size(Bars);
  for (std::size_t i = 0; i < Bars.size(); ++i) {
    if (Bars[i] < Pieces[Next]) continue;
    Bars[i] -= Pieces[Next];
    Best = LeastBars(Pieces, Next + 1, Bars, Best);
    Bars[i] += Pieces[Next];
  }
  Bars.push_back(100 - Pieces[Next]);
  Best = LeastBars(Pieces, Next + 1, Bars, Best);
  Bars.pop_back();
  return Best;
}

TEST(BCPTree, RollsOfAHundredInches) {
  const TBarProblem rolls = ChvatalRolls();
  const auto manager = BarSolvers(rolls);
  TTree tree(&manager, nullptr, true, 0);
  std::atomic<bool> stop = false;
  const TBarSolution best = tree.Solve(stop);
  EXPECT_TRUE(rolls.CheckSolution(best));
  EXPECT_EQ(Bars(best), 453);
  EXPECT_NEAR(tree.Root().LPSol(), 452.25, 1e-9);
  EXPECT_EQ(tree.Status(), 0);
}

TEST(BCPTree, MetBoundsAreTheOptimumFromGoodAndPoorStarts) {
  ForEachSeed(60, [](unsigned Seed) {
    const TBarProblem problem = RandomBars(Seed, 9);
    TIntegerDynArray pieces, bars;
    for (std::size_t i = 0; i < problem.Lengths.size(); ++i)
      pieces.insert(pieces.end(), static_cast<std::size_t>(problem.BVec()[i]), problem.Lengths[i]);
    const int least = LeastBars(pieces, 0, bars, Size(pieces) + 1);
    for (const auto& manager : {BarSolvers(problem), PoorSolvers(problem)}) {
      TTree tree(&manager, nullptr, Seed % 2 == 0, 0);
      const TBarSolution best = tree.Solve(Never);
      EXPECT_TRUE(problem.CheckSolution(best));
      EXPECT_GE(Bars(best), least);
      EXPECT_TRUE(tree.Status() != 0 || Bars(best) == least);
    }
  });
}

TEST(BCPTree, StoppedAtAnyPollItHoldsAValidSolution) {
  const auto manager = PoorSolvers(kDeep);
  int last = 1 << 20;
  for (int allowed = 0, status = 1; status == 1; allowed += 3) {
    int polled = 0;
    TTree tree(&manager, nullptr, true, 0);
    const TBarSolution best = tree.Solve([&] { return ++polled > allowed; });
    ASSERT_TRUE(kDeep.CheckSolution(best));
    status = tree.Status();
    ASSERT_EQ(status, polled > allowed ? 1 : 0);
    ASSERT_LE(Bars(best), last) << "more time never gives less";
    last = Bars(best);
  }
  EXPECT_EQ(last, 24);
}

TEST(BCPTree, BoundsMeet) {
  const std::pair<double, double> met[] = {{9.2, 9.9}, {100, 100.009}, {5, 5.0004}};
  for (const auto& [lower, upper] : met) EXPECT_TRUE(detail::BoundsMeet(lower, upper)) << upper;
  const std::pair<double, double> apart[] = {{100, 100.02}, {5, 5.0006}, {0, kBCPInfinity}};
  for (const auto& [lower, upper] : apart) EXPECT_FALSE(detail::BoundsMeet(lower, upper)) << upper;
}

TEST(BCPTree, AnOutsideSolutionReplacesTheStartHeuristicsAndStaysOutOfThePool) {
  const TBarProblem problem(100, {40}, {4});
  TBCPSolverManager<TBarPattern> manager(&problem);
  TTree::TSolutionFifo fifo;
  TProbe tree(&manager, &fifo, true, 0);
  EXPECT_EQ(tree.Solve(Never).Count(), 0) << "no heuristic";
  EXPECT_EQ(tree.Status(), -1);
  const auto solution = [&](int PerBar, int Bars) {
    TBarSolution made;
    made.AddSubSolution(problem.MakePattern({PerBar}), Bars);
    return made;
  };
  fifo.Push(solution(2, 1));
  EXPECT_FALSE(tree.GreedySolve()) << "it meets half of the demand";
  fifo.Push(solution(2, 2));
  EXPECT_TRUE(tree.GreedySolve());
  EXPECT_EQ(tree.VarPool().Count(), 0);
  EXPECT_DOUBLE_EQ(tree.GUB(), 1.8);
  TBarSolution same = solution(2, 2), tooFew = solution(1, 3);
  EXPECT_FALSE(tree.AddSolution(same, true)) << "as good is no better";
  EXPECT_FALSE(tree.AddSolution(tooFew, false)) << "checked all the same";
  EXPECT_EQ(tree.VarPool().Count(), 2);
  std::vector<std::unique_ptr<TBarPattern>> vars;
  for (const int perBar : {3, 1, 4}) vars.push_back(problem.MakePattern({perBar}));
  EXPECT_FALSE(tree.AddVars(vars));
  EXPECT_EQ(tree.VarPool().Count(), 3) << "none behind the known one";
}

TEST(BCPTree, ErrorsEndTheSearchWithTheBestSolutionButLeaveTheStart) {
  const TBarProblem& problem = kDeep;
  for (const int good : {0, 3, 20}) {
    TBCPSolverManager<TBarPattern> manager(&problem);
    int calls = 0;
    manager.AddSubProblemSolver([&](const TBCPProblem<TBarPattern>& Sub, bool& Usable, double& Value) {
      if (++calls > good) throw std::string("no error of ours");
      return PriceBar(Sub, Usable, Value);
    });
    manager.AddGreedySolver(OnePerBar);
    TTree tree(&manager, nullptr, true, 0);
    EXPECT_TRUE(problem.CheckSolution(tree.Solve(Never)));
    EXPECT_GT(calls, good);
    EXPECT_EQ(tree.Status(), 2);
  }
  TBCPSolverManager<TBarPattern> manager(&problem);
  manager.AddGreedySolver([](const auto&, auto&) -> bool { throw TNestError("start"); });
  EXPECT_THROW(TTree(&manager, nullptr, true, 0).Solve(Never), TNestError);
}

TEST(BCPTree, TheLimitsOfTimeAndNodesLeaveTheStatusOpen) {
  // One column at its bound is chosen again and again.
  const TBarProblem stuck(147, {19, 36, 24}, {5, 20, 16});
  for (const bool isLate : {false, true}) {
    const auto manager = PoorSolvers(stuck);
    TFakeClock clock;
    TTree tree(&manager, nullptr, true, 1);
    int polled = 0;
    EXPECT_TRUE(stuck.CheckSolution(tree.Solve([&] {
      if (++polled == 50 && isLate) clock.AdvanceMs(2000);
      return false;
    })));
    EXPECT_EQ(tree.Status(), -1);
    EXPECT_EQ(Walked(tree.Root()), isLate ? 9 : 1001) << "the root and those of the limit";
  }
}

TEST(BCPTree, ClosingANodeJumpsToTheOpenLeafOfTheLowestParentBound) {
  const TBarProblem& problem = kDeep;
  const auto manager = PoorSolvers(problem);
  TProbe tree(&manager, nullptr, true, 0);
  ASSERT_TRUE(tree.GreedySolve());
  TNode& root = tree.RootNode();
  const TBCPStopWatch watch(0);
  ASSERT_TRUE(root.Solve(watch, Never));
  TNode* const first = tree.Branch(root);
  ASSERT_EQ(Size(root.ChildNodes), 2);
  TNode* const second = root.ChildNodes[1].get();
  ASSERT_TRUE(first->Solve(watch, Never));
  TNode* const deep = tree.Branch(*first);
  first->LLB = root.LLB;
  EXPECT_LT(TProbe::CompareNodes(deep, second), 0) << "equal bounds, so the deeper one";
  first->LLB = root.LLB + 1;
  EXPECT_GT(TProbe::CompareNodes(deep, second), 0);
  TNode* const rootNode = &root;
  EXPECT_THROW(TProbe::CompareNodes(rootNode, deep), TAssertionError);
  EXPECT_EQ(tree.Select(first, false), deep);
  EXPECT_EQ(tree.Select(deep, false), deep);
  for (const auto& leaf : first->ChildNodes) tree.DeleteSearch(*leaf);
  EXPECT_TRUE(first->Calced);
  EXPECT_FALSE(root.Calced);
  EXPECT_EQ(tree.DeleteSearch(*second), nullptr);
  EXPECT_TRUE(root.Calced);
  EXPECT_TRUE(root.ColDict().empty());
  EXPECT_THROW(tree.Select(deep, false), TAssertionError);
}

}  // namespace
}  // namespace platenest
