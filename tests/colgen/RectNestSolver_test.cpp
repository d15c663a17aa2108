#include "platenest/colgen/RectNestSolver.h"

#include <gmock/gmock.h>

#include <chrono>
#include <random>
#include <thread>

#include "ForEachSeed.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

using testing::ElementsAre, testing::Pair;

constexpr double kAmp = 10000;  // of the duals, as a search has it
constexpr auto kPricings = {TRectNestSolver::SolveByMultiRectNest, TRectNestSolver::SolveByRSKF,
                            TRectNestSolver::SolveByNestSmart, TRectNestSolver::SolverByBPRG};

TNestRect Part(double Width, double Height, int Amount) {
  return TNestRect(Amount, 77, TVRect2D::FromSize(Width, Height));
}

// Every second row has no demand, and every eighth no price, so that rows are not positions. Every fourth seed has
// sizes that nesters of three decimals see too large.
TRectNestProblem RandomProblem(unsigned Seed) {
  std::mt19937 random(Seed);
  const int scale = Seed % 4 == 0 ? 1 : Seed % 4 == 1 ? 10 : 1000;
  const auto length = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low * scale, high * scale)(random) / (1.0 * scale);
  };
  const auto side = [&] { return length(20, 190) - (Seed % 4 == 3 ? 0.0004 : 0); };
  const TVRect2D plate = TVRect2D::FromSize(length(180, 300), length(180, 300));
  TNestRectList parts;
  for (int k = 0; k < 16; ++k) parts.push_back(Part(side(), side(), k % 2 * (1 + static_cast<int>(random() % 8))));
  TRectNestProblem problem(parts, plate, Seed % 8 < 4 ? 0 : length(0, 6));
  TDoubleDynArray duals;
  for (const TNestRect& row : problem.Rects())
    duals.push_back(row.Idx % 8 == 1 ? 0 : row.BoundBox.Area() / plate.Area());
  problem.SetDualCost(duals, kAmp);
  return problem;
}

void CheckLayout(const TRectPattern& Pattern, const TRectNestProblem& Problem) {
  EXPECT_EQ(CheckRectLayout(Pattern.NestedRects(), Problem.Plate(), Problem.Gap(), Problem.Rects()), "");
}

// Patterns are valid and worth what is said; whole solutions too, and hold no more than the demand. Their missing
// copies.
double CheckAll(const TRectNestProblem& Problem, bool ByValue) {
  for (const auto pricing : kPricings) {
    bool usable = false;
    double value = 0, worth = 0;
    const auto pattern = pricing(Problem, usable, value);
    CheckLayout(*pattern, Problem);
    const TDoubleDynArray column = pattern->GetColumn(50);
    for (const TNestRect& row : Problem.Rects()) worth += column[row.Idx] * row.Area;
    EXPECT_NEAR(value, worth, 1e-6);
  }
  double open = 0;
  TRectSolution greedy, strips;
  EXPECT_TRUE(TRectNestSolver::GreedyNest(Problem, greedy));
  EXPECT_TRUE(TRectNestSolver::BPRGSolve(Problem, strips, ByValue));
  for (const TRectSolution* solution : {&greedy, &strips}) {
    for (const auto& pair : *solution) CheckLayout(*pair.Key, Problem);
    const TDoubleDynArray made = solution->GetColumn(50);
    for (const TNestRect& row : Problem.Rects()) {
      EXPECT_LE(made[row.Idx], row.Amount);
      open += row.Amount - made[row.Idx];
    }
  }
  return open;
}

TEST(RectNestSolver, PatternsAndSolutionsAreValidInRowsOfTheInputAlsoWhenStopped) {
  ForEachSeed(16, [](unsigned seed) {
    const TRectNestProblem problem = RandomProblem(seed);
    EXPECT_EQ(CheckAll(problem, seed % 2 == 0), 0);
    TStopToken token;
    const TStopTokenScope scope(&token);
    const std::jthread stopper([&token, seed] {
      std::this_thread::sleep_for(std::chrono::milliseconds(seed * seed));
      token.RequestStop();
    });
    CheckAll(problem, false);
  });
}

TEST(RectNestSolver, PricesDecideAndNotAreas) {
  TRectNestProblem problem({Part(98, 98, 1), Part(49, 49, 4)}, TVRect2D::FromSize(100, 100), 0);
  problem.SetDualCost({0.3, 0.1}, kAmp);
  for (const auto pricing : kPricings) {
    bool usable = false;
    double value = 0;
    pricing(problem, usable, value);
    EXPECT_EQ(value, pricing == TRectNestSolver::SolveByNestSmart ? 3000 : 4000);
  }
}

std::vector<std::pair<bool, int>> StatusAndItems(int Amount, double Dual, bool Before) {
  TRectNestProblem problem({Part(49, 49, Amount)}, TVRect2D::FromSize(100, 100), 0);
  problem.SetDualCost({Dual}, kAmp);
  std::vector<std::pair<bool, int>> result;
  for (const auto pricing : kPricings) {
    double value = 0;
    bool status = Before;
    const int items = Size(pricing(problem, status, value)->NestedRects());
    result.emplace_back(status, items);
  }
  return result;
}

// Three copies are less than nine tenths of the plate, two less than half. A worth of 0.2 is cut to nothing where
// worths are whole, and best fit comes in.
TEST(RectNestSolver, StatusIsWrittenOnlyByThoseThatJudge) {
  EXPECT_THAT(StatusAndItems(3, 0.4, false), ElementsAre(Pair(false, 0), Pair(false, 3), Pair(true, 3), Pair(true, 3)));
  EXPECT_THAT(StatusAndItems(3, 0.4, true), ElementsAre(Pair(false, 0), Pair(true, 3), Pair(true, 3), Pair(true, 3)));
  EXPECT_THAT(StatusAndItems(3, 2e-5, false),
              ElementsAre(Pair(false, 0), Pair(true, 3), Pair(true, 3), Pair(false, 0)));
  EXPECT_THAT(StatusAndItems(2, 2e-5, true),
              ElementsAre(Pair(false, 0), Pair(false, 0), Pair(false, 0), Pair(true, 0)));
}

TEST(RectNestSolver, WholeSolutionsRepeatALayoutUntilAPlateStaysEmptyOrStockIsOut) {
  TRectSolution solution;
  const TRectNestProblem small({Part(49, 49, 11)}, TVRect2D::FromSize(100, 100), 0);
  EXPECT_TRUE(TRectNestSolver::GreedyNest(small, solution));
  ASSERT_EQ(solution.Count(), 2);
  EXPECT_EQ(solution.GetSubSolution(0).Value, 2);
  EXPECT_TRUE(TRectNestSolver::SolveResidual(small, {}, solution));
  EXPECT_EQ(solution.Count(), 4);

  TRectNestProblem large({Part(490, 490, 10001)}, TVRect2D::FromSize(600, 600), 0);
  large.SetDualCost({0}, kAmp);  // a copy worth 1 counts for nothing on a plate of that area
  EXPECT_TRUE(TRectNestSolver::GreedySolve(large, solution, true));
  EXPECT_TRUE(TRectNestSolver::SolveResidual(large, {}, solution));
  EXPECT_EQ(solution.Count(), 4);
}

}  // namespace
}  // namespace platenest
