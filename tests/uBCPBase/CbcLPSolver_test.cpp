#include "platenest/uBCPBase/CbcLPSolver.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "ForEachSeed.h"
#include "LpCheck.h"
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

// The optimum that the row prices prove.
std::optional<double> ProvenOptimum(const TLpModel& Model, TCbcLPSolver& Solver) {
  const std::optional<double> value = Optimum(Solver);
  EXPECT_TRUE(!value || IsLpOptimum(Model, *value, Solver.GetColSolution(), Solver.GetRowPrice()));
  return value;
}

double ProvenOptimum(const TLpModel& Model) {
  TCbcLPSolver solver = SolverOf(Model);
  return ProvenOptimum(Model, solver).value();
}

// Whether a program is infeasible or without bound. Unless bounds say so, two programs tell that always have an
// optimum: the least by which the rows can be missed, and the least objective in a large box.
bool IsHopeless(TLpModel Model) {
  const auto isRange = [](double lower, double upper) { return lower <= upper && lower < 1e30 && upper > -1e30; };
  if (!std::equal(Model.RowLB.begin(), Model.RowLB.end(), Model.RowUB.begin(), isRange)) return true;
  if (!std::equal(Model.ColLB.begin(), Model.ColLB.end(), Model.ColUB.begin(), isRange)) return true;
  TLpModel missed = Model;
  std::fill(missed.Obj.begin(), missed.Obj.end(), 0.0);
  for (std::size_t row = 0; row < Model.Matrix.size(); ++row) {
    TDoubleDynArray unit(Model.Matrix.size());
    for (const double sign : {1, -1}) {
      unit[row] = sign;
      missed.AddColumn(unit, 1, 0, kBCPInfinity);
    }
  }
  for (double& lower : Model.ColLB) lower = std::max(lower, -1e6);
  for (double& upper : Model.ColUB) upper = std::min(upper, 1e6);
  return ProvenOptimum(missed) > 1e-6 || ProvenOptimum(Model) < -1e4;
}

TEST(CbcLPSolver, ProvesWhatItFindsThroughChangesOfColumnsAndBounds) {
  int solved = 0, steps = 0;
  ForEachSeed(200, [&](unsigned Seed) {
    std::mt19937 random(Seed);
    const auto draw = [&random](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    const auto orRarely = [&draw](double common, double rare) { return draw(0, 9) > 0 ? common : rare; };
    const double none = std::array{kBCPInfinity, 1e30, std::numeric_limits<double>::infinity()}[Seed % 3];
    TLpModel model;
    for (int row = draw(1, 4); row > 0; --row) {
      const double demand = orRarely(draw(0, 40) / 4.0, orRarely(0, none));
      const int sense = draw(-1, 4);  // mostly at least
      model.RowLB.push_back(sense < 0 ? -none : demand);
      model.RowUB.push_back(sense > 0 ? none : demand);
    }
    model.Matrix.resize(model.RowLB.size());
    std::optional<TCbcLPSolver> solver;
    const auto addColumn = [&] {
      TDoubleDynArray column(model.Matrix.size());
      for (double& v : column) v = std::max(0, draw(-2, 4));
      column.front() = orRarely(column.front(), -1);
      const double cost = orRarely(draw(1, 8) / 4.0, -1);
      model.AddColumn(column, cost, 0, none);
      if (solver) solver->AddColumn(column, cost, 0, none);
    };
    for (int count = draw(0, 5); count > 0; --count) addColumn();
    solver = SolverOf(model);
    for (int step = 0; step < 25 && !testing::Test::HasFailure(); ++step, ++steps) {
      const bool isSolved = ProvenOptimum(model, *solver).has_value();
      solved += int{isSolved};
      EXPECT_NE(isSolved, IsHopeless(model));
      const int col = draw(0, std::max(0, Size(model.Obj) - 1));
      switch (model.Obj.empty() ? 0 : draw(0, 2)) {
        case 0:
          addColumn();
          break;
        case 1:
          model.DeleteColumn(col);
          solver->DeleteColumn(col);
          break;
        default:
          solver->SetColLB(col, model.ColLB[col] = orRarely(draw(-2, 4), orRarely(-none, none)));
          solver->SetColUB(col, model.ColUB[col] = draw(0, 2) == 0 ? orRarely(none, -none) : draw(0, 12) / 2.0);
          EXPECT_EQ(solver->GetColUB(col), model.ColUB[col] >= 1e30 ? kBCPInfinity : model.ColUB[col]);
      }
    }
  });
  EXPECT_GT(std::min(solved, steps - solved), steps / 10) << "both outcomes must be among the cases";
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

TEST(CbcLPSolver, WritesNothingUnlessAskedTo) {
  for (const bool isAsked : {false, true}) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    TCbcLPSolver solver({{1, 2}}, {1, 1}, isAsked, {3}, {kBCPInfinity}, {0, 0}, {0.5, kBCPInfinity});
    Optimum(solver);
    solver.SetColUB(1, 0.5);
    Optimum(solver);
    EXPECT_NE((testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr()).empty(), isAsked);
  }
}

}  // namespace
}  // namespace platenest
