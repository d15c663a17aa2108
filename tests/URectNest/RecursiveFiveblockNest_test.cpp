#include "platenest/URectNest/RecursiveFiveblockNest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "FakeClock.h"
#include "ForEachSeed.h"
#include "platenest/URectNest/BarnesBound.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

constexpr int kMany = 1'000'000;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct TProblem {
  double L;
  double W;
  double A;
  double B;
  double Gap = 0;
  int Digit = 0;
};

TVRect2D PlateOf(const TProblem& P) {
  return TVRect2D::FromSize(P.L, P.W);
}

TNestRect PartOf(const TProblem& P) {
  return TNestRect(kMany, 3, TVRect2D::FromSize(P.A, P.B));
}

TNestedRects LayoutOf(const TProblem& P, int Depth = 0, int Level = 0) {
  TNestedRects list;
  const int count = TRecursiveFiveblockNest(PlateOf(P), PartOf(P), P.Gap, P.Digit).SingleNest(list, Depth, Level);
  EXPECT_EQ(count, list.Count());
  const TVRect2D plate = PlateOf(P).Translate({P.Gap / 2, P.Gap / 2});
  EXPECT_EQ(CheckRectLayout(list, P.Gap > 0 ? plate : PlateOf(P), P.Gap, {PartOf(P)}), "");
  return list;
}

int Count(const TProblem& P, int Depth = 0, int Level = 0) {
  return LayoutOf(P, Depth, Level).Count();
}

Int64 Grid(int L, int W, int A, int B) {
  return std::max(Int64{L / A} * (W / B), Int64{L / B} * (W / A));
}

// The best of all grids with at most one straight cut at any whole length.
int OneCut(int L, int W, int A, int B) {
  Int64 best = Grid(L, W, A, B);
  for (int x = 1; x < L; ++x) best = std::max(best, Grid(x, W, A, B) + Grid(L - x, W, A, B));
  for (int y = 1; y < W; ++y) best = std::max(best, Grid(L, y, A, B) + Grid(L, W - y, A, B));
  return static_cast<int>(best);
}

// Counts of all plates up to Most by Most over every cut at every whole length: no raster, no bound, no order.
class TAllCuts {
 public:
  TAllCuts(int Most, int A, int B) : FMost(Most), FBest(static_cast<std::size_t>((Most + 1) * (Most + 1))) {
    for (int l = 1; l <= Most; ++l)
      for (int w = 1; w <= l; ++w) At(l, w) = At(w, l) = Best(l, w, A, B);
  }
  int& At(int L, int W) { return FBest[static_cast<std::size_t>(L * (FMost + 1) + W)]; }

 private:
  int Best(int L, int W, int A, int B) {
    int best = static_cast<int>(Grid(L, W, A, B));
    for (int x = 1; x < L; ++x) best = std::max(best, At(x, W) + At(L - x, W));
    for (int y = 1; y < W; ++y) best = std::max(best, At(L, y) + At(L, W - y));
    for (int x1 = 1; x1 < L; ++x1)
      for (int x2 = x1 + 1; x2 < L; ++x2)
        for (int y1 = 1; y1 < W; ++y1)
          for (int y2 = y1 + 1; y2 < W; ++y2)
            best = std::max(best,
                            At(x1, W - y1) + At(L - x1, W - y2) + At(x2 - x1, y2 - y1) + At(x2, y1) + At(L - x2, y2));
    return best;
  }

  int FMost;
  std::vector<int> FBest;
};

TEST(RecursiveFiveblockNest, CountsEqualAnExhaustiveSearchOnSmallPlates) {
  constexpr int most = 17;
  for (int a = 2; a <= 6; ++a) {
    for (int b = 1; b < a; ++b) {
      TAllCuts all(most, a, b);
      for (int l = 1; l <= most; ++l)
        for (int w = 1; w <= most; ++w)
          ASSERT_EQ(Count({1.0 * l, 1.0 * w, 1.0 * a, 1.0 * b}), all.At(l, w)) << l << 'x' << w << ' ' << a << 'x' << b;
    }
  }
}

