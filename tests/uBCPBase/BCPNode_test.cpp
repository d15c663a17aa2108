#include "platenest/uBCPBase/BCPNode.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <optional>
#include <random>
#include <tuple>

#include "CuttingStock1D.h"
#include "FakeClock.h"
#include "ForEachSeed.h"
#include "LpCheck.h"

namespace platenest {
namespace {

using testing::ElementsAre;

using TNode = TBCPNode<TBarPattern>;

struct TProbe : TNode {
  using TNode::CheckNoEmptyRow, TNode::InitializeSolve, TNode::InitLP, TNode::RoundingLargeFracPrior,
      TNode::SolveSubProblem, TNode::TNode;
};

// A root whose pool holds just the columns that are given.
struct TBench {
  TSenseProblem Problem;
  TBCPSolverManager<TBarPattern> Manager{&Problem};
  TVarPool<TBarPattern> Pool{Problem.BVec(), Problem.IneqVec()};
  TBCPStopWatch Watch{0};
  std::vector<TDoubleDynArray> Priced;  // worths at each call of a scripted heuristic

  explicit TBench(const TDoubleDynArray& Demand, const std::vector<TIntegerDynArray>& Columns = {}, int Sense = 1)
      : Problem(Demand, TIntegerDynArray(Demand.size(), Sense)) {
    bool exists = false;
    for (const TIntegerDynArray& column : Columns) Pool.AddVar(TBarPattern(column, 1), exists);
  }
  TProbe Root(bool CG = false) { return TProbe(Problem.RowDict(), Problem.BVec(), &Manager, &Pool, nullptr, 0, CG); }
  // A heuristic that returns Column, null if it is empty, and leaves the status alone unless told.
  void Script(std::optional<bool> Status, const TIntegerDynArray& Column) {
    Manager.AddSubProblemSolver([=, this](const TBCPProblem<TBarPattern>& Sub, bool& Usable, double& Value) {
      Priced.push_back(dynamic_cast<const TBarProblem&>(Sub).Worths());
      if (Status) Usable = *Status;
      Value = 1;
      return Column.empty() ? nullptr : std::make_unique<TBarPattern>(Column, 1);
    });
  }
};

// The last LP of the node, under the bounds that branching gave it, judged without the LP library.
void ExpectOptimal(const TNode& Node, const TVarPool<TBarPattern>& Pool) {
  const std::size_t rows = Node.BVec().size();
  TLpModel model{TDoubleMatrix(rows), {}, Node.BVec(), TDoubleDynArray(rows, kBCPInfinity), {}, {}};
  TDoubleDynArray ub(static_cast<std::size_t>(Pool.Count()), kBCPInfinity);
  for (const auto& bound : Node.IntConstraint()) ub[bound.Idx] = bound.UB;
  for (int k = 1; k < Size(Node.LPSolVec()); ++k)
    model.AddColumn(Pool.GetColumn(Node.ColDict()[k], Node.RowDict()), 1, 0, ub[Node.ColDict()[k]]);
  const TDoubleDynArray x(Node.LPSolVec().begin() + 1, Node.LPSolVec().end());
  EXPECT_TRUE(IsLpOptimum(model, Node.LPSol(), x, Node.LPSolver()->GetRowPrice()));
}

// What a child stands for: the main demand without its fixed columns, rows that are met left out.
void ExpectDemandBalances(const TNode& Node, const TVarPool<TBarPattern>& Pool) {
  const TBarSolution fixed = Pool.GetIntSolution(Node.ParentSolVec());
  const TDoubleDynArray made = fixed.GetColumn(Size(Pool.BVec()));
  TDoubleDynArray open;
  TIntegerDynArray openRows;
  for (int row = 0; row < Size(made); ++row) {
    if (made[row] >= Pool.BVec()[row]) continue;
    openRows.push_back(row);
    open.push_back(Pool.BVec()[row] - made[row]);
  }
  EXPECT_EQ(Node.BoundBase(), Bars(fixed));
  EXPECT_EQ(Node.RowDict(), openRows);
  EXPECT_EQ(Node.BVec(), open);
}

// How often a subtree may use the columns that branching has bounded, the fixed copies included, by pool index. An
// up-branch leaves that as it is, a down-branch widens nothing.
void ExpectBoundsPassedOn(const TNode& Node, const TNode& Child) {
  const auto limits = [](const TNode& node) {
    std::map<int, int> result;
    for (const auto& bound : node.IntConstraint())
      result[bound.Idx] = bound.UB + (bound.Idx < Size(node.ParentSolVec()) ? node.ParentSolVec()[bound.Idx] : 0);
    return result;
  };
  std::map<int, int> before = limits(Node), after = limits(Child);
  EXPECT_TRUE(Child.BoundBase() == Node.BoundBase() || after == before);
  for (const auto& [idx, limit] : before) EXPECT_TRUE(after.contains(idx) && after[idx] <= limit);
  EXPECT_TRUE(std::is_sorted(Child.IntConstraint().begin(), Child.IntConstraint().end(),
                             [](const auto& left, const auto& right) { return left.Idx < right.Idx; }));
}

TEST(BCPNode, EachLPIsOptimalAndEachChildBalances) {
  ForEachSeed(40, [](unsigned Seed) {
    std::mt19937 random(Seed);
    TIntegerDynArray lengths, demand;
    for (auto i = 2 + random() % 5; i > 0; --i) {
      lengths.push_back(10 + static_cast<int>(random() % 60));
      demand.push_back(1 + static_cast<int>(random() % 12));
    }
    const TBarProblem problem(100, lengths, demand);
    const auto manager = BarSolvers(problem);
    TVarPool<TBarPattern> pool(problem.BVec(), problem.IneqVec());
    TBarSolution start;
    CutGreedily(problem, start);
    pool.AddBCPSolution(start, false);
    const auto explore = [&](TNode& Node, const auto& Self) -> void {
      ExpectDemandBalances(Node, pool);
      if (Node.Parent != nullptr) ExpectBoundsPassedOn(*Node.Parent, Node);
      const auto check = [&] {
        if (Node.LPRounds() > 0) ExpectOptimal(Node, pool);
        return false;
      };
      if (!Node.Solve(TBCPStopWatch(0), check)) return;
      check();
      double cost = 0;
      EXPECT_TRUE(problem.CheckSolution(Node.SolveResidual(cost))) << "with what the branches have fixed";
      if (Node.Depth() < 5 && Node.Branch(Seed % 2 == 0))
        for (auto& child : Node.ChildNodes) Self(*child, Self);
    };
    TNode root(problem.RowDict(), problem.BVec(), &manager, &pool, nullptr, 0, true);
    explore(root, explore);
    EXPECT_GT(root.LPRounds(), 0);
  });
}

TEST(BCPNode, APricingPassSharesOneStatusAndKeepsRejectedColumns) {
  TBench bench({5, 5}, {{1, 0}, {0, 1}});
  bench.Script(std::nullopt, {1, 4});  // the status starts false
  bench.Script(true, {1, 0});          // known
  bench.Script(true, {1, 1});
  bench.Script(std::nullopt, {});
  bench.Script(std::nullopt, {2, 2});  // believed as the one before it
  bench.Script(false, {3, 3});
  bench.Script(true, {5, 5});
  bench.Script(true, {5, 4});  // not asked any more
  TProbe root = bench.Root();
  ASSERT_TRUE(root.InitializeSolve(bench.Watch, Never));
  int asked = 0;
  EXPECT_TRUE(root.SolveSubProblem({0.25, 0.5}, 10, [&] { return ++asked == 3; }));
  EXPECT_THAT(bench.Priced[0], ElementsAre(2.5, 5));
  EXPECT_THAT(root.ColDict(), ElementsAre(-1, 0, 1, 2, 3, 4));
  EXPECT_THAT(bench.Pool[3].Counts, ElementsAre(2, 2));
  EXPECT_THAT(bench.Pool[4].Counts, ElementsAre(5, 5));
  EXPECT_FALSE(detail::IsWorthAnotherLP(1.01, 1, 10.2)) << "11 bars either way";
  EXPECT_TRUE(detail::IsWorthAnotherLP(1.05, 1, 10.2));
  EXPECT_FALSE(detail::IsWorthAnotherLP(1 + 1e-6, 1, 1e9)) << "not above the tolerance";
}

TEST(BCPNode, RowsWithoutColumnAreCountedOffFromTheFront) {
  TBench bench({4, 5, 6});
  for (const int copies : {1, 2, 3}) bench.Script(true, {0, 0, copies});
  TProbe root = bench.Root();
  ASSERT_TRUE(root.InitLP());
  EXPECT_TRUE(root.CheckNoEmptyRow()) << "although rows 0 and 1 have no column";
  const TDoubleDynArray first = {1e4, 1e4, 1e4}, second = {10, 1e4, 1e4}, third = {10, 10, 1e4};
  EXPECT_THAT(bench.Priced, ElementsAre(first, second, second, third, third, third)) << "known columns do not count";
  EXPECT_FALSE(root.Solve(bench.Watch, Never));
  EXPECT_EQ(root.LLB, kBCPInfinity);
  TBench atMost({4}, {{1}}, -1);
  EXPECT_FALSE(atMost.Root().Solve(atMost.Watch, Never)) << "such a row is empty whatever its columns are";
}

TEST(BCPNode, ABranchFixesCopiesAboveAndBoundsThemBelow) {
  // x = 0, 0.5, 0.5, 0.5, 9; columns 1 to 4 all score 0.5.
  constexpr double kUnbounded = std::numeric_limits<int>::max();
  TBench bench({1, 1, 1, 9}, {{0, 0, 0, 0}, {1, 1, 0, 0}, {1, 0, 1, 0}, {0, 1, 1, 0}, {0, 0, 0, 1}});
  TProbe root = bench.Root();
  ASSERT_TRUE(root.Solve(bench.Watch, Never));
  EXPECT_EQ(root.LPRounds(), 1) << "no columns are asked for";
  EXPECT_THAT(root.VarUB(), ElementsAre(kUnbounded, 1, 1, 1, 9));
  ASSERT_TRUE(root.Branch(true));
  ASSERT_EQ(Size(root.ChildNodes), 2);
  EXPECT_THAT(root.ChildNodes[0]->ParentSolVec(), ElementsAre(0, 1, 0, 0, 0));
  EXPECT_TRUE(root.ChildNodes[0]->CGRequired());
  EXPECT_EQ(root.LPSolver()->GetColUB(1), 0) << "the bound of the down-branch stays";
  TNode& down = *root.ChildNodes[1];
  EXPECT_FALSE(down.CGRequired());
  TNode::TSolutionFifo fifo;
  TNode::TSolutionList arrived;
  fifo.Push(BarSolution({{{0, 0, 0, 2}, 1, 1}}));
  EXPECT_TRUE(down.SolveWithFIFOSolutions(bench.Watch, Never, &fifo, arrived));
  EXPECT_EQ(Size(arrived), 1);
  EXPECT_THAT(down.ColDict(), ElementsAre(-1, 0, 2, 3, 4, 5)) << "column 1 is forbidden below";
  EXPECT_THAT(down.VarUB(), ElementsAre(kUnbounded, 1, 1, 1, 9)) << "not shifted, none for the new column";
  TBench tight({4, 1}, {{1, 0}, {0, 1}});
  fifo.Push(BarSolution({{{5, 0}, 1, 1}}));
  TProbe other = tight.Root();
  EXPECT_TRUE(other.SolveWithFIFOSolutions(tight.Watch, Never, &fifo, arrived));
  EXPECT_TRUE(other.Branch(false)) << "not on a column that the demand allows no time";
  TBench thin({3, 3, 3, 3}, {{0, 1, 1, 1}, {1, 0, 1, 1}, {1, 1, 0, 1}, {1, 1, 1, 0}});
  TProbe thirds = thin.Root();
  EXPECT_TRUE(thirds.Solve(thin.Watch, Never) && thirds.Branch(false)) << "all columns score 7/6";
  TBench beyond({10}, {{3}, {1}}), late({5, 2}, {{2, 0}, {2, 2}});
  TProbe limited = beyond.Root(), reversed = late.Root();
  ASSERT_TRUE(limited.Solve(beyond.Watch, Never) && limited.Branch(true));
  EXPECT_THAT(limited.ChildNodes[0]->ParentSolVec(), ElementsAre(3, 0)) << "10/3 copies, where 3 are allowed";
  ASSERT_TRUE(reversed.Solve(late.Watch, Never) && reversed.Branch(true));
  EXPECT_FALSE(reversed.ChildNodes[0]->CGRequired()) << "the down-branch first, 2.5 against 3";
  EXPECT_DOUBLE_EQ(detail::BranchScore(1.6, 0, 2), 0.3);
  EXPECT_DOUBLE_EQ(detail::BranchScore(0.5, 0, 4), 0.875);
}

TEST(BCPNode, WholeValuesAreRoundedFirstAndTheCheapestResidualIsTaken) {
  TBench bench({3, 9}, {{0, 1}, {2, 0}});  // x = 9, 1.5
  using TAnswer = std::tuple<double, int, bool>;
  for (const auto& [usage, count, isGiven] : {TAnswer{0.9, 1, true}, {0.4, 1, true}, {0.4, 2, true}, {0.1, 1, false}})
    bench.Manager.AddResidualSolver([=](const auto& Sub, const TBarSolution& Partial, TBarSolution& Result) {
      EXPECT_THAT(Sub.BVec(), ElementsAre(1));
      EXPECT_EQ(Partial.Count(), 2);
      Result.AddSubSolution(TBarPattern({count, 0}, usage), 1);
      return isGiven;
    });
  TProbe root = bench.Root();
  ASSERT_TRUE(root.Solve(bench.Watch, Never));
  EXPECT_FALSE(root.Fathom(0.001));
  TDoubleDynArray rest;
  const TBarSolution rounded = root.RoundingLargeFracPrior(rest);
  ASSERT_EQ(rounded.Count(), 2);
  EXPECT_EQ(rounded.GetSubSolution(0).Value, 9);
  EXPECT_EQ(rounded.GetSubSolution(1).Value, 1) << "two would be more than the demand";
  EXPECT_THAT(rest, ElementsAre(1, 0));
  double cost = 0;
  EXPECT_THAT(root.SolveResidual(cost).GetColumn(2), ElementsAre(3, 9)) << "the first of equals";
  EXPECT_DOUBLE_EQ(cost, 10.4);
  root.GetIntSolution(cost);
  EXPECT_DOUBLE_EQ(root.LUB, 11) << "1.5 goes to the even 2";
}

TEST(BCPNode, WholeIsWhatLiesWithinTheToleranceOnEitherSide) {
  TBench bench({9}, {{1}});
  for (const double x : {2.9985, 2.9995, 3.0, 3.0005, 3.0015}) {
    TNode node({0}, {x}, &bench.Manager, &bench.Pool, nullptr, 0, false);
    ASSERT_TRUE(node.Solve(bench.Watch, Never));
    EXPECT_EQ(node.Fathom(0.001), std::fabs(x - 3) < 0.001) << x;
  }
}

TEST(BCPNode, OutsideSolutionsReachTheLPAndKeepPricingAlive) {
  TBench bench({4}, {{1}}), hopeless({4});
  TNode::TSolutionFifo fifo;
  TNode::TSolutionList arrived;
  const auto push = [&fifo](int Count) { fifo.Push(BarSolution({{{Count}, 1, 1}})); };
  push(2);
  bench.Manager.AddSubProblemSolver([&](const auto& Sub, bool&, double&) -> std::unique_ptr<TBarPattern> {
    bench.Priced.push_back(dynamic_cast<const TBarProblem&>(Sub).Worths());
    if (arrived.size() == 1) push(4);
    return nullptr;
  });
  TProbe root = bench.Root(true), empty = hopeless.Root(true);
  EXPECT_TRUE(root.SolveWithFIFOSolutions(bench.Watch, Never, &fifo, arrived));
  EXPECT_EQ(Size(arrived), 2);
  EXPECT_THAT(bench.Priced, ElementsAre(ElementsAre(5000), ElementsAre(2500))) << "10000 times the duals";
  EXPECT_EQ(root.LPRounds(), 2);
  EXPECT_DOUBLE_EQ(root.LLB, 1);
  push(1);
  EXPECT_FALSE(empty.SolveWithFIFOSolutions(bench.Watch, Never, &fifo, arrived)) << "a row without a column";
  EXPECT_FALSE(fifo.Empty());
}

TEST(BCPNode, StopAndTimeEndItBetweenLPs) {
  const TBarProblem rolls = ChvatalRolls();
  const auto manager = BarSolvers(rolls);
  for (const int allowed : {0, 1, 2, 3, 4, 5, -1}) {
    TVarPool<TBarPattern> pool(rolls.BVec(), rolls.IneqVec());
    bool exists = false;
    for (int row = 0; row < 4; ++row) pool.AddVar(TBarPattern({row == 0, row == 1, row == 2, row == 3}, 0), exists);
    TNode root(rolls.RowDict(), rolls.BVec(), &manager, &pool, nullptr, 0, true);
    TFakeClock clock;
    TBCPStopWatch watch(5);
    watch.Start();
    if (allowed < 0) clock.AdvanceMs(5001);
    int polled = 0;
    EXPECT_EQ(root.Solve(watch, [&] { return ++polled > allowed; }), allowed > 3);
    EXPECT_EQ(root.LPRounds(), std::max(0, allowed - 3)) << "three polls before the first LP";
    EXPECT_EQ(root.LLB<kBCPInfinity, allowed> 3);
    EXPECT_EQ(polled, allowed + 1);
  }
}

}  // namespace
}  // namespace platenest
