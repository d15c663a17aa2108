#include "platenest/URectNest/RecursiveFiveblockNest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>
#include <vector>

#include "ForEachSeed.h"
#include "Rects.h"
#include "platenest/URectNest/BarnesBound.h"
#include "platenest/foundation/Clock.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Grid.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct TProblem {
  double L;
  double W;
  double A;
  double B;
  double Gap = 0;
  int Digit = 0;

  TVRect2D Plate() const { return TVRect2D::FromSize(L, W); }
  TNestRect Rect() const { return Part(1'000'000, A, B, 0, 3); }
  int Nest(TNestedRects& List, int Depth = 0, int Level = 0) const {
    return TRecursiveFiveblockNest(Plate(), Rect(), Gap, Digit).SingleNest(List, Depth, Level);
  }
};

TNestedRects LayoutOf(const TProblem& P, int Depth = 0, int Level = 0) {
  TNestedRects list;
  const int count = P.Nest(list, Depth, Level);
  EXPECT_EQ(count, list.Count());
  EXPECT_EQ(CheckRectLayout(list, P.Plate().Translate({P.Gap / 2, P.Gap / 2}), P.Gap, {P.Rect()}), "");
  return list;
}

int Count(const TProblem& P, int Depth = 0, int Level = 0) {
  return LayoutOf(P, Depth, Level).Count();
}

// The best of both grids of A by B and of one straight cut at any whole length, whose blocks hold what CountOf says.
template <class F>
int BestStraight(int L, int W, int A, int B, F CountOf) {
  int best = std::max((L / A) * (W / B), (L / B) * (W / A));
  for (int x = 1; x < L; ++x) best = std::max(best, CountOf(x, W) + CountOf(L - x, W));
  for (int y = 1; y < W; ++y) best = std::max(best, CountOf(L, y) + CountOf(L, W - y));
  return best;
}

// Counts of all plates up to Most by Most over every cut at every whole length: no raster, no bound, no order.
TGrid<int> AllCounts(int Most, int A, int B) {
  TGrid<int> counts(Most + 1, Most + 1);
  const auto n = [&counts](int l, int w) { return counts.At(l, w); };
  const auto best = [&](int l, int w) {
    int most = BestStraight(l, w, A, B, n);
    for (int x1 = 1; x1 < l; ++x1)
      for (int x2 = x1 + 1; x2 < l; ++x2)
        for (int y1 = 1; y1 < w; ++y1)
          for (int y2 = y1 + 1; y2 < w; ++y2)
            most = std::max(most, n(x1, w - y1) + n(l - x1, w - y2) + n(x2 - x1, y2 - y1) + n(x2, y1) + n(l - x2, y2));
    return most;
  };
  for (int l = 1; l <= Most; ++l)
    for (int w = 1; w <= l; ++w) counts.At(l, w) = counts.At(w, l) = best(l, w);
  return counts;
}

TEST(RecursiveFiveblockNest, CountsEqualAnExhaustiveSearchOnSmallPlates) {
  constexpr int most = 17;
  for (int a = 2; a <= 6; ++a) {
    for (int b = 1; b < a; ++b) {
      const TGrid<int> all = AllCounts(most, a, b);
      for (int l = 1; l <= most; ++l)
        for (int w = 1; w <= most; ++w)
          ASSERT_EQ(Count({1.0 * l, 1.0 * w, 1.0 * a, 1.0 * b}), all.At(l, w)) << l << 'x' << w << ' ' << a << 'x' << b;
    }
  }
}

TEST(RecursiveFiveblockNest, DepthLimitsTheLevelsOfCuts) {
  const auto counts = [](const TProblem& p) { return std::array{Count(p, 1), Count(p, 2), Count(p, 3), Count(p, -1)}; };
  EXPECT_EQ(counts({22, 16, 5, 3}), (std::array{22, 23, 23, 23}));
  EXPECT_EQ(counts({106, 101, 19, 7}), (std::array{78, 79, 80, 80}));
  EXPECT_EQ(counts({137, 77, 16, 13}), (std::array{48, 49, 50, 50}));
  EXPECT_EQ(Count({10, 10, 3, 3}), 9);
  EXPECT_EQ(Count({2.2, 1.6, 0.5, 0.3, 0, 1}), 23);
  for (const TNestedRect& placed : LayoutOf({6, 6, 3, 2})) EXPECT_TRUE(placed.IsRotate) << "of two equal grids";
  EXPECT_EQ(TRecursiveFiveblockNest::BarnesUpbound(10, 10, 3, 3), BarnesBound(1000, 1000, 300, 300));
}

