#include "platenest/URectNest/RectangleNest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <random>

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

// Copies, and which strips lie along the bottom.
using TStrips = std::pair<int, std::vector<bool>>;

// The best of both strips from each rest of the plate on.
TStrips StripsFrom(double W, double H, double X, double Y, std::map<std::pair<double, double>, TStrips>& Known) {
  const auto [known, isNew] = Known.try_emplace({W, H});
  TStrips& best = known->second;
  if (!isNew || std::max(W, H) < X || std::min(W, H) < Y) return best;
  for (const bool bottom : {false, true}) {
    if ((bottom ? H : W) < X) continue;
    TStrips strips = bottom ? StripsFrom(W, H - X, X, Y, Known) : StripsFrom(W - X, H, X, Y, Known);
    strips.first += Trunc<int>((bottom ? W : H) / Y);
    strips.second.insert(strips.second.begin(), bottom);
    if (strips.first > best.first) best = strips;
  }
  return best;
}

// The strip nest with every copy laid, sorted, cut and moved one after the other.
TNestedRects NestCopyByCopy(double W, double H, const TNestRect& PartRect, double Gap) {
  const TVRect2D plate = TVRect2D::FromSize(W, H).Inflate(Gap / 2).Translate({Gap / 2, Gap / 2});
  const double gap = Gap >= 1 ? Gap - 1e-9 : Gap;
  const TVRect2D grown = PartRect.BoundBox.Inflate(gap / 2).Translate({gap / 2, gap / 2});
  const bool isVertical = grown.Width() < grown.Height();
  const auto [py, px] = std::minmax({grown.Width(), grown.Height()});
  std::map<std::pair<double, double>, TStrips> known;
  const auto [most, strips] = StripsFrom(plate.Width(), plate.Height(), px, py, known);
  EXPECT_EQ(detail::BestStrips(plate.Width(), plate.Height(), px, py).Amt, most);
  TNestedRects list;
  double x = 0;
  double y = 0;
  for (const bool bottom : strips) {
    const int n = Trunc<int>((bottom ? plate.Width() - x : plate.Height() - y) / py);
    for (int k = 0; k < n; ++k)
      list.emplace_back(PartRect, bottom != isVertical, bottom ? TPoint2D{x + k * py, y} : TPoint2D{x, y + k * py});
    (bottom ? y : x) += px;
  }
  const auto width = [&](const TNestedRect& item) {
    return item.IsRotate ? PartRect.BoundBox.Height() : PartRect.BoundBox.Width();
  };
  std::sort(list.begin(), list.end(), [&](const TNestedRect& A, const TNestedRect& B) {
    return std::pair(A.Trans.X + width(A), A.Trans.Y) < std::pair(B.Trans.X + width(B), B.Trans.Y);
  });
  while (list.Count() > PartRect.Amount) list.pop_back();
  for (TNestedRect& item : list) item.Trans.X += item.IsRotate ? PartRect.BoundBox.Height() : 0;
  return list;
}

TEST(RectangleNest, EqualsTheRecursionOverAllStrips) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> real(0, 1);
  for (int round = 0; round < 3000; ++round) {
    const double scale = round % 2 == 0 ? 1 : 0.37;  // whole numbers make ties and exact fits
    const auto size = [&](double Most) { return std::ceil(real(random) * Most) * scale; };
    const double w = size(60);
    const double h = size(60);
    const double gap = round % 4 == 0 ? size(3) : 0;
    const TNestRect part(round % 3 == 0 ? 20 : kMany, 0, TVRect2D::FromSize(size(round % 5 == 0 ? 70 : 12), size(12)));
    SCOPED_TRACE(testing::Message() << w << " x " << h << ", " << part.BoundBox.Width() << " x "
                                    << part.BoundBox.Height());
    const TNestedRects expected = NestCopyByCopy(w, h, part, gap);
    const TNestedRects list = Nest(w, h, part, gap).List;
    const auto same = [](const TNestedRect& A, const TNestedRect& B) {
      return A.Trans.X == B.Trans.X && A.Trans.Y == B.Trans.Y && A.IsRotate == B.IsRotate;
    };
    ASSERT_TRUE(std::equal(list.begin(), list.end(), expected.begin(), expected.end(), same));
    ASSERT_EQ(CheckRectLayout(list, TVRect2D::FromSize(w, h), gap, {part}, {.Tol = 1e-8}), "");
    const auto summary = TRectangleNest(TVRect2D::FromSize(w, h), part, gap).Summary();
    ASSERT_EQ(summary.Count, list.Count());
    if (list.empty()) continue;
    ASSERT_EQ(summary.Right, list.Last().Trans.X + (list.Last().IsRotate ? 0 : part.BoundBox.Width()));
  }
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

}  // namespace
}  // namespace platenest
