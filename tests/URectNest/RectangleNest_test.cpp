#include "platenest/URectNest/RectangleNest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <random>

#include "StripChoice.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

constexpr int kMany = 1'000'000;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct TResult {
  TNestedRects List;
  int Count = 0;
  bool IsFull = false;
};

TResult Nest(double W, double H, double PartW, double PartH, double Gap = 0, int Amount = kMany) {
  TResult result;
  const TNestRect part(Amount, 7, TVRect2D::FromSize(PartW, PartH));
  result.Count = TRectangleNest(TVRect2D::FromSize(W, H), part, Gap).SingleNest(result.List, result.IsFull);
  return result;
}

// The best of both strips from each rest of the plate on: the number of copies, and which strips lie along the bottom.
class TStripRecursion {
 public:
  using TBest = std::pair<int, std::vector<bool>>;

  TStripRecursion(double W, double H, double PartX, double PartY) : FW(W), FH(H), FX(PartX), FY(PartY) {}

  TBest From(double W, double H) {
    const std::pair key(Round((FW - W) / FX), Round((FH - H) / FX));
    if (FKnown.contains(key)) return FKnown[key];
    TBest best;
    if (std::max(W, H) >= FX && std::min(W, H) >= FY) {
      if (W >= FX) best = With(false, Trunc<int>(H / FY), From(W - FX, H));
      const TBest bottom = H >= FX ? With(true, Trunc<int>(W / FY), From(W, H - FX)) : TBest();
      if (bottom.first > best.first) best = bottom;
    }
    return FKnown[key] = best;
  }

 private:
  static TBest With(bool Bottom, int Copies, TBest Rest) {
    Rest.second.insert(Rest.second.begin(), Bottom);
    return {Rest.first + Copies, Rest.second};
  }

  double FW, FH, FX, FY;
  std::map<std::pair<int, int>, TBest> FKnown;
};

// The strip nest with every copy laid, sorted, cut and moved one after the other.
TNestedRects NestCopyByCopy(double W, double H, const TNestRect& Part, double Gap) {
  const TVRect2D plate = TVRect2D::FromSize(W, H).Inflate(Gap / 2).Translate({Gap / 2, Gap / 2});
  const double gap = Gap >= 1 ? Gap - 1e-9 : Gap;
  const TVRect2D grown = Part.BoundBox.Inflate(gap / 2).Translate({gap / 2, gap / 2});
  const bool isVertical = grown.Width() < grown.Height();
  const double px = std::max(grown.Width(), grown.Height());
  const double py = std::min(grown.Width(), grown.Height());
  const auto [most, strips] =
      TStripRecursion(plate.Width(), plate.Height(), px, py).From(plate.Width(), plate.Height());
  EXPECT_EQ(detail::BestStrips(plate.Width(), plate.Height(), px, py).Amt, most);
  TNestedRects list;
  double x = 0;
  double y = 0;
  for (const bool bottom : strips) {
    const int n = Trunc<int>((bottom ? plate.Width() - x : plate.Height() - y) / py);
    for (int k = 0; k < n; ++k)
      list.emplace_back(Part, bottom != isVertical, bottom ? TPoint2D{x + k * py, y} : TPoint2D{x, y + k * py});
    (bottom ? y : x) += px;
  }
  const auto right = [](const TNestedRect& i) {
    return i.Trans.X + (i.IsRotate ? i.Part.BoundBox.Height() : i.Part.BoundBox.Width());
  };
  std::sort(list.begin(), list.end(), [&](const TNestedRect& A, const TNestedRect& B) {
    return std::pair(right(A), A.Trans.Y) < std::pair(right(B), B.Trans.Y);
  });
  while (list.Count() > Part.Amount) list.pop_back();
  for (TNestedRect& item : list) item.Trans.X += item.IsRotate ? Part.BoundBox.Height() : 0;
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
    const TRectangleNest nest(TVRect2D::FromSize(w, h), part, gap);
    TNestedRects list;
    bool isFull = false;
    ASSERT_EQ(nest.SingleNest(list, isFull), expected.Count());
    const auto same = [](const TNestedRect& A, const TNestedRect& B) {
      return A.Trans.X == B.Trans.X && A.Trans.Y == B.Trans.Y && A.IsRotate == B.IsRotate &&
             A.Part.BoundBox.Width() == B.Part.BoundBox.Width();
    };
    ASSERT_TRUE(std::equal(list.begin(), list.end(), expected.begin(), expected.end(), same));
    ASSERT_EQ(CheckRectLayout(list, TVRect2D::FromSize(w, h), gap, {part}, {.Tol = 1e-8}), "");
    ASSERT_EQ(nest.Summary().Count, list.Count());
    if (list.empty()) continue;
    ASSERT_EQ(nest.Summary().Right, list.Last().Trans.X + (list.Last().IsRotate ? 0 : part.BoundBox.Width()));
  }
}

