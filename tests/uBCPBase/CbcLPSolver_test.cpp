#include "platenest/uBCPBase/CbcLPSolver.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "ForEachSeed.h"
#include "LpCheck.h"
#include "SmallSimplex.h"
#include "platenest/foundation/Errors.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TCbcLPSolver SolverOf(const TLpModel& Model) {
  return {Model.Matrix, Model.Obj, false, Model.RowLB, Model.RowUB, Model.ColLB, Model.ColUB};
}

// Minimise x + y with x + 2y >= 3: y = 1.5 at 0.5 a unit.
TLpModel Small() {
  return {{{1, 2}}, {1, 1}, {3}, {kBCPInfinity}, {0, 0}, {kBCPInfinity, kBCPInfinity}};
}

std::optional<double> Optimum(TCbcLPSolver& Solver) {
  bool optimal = false;
  const double value = Solver.Solve(optimal);
  if (optimal) return value;
  EXPECT_EQ(value, kBCPInfinity);
  EXPECT_THAT(Solver.GetColSolution(), IsEmpty());
  EXPECT_THAT(Solver.GetRowPrice(), IsEmpty());
  return std::nullopt;
}

// A program and its solver, changed alike by chance.
class TRandomLp {
 public:
  explicit TRandomLp(unsigned Seed) : FRandom(Seed), FSolver(SolverOf(Draw())) {}

  void Change() {
    const int cols = Size(FModel.Obj);
    const int idx = cols == 0 ? 0 : Number(0, cols - 1);
    const double bound = Number(0, 4) == 0 ? kBCPInfinity : Number(0, 12) / 2.0;
    switch (cols == 0 ? 0 : Number(0, 3)) {
      case 0:
        AddColumn();
        break;
      case 1:
        FModel.DeleteColumn(idx);
        FSolver.DeleteColumn(idx);
        break;
      case 2:
        FModel.ColLB[idx] = Number(-2, 4);
        FSolver.SetColLB(idx, FModel.ColLB[idx]);
        break;
      default:
        FModel.ColUB[idx] = bound;
        FSolver.SetColUB(idx, bound);
        EXPECT_EQ(FSolver.GetColUB(idx), bound);
    }
  }

  bool Compare() {
    const std::optional<double> expected = LeastObjective(FModel);
    const std::optional<double> found = Optimum(FSolver);
    EXPECT_EQ(found.has_value(), expected.has_value());
    if (!found || !expected) return false;
    EXPECT_NEAR(*found, *expected, 1e-7 * (1 + std::fabs(*expected)));
    EXPECT_EQ(CheckLpOptimum(FModel, *found, FSolver.GetColSolution(), FSolver.GetRowPrice()), "");
    return true;
  }

 private:
  int Number(int From, int To) { return std::uniform_int_distribution(From, To)(FRandom); }

  TLpModel Draw() {
    FModel.Matrix.resize(static_cast<std::size_t>(Number(1, 4)));
    for (std::size_t row = 0; row < FModel.Matrix.size(); ++row) {
      const double demand = Number(0, 40) / 4.0;
      const int sense = Number(-1, 4);  // mostly at least
      FModel.RowLB.push_back(sense < 0 ? 0 : demand);
      FModel.RowUB.push_back(sense > 0 ? kBCPInfinity : demand);
    }
    for (int count = Number(0, 5); count > 0; --count) FModel.AddColumn(Column(), Cost(), 0, kBCPInfinity);
    return FModel;
  }
  TDoubleDynArray Column() {
    TDoubleDynArray column(FModel.Matrix.size());
    for (double& v : column) v = std::max(0, Number(-2, 4));
    if (Number(0, 5) == 0) column.front() = -1;
    return column;
  }
  double Cost() { return Number(0, 9) == 0 ? -1 : Number(1, 8) / 4.0; }
  void AddColumn() {
    const TDoubleDynArray column = Column();
    const double cost = Cost();
    FModel.AddColumn(column, cost, 0, kBCPInfinity);
    FSolver.AddColumn(column, cost, 0, kBCPInfinity);
  }

  std::mt19937 FRandom;
  TLpModel FModel;
  TCbcLPSolver FSolver;
};

TEST(CbcLPSolver, AgreesWithAnotherSimplexThroughColumnsAndBounds) {
  int solved = 0, steps = 0;
  ForEachSeed(200, [&](unsigned seed) {
    TRandomLp lp(seed);
    for (int step = 0; step < 25 && !testing::Test::HasFailure(); ++step, ++steps) {
      solved += int{lp.Compare()};
      lp.Change();
    }
  });
  EXPECT_GT(std::min(solved, steps - solved), steps / 10) << "both outcomes must be among the cases";
}

