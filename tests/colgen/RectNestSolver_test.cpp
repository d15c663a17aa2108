#include "platenest/colgen/RectNestSolver.h"

#include <gmock/gmock.h>

#include <random>
#include <string>

#include "ForEachSeed.h"
#include "RectCases.h"

namespace platenest {
namespace {

using testing::ElementsAre;

constexpr double kAmp = 10000;  // of the duals, as a search has it
constexpr auto kPricings = {TRectNestSolver::SolveByMultiRectNest, TRectNestSolver::SolveByRSKF,
                            TRectNestSolver::SolveByNestSmart, TRectNestSolver::SolverByBPRG};

// Every second part has no demand, and every eighth no price, so that rows are not positions. Every fourth seed has
// sizes that nesters of three decimals see too large.
TEST(RectNestSolver, PatternsAndSolutionsAreValidInRowsOfTheInput) {
  ForEachSeed(16, [](unsigned seed) {
    std::mt19937 random(seed);
    const int scale = seed % 4 == 0 ? 1 : seed % 4 == 1 ? 10 : 1000;
    const auto length = [&](int low, int high) {
      return std::uniform_int_distribution<int>(low * scale, high * scale)(random) / (1.0 * scale);
    };
    const auto side = [&] { return length(20, 190) - (seed % 4 == 3 ? 0.0004 : 0); };
    const TNestSpace plate = Plate(length(180, 300), length(180, 300));
    TNestRectList parts;
    for (int k = 0; k < 16; ++k) parts.push_back(Part(side(), side(), k % 2 * (1 + static_cast<int>(random() % 8))));
    TRectNestProblem problem(parts, plate.Space, seed % 8 < 4 ? 0 : length(0, 6));
    TDoubleDynArray duals;
    for (const TNestRect& row : problem.Rects())
      duals.push_back(row.Idx % 8 == 1 ? 0 : row.BoundBox.Area() / plate.Space.Area());
    problem.SetDualCost(duals, kAmp);
    for (const auto pricing : kPricings) {
      bool usable = false;
      double value = 0, worth = 0;
      const auto pattern = pricing(problem, usable, value);
      const std::vector<int> copies = CheckedCopies(pattern->NestedRects(), plate.Space, parts, problem.Gap());
      for (const TNestRect& row : problem.Rects()) worth += copies[static_cast<std::size_t>(row.Idx)] * row.Area;
      EXPECT_NEAR(value, worth, 1e-6);
    }
    TRectSolution greedy, strips;
    EXPECT_TRUE(TRectNestSolver::GreedyNest(problem, greedy));
    EXPECT_TRUE(TRectNestSolver::BPRGSolve(problem, strips, seed % 2 == 0));
    for (const TRectSolution* solution : {&greedy, &strips}) {
      const std::vector<int> copies = CheckedCopies(*solution, parts, {plate}, problem.Gap());
      for (const TNestRect& row : problem.Rects()) EXPECT_EQ(copies[static_cast<std::size_t>(row.Idx)], row.Amount);
    }
  });
}

// The small parts fit six times, by tenths of a unit and turned only.
TEST(RectNestSolver, PricesDecideAndNotAreas) {
  TRectNestProblem problem({Part(98, 58, 1), Part(29, 33.3, 6)}, TVRect2D::FromSize(100, 60), 0);
  problem.SetDualCost({0.3, 0.06}, kAmp);
  for (const auto pricing : kPricings) {
    bool usable = false;
    double value = 0;
    pricing(problem, usable, value);
    EXPECT_EQ(value, pricing == TRectNestSolver::SolveByNestSmart ? 3000 : 3600);
  }
  TNestRect priced = Part(1, 1, 1, 5);
  priced.Idx = 1;
  double value = 0;
  const auto pattern = TRectNestSolver::CreatePattern({TNestedRect(priced, false, TPoint2D(0, 0))}, problem, value);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(pattern->NestedRects()[0].Part.Area, 600);
}

std::vector<int> OnOnePlate(const TNestRectList& Parts, bool Weighted) {
  const TVRect2D plate = TVRect2D::FromSize(100, 100);
  TNestedRects layout;
  TRectNestSolver::GreedySolveOnePlate(Parts, plate, 0, layout, Weighted);
  return CheckedCopies(layout, plate, Parts);
}

// Blocks; the raster program, where the demand is too small for blocks; best fit, where worths are too small for both.
TEST(RectNestSolver, APlateGoesToTheFirstOfThreeNestersThatFillsIt) {
  const TNestRectList many = {Part(97, 97, 1, 5000), Part(49, 49, 4, 1000)};
  const TNestRectList few = {Part(60, 60, 1, 10), Part(55, 55, 1, 3000)};
  EXPECT_THAT(OnOnePlate(many, true), ElementsAre(1, 0));
  EXPECT_THAT(OnOnePlate(many, false), ElementsAre(0, 4));
  EXPECT_THAT(OnOnePlate(few, true), ElementsAre(0, 1));
  EXPECT_THAT(OnOnePlate(few, false), ElementsAre(1, 0));
  EXPECT_THAT(OnOnePlate({Part(60, 60, 1, 0.2), Part(55, 55, 1, 0.3)}, true), ElementsAre(1, 0));
}

// The status, + or -, and the number of items of each pricing solver.
std::string StatusAndItems(int Amount, double Dual, bool Before) {
  TRectNestProblem problem({Part(49, 49, Amount)}, TVRect2D::FromSize(100, 100), 0);
  problem.SetDualCost({Dual}, kAmp);
  std::string result;
  for (const auto pricing : kPricings) {
    double value = 0;
    bool status = Before;
    const auto pattern = pricing(problem, status, value);
    result += (status ? '+' : '-') + std::to_string(pattern->NestedRects().size());
  }
  return result;
}

// Three copies are less than nine tenths of the plate, two less than half. A worth of 0.2 is cut to nothing where
// worths are whole, and best fit comes in.
TEST(RectNestSolver, StatusIsWrittenOnlyByThoseThatJudge) {
  EXPECT_EQ(StatusAndItems(3, 0.4, false), "-0-3+3+3");
  EXPECT_EQ(StatusAndItems(3, 0.4, true), "-0+3+3+3");
  EXPECT_EQ(StatusAndItems(3, 2e-5, false), "-0+3+3-0");
  EXPECT_EQ(StatusAndItems(2, 2e-5, true), "-0-0-0+0");
}

TEST(RectNestSolver, WholeSolutionsRepeatALayoutUntilAPlateStaysEmptyOrStockIsOut) {
  TRectSolution solution;
  TRectNestProblem small({Part(49, 49, 11)}, TVRect2D::FromSize(100, 100), 0);
  EXPECT_TRUE(TRectNestSolver::GreedyNest(small, solution));
  ASSERT_EQ(solution.Count(), 2);
  EXPECT_EQ(solution.GetSubSolution(0).Value, 2);
  EXPECT_TRUE(TRectNestSolver::SolveResidual(small, {}, solution));
  EXPECT_EQ(solution.Count(), 4);

  small.SetDualCost({2e-5}, kAmp);
  EXPECT_TRUE(TRectNestSolver::BPRGSolve(small, solution, true)) << "worths are cut to whole ones";
  EXPECT_EQ(solution.Count(), 4);

  TRectNestProblem large({Part(490, 490, 10001)}, TVRect2D::FromSize(600, 600), 0);
  large.SetDualCost({0}, kAmp);  // a copy worth 1 counts for nothing on a plate of that area
  EXPECT_TRUE(TRectNestSolver::GreedySolve(large, solution, true));
  EXPECT_TRUE(TRectNestSolver::SolveResidual(large, {}, solution));
  EXPECT_EQ(solution.Count(), 4);
}

}  // namespace
}  // namespace platenest
