#include "platenest/uBCPBase/BCPNode.h"

#include <gmock/gmock.h>

#include <limits>
#include <numeric>
#include <optional>
#include <random>
#include <string>

#include "CuttingStock1D.h"
#include "FakeClock.h"
#include "ForEachSeed.h"

namespace platenest {
namespace {

using testing::DoubleNear;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;

using TNode = TBCPNode<TBarPattern>;

struct TProbe : TNode {
  using TNode::CheckNoEmptyRow, TNode::InitializeSolve, TNode::InitLP, TNode::RoundingLargeFracPrior,
      TNode::SolveSubProblem, TNode::TNode;
};

bool Never() {
  return false;
}

// A root over bars of length 1000 and pieces of length 1, so that only the patterns of the pool matter.
struct TBench {
  TBarProblem Problem;
  TBCPSolverManager<TBarPattern> Manager{&Problem};
  TVarPool<TBarPattern> Pool;
  TBCPStopWatch Watch{0};
  std::vector<TDoubleDynArray> Priced;  // worths at each call of a scripted heuristic

  explicit TBench(const TIntegerDynArray& Demand, const std::vector<TIntegerDynArray>& Columns = {}, int Sense = 1)
      : Problem(1000, TIntegerDynArray(Demand.size(), 1), Demand),
        Pool(Problem.BVec(), TIntegerDynArray(Demand.size(), Sense)) {
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

// Primal and dual feasible with equal objectives: optimal, whatever the LP library says.
void ExpectOptimal(const TNode& Node, const TVarPool<TBarPattern>& Pool) {
  constexpr double kTol = 1e-7;
  const TDoubleDynArray& y = Node.LPSolver()->GetRowPrice();
  TDoubleDynArray over = Node.BVec();
  double dual = std::inner_product(y.begin(), y.end(), over.begin(), 0.0);
  double primal = 0;
  for (int k = 1; k < Size(Node.LPSolVec()); ++k) {
    const TDoubleDynArray column = Pool.GetColumn(Node.ColDict()[k], Node.RowDict());
    const double x = Node.LPSolVec()[k], ub = Node.LPSolver()->GetColUB(k - 1);
    const double reduced = 1 - std::inner_product(y.begin(), y.end(), column.begin(), 0.0);
    if (reduced < -kTol) dual += reduced * ub;
    primal += x;
    EXPECT_GE(x, -kTol);
    EXPECT_LE(x, ub + kTol);
    for (std::size_t row = 0; row < over.size(); ++row) over[row] -= x * column[row];
  }
  EXPECT_THAT(over, Each(testing::Le(kTol)));
  EXPECT_THAT(y, Each(Ge(-kTol)));
  EXPECT_THAT(primal, DoubleNear(Node.LPSol(), kTol));
  EXPECT_THAT(dual, DoubleNear(Node.LPSol(), kTol));
}

// What a child stands for: the main demand without its fixed columns, rows that are met left out.
void ExpectDemandBalances(const TNode& Node, const TVarPool<TBarPattern>& Pool) {
  TDoubleDynArray rest = Pool.BVec();
  double fixed = 0;
  for (int i = 0; i < Size(Node.ParentSolVec()); ++i) {
    fixed += Node.ParentSolVec()[i];
    for (int row = 0; row < Size(rest); ++row) rest[row] -= Node.ParentSolVec()[i] * Pool[i].Counts[row];
  }
  EXPECT_EQ(Node.BoundBase(), fixed);
  int local = 0;
  for (int row = 0; row < Size(rest); ++row) {
    if (rest[row] <= 0) continue;
    ASSERT_LT(local, Size(Node.RowDict()));
    EXPECT_EQ(Node.RowDict()[local], row);
    EXPECT_EQ(Node.BVec()[local++], rest[row]);
  }
  EXPECT_EQ(local, Size(Node.RowDict()));
}

TEST(BCPNode, EachLPIsOptimalAndEachChildBalances) {
  ForEachSeed(40, [](unsigned Seed) {
    std::mt19937 random(Seed);
    const auto between = [&random](int Low, int High) {
      return Low + static_cast<int>(random() % static_cast<unsigned>(High - Low));
    };
    TIntegerDynArray lengths, demand;
    for (int i = between(2, 7); i > 0; --i) {
      lengths.push_back(between(10, 70));
      demand.push_back(between(1, 12));
    }
    const TBarProblem problem(100, lengths, demand);
    const auto manager = BarSolvers(problem);
    TVarPool<TBarPattern> pool(problem.BVec(), problem.IneqVec());
    TBarSolution start;
    CutGreedily(problem, start);
    pool.AddBCPSolution(start, false);
    const auto explore = [&](TNode& Node, const auto& Self) -> void {
      ExpectDemandBalances(Node, pool);
      int polled = 0;
      const bool solved = Node.Solve(TBCPStopWatch(0), [&] {
        if (++polled > 4) ExpectOptimal(Node, pool);  // one LP at least is solved
        return false;
      });
      if (!solved) return;
      ExpectOptimal(Node, pool);
      if (Node.Depth() > 4) return;
      Node.Branch(Seed % 2 == 0);
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
  bench.Script(std::nullopt, {4, 4});
  bench.Script(true, {5, 5});
  bench.Script(true, {5, 4});
  TProbe root = bench.Root();
  ASSERT_TRUE(root.InitializeSolve(bench.Watch, Never));
  int asked = 0;
  EXPECT_TRUE(root.SolveSubProblem({0.25, 0.5}, 10, [&] { return ++asked == 3; }));
  EXPECT_EQ(Size(bench.Priced), 8) << "the last heuristic is not asked";
  EXPECT_THAT(bench.Priced[0], ElementsAre(2.5, 5));
  ASSERT_EQ(bench.Pool.Count(), 5);
  EXPECT_THAT(root.ColDict(), ElementsAre(-1, 0, 1, 2, 3, 4));
  EXPECT_THAT(bench.Pool[3].Counts, ElementsAre(2, 2));
  EXPECT_THAT(bench.Pool[4].Counts, ElementsAre(5, 5));
}

TEST(BCPNode, RowsWithoutColumnAreCountedOffFromTheFront) {
  TBench bench({4, 5, 6});
  int calls = 0;
  bench.Manager.AddSubProblemSolver([&](const TBCPProblem<TBarPattern>& Sub, bool& Usable, double&) {
    bench.Priced.push_back(dynamic_cast<const TBarProblem&>(Sub).Worths());
    Usable = true;
    return std::make_unique<TBarPattern>(TIntegerDynArray{0, 0, ++calls}, 1);
  });
  TProbe root = bench.Root();
  ASSERT_TRUE(root.InitLP());
  EXPECT_TRUE(root.CheckNoEmptyRow()) << "although rows 0 and 1 have no column";
  EXPECT_THAT(bench.Priced,
              ElementsAre(ElementsAre(1e4, 1e4, 1e4), ElementsAre(10, 1e4, 1e4), ElementsAre(10, 10, 1e4)));
  EXPECT_FALSE(root.Solve(bench.Watch, Never));
  EXPECT_EQ(root.LLB, kBCPInfinity);
  TBench atMost({4}, {{1}}, -1);
  TProbe bounded = atMost.Root();
  ASSERT_TRUE(bounded.InitLP());
  EXPECT_FALSE(bounded.CheckNoEmptyRow()) << "such a row is empty whatever its columns are";
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
  TNode& up = *root.ChildNodes[0];
  EXPECT_THAT(up.RowDict(), ElementsAre(2, 3));
  EXPECT_THAT(up.ParentSolVec(), ElementsAre(0, 1, 0, 0, 0));
  EXPECT_TRUE(up.IntConstraint().empty());
  EXPECT_TRUE(up.CGRequired());
  TNode& down = *root.ChildNodes[1];
  EXPECT_FALSE(down.CGRequired());
  TNode::TSolutionFifo fifo;
  TNode::TSolutionList arrived;
  TBarSolution outside;
  outside.AddSubSolution(TBarPattern({0, 0, 0, 2}, 1), 1);
  fifo.Push(std::move(outside));
  EXPECT_TRUE(down.SolveWithFIFOSolutions(bench.Watch, Never, &fifo, arrived));
  EXPECT_EQ(Size(arrived), 1);
  EXPECT_THAT(down.ColDict(), ElementsAre(-1, 0, 2, 3, 4, 5)) << "column 1 is forbidden below";
  EXPECT_THAT(down.VarUB(), ElementsAre(kUnbounded, 1, 1, 1, 9)) << "not shifted, none for the new column";
  EXPECT_DOUBLE_EQ(down.LLB, 6.5);
}

TEST(BCPNode, BranchingPrefersHalvesNearTheirBoundAndStaysOnAWholeOne) {
  EXPECT_DOUBLE_EQ(detail::BranchScore(1.6, 0, 2), 0.3);
  EXPECT_DOUBLE_EQ(detail::BranchScore(0.5, 0, 4), 0.875);
  // x0 = 10/3 above its limit of 3, so the up-branch has 3 copies; below, x0 = 2 stands at its bound and is chosen
  // again.
  TBench bench({10}, {{3}, {1}});
  TProbe root = bench.Root();
  ASSERT_TRUE(root.Solve(bench.Watch, Never));
  ASSERT_TRUE(root.Branch(false));
  ASSERT_EQ(Size(root.ChildNodes), 2);
  EXPECT_THAT(root.ChildNodes[0]->ParentSolVec(), ElementsAre(3, 0));
  TNode* node = root.ChildNodes[1].get();
  for (int depth = 1; depth < 4; ++depth, node = node->ChildNodes[0].get()) {
    ASSERT_TRUE(node->Solve(bench.Watch, Never));
    EXPECT_DOUBLE_EQ(node->LPSol(), 6);
    ASSERT_TRUE(node->Branch(false));
    ASSERT_EQ(Size(node->ChildNodes), 1) << "the up-branch has no solution";
    EXPECT_EQ(node->ChildNodes[0]->IntConstraint()[0].UB, 2);
  }
}

TEST(BCPNode, WholeValuesAreRoundedFirstAndTheCheapestResidualIsTaken) {
  TBench bench({3, 9}, {{2, 0}, {0, 1}});  // x = 1.5, 9
  const auto residual = [](double Usage, bool Answer) {
    return [=](const TBCPProblem<TBarPattern>& Sub, const TBarSolution& Partial, TBarSolution& Result) {
      EXPECT_THAT(Sub.BVec(), ElementsAre(1));
      EXPECT_EQ(Partial.Count(), 2);
      Result.AddSubSolution(TBarPattern({1, 0}, Usage), 1);
      return Answer;
    };
  };
  bench.Manager.AddResidualSolver(residual(0.9, true));
  bench.Manager.AddResidualSolver(residual(0.4, true));
  bench.Manager.AddResidualSolver(residual(0.1, false));
  bench.Manager.AddResidualSolver(residual(0.5, true));
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
  EXPECT_TRUE(bench.Problem.CheckSolution(root.SolveResidual(cost)));
  EXPECT_DOUBLE_EQ(cost, 10.4);
  root.GetIntSolution(cost);
  EXPECT_DOUBLE_EQ(root.LUB, 11) << "1.5 goes to the even 2";
}

TEST(BCPNode, OutsideSolutionsReachTheLPAndKeepPricingAlive) {
  TBench bench({4}, {{1}});
  TNode::TSolutionFifo fifo;
  TNode::TSolutionList arrived;
  const auto push = [&fifo](int Count) {
    TBarSolution solution;
    solution.AddSubSolution(TBarPattern({Count}, 1), 1);
    fifo.Push(std::move(solution));
  };
  push(2);
  bench.Manager.AddSubProblemSolver([&](const auto&, bool& Usable, double&) -> std::unique_ptr<TBarPattern> {
    if (arrived.size() == 1) push(4);
    Usable = false;
    return nullptr;
  });
  TProbe root = bench.Root(true);
  EXPECT_TRUE(root.SolveWithFIFOSolutions(bench.Watch, Never, &fifo, arrived));
  EXPECT_EQ(Size(arrived), 2);
  EXPECT_EQ(root.LPRounds(), 2);
  EXPECT_DOUBLE_EQ(root.LLB, 1);

  TBench hopeless({4});
  TProbe empty = hopeless.Root(true);
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