TEST(RecursiveFiveblockNest, RandomLayoutsAreValidAndGrowWithDepthUpToTheBound) {
  ForEachSeed(300, [](unsigned seed) {
    TDice from(seed);
    const auto whole = [&](int low, int high) { return 1.0 * from(low, high); };
    const TProblem problem{whole(20, 90), whole(20, 90), whole(3, 25), whole(3, 25), 2 * whole(0, 2)};
    int before = 0;
    for (const int depth : {1, 2, 3, 0}) {
      const int count = Count(problem, depth);
      EXPECT_GE(count, before) << "depth " << depth;
      before = count;
    }
    const auto grown = [&](double side) { return static_cast<Int64>(side + problem.Gap); };
    EXPECT_LE(before, BarnesBound(grown(problem.L), grown(problem.W), grown(problem.A), grown(problem.B)));
  });
}

TEST(RecursiveFiveblockNest, HalfAGapIsRoundedToUnitsAndSizesWithoutGapAfterSixDecimals) {
  const TVRect2D box = LayoutOf({995, 995, 95, 95, 5, 1}).BoundBox();
  EXPECT_NEAR(box.Left, 2.5, 1e-9);
  EXPECT_NEAR(box.Right, 997.5, 1e-9) << "half a gap beyond the plate";
  const auto countWithGap = [](double side, double gap, int digit) {
    TNestedRects list;
    const int count = TProblem{side, 11, 10, 10, gap, digit}.Nest(list);
    return std::pair(count, list.BoundBox().Width());
  };
  EXPECT_EQ(countWithGap(21, 1, 0), std::pair(2, 20.0)) << "half of 1 becomes 0: the copies touch";
  EXPECT_EQ(countWithGap(21, 1, 1), std::pair(2, 21.0));
  EXPECT_EQ(countWithGap(23, 3, 0).first, 1) << "half of 3 becomes 2: a gap of 4";
  EXPECT_EQ(countWithGap(23, 3, 1), std::pair(2, 23.0));
  EXPECT_EQ(Count({30, 10, 10.0000004, 10}), 3);
  EXPECT_EQ(Count({30, 10, 10.000001, 10}), 2) << "11 by 10 units";
}

TEST(RecursiveFiveblockNest, PlateMayLieAnywhereAndTheListIsReplacedOnlyWithoutGap) {
  const TVRect2D plate = TVRect2D::FromSize(7, 7).Translate({100, -50});
  const TNestRect part = Part(1, 4, 3);
  TNestedRects list{Placed(4, 3, 500, 500)};
  EXPECT_EQ(TRecursiveFiveblockNest(plate, part, 0, 0).SingleNest(list, 0, 0), 4);
  EXPECT_EQ(list.BoundBox().Left, 0);
  EXPECT_EQ(list.Count(), 4);
  TRecursiveFiveblockNest(plate, part, 2, 0).SingleNest(list, 0, 0);
  EXPECT_GT(list.Count(), 4);
  const TVRect2D shortByRounding = TVRect2D::FromSize(7, 7).Translate({1.2, 0});
  EXPECT_EQ(TRecursiveFiveblockNest(shortByRounding, part, 0, 0).SingleNest(list, 0, 0), 3) << "6 by 7 units";
}

// The final jostling takes sides within 1e-4 for one.
TEST(RecursiveFiveblockNest, SidesThatCloseNeedSizesScaledToWholeNumbers) {
  TNestedRects list{Placed(1, 1, 500, 500)};
  const TProblem raises{0.1428, 0.186, 0.0285, 0.0144, 0, 4};
  EXPECT_THROW(raises.Nest(list), TAssertionError);
  EXPECT_EQ(list.First().Trans, TPoint2D(500, 500)) << "the list stays as it was";
  const TProblem overlaps{0.1767, 0.4415, 0.0441, 0.0442, 0, 4};
  overlaps.Nest(list);
  EXPECT_NE(CheckRectLayout(list, overlaps.Plate(), 0, {overlaps.Rect()}, {.Tol = 0.01}), "");
  for (const auto& [l, w, a, b, gap, digit] : {raises, overlaps})
    LayoutOf({RoundHalfEven(l * 1e4), RoundHalfEven(w * 1e4), RoundHalfEven(a * 1e4), RoundHalfEven(b * 1e4)});
}