TEST(CbcLPSolver, TakesInfiniteAndCrossedBoundsAsWhatTheyMean) {
  TCbcLPSolver solver = SolverOf(Small());
  const auto solveWith = [&](double lower, double upper) {
    solver.SetColLB(1, lower);
    solver.SetColUB(1, upper);
    return Optimum(solver);
  };
  for (const double none : {kBCPInfinity, 1e30, std::numeric_limits<double>::infinity()}) {
    EXPECT_NEAR(solveWith(0, none).value_or(-1), 1.5, 1e-9) << none;
    EXPECT_EQ(solver.GetColUB(1), kBCPInfinity) << none;
    EXPECT_EQ(solveWith(none, kBCPInfinity), std::nullopt) << "no number is as large";
    EXPECT_EQ(solveWith(0, -none), std::nullopt) << "nor as small";
    EXPECT_NEAR(solveWith(-none, 1).value_or(-1), 2, 1e-9) << none;
    TCbcLPSolver hopeless({{1}}, {1}, false, {none}, {kBCPInfinity});
    EXPECT_EQ(Optimum(hopeless), std::nullopt);
    TCbcLPSolver free({{1}}, {1}, false, {-none}, {none});
    EXPECT_EQ(Optimum(free), 0);
    TCbcLPSolver falling({{1}}, {-1}, false, {0}, {none});
    EXPECT_EQ(Optimum(falling), std::nullopt) << "unbounded";
  }
  EXPECT_EQ(solveWith(2, 1), std::nullopt);
  EXPECT_NEAR(solveWith(2, 2).value_or(-1), 2, 1e-9) << "and the program works on after it";
}

TEST(CbcLPSolver, ResultsBelongToTheLastSolveWhateverComesAfterIt) {
  TCbcLPSolver solver = SolverOf(Small());
  EXPECT_THAT(solver.GetColSolution(), IsEmpty());
  Optimum(solver);
  solver.AddColumn(TDoubleDynArray{3}, 1, 0, kBCPInfinity);
  solver.SetColUB(1, 0);
  solver.DeleteColumn(0);
  EXPECT_THAT(solver.GetColSolution(), ElementsAre(0, 1.5));
  EXPECT_THAT(solver.GetRowPrice(), ElementsAre(0.5));
  EXPECT_NEAR(Optimum(solver).value_or(-1), 1, 1e-9);
  EXPECT_THAT(solver.GetColSolution(), ElementsAre(0, 1));
}

TEST(CbcLPSolver, RefusesWhatDoesNotFitAndStaysAsItWas) {
  EXPECT_THROW(TCbcLPSolver({{1, 2}, {1}}, {1, 1}, false, {0, 0}, {1, 1}), TArgumentError);
  EXPECT_THROW(TCbcLPSolver({{1, 2}}, {1, 1}, false, TDoubleDynArray{}, {1}), TArgumentError);
  EXPECT_THROW(TCbcLPSolver({{1, 2}}, {1, 1}, false, {0}, {1}, {0}, {}), TArgumentError);
  EXPECT_THROW(TCbcLPSolver({{1, kNaN}}, {1, 1}, false, {0}, {1}), TArgumentError);
  TCbcLPSolver solver = SolverOf(Small());
  for (const int idx : {-1, 2}) {
    EXPECT_THROW(solver.DeleteColumn(idx), TRangeError);
    EXPECT_THROW(solver.SetColLB(idx, 0), TRangeError);
    EXPECT_THROW(solver.SetColUB(idx, 0), TRangeError);
    EXPECT_THROW(solver.GetColUB(idx), TRangeError);
  }
  EXPECT_THROW(solver.AddColumn(TDoubleDynArray{1, 1}, 0, 0, 1), TArgumentError) << "a row too many";
  EXPECT_THROW(solver.AddColumn(TDoubleDynArray{1}, kNaN, 0, 1), TArgumentError);
  EXPECT_THROW(solver.SetColUB(0, kNaN), TArgumentError);
  EXPECT_EQ(solver.ColCount(), 2);
  EXPECT_NEAR(Optimum(solver).value_or(-1), 1.5, 1e-9);
}

std::string OutputOf(bool Flag) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  TCbcLPSolver solver({{1, 2}}, {1, 1}, Flag, {3}, {kBCPInfinity});
  Optimum(solver);
  for (const int col : {0, 1}) solver.SetColUB(col, 0.5);
  Optimum(solver);
  return testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
}

TEST(CbcLPSolver, WritesNothingUnlessAskedTo) {
  EXPECT_EQ(OutputOf(false), "");
  EXPECT_NE(OutputOf(true), "");
}

}  // namespace
}  // namespace platenest