TEST(RecursiveFiveblockNest, FindsPinwheelsThatStraightCutsMiss) {
  const std::tuple<TProblem, int, int> cases[] = {
      {{16, 22, 5, 3}, 22, 23},     {{10, 10, 3, 3}, 9, 9},        {{124, 81, 21, 10}, 46, 47},
      {{114, 120, 24, 18}, 31, 31}, {{1000, 500, 300, 200}, 8, 8}, {{2.2, 1.6, 0.5, 0.3, 0, 1}, 22, 23},
  };
  for (const auto& [problem, oneLevel, full] : cases) {
    SCOPED_TRACE(testing::Message() << problem.L << 'x' << problem.W << ' ' << problem.A << 'x' << problem.B);
    EXPECT_EQ(Count(problem), full);
    EXPECT_GE(Count(problem, 1), oneLevel);
  }
  for (const TNestedRect& placed : LayoutOf({6, 6, 3, 2})) EXPECT_TRUE(placed.IsRotate) << "of two equal grids";
  EXPECT_EQ(TRecursiveFiveblockNest::BarnesUpbound(10, 10, 3, 3), BarnesBound(1000, 1000, 300, 300));
}

TEST(RecursiveFiveblockNest, DepthLimitsTheLevelsOfCuts) {
  const auto counts = [](const TProblem& p) { return std::array{Count(p, 1), Count(p, 2), Count(p, 3), Count(p, -1)}; };
  EXPECT_EQ(counts({22, 16, 5, 3}), (std::array{22, 23, 23, 23}));
  EXPECT_EQ(counts({106, 101, 19, 7}), (std::array{78, 79, 80, 80}));
  EXPECT_EQ(counts({137, 77, 16, 13}), (std::array{48, 49, 50, 50}));
}

