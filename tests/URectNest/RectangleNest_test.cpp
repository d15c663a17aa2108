#include "platenest/URectNest/RectangleNest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <random>
#include <ranges>

#include "Rects.h"
#include "StripChoice.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

constexpr int kMany = 1'000'000;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct TResult {
  TNestedRects List;
  int Count = 0;
  bool IsFull = false;
};

TResult Nest(double W, double H, const TNestRect& PartRect, double Gap = 0) {
  TResult result;
  result.Count = TRectangleNest(TVRect2D::FromSize(W, H), PartRect, Gap).SingleNest(result.List, result.IsFull);
  return result;
}

int Count(double W, double H, double PartW, double PartH, double Gap = 0) {
  return Nest(W, H, Part(kMany, PartW, PartH), Gap).Count;
}

// The most copies of X by Y, X not below Y, by the better of both strips from each rest of the plate on.
int MostInStrips(double W, double H, double X, double Y, std::map<std::pair<double, double>, int>& Known) {
  const auto [known, isNew] = Known.try_emplace({W, H});
  int& most = known->second;
  if (!isNew || std::max(W, H) < X || std::min(W, H) < Y) return most;
  if (W >= X) most = Trunc<int>(H / Y) + MostInStrips(W - X, H, X, Y, Known);
  if (H >= X) most = std::max(most, Trunc<int>(W / Y) + MostInStrips(W, H - X, X, Y, Known));
  return most;
}

TEST(RectangleNest, HoldsWhatTheRecursionOverAllStripsHoldsByRightEdges) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> real(0, 1);
  for (int round = 0; round < 3000; ++round) {
    const double scale = round % 2 == 0 ? 1 : 0.37;  // whole numbers make ties and exact fits
    const auto size = [&](double Most) { return std::ceil(real(random) * Most) * scale; };
    const double w = size(60);
    const double h = size(60);
    const double gap = round % 4 == 0 ? size(3) : 0;
    TNestRect part = Part(kMany, size(round % 5 == 0 ? 70 : 12), size(12));
    SCOPED_TRACE(testing::Message() << w << " x " << h << ", " << part.BoundBox.Width() << " x "
                                    << part.BoundBox.Height());
    const auto right = [&](const TNestedRect& item) {
      return item.Trans.X + (item.IsRotate ? 0 : part.BoundBox.Width());
    };
    const auto grown = [](const TVRect2D& box, double by) { return box.Inflate(by / 2).Translate({by / 2, by / 2}); };
    const TVRect2D plate = grown(TVRect2D::FromSize(w, h), gap);
    const TVRect2D cell = grown(part.BoundBox, gap >= 1 ? gap - 1e-9 : gap);
    const auto [y, x] = std::minmax({cell.Width(), cell.Height()});
    std::map<std::pair<double, double>, int> known;
    const TNestedRects all = Nest(w, h, part, gap).List;
    const int most = MostInStrips(plate.Width(), plate.Height(), x, y, known);
    ASSERT_EQ(detail::BestStrips(plate.Width(), plate.Height(), x, y).Amt, most);
    ASSERT_TRUE(scale < 1 || all.Count() == most) << "rounding may cost a copy";
    ASSERT_EQ(CheckRectLayout(all, TVRect2D::FromSize(w, h), gap, {part}, {.Tol = 1e-8}), "");
    const auto placeOf = [&](const TNestedRect& item) { return std::pair(right(item), item.Trans.Y); };
    ASSERT_TRUE(std::ranges::is_sorted(all, {}, placeOf));
    part.Amount = 20;
    const TNestedRects some = Nest(w, h, part, gap).List;
    ASSERT_EQ(some.Count(), std::min(20, all.Count()));
    ASSERT_TRUE(std::ranges::equal(some, all | std::views::take(20), {}, placeOf, placeOf));
    const auto summary = TRectangleNest(TVRect2D::FromSize(w, h), part, gap).Summary();
    ASSERT_EQ(summary.Count, some.Count());
    ASSERT_TRUE(some.empty() || summary.Right == right(some.Last()));
  }
}

