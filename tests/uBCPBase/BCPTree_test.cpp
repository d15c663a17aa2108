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
  using TTree::Bound, TTree::BoundMeet, TTree::Branch, TTree::CompareNodes, TTree::DeleteSearch, TTree::GreedySolve,
      TTree::RootNode, TTree::Select, TTree::TTree;
};

bool Never() {
  return false;
}

int Bars(const TBarSolution& Solution) {
  int bars = 0;
  for (const auto& pair : Solution) bars += pair.Value;
  return bars;
}

// A poor start, each piece from a bar of its own, and no residual heuristic.
TBCPSolverManager<TBarPattern> PoorSolvers(const TBarProblem& Problem, TSubProblemSolveFunc<TBarPattern> Price) {
  TBCPSolverManager<TBarPattern> manager(&Problem);
  manager.AddSubProblemSolver(std::move(Price));
  manager.AddGreedySolver([&Problem](const auto&, TBarSolution& Solution) {
    for (int row = 0; row < Size(Problem.BVec()); ++row) {
      TIntegerDynArray counts(Problem.BVec().size());
      counts[row] = 1;
      Solution.AddSubSolution(Problem.MakePattern(counts), Round<int>(Problem.BVec()[row]));
    }
    return true;
  });
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

// By trying each piece in each bar.
bool AllFit(const TIntegerDynArray& Pieces, std::size_t Next, TIntegerDynArray& Spaces) {
  if (Next == Pieces.size()) return true;
  for (int& space : Spaces) {
    space -= Pieces[Next];
    if (space >= 0 && AllFit(Pieces, Next + 1, Spaces)) return true;
    space += Pieces[Next];
  }
  return false;
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
    std::mt19937 random(Seed);
    TIntegerDynArray lengths, demand, pieces;
    for (auto most = 2 + random() % 8; pieces.size() < most;) {
      lengths.push_back(20 + static_cast<int>(random() % 50));
      demand.push_back(1 + static_cast<int>(random() % 3));
      pieces.insert(pieces.end(), static_cast<std::size_t>(demand.back()), lengths.back());
    }
    int least = 0;
    for (TIntegerDynArray spaces; !AllFit(pieces, 0, spaces); spaces.assign(static_cast<std::size_t>(least), 100))
      ++least;
    const TBarProblem problem(100, lengths, demand);
    for (const auto& manager : {BarSolvers(problem), PoorSolvers(problem, PriceBar)}) {
      TTree tree(&manager, nullptr, Seed % 2 == 0, 0);
      const TBarSolution best = tree.Solve(Never);
      EXPECT_TRUE(problem.CheckSolution(best));
      EXPECT_GE(Bars(best), least);
      EXPECT_TRUE(tree.Status() != 0 || Bars(best) == least);
    }
  });
}

