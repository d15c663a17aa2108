#include "platenest/colgen/SVCBPRGNest.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cmath>
#include <numeric>
#include <random>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "FakeClock.h"
#include "ForEachSeed.h"
#include "RectCases.h"
#include "ValueCorrection.h"
#include "platenest/colgen/SVCBPRGNestSingle.h"

namespace platenest {
namespace {

using testing::ElementsAre;

// The copies of each part in a checked layout.
std::vector<int> Fill(double Width, double Height, const TNestRectList& Parts, double Gap = 0, bool Values = false) {
  const TVRect2D plate = TVRect2D::FromSize(Width, Height);
  TNestedRects layout;
  TSVCBPRGNestSingle(plate, Parts, Gap, Values).NestSinglePlate(layout);
  return CheckedCopies(layout, plate, Parts, Gap);
}

TEST(SVCBPRGNestSingle, FillsKnownPlates) {
  EXPECT_THAT(Fill(43, 26, {Part(7, 3, 1000)}), ElementsAre(52));
  EXPECT_THAT(Fill(12, 8, {Part(6, 5, 2), Part(4, 3, 4)}), ElementsAre(2, 3));
  EXPECT_THAT(Fill(8, 12, {Part(6, 5, 2), Part(4, 3, 4)}), ElementsAre(2, 3)) << "upright";
  EXPECT_THAT(Fill(10, 10, {Part(5, 5, 3), Part(11, 2, 4)}), ElementsAre(3, 0)) << "too long, and amounts run out";
  EXPECT_THAT(Fill(10, 7, {Part(10, 2, 1), Part(6, 3, 1), Part(6, 2, 1), Part(4, 4, 1), Part(4, 1, 1)}),
              testing::Each(1))
      << "a wide column after a narrow row";
  EXPECT_THAT(Fill(20.3, 9.5, {Part(4.7, 4.5, 8)}, 0.5), ElementsAre(8)) << "gaps fit exactly";
  EXPECT_THAT(Fill(33.3, 11.1, {Part(11.1, 11.1, 9)}), ElementsAre(3)) << "tenths without rounding";
  EXPECT_THAT(Fill(33.3, 11.1, {Part(11.101, 11.1, 9)}), ElementsAre(2));
}

TEST(SVCBPRGNestSingle, ValuesDecideAndBelowOneNothingIsPlaced) {
  EXPECT_THAT(Fill(10, 10, {Part(10, 10, 1, 7), Part(5, 5, 4, 2)}, 0, true), ElementsAre(0, 4));
  EXPECT_THAT(Fill(10, 10, {Part(10, 10, 1, 9), Part(5, 5, 4, 2)}, 0, true), ElementsAre(1, 0));
  EXPECT_THAT(Fill(10, 10, {Part(10, 10, 1, 0.9), Part(2, 2, 1, 1.9), Part(2, 2, 1, std::nan(""))}, 0, true),
              ElementsAre(0, 1, 0));
  EXPECT_THAT(Fill(10, 10, {Part(10, 5, 2, 1e300), Part(5, 5, 4, 2)}, 0, true), ElementsAre(2, 0));
  EXPECT_THAT(Fill(10, 10, {Part(0.9, 0.9, 1), Part(2, 2, 1)}), ElementsAre(0, 1)) << "the area is the value";
}

// A turned part ends at the right end of its slot, which is a whole number of tenths.
TEST(SVCBPRGNestSingle, PlacementsAreThoseOfThePlateAsGiven) {
  using TCase = std::tuple<double, double, TNestRect, double, bool, TPoint2D>;
  for (const auto& [width, height, part, gap, turned, trans] :
       {TCase{10, 4, Part(9.95, 3.33, 1), 0, false, {0, 0}}, TCase{10, 4, Part(3.33, 9.95, 1), 0, true, {10, 0}},
        TCase{10, 4, Part(3.33, 9.65, 1), 0.31, true, {9.69, 0}}, TCase{4, 10, Part(9.95, 3.33, 1), 0, true, {3.33, 0}},
        TCase{4, 10, Part(3.33, 9.95, 1), 0, false, {0, 0.05}}}) {
    TNestedRects layout;
    TSVCBPRGNestSingle(TVRect2D::FromSize(width, height), {part}, gap, false).NestSinglePlate(layout);
    ASSERT_EQ(layout.size(), 1U);
    EXPECT_EQ(layout[0].IsRotate, turned);
    EXPECT_NEAR(layout[0].Trans.X, trans.X, 1e-9);
    EXPECT_NEAR(layout[0].Trans.Y, trans.Y, 1e-9);
  }
}

// Only a hundred sizes take part in a pass; the corner that the first one leaves here is upright.
TEST(SVCBPRGNestSingle, SizesBehindTheFirstHundredFillTheCornerThatIsLeft) {
  TNestRectList parts = {Part(9.1, 7.2, 1, 542), Part(6.2, 5.3, 1, 460), Part(9.1, 5.2, 1, 592), Part(5, 8, 1, 350)};
  for (int k = 1; k <= 96; ++k) parts.push_back(Part(0.1, 0.001 * k, 1, 1));
  parts.push_back(Part(16, 13, 1, 1e6));
  const TNestRectList behind = {Part(3.7, 5.65, 1, 500), Part(3, 5.15, 1, 500),   Part(4.6, 3.55, 1, 500),
                                Part(3.7, 5.75, 1, 500), Part(3.9, 3.75, 1, 500), Part(1.8, 1.55, 1, 500)};
  parts.insert(parts.end(), behind.begin(), behind.end());
  const std::vector<int> counts = Fill(16, 13, parts, 0, true);
  EXPECT_EQ(counts[100], 0) << "had no turn while it would have fitted";
  EXPECT_EQ(counts[106], 1);
}

// Six of the nine corners are worth more than those before them. The part that does not fit adds no strip width.
TEST(SVCBPRGNestSingle, OnlyStatesWorthMoreThanTheirNeighboursSpread) {
  TSVCBPRGNestSingle nest(TVRect2D::FromSize(10, 10), {Part(5, 5, 4), Part(11, 12, 4)}, 0, false);
  TNestedRects layout;
  nest.NestSinglePlate(layout);
  const auto& counts = nest.Counts();
  EXPECT_THAT((std::vector<Int64>{counts.Passes, counts.Knapsacks, counts.Strips, counts.States}),
              ElementsAre(1, 1, 2, 6));
}

TEST(SVCBPRGNestSingle, TheScaleFollowsTheRaster) {
  EXPECT_EQ(TSVCBPRGNestSingle(TVRect2D::FromSize(316, 100), {Part(0.1, 1, 9999)}, 0, false).Amt(), 10);
  EXPECT_EQ(TSVCBPRGNestSingle(TVRect2D::FromSize(317, 100), {Part(0.1, 1, 9999)}, 0, false).Amt(), 1);
  EXPECT_EQ(TSVCBPRGNestSingle(TVRect2D::FromSize(1e5, 100), {Part(1e4, 50, 9)}, 0, false).Amt(), 10);
}

TEST(SVCBPRGNestSingle, WhatCannotBePlacedHoldsNothing) {
  const double nan = std::nan("");
  const TNestRectList part = {Part(5, 5, 4)};
  EXPECT_THAT(Fill(10, 10, {Part(nan, 5, 1), Part(5, -5, 1), Part(1e300, 5, 1), Part(5, 5, -3), Part(4e-4, 5, 1)}),
              testing::Each(0));
  for (const double side : {nan, 0.0, -10.0, HUGE_VAL, 1e300}) {
    TNestedRects layout;
    TSVCBPRGNestSingle(TVRect2D::FromSize(side, 10), part, 0, false).NestSinglePlate(layout);
    TSVCBPRGNestSingle(TVRect2D::FromSize(10, 10), part, side > 0 ? side : nan, false).NestSinglePlate(layout);
    EXPECT_TRUE(layout.empty()) << side;
  }
  EXPECT_THAT(Fill(10, 10, part, -6), ElementsAre(0));
}

// Sizes of three decimals at most, some plates upright.
TEST(SVCBPRGNest, RandomJobsMeetTheDemandOnTheirPlates) {
  ForEachSeed(25, [](unsigned seed) {
    std::mt19937 random(seed);
    const auto draw = [&random](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
    const double unit = seed % 3 == 0 ? 1 : seed % 3 == 1 ? 0.1 : 0.001;
    const auto length = [&](int low, int high) {
      return std::round(draw(low * 1000, high * 1000) / 1000.0 / unit) * unit;
    };
    const TNestSpace plate = Plate(length(40, 120), length(40, 120), 2);
    const TNestSpaceList plates{plate, Plate(130, 65, 50), TNestSpace(plate.Space, 3, false)};
    const double gap = seed % 2 == 0 ? 0 : draw(0, 2500) / 1000.0;
    TNestRectList parts;
    std::vector<int> demand;
    for (int k = draw(1, 8); k > 0; --k) {
      demand.push_back(draw(0, 8));
      parts.push_back(Part(length(5, 60), length(5, 60), demand.back()));
    }
    std::vector<TRectSolution> all;
    const TSVCBPRGNest nest(plates, parts, gap, 0, false, 3);
    nest.NestAllRes(all);
    TRectSolution best;
    nest.Nest(best);
    const auto rank = [gap](const TRectSolution& solution) {
      const std::vector<int> numbers = Numbers(solution);
      const TRectPattern& last = *solution.GetSubSolution(solution.Count() - 1).Key;
      return std::pair(std::accumulate(numbers.begin(), numbers.end(), 0), detail::PatternUsedRate(last, gap));
    };
    for (const TRectSolution& solution : all) {
      EXPECT_EQ(CheckedCopies(solution, parts, plates, gap), demand);
      EXPECT_LE(rank(best), rank(solution));
    }
  });
}

TEST(SVCBPRGNest, CutsTwoLargeAndEightSmallFromThreePlates) {
  const TNestRectList parts = {Part(6, 6, 2), Part(4, 4, 8)};
  TRectSolution best;
  TSVCBPRGNest({Plate(10, 10, 9)}, parts, 0, 0, false, 1).Nest(best);
  EXPECT_THAT(CheckedCopies(best, parts, {Plate(10, 10, 9)}), ElementsAre(2, 8));
  EXPECT_THAT(Numbers(best), ElementsAre(2, 1));
  EXPECT_DOUBLE_EQ(best.GetSubSolution(1).Key->Usage(), 0.32);
}

TEST(SVCBPRGNest, StockIsCountedForEachKindAndOpenDemandEndsTheRuns) {
  const TNestRectList parts = {Part(10, 10, 5)};
  TNestSpaceList plates{Plate(10, 10, 2), Plate(20, 10, 1)};
  std::vector<TRectSolution> all;
  TSVCBPRGNest(plates, parts, 0, 0, false, 4).NestAllRes(all);
  ASSERT_EQ(all.size(), 1U);
  EXPECT_THAT(Numbers(all[0]), ElementsAre(2, 1));
  TRectSolution best;
  TSVCBPRGNest(plates, parts, 0, 0, false, 4).Nest(best);
  EXPECT_EQ(best.Count(), 0);

  plates.push_back(Plate(20, 10, 1));
  TSVCBPRGNest(plates, parts, 0, 0, false, 4).Nest(best);
  EXPECT_THAT(Numbers(best), ElementsAre(2, 1, 1)) << "the last one holds a single copy";
}

TEST(SVCBPRGNest, EachRunFillsByTheValuesThatTheOneBeforeHasCorrected) {
  const TVRect2D plate = TVRect2D::FromSize(20, 13);
  const TNestRectList parts = {Part(9, 7, 5, 40), Part(6, 5, 7, 90), Part(11, 4, 4, 30), Part(5, 3, 9, 20)};
  for (const bool given : {false, true}) {
    std::vector<TRectSolution> all;
    TSVCBPRGNest({TNestSpace(plate, 50, false)}, parts, 0, 0, given, 4).NestAllRes(all);
    ASSERT_EQ(all.size(), 4U);
    TNestRectList work = parts;
    for (TNestRect& part : work) part.Area = given ? part.Area : detail::NewValue(part, 1.0);
    for (const TRectSolution& solution : all) {
      TNestedRects layout;
      TSVCBPRGNestSingle(plate, work, 0, true).NestSinglePlate(layout);
      EXPECT_EQ(TRectPattern(layout, plate).Column(), solution.GetSubSolution(0).Key->Column());
      detail::RectUpdate(solution, work, parts, 0);
    }
  }
}

TEST(SVCBPRGNest, TheClockEndsTheRunsBetweenPlates) {
  TFakeClock clock;
  clock.AdvanceAtEachReading(1000);
  std::vector<TRectSolution> all;
  TSVCBPRGNest({Plate(10, 10, 9)}, {Part(6, 6, 2), Part(4, 4, 8)}, 0, 2.5, false, 3).NestAllRes(all);
  ASSERT_EQ(all.size(), 1U);
  EXPECT_THAT(Numbers(all[0]), ElementsAre(2));
}

TEST(SVCBPRGNest, StoppedAtAnyMomentTheLayoutIsValid) {
  TNestRectList parts;
  for (int k = 0; k < 12; ++k) parts.push_back(Part(97 + 61 * (k % 5) + k, 83 + 47 * (k % 4) + 2 * k, 6));
  for (int step = 0; step < 12; ++step) {
    TStopToken token;
    std::jthread stopper([&token, step] {
      std::this_thread::sleep_for(std::chrono::milliseconds(step * step));
      token.RequestStop();
    });
    const TStopTokenScope scope(&token);
    Fill(1500, 1000, parts, 2);
  }
}

TEST(ValueCorrection, FirstValuesAndRates) {
  EXPECT_NEAR(detail::NewValue(Part(10, 10, 1), 1.0), 125.8925412, 1e-6);
  EXPECT_NEAR(detail::NewValue(Part(10, 10, 1), 0.5), 251.7850824, 1e-6);
  TNestedRects layout;
  layout.emplace_back(Part(3, 4, 1), false, TPoint2D());
  layout.emplace_back(Part(5, 1, 1), true, TPoint2D(9, 9));
  EXPECT_DOUBLE_EQ(detail::PatternUsedRate(TRectPattern(layout, TVRect2D::FromSize(9, 9)), 1), 0.32);
}

// Both patterns carry two of part 0, at rates of 0.5 and 0.25; the second also one of part 1. Values before the sum of
// 16 is restored.
TEST(ValueCorrection, BadPatternsRaiseTheShareThatTheyCarryAndTheSumStays) {
  const auto pattern = [](const std::vector<int>& indices, double area) {
    TNestedRects layout;
    for (const int idx : indices) layout.emplace_back(TNestRect(1, idx, TVRect2D::FromSize(1, 1)), false, TPoint2D());
    return TRectPattern(layout, TVRect2D::FromSize(area, 1));
  };
  const TNestRectList demand = {Part(1, 1, 8), Part(1, 1, 2), Part(1, 1, 0)};
  using TCase = std::tuple<std::vector<TRectPattern>, double, double>;
  for (const auto& [patterns, first, second] :
       {TCase{{pattern({0, 0}, 4)}, 10, 4},  // the last one is left out
        TCase{{pattern({0, 0}, 4), pattern({1}, 9)}, (6 * 10 + 2 * 10 / 0.5) / 8, 4},
        TCase{{pattern({0, 1}, 8), pattern({1}, 9)}, (7 * 10 + 10 / 0.25) / 8, (4 + 4 / 0.25) / 2},
        TCase{{pattern({0, 1}, 8), pattern({0, 0}, 4), pattern({1}, 9)}, (6 * 10 + 2 * 10 / 0.5) / 8, 4}}) {
    TRectSolution solution;
    for (const TRectPattern& p : patterns) solution.AddSubSolution(p, 3);
    TNestRectList parts = {Part(1, 1, 0, 10), Part(1, 1, 1, 4), Part(1, 1, 5, 2)};
    detail::RectUpdate(solution, parts, demand, 0);
    const double scale = 16 / (first + second + 2);
    EXPECT_NEAR(parts[0].Area, first * scale, 1e-12);
    EXPECT_NEAR(parts[1].Area, second * scale, 1e-12);
    EXPECT_NEAR(parts[2].Area, 2 * scale, 1e-12);
    EXPECT_EQ(parts[0].Amount, 8);
    EXPECT_EQ(parts[2].Amount, 0);
  }
}

}  // namespace
}  // namespace platenest