TEST(RectangleNest, OfEqualStripsTheOneAtTheLeftIsLaid) {
  const TNestedRects list = Nest(5, 5, Part(kMany, 3, 2)).List;
  ASSERT_EQ(list.Count(), 3);
  EXPECT_TRUE(list[0].Trans == TPoint2D(0, 0) && list[1].Trans == TPoint2D(0, 2));
  EXPECT_TRUE(list[2].Trans == TPoint2D(5, 0) && list[2].IsRotate) << "the rest has one along its bottom";
}

TEST(RectangleNest, OnlyGapsFromOneOnForgiveAShortPlate) {
  EXPECT_EQ(Count(32 - 5e-10, 10, 10, 10, 1), 3) << "pitch 11 - 1e-9";
  EXPECT_EQ(Count(32 - 4e-9, 10, 10, 10, 1), 2);
  EXPECT_EQ(Count(31 - 5e-10, 10, 10, 10, 0.5), 2) << "pitch 10.5";
}

TEST(RectangleNest, WhatDoesNotFitOrIsNoSizeGivesNothing) {
  const double cases[][5] = {{10, 4, 11, 3, 0}, {10, 4, kNaN, 1, 0},      {10, 4, 0, 1, 5},
                             {10, 4, 1, 1, -1}, {kInfinity, 4, 1, 1, 0},  {-10, 4, 1, 1, 0},
                             {5, 5, 6, 6, -5},  {10, 4, 1, 1, kInfinity}, {700, 0.5, 1, 1, 0}};
  for (const auto& [w, h, partW, partH, gap] : cases) {
    const TResult result = Nest(w, h, Part(kMany, partW, partH), gap);
    EXPECT_TRUE(result.Count == 0 && result.List.empty() && result.IsFull) << w << ' ' << partW;
  }
  EXPECT_EQ(Count(13, 4, 5, 4, -1), 3) << "a negative gap lets copies overlap";
}

TEST(RectangleNest, SixHundredStripsTakeThePlainGrid) {
  const auto nest = [](double W, int Amount) { return Nest(W, 300, Part(Amount, 1, 1)); };
  const TResult strips = nest(300, 90000);
  EXPECT_TRUE(strips.IsFull) << "Amount equal to the capacity, 599 strips";
  EXPECT_EQ(strips.List.At(1).Trans, (TPoint2D{0, 1})) << "column by column";

  const TResult grid = nest(301, 90300);
  EXPECT_FALSE(grid.IsFull) << "Amount equal to the capacity, 600 strips";
  EXPECT_EQ(grid.List.At(1).Trans, (TPoint2D{1, 0})) << "row by row";
  EXPECT_FALSE(grid.List.At(1).IsRotate) << "a square is not turned";
  EXPECT_TRUE(nest(301, 90301).IsFull);

  const TResult none = nest(301, 0);
  EXPECT_TRUE(none.Count == 0 && none.IsFull);
  EXPECT_EQ(none.List.Count(), 90300) << "the grid stays when nothing was asked for";
  EXPECT_EQ(Nest(1e7, 1e7, Part(3, 1, 1)).List.Count(), 3);
  EXPECT_THROW(Nest(1e7, 1e7, Part(0, 1, 1)), TRangeError) << "1e14 placements";
  EXPECT_THROW(Count(1e300, 1, 1, 1), TRangeError);
  EXPECT_THROW(Count(10, 10, 1, 1e-9), TRangeError) << "strips of 1e10 copies";
}

TEST(RectangleNest, TurnedCopiesOnTheGridStandOneGapFurther) {
  // Pitch 4 by 3 (less 1e-9): 300 columns of turned 2 x 3 parts, or 400 columns of upright ones.
  const TNestedRects list = Nest(1199, 1500, Part(kMany, 2, 3), 1).List;
  ASSERT_FALSE(list.empty());
  EXPECT_TRUE(list.First().IsRotate);
  EXPECT_NEAR(list.First().Trans.X, 4, 1e-8) << "3 without the gap";
  EXPECT_NEAR(list.Last().Trans.X, 1200, 1e-6) << "one gap beyond the plate";
  EXPECT_EQ(Count(3000, 2.5, 3, 2, 1), 750) << "upright ones alone fit a plate that is lower than the long side";
}

TEST(RectangleNest, EntriesAlreadyInTheListCountTowardAmount) {
  for (const double plate : {10.0, 700.0}) {
    TNestedRects list{Placed(1, 1, 0, 0)};
    bool isFull = true;
    EXPECT_EQ(TRectangleNest(TVRect2D::FromSize(plate, 10), Part(4, 1, 1), 0).SingleNest(list, isFull), 4);
    EXPECT_EQ(list.Count(), 4);
    EXPECT_FALSE(isFull);
  }
}