TEST(BCPTree, StoppedAtAnyPollItHoldsAValidSolution) {
  const auto manager = PoorSolvers(kDeep, PriceBar);
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

TEST(BCPTree, BoundsMeetUnderOneCeilingOrWithinATenthOfAPerMille) {
  using detail::BoundsMeet;
  EXPECT_TRUE(BoundsMeet(9.2, 9.9) && BoundsMeet(100, 100.009) && BoundsMeet(5, 5.0004));
  EXPECT_FALSE(BoundsMeet(100, 100.02) || BoundsMeet(5, 5.0006) || BoundsMeet(0, kBCPInfinity));
  const TBarProblem problem(100, {40}, {4});
  TBCPSolverManager<TBarPattern> manager(&problem);
  TProbe tree(&manager, nullptr, true, 0);
  TBarSolution best;
  best.AddSubSolution(problem.MakePattern({2}), 2);
  EXPECT_TRUE(tree.AddSolution(best, true));
  TNode other({0}, {4}, &manager, nullptr, nullptr, 0, false);
  tree.RootNode().LLB = tree.GUB();
  EXPECT_FALSE(tree.Bound(tree.RootNode())) << "no better than the best solution";
  for (const double lower : {0.90000049, 1.7}) {
    other.LLB = lower;
    EXPECT_TRUE(tree.Bound(other));
  }
  EXPECT_FALSE(tree.BoundMeet());
  EXPECT_EQ(tree.GLB(), 0.9) << "only falls, and stays rounded";
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

TEST(BCPTree, ARootThatCannotImproveIsNotRounded) {
  const TBarProblem problem(100, {40}, {5});
  TBCPSolverManager<TBarPattern> manager(&problem);
  manager.AddSubProblemSolver(PriceBar);
  manager.AddGreedySolver(CutGreedily);  // 2.4, where the LP needs 2.5
  manager.AddResidualSolver([](const auto&, const auto&, auto&) {
    ADD_FAILURE();
    return false;
  });
  TTree tree(&manager, nullptr, true, 0);
  EXPECT_EQ(Bars(tree.Solve(Never)), 3);
  EXPECT_EQ(tree.Status(), 0);
}

TEST(BCPTree, ARootThatIsWholeIsNotBranched) {
  const TBarProblem problem(100, {40}, {4});
  auto manager = PoorSolvers(problem, PriceBar);
  TTree tree(&manager, nullptr, true, 0);
  EXPECT_EQ(Bars(tree.Solve(Never)), 2);
  EXPECT_EQ(tree.Status(), 0);
  EXPECT_TRUE(tree.Root().ChildNodes.empty());
}

TEST(BCPTree, ColumnsOfARefusedStartEnterThePoolAndArrivalsCountEvenWhenTheRootFails) {
  const TBarProblem problem(100, {40}, {4});
  TBCPSolverManager<TBarPattern> manager(&problem);
  TTree::TSolutionFifo fifo;
  const auto start = [&manager](bool Answer, int PerBar, double Usage, int Bars) {
    manager.AddGreedySolver([=](const auto&, TBarSolution& Solution) {
      Solution.AddSubSolution(TBarPattern({PerBar}, Usage), Bars);
      return Answer;
    });
  };
  start(false, 5, 0.1, 9);
  start(true, 3, 0.1, 1);
  start(true, 2, 0.8, 1);
  start(true, 1, 0.4, 4);
  start(true, 4, 0.1, 1);  // not asked any more
  int calls = 0;
  manager.AddSubProblemSolver([&](const auto&, bool&, double&) -> std::unique_ptr<TBarPattern> {
    if (++calls == 2) throw TNestError("pricing");
    TBarSolution solution;
    solution.AddSubSolution(TBarPattern({2}, 0.5), 2);  // known to the pool with another usage
    fifo.Push(std::move(solution));
    return nullptr;
  });
  TTree tree(&manager, &fifo, true, 0);
  EXPECT_EQ(Bars(tree.Solve(Never)), 2);
  EXPECT_EQ(calls, 2);
  EXPECT_DOUBLE_EQ(tree.GUB(), 1.5);
  EXPECT_EQ(tree.VarPool().Count(), 3);
}

TEST(BCPTree, ErrorsEndTheSearchWithTheBestSolutionButLeaveTheStart) {
  for (const int good : {0, 3, 20}) {
    int calls = 0;
    const auto manager = PoorSolvers(kDeep, [&](const TBCPProblem<TBarPattern>& Sub, bool& Usable, double& Value) {
      if (++calls > good) throw std::string("no error of ours");
      return PriceBar(Sub, Usable, Value);
    });
    TTree tree(&manager, nullptr, true, 0);
    EXPECT_TRUE(kDeep.CheckSolution(tree.Solve(Never)));
    EXPECT_EQ(calls, good + 1);
    EXPECT_EQ(tree.Counts().Pricings, calls);
    EXPECT_EQ(tree.Status(), 2);
  }
  TBCPSolverManager<TBarPattern> manager(&kDeep);
  manager.AddGreedySolver([](const auto&, auto&) -> bool { throw TNestError("start"); });
  EXPECT_THROW(TTree(&manager, nullptr, true, 0).Solve(Never), TNestError);
}

TEST(BCPTree, TheLimitsOfTimeAndNodesLeaveTheStatusOpen) {
  // One column at its bound is chosen again and again.
  const TBarProblem stuck(147, {19, 36, 24}, {5, 20, 16});
  for (const bool isLate : {false, true}) {
    auto manager = PoorSolvers(stuck, PriceBar);
    int residuals = 0;
    manager.AddResidualSolver([&residuals](const auto&, const auto&, auto&) { return ++residuals < 0; });
    TFakeClock clock;
    TTree tree(&manager, nullptr, true, 1);
    int polled = 0;
    EXPECT_TRUE(stuck.CheckSolution(tree.Solve([&] {
      if (++polled == 50 && isLate) clock.AdvanceMs(2000);
      return false;
    })));
    EXPECT_EQ(tree.Status(), -1);
    EXPECT_EQ(residuals, isLate ? 1 : 34) << "the root and each thirtieth iteration";
    EXPECT_EQ(Walked(tree.Root()), isLate ? 9 : 1001) << "the root and those of the limit";
  }
  TBCPSolverManager<TBarPattern> manager(&stuck);
  TFakeClock clock;
  manager.AddGreedySolver([&](const auto& Problem, TBarSolution& Solution) {
    clock.AdvanceMs(2000);
    return CutGreedily(Problem, Solution);
  });
  TTree tree(&manager, nullptr, true, 1);
  EXPECT_TRUE(stuck.CheckSolution(tree.Solve(Never)));
  EXPECT_EQ(tree.Status(), 2) << "without an LP the root counts as closed";
}

// Rows that a whole number of columns cannot meet: exactly one and a half.
struct TUnwhole : TBarProblem {
  TUnwhole() : TBarProblem(100, {40}, {2}) {
    FBVec = {1.5};
    FIneqVec = {0};
  }
};

TEST(BCPTree, ANodeWithoutFeasibleBranchesIsClosed) {
  const TUnwhole problem;
  auto manager = PoorSolvers(problem, [](const auto&, bool& Usable, double& Value) {
    Usable = true;
    Value = 1;
    return std::make_unique<TBarPattern>(TIntegerDynArray{1}, 0.4);
  });
  TProbe tree(&manager, nullptr, true, 0);
  ASSERT_TRUE(tree.RootNode().Solve(TBCPStopWatch(0), Never));
  EXPECT_TRUE(tree.RootNode().Branch(true)) << "the up-branch was tried";
  EXPECT_TRUE(tree.Root().ChildNodes.empty());
  EXPECT_EQ(tree.Branch(tree.RootNode()), nullptr);
  EXPECT_TRUE(tree.Root().Calced);
}

TEST(BCPTree, ClosingANodeJumpsToTheOpenLeafOfTheLowestParentBound) {
  const auto manager = PoorSolvers(kDeep, PriceBar);
  TProbe tree(&manager, nullptr, false, 0);
  ASSERT_TRUE(tree.GreedySolve());
  TNode* const root = &tree.RootNode();
  ASSERT_TRUE(root->Solve(TBCPStopWatch(0), Never));
  TNode* const first = tree.Branch(*root);
  TNode* const second = root->ChildNodes.at(1).get();
  EXPECT_FALSE(first->CGRequired() || second->CGRequired()) << "as the tree was told";
  ASSERT_TRUE(first->Solve(TBCPStopWatch(0), Never));
  TNode* const deep = tree.Branch(*first);
  TNode* const deepSecond = first->ChildNodes.at(1).get();
  EXPECT_EQ(tree.Select(first, false), deep);
  EXPECT_EQ(tree.Select(deep, false), deep);
  first->LLB = root->LLB;
  EXPECT_LT(TProbe::CompareNodes(deep, second), 0) << "equal bounds, so the deeper one";
  first->LLB = root->LLB + 1;
  EXPECT_GT(TProbe::CompareNodes(deep, second), 0);
  EXPECT_THROW(TProbe::CompareNodes(root, deep), TAssertionError);
  EXPECT_EQ(tree.DeleteSearch(*deep), second) << "not the other child of its parent";
  EXPECT_EQ(tree.DeleteSearch(*second), deepSecond);
  EXPECT_EQ(tree.DeleteSearch(*deepSecond), nullptr);
  EXPECT_TRUE(first->Calced && root->Calced && root->ColDict().empty());
  EXPECT_THROW(tree.Select(deep, false), TAssertionError);
}

}  // namespace
}  // namespace platenest