TEST(RecursiveFiveblockNest, RandomLayoutsAreValidAndGrowWithDepthUpToTheBound) {
  ForEachSeed(300, [](unsigned seed) {
    std::mt19937 engine(seed);
    const auto whole = [&](int low, int high) { return 1.0 * std::uniform_int_distribution(low, high)(engine); };
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

TEST(RecursiveFiveblockNest, GapIsKeptFromHalfAGapOnAndRoundedByHalves) {
  const TVRect2D box = LayoutOf({995, 995, 95, 95, 5, 1}).BoundBox();
  EXPECT_NEAR(box.Left, 2.5, 1e-9);
  EXPECT_NEAR(box.Right, 997.5, 1e-9) << "half a gap beyond the plate";
  const auto countWithGap = [](double side, double gap, int digit) {
    TNestedRects list;
    TRecursiveFiveblockNest(TVRect2D::FromSize(side, 11), TNestRect(1, 0, TVRect2D::FromSize(10, 10)), gap, digit)
        .SingleNest(list, 0, 0);
    return std::pair(list.Count(), list.BoundBox().Width());
  };
  EXPECT_EQ(countWithGap(21, 1, 0), std::pair(2, 20.0)) << "half of 1 becomes 0: the copies touch";
  EXPECT_EQ(countWithGap(21, 1, 1), std::pair(2, 21.0));
  EXPECT_EQ(countWithGap(23, 3, 0).first, 1) << "half of 3 becomes 2: a gap of 4";
  EXPECT_EQ(countWithGap(23, 3, 1), std::pair(2, 23.0));
}

TEST(RecursiveFiveblockNest, SizesWithoutGapAreRoundedUpAfterSixDecimals) {
  EXPECT_EQ(Count({30, 10, 10.0000004, 10}), 3);
  EXPECT_EQ(Count({30, 10, 10.000001, 10}), 2) << "11 by 10 units";
}

TEST(RecursiveFiveblockNest, PlateMayLieAnywhereAndTheListIsReplacedOnlyWithoutGap) {
  const TVRect2D plate = TVRect2D::FromSize(7, 7).Translate({100, -50});
  const TNestRect part(1, 0, TVRect2D::FromSize(4, 3));
  TNestedRects list{TNestedRect(part, false, {500, 500})};
  const TRecursiveFiveblockNest nest(plate, part, 0, 0);
  EXPECT_EQ(nest.SingleNest(list, 0, 0), 4);
  EXPECT_EQ(list.Count(), 4);
  EXPECT_EQ(list.BoundBox().Left, 0);
  const TVRect2D shortByRounding = TVRect2D::FromSize(7, 7).Translate({1.2, 0});
  TNestedRects fewer;
  EXPECT_EQ(TRecursiveFiveblockNest(shortByRounding, part, 0, 0).SingleNest(fewer, 0, 0), 3) << "6 by 7 units";
  TNestedRects again;
  nest.SingleNest(again, 0, 0);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(again.At(i).Trans, list.At(i).Trans) << "a second run of the object";
  TRecursiveFiveblockNest(plate, part, 2, 0).SingleNest(list, 0, 0);
  EXPECT_GT(list.Count(), 4);
}

// The final jostling takes sides within 1e-4 for one.
TEST(RecursiveFiveblockNest, SidesThatCloseNeedSizesScaledToWholeNumbers) {
  const auto nest = [](const TProblem& P, TNestedRects& List) {
    TRecursiveFiveblockNest(PlateOf(P), PartOf(P), P.Gap, P.Digit).SingleNest(List, 0, 0);
  };
  TNestedRects list{TNestedRect(TNestRect(), false, {500, 500})};
  const TProblem raises{0.1428, 0.186, 0.0285, 0.0144, 0, 4};
  EXPECT_THROW(nest(raises, list), TAssertionError);
  EXPECT_EQ(list.First().Trans, TPoint2D(500, 500)) << "the list stays as it was";
  const TProblem overlaps{0.1767, 0.4415, 0.0441, 0.0442, 0, 4};
  nest(overlaps, list);
  EXPECT_NE(CheckRectLayout(list, PlateOf(overlaps), 0, {PartOf(overlaps)}, {.Tol = 0.01}), "");
  for (const auto& [l, w, a, b, gap, digit] : {raises, overlaps}) {
    LayoutOf({l * 10, w * 10, a * 10, b * 10, gap, 3});
    LayoutOf({RoundHalfEven(l * 1e4), RoundHalfEven(w * 1e4), RoundHalfEven(a * 1e4), RoundHalfEven(b * 1e4)});
  }
}

// 2440 x 1220 holds 212 of 145 x 95; one level of cuts finds fewer.
const TProblem kLong{2440, 1220, 145, 95};

TEST(RecursiveFiveblockNest, APassThatRunsOutOfTimeIsDropped) {
  std::vector<int> seen;
  for (double ms = 5000; ms > 1e-3; ms /= 2) {
    TFakeClock clock;
    clock.AdvanceAtEachReading(ms);
    const int count = Count(kLong);
    if (seen.empty() || seen.back() != count) seen.push_back(count);
  }
  EXPECT_EQ(seen, (std::vector{0, Count(kLong, 1), Count(kLong)}));

  seen.clear();
  for (const int late : {2, 3, 4, 5, 6}) {
    const TClockScope clock([late, reading = 0]() mutable { return ++reading < late ? 0.0 : 5000.0; });
    seen.push_back(Count({22, 16, 5, 3}));
  }
  EXPECT_EQ(seen, (std::vector{0, 0, 22, 22, 23})) << "the clock is read before and after each of two short passes";
}

TEST(RecursiveFiveblockNest, TimeIsOverOnceItIsPastTheSecondsOfTheLevel) {
  for (const auto& [level, ms] : {std::pair(0, 4000.0), {1, 6000}, {-1, 2000}, {-3, 1000}}) {
    const auto countAt = [level = level](double nowMs) {
      bool isStarted = false;
      const TClockScope clock([&] { return std::exchange(isStarted, true) ? nowMs : 0.0; });
      return Count({124, 81, 21, 10}, 0, level);
    };
    EXPECT_EQ(countAt(ms), 47) << "level " << level;
    EXPECT_EQ(countAt(ms + 0.01), 0) << "level " << level;
  }
}

// Stops at one reading of the clock and gives the count and the readings after that.
std::pair<int, int> CountWithStopAt(int Reading) {
  TStopToken token;
  const TStopTokenScope scope(&token);
  int readings = 0;
  const TClockScope clock([&] {
    if (++readings == Reading) token.RequestStop();
    return 0.0;
  });
  const int count = Count(kLong);
  return {count, readings - Reading};
}

TEST(RecursiveFiveblockNest, AStopRequestEndsTheSearch) {
  const int all = CountWithStopAt(0).second;
  EXPECT_LE(CountWithStopAt(2).second, 2);
  EXPECT_EQ(CountWithStopAt(2).first, 0);
  EXPECT_EQ(CountWithStopAt(all - 10).first, Count(kLong, 1)) << "the second pass was stopped";
  RectNestTerminated = true;
  TNestedRects list;
  EXPECT_EQ(TRecursiveFiveblockNest(PlateOf(kLong), PartOf(kLong), 0, 0).SingleNest(list, 0, 0), 0);
  RectNestTerminated = false;
  EXPECT_TRUE(list.empty());
}

// The table of the plate is too large for a second, but not for four.
TEST(RecursiveFiveblockNest, APlateTooLargeForItsTimeGetsOneStraightCut) {
  const TProblem large{3000, 1500, 137, 83};
  const int oneCut = OneCut(3000, 1500, 137, 83);
  EXPECT_EQ(Count(large, 0, -3), oneCut);
  EXPECT_EQ(Count({1500, 3000, 137, 83}, 0, -3), oneCut);
  EXPECT_GT(Count(large, 1), oneCut);
  EXPECT_EQ(Count({2920, 1760, 137, 83}), OneCut(2920, 1760, 137, 83))
      << "4.02 s expected, 3.98 s without the last row";
  EXPECT_GT(Count({2920, 1760, 137, 83}, 1, 1), OneCut(2920, 1760, 137, 83));
}

TEST(RecursiveFiveblockNest, WhatHoldsNothingAndWhatHasNoWholeSizes) {
  EXPECT_EQ(Count({10, 3, 5, 4}), 0);
  EXPECT_EQ(Count({0, 0, 5, 4}), 0);
  EXPECT_EQ(Count({-5, 10, 5, 4}), 0);
  EXPECT_EQ(Count({100, 100, 2e9, 2e9}), 0);
  const auto textOf = [](const TProblem& p) -> std::string {
    try {
      TRecursiveFiveblockNest(PlateOf(p), PartOf(p), p.Gap, p.Digit);
      return "";
    } catch (const TRangeError& error) {
      return error.Text();
    }
  };
  const TProblem refused[] = {{100, 100, 3e9, 10},     {3e9, 100, 10, 10},       {kNaN, 100, 10, 10},
                              {100, 100, 10, kNaN},    {100, 100, 10, 10, kNaN}, {100, 100, 0, 10},
                              {100, 100, 10, 10, -10}, {100, 100, 1, 1, 0, 8},   {1, 1, 1, 1, 0, 40}};
  for (const TProblem& problem : refused) EXPECT_EQ(textOf(problem), "板材大小超出整数范围，请检查有效位数");
  EXPECT_EQ(textOf({100, 100, 10, 10, 0, 6}), "");
}

}  // namespace
}  // namespace platenest