TEST(RectangleNest, UsageRatioCountsOneGapPerSide) {
  const auto ratio = [](double W, double H, double Side, double Gap) {
    return TRectangleNest::NestUsageRatio(TVRect2D::FromSize(W, H), Part(kMany, Side, Side), Gap);
  };
  EXPECT_NEAR(ratio(995, 495, 95, 5), 1, 1e-12);
  EXPECT_EQ(ratio(22, kNaN, 5, 0), 0);
}

// The search with every trial layout built.
double SearchWithLists(const TNestRect& PartRect, double H, double W, double Gap, TNestedRects& List) {
  const double width = PartRect.BoundBox.Width();
  const double unitArea = (width + Gap) * (PartRect.BoundBox.Height() + Gap);
  const auto right = [&](const TNestedRect& Item) { return Item.Trans.X + (Item.IsRotate ? 0 : width); };
  TResult full = Nest(W, H, PartRect, Gap);
  List = full.List;
  double ratio = full.Count * unitArea / (H + Gap) / (W + Gap);
  if (!full.IsFull) return ratio;
  double lastX = right(List.Last()) - Gap;
  double best = full.Count * unitArea / H / lastX;
  while (lastX * 3.0 > W) {
    full.List.pop_back();
    const double x = right(full.List.Last()) - Gap;
    if (fEqual(x, lastX)) continue;
    if (x * 3.0 <= W) break;
    const double kept = full.List.Count() * unitArea / H / x;
    if (kept > best) List = full.List;
    best = std::max(best, kept);
    const TResult trial = Nest((x + lastX) / 2, H, PartRect, Gap);
    ratio = trial.Count * unitArea / (H + Gap) / right(trial.List.Last());
    if (ratio > best) List = trial.List;
    best = std::max(best, ratio);
    lastX = x;
  }
  return ratio;
}

TEST(DynamicSingleRectNest, EqualsTheSearchThatBuildsEveryTrial) {
  std::mt19937 random(17);
  std::uniform_real_distribution<double> real(0, 1);
  int raised = 0;
  int trimmed = 0;
  for (int round = 0; round < 1000; ++round) {
    const bool grid = round % 61 == 7;
    const double h = grid ? 3 * real(random) : 5 + std::ceil(60 * real(random));
    const double w = grid ? 700 + 300 * real(random) : 5 + std::ceil(60 * real(random));
    const double gap = round % 3 * 0.6;
    const auto side = [&] { return (grid ? 0.08 : 1) * std::ceil(16 * real(random)); };
    const double width = side();
    const TNestRect part = Part(round % 10 == 0 ? 0 : round % 4 == 0 ? 40 : kMany, width, side());
    const auto ratioOf = [&](auto& search, TNestedRects& layout) -> std::optional<double> {
      try {
        return search(part, h, w, gap, layout);
      } catch (const TRangeError&) {
        ++raised;
        return std::nullopt;
      }
    };
    TNestedRects expected, list;
    const auto expectedRatio = ratioOf(SearchWithLists, expected);
    ASSERT_EQ(ratioOf(DynamicSingleRectNest, list), expectedRatio) << round;
    if (!expectedRatio) expected.clear();
    ASSERT_EQ(list.Count(), expected.Count()) << round;
    for (int i = 0; i < list.Count(); ++i)
      ASSERT_TRUE(list.At(i).Trans == expected.At(i).Trans && list.At(i).IsRotate == expected.At(i).IsRotate);
    trimmed += !list.empty() && Nest(w, h, part, gap).List.Count() != list.Count();
  }
  EXPECT_GT(raised, 20);
  EXPECT_GT(trimmed, 50);
}

TEST(DynamicSingleRectNest, AStopLeavesTheFullPlate) {
  TStopToken stop;
  stop.RequestStop();
  const TStopTokenScope scope(&stop);
  TNestedRects list;
  DynamicSingleRectNest(Part(100, 3, 2), 5, 8, 0, list);
  EXPECT_EQ(list.Count(), 6) << "untrimmed";
}

}  // namespace
}  // namespace platenest