TEST(RectangleNest, OnlyGapsFromOneOnForgiveAShortPlate) {
  EXPECT_EQ(Nest(32 - 5e-10, 10, 10, 10, 1).Count, 3) << "pitch 11 - 1e-9";
  EXPECT_EQ(Nest(32 - 4e-9, 10, 10, 10, 1).Count, 2);
  EXPECT_EQ(Nest(31 - 5e-10, 10, 10, 10, 0.5).Count, 2) << "pitch 10.5";
}

TEST(RectangleNest, WhatDoesNotFitOrIsNoSizeGivesNothing) {
  const double inf = std::numeric_limits<double>::infinity();
  const double cases[][5] = {{10, 4, 11, 3, 0}, {10, 4, kNaN, 1, 0}, {10, 4, 0, 1, 5},
                             {inf, 4, 1, 1, 0}, {-10, 4, 1, 1, 0},   {10, 4, 1, 1, inf},
                             {10, 4, 1, 1, -1}, {700, 0.5, 1, 1, 0}, {5, 5, 6, 6, -5}};
  for (const auto& c : cases) {
    const TResult result = Nest(c[0], c[1], c[2], c[3], c[4]);
    EXPECT_TRUE(result.Count == 0 && result.List.empty() && result.IsFull) << c[0] << ' ' << c[2];
  }
  EXPECT_EQ(Nest(13, 4, 5, 4, -1).Count, 3) << "a negative gap lets copies overlap";
}

TEST(RectangleNest, SixHundredStripsTakeThePlainGrid) {
  const TResult strips = Nest(300, 300, 1, 1, 0, 90000);
  EXPECT_TRUE(strips.IsFull) << "Amount equal to the capacity, 599 strips";
  EXPECT_EQ(strips.List.At(1).Trans, (TPoint2D{0, 1})) << "column by column";

  const TResult grid = Nest(301, 300, 1, 1, 0, 90300);
  EXPECT_FALSE(grid.IsFull) << "Amount equal to the capacity, 600 strips";
  EXPECT_EQ(grid.List.At(1).Trans, (TPoint2D{1, 0})) << "row by row";
  EXPECT_FALSE(grid.List.At(1).IsRotate) << "a square is not turned";
  EXPECT_TRUE(Nest(301, 300, 1, 1, 0, 90301).IsFull);

  const TResult none = Nest(301, 300, 1, 1, 0, 0);
  EXPECT_EQ(none.Count, 0);
  EXPECT_EQ(none.List.Count(), 90300) << "the grid stays when nothing was asked for";
  EXPECT_TRUE(none.IsFull);
  EXPECT_EQ(Nest(1e7, 1e7, 1, 1, 0, 3).List.Count(), 3);
  EXPECT_THROW(Nest(1e7, 1e7, 1, 1, 0, 0), TRangeError) << "1e14 placements";
  EXPECT_THROW(Nest(1e300, 1, 1, 1), TRangeError);
  EXPECT_THROW(Nest(10, 10, 1, 1e-9), TRangeError) << "strips of 1e10 copies";
}

TEST(RectangleNest, TurnedCopiesOnTheGridStandOneGapFurther) {
  // Pitch 4 by 3 (less 1e-9): 300 columns of turned 2 x 3 parts, or 400 columns of upright ones.
  const TResult first = Nest(1199, 1500, 2, 3, 1);
  ASSERT_GT(first.Count, 0);
  EXPECT_TRUE(first.List.First().IsRotate);
  EXPECT_NEAR(first.List.First().Trans.X, 4, 1e-8) << "3 without the gap";
  EXPECT_NEAR(first.List.Last().Trans.X, 1200, 1e-6) << "one gap beyond the plate";
  // Only the second layout fits a plate that is lower than the long side.
  const TResult second = Nest(3000, 2.5, 3, 2, 1);
  EXPECT_EQ(second.Count, 0 + 750);
}

TEST(RectangleNest, EntriesAlreadyInTheListCountTowardAmount) {
  for (const double plate : {10.0, 700.0}) {
    TNestedRects list{TNestedRect(TNestRect(1, 0, TVRect2D::FromSize(1, 1)), false, {0, 0})};
    bool isFull = true;
    const TNestRect part(4, 0, TVRect2D::FromSize(1, 1));
    EXPECT_EQ(TRectangleNest(TVRect2D::FromSize(plate, 10), part, 0).SingleNest(list, isFull), 4);
    EXPECT_EQ(list.Count(), 4);
    EXPECT_FALSE(isFull);
  }
}

TEST(RectangleNest, UsageRatioCountsOneGapPerSide) {
  const auto ratio = [](double W, double H, double A, double B, double Gap) {
    return TRectangleNest::NestUsageRatio(TVRect2D::FromSize(W, H), TNestRect(kMany, 0, TVRect2D::FromSize(A, B)), Gap);
  };
  EXPECT_NEAR(ratio(995, 495, 95, 95, 5), 1, 1e-12);
  EXPECT_EQ(ratio(22, kNaN, 5, 3, 0), 0);
}

}  // namespace
}  // namespace platenest