// With a clock that tells the readings so far, from 1 on, what time it is.
template <class F>
int CountAt(F NowMs, const TProblem& P, int Level = 0) {
  const TClockScope clock([&NowMs, reading = 0]() mutable { return NowMs(++reading); });
  return Count(P, 0, Level);
}

TEST(RecursiveFiveblockNest, APassThatRunsOutOfTimeIsDropped) {
  std::vector<int> counts;
  for (const int late : {2, 3, 4, 5, 6})
    counts.push_back(CountAt([late](int reading) { return reading < late ? 0.0 : 5000.0; }, {22, 16, 5, 3}));
  EXPECT_EQ(counts, (std::vector{0, 0, 22, 22, 23})) << "the clock is read before and after each of two short passes";
  for (const auto& [level, ms] : {std::pair(0, 4000.0), {1, 6000}, {-1, 2000}, {-3, 1000}}) {
    const auto countFrom = [level = level](double now) {
      return CountAt([now](int reading) { return reading == 1 ? 0 : now; }, {124, 81, 21, 10}, level);
    };
    EXPECT_EQ(countFrom(ms), 47) << "level " << level;
    EXPECT_EQ(countFrom(ms + 0.01), 0) << "level " << level;
  }
}

TEST(RecursiveFiveblockNest, AStopRequestEndsTheSearch) {
  const TProblem large{2440, 1220, 145, 95};  // holds 212; one level of cuts finds fewer
  // Stops at one reading of the clock and gives the count and the readings after that.
  const auto stoppedAt = [&large](int last) {
    TStopToken token;
    const TStopTokenScope scope(&token);
    int readings = 0;
    const auto now = [&](int reading) {
      if ((readings = reading) == last) token.RequestStop();
      return 0.0;
    };
    const int count = CountAt(now, large);
    return std::pair(count, readings - last);
  };
  const int all = stoppedAt(0).second;
  EXPECT_LE(stoppedAt(2).second, 2);
  EXPECT_EQ(stoppedAt(2).first, 0);
  EXPECT_EQ(stoppedAt(all - 10).first, Count(large, 1)) << "the second pass was stopped";
}

// The table of the plate is too large for a second, but not for four.
TEST(RecursiveFiveblockNest, APlateTooLargeForItsTimeGetsOneStraightCut) {
  const auto oneCut = [](int l, int w) {
    return BestStraight(l, w, 137, 83,
                        [](int x, int y) { return std::max((x / 137) * (y / 83), (x / 83) * (y / 137)); });
  };
  EXPECT_EQ(Count({3000, 1500, 137, 83}, 0, -3), oneCut(3000, 1500));
  EXPECT_EQ(Count({1500, 3000, 137, 83}, 0, -3), oneCut(3000, 1500));
  EXPECT_GT(Count({3000, 1500, 137, 83}, 1), oneCut(3000, 1500));
  EXPECT_EQ(Count({2920, 1760, 137, 83}), oneCut(2920, 1760)) << "4.02 s expected, 3.98 s without the last row";
  EXPECT_GT(Count({2920, 1760, 137, 83}, 1, 1), oneCut(2920, 1760));
}

TEST(RecursiveFiveblockNest, WhatHoldsNothingAndWhatHasNoWholeSizes) {
  for (const TProblem& problem : {TProblem{10, 3, 5, 4}, {0, 0, 5, 4}, {-5, 10, 5, 4}, {100, 100, 2e9, 2e9}})
    EXPECT_EQ(Count(problem), 0);
  const TProblem refused[] = {{100, 100, 3e9, 10},     {3e9, 100, 10, 10},       {kNaN, 100, 10, 10},
                              {100, 100, 10, kNaN},    {100, 100, 10, 10, kNaN}, {100, 100, 0, 10},
                              {100, 100, 10, 10, -10}, {100, 100, 1, 1, 0, 8},   {1, 1, 1, 1, 0, 40}};
  for (const TProblem& problem : refused)
    EXPECT_THAT([&] { LayoutOf(problem); },
                testing::ThrowsMessage<TRangeError>("板材大小超出整数范围，请检查有效位数"));
  EXPECT_EQ(Count({1, 1, 1, 1, 0, 6}), 1);
}

}  // namespace
}  // namespace platenest
