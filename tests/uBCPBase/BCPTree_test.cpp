#include "platenest/uBCPBase/BCPTree.h"

#include <gmock/gmock.h>

#include <random>
#include <string>
#include <tuple>
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

// Bars are cut up without waste, and then one piece may be missing: the optimum is their number.
TEST(BCPTree, MetBoundsAreTheOptimumFromGoodAndPoorStarts) {
  ForEachSeed(60, [](unsigned Seed) {
    std::mt19937 random(Seed);
    TIntegerDynArray lengths, demand;
    int least = 0;
    while (least < 6) {
      const int times = 1 + static_cast<int>(random() % 3);
      for (int space = 100; space > 0; space -= lengths.back()) {
        lengths.push_back(space < 40 ? space : 20 + static_cast<int>(random() % 1000) % (space - 39));
        demand.push_back(times);
      }
      least += times;
    }
    demand.back() -= int{Seed % 3 > 0 && demand.back() > 1};
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
  TBarSolution best = BarSolution({{{2}, 0.8, 2}});
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
  fifo.Push(BarSolution({{{2}, 0.8, 1}}));
  EXPECT_FALSE(tree.GreedySolve()) << "it meets half of the demand";
  fifo.Push(BarSolution({{{2}, 0.8, 2}}));
  EXPECT_TRUE(tree.GreedySolve());
  EXPECT_EQ(tree.VarPool().Count(), 0);
  EXPECT_DOUBLE_EQ(tree.GUB(), 1.8);
  TBarSolution same = BarSolution({{{2}, 0.8, 2}}), tooFew = BarSolution({{{1}, 0.4, 3}});
  EXPECT_FALSE(tree.AddSolution(same, true)) << "as good is no better";
  EXPECT_FALSE(tree.AddSolution(tooFew, false)) << "checked all the same";
  EXPECT_EQ(tree.VarPool().Count(), 2);
  std::vector<std::unique_ptr<TBarPattern>> vars;
  for (const int perBar : {3, 1, 4}) vars.push_back(problem.MakePattern({perBar}));
  EXPECT_FALSE(tree.AddVars(vars));
  EXPECT_EQ(tree.VarPool().Count(), 3) << "none behind the known one";
}

// A start of 2.4 where the LP needs 2.5, and a whole LP.
TEST(BCPTree, ARootThatCannotImproveOrIsWholeIsNeitherRoundedNorBranched) {
  for (const bool isWhole : {false, true}) {
    const TBarProblem problem(100, {40}, {isWhole ? 4 : 5});
    auto manager = isWhole ? PoorSolvers(problem, PriceBar) : BarSolvers(problem);
    manager.AddResidualSolver([](const auto&, const auto&, auto&) {
      ADD_FAILURE();
      return false;
    });
    TTree tree(&manager, nullptr, true, 0);
    EXPECT_EQ(Bars(tree.Solve(Never)), isWhole ? 2 : 3);
    EXPECT_EQ(tree.Status(), 0);
    EXPECT_TRUE(tree.Root().ChildNodes.empty());
  }
}

// The first start is refused, two are too small, and the last one is not asked any more.
TEST(BCPTree, ColumnsOfARefusedStartEnterThePoolAndArrivalsCountEvenWhenTheRootFails) {
  const TBarProblem problem(100, {40}, {4});
  TBCPSolverManager<TBarPattern> manager(&problem);
  TTree::TSolutionFifo fifo;
  using TStart = std::tuple<int, double, int, bool>;
  for (const auto& [perBar, usage, bars, isGiven] :
       {TStart{5, 0.1, 9, false}, {3, 0.1, 1, true}, {2, 0.8, 1, true}, {1, 0.4, 4, true}, {4, 0.1, 1, true}})
    manager.AddGreedySolver([=](const auto&, TBarSolution& Solution) {
      Solution = BarSolution({{{perBar}, usage, bars}});
      return isGiven;
    });
  int calls = 0;
  manager.AddSubProblemSolver([&](const auto&, bool&, double&) -> std::unique_ptr<TBarPattern> {
    if (++calls == 2) throw TNestError("pricing");
    fifo.Push(BarSolution({{{2}, 0.5, 2}}));  // known to the pool with another usage
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

// The time is up before the first LP, after some, or never. One column at its bound is chosen again and again.
TEST(BCPTree, TheLimitsOfTimeAndNodesLeaveTheStatusOpenUnlessTheRootHasNoLP) {
  const TBarProblem stuck(147, {19, 36, 24}, {5, 20, 16});
  using TCase = std::tuple<int, int, int, int>;
  for (const auto& [lastPoll, status, residuals, nodes] : {TCase{1, 2, 0, 1}, {50, -1, 1, 15}, {0, -1, 34, 1007}}) {
    auto manager = PoorSolvers(stuck, PriceBar);
    int polled = 0, rounded = 0;
    manager.AddResidualSolver([&rounded](const auto&, const auto&, auto&) { return ++rounded < 0; });
    TFakeClock clock;
    TTree tree(&manager, nullptr, true, 1);
    EXPECT_TRUE(stuck.CheckSolution(tree.Solve([&] {
      if (++polled == lastPoll) clock.AdvanceMs(2000);
      return false;
    })));
    EXPECT_EQ(tree.Status(), status);
    EXPECT_EQ(rounded, residuals) << "the root and each thirtieth iteration";
    EXPECT_EQ(tree.Counts().Nodes, nodes);
  }
}

// One and a half columns, exactly.
TEST(BCPTree, ANodeWithoutFeasibleBranchesIsClosed) {
  const TSenseProblem problem({1.5}, {0});
  TBCPSolverManager<TBarPattern> manager(&problem);
  manager.AddSubProblemSolver([](const auto&, bool& Usable, double&) {
    Usable = true;
    return std::make_unique<TBarPattern>(TIntegerDynArray{1}, 0.4);
  });
  TProbe tree(&manager, nullptr, true, 0);
  ASSERT_TRUE(tree.RootNode().Solve(TBCPStopWatch(0), Never));
  EXPECT_TRUE(tree.RootNode().Branch(true)) << "the up-branch was tried";
  EXPECT_EQ(tree.Branch(tree.RootNode()), nullptr);
  EXPECT_TRUE(tree.Root().ChildNodes.empty() && tree.Root().Calced);
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
