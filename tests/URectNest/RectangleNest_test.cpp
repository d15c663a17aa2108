#include "platenest/URectNest/RectangleNest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "StripChoice.h"
#include "platenest/foundation/Rounding.h"

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

// Inside the plate and Gap apart, up to 1e-8; text of the first fault.
std::string Fault(const TNestedRects& List, double W, double H, double Gap) {
  const TVRect2D plate = TVRect2D::FromSize(W, H).Inflate(1e-8);
  for (int i = 0; i < List.Count(); ++i) {
    const TVRect2D box = List.At(i).BoundBox();
    if (box.Left < plate.Left || box.Bottom < plate.Bottom || box.Right > plate.Right || box.Top > plate.Top)
      return "outside: " + std::to_string(i);
    for (int j = 0; j < i; ++j) {
      const TVRect2D other = List.At(j).BoundBox();
      const double apart = std::max(std::max(box.Left - other.Right, other.Left - box.Right),
                                    std::max(box.Bottom - other.Top, other.Bottom - box.Top));
      if (apart < Gap - 1e-8) return "too close: " + std::to_string(j) + ", " + std::to_string(i);
    }
  }
  return {};
}

// The strip recursion with its path arrays carried and copied.
class TPathRecursion {
 public:
  TPathRecursion(double W, double H, double PartX, double PartY)
      : FW(W),
        FH(H),
        FX(PartX),
        FY(PartY),
        FMost(std::max(Trunc<int>((W + H - PartY + 1e-6) / PartX), 0)),
        FCur(static_cast<std::size_t>(FMost)),
        FInfo(static_cast<std::size_t>(Trunc((W + 1e-6) / PartX)) + 1,
              std::vector<TPlateNestInfo>(static_cast<std::size_t>(Trunc((H + 1e-6) / PartX)) + 1)) {
    int end = 0;
    Visit(0, end, W, H);
  }
  const TPlateNestInfo& Root() const { return FInfo[0][0]; }

 private:
  using TPath = std::vector<bool>;

  void Join(TPlateNestInfo& Cell, bool Choice, const TPlateNestInfo& Next, int Amt) {
    Cell.NestArr = {Choice};
    Cell.NestArr.insert(Cell.NestArr.end(), Next.NestArr.begin(), Next.NestArr.end());
    Cell.Amt = Amt;
  }

  int Visit(int Idx, int& EndIdx, double W, double H) {
    const auto i = static_cast<std::size_t>(Round((FW - W) / FX));
    const auto j = static_cast<std::size_t>(Round((FH - H) / FX));
    TPlateNestInfo& cell = FInfo.at(i).at(j);
    if (std::max(W, H) < FX || std::min(W, H) < FY) {
      cell.Amt = 0;
      EndIdx = Idx;
      return 0;
    }
    int xAmt = 0;
    int yAmt = 0;
    const auto at = FCur.begin() + Idx;
    if (W >= FX) {
      *at = false;
      const int n = Trunc<int>(H / FY);
      if (FInfo.at(i + 1).at(j).Amt > -1) {
        xAmt = n + FInfo[i + 1][j].Amt;
        Join(cell, false, FInfo[i + 1][j], xAmt);
        EndIdx = Idx + Size(cell.NestArr);
        std::copy(cell.NestArr.begin(), cell.NestArr.end(), at);
      } else {
        xAmt = n + Visit(Idx + 1, EndIdx, W - FX, H);
        cell.NestArr = TPath(at, FCur.begin() + EndIdx);
        cell.Amt = xAmt;
      }
    }
    const TPath backup = FCur;
    if (H >= FX) {
      *at = true;
      const int former = EndIdx;
      const int n = Trunc<int>(W / FY);
      if (FInfo.at(i).at(j + 1).Amt > -1) {
        yAmt = n + FInfo[i][j + 1].Amt;
        EndIdx = former;
        if (yAmt > xAmt) {
          Join(cell, true, FInfo[i][j + 1], yAmt);
          EndIdx = Idx + Size(cell.NestArr);
        }
      } else {
        yAmt = n + Visit(Idx + 1, EndIdx, W, H - FX);
        if (yAmt > xAmt) {
          cell.NestArr = TPath(at, FCur.begin() + EndIdx);
          cell.Amt = yAmt;
        } else {
          EndIdx = former;
          std::copy(backup.begin() + Idx + 1, backup.end(), at + 1);
        }
      }
    }
    *at = xAmt < yAmt;
    return std::max(xAmt, yAmt);
  }

  double FW, FH, FX, FY;
  int FMost;
  TPath FCur;
  std::vector<std::vector<TPlateNestInfo>> FInfo;
};

// The strip nest with every copy laid, sorted, cut and moved one after the other.
TNestedRects NestCopyByCopy(double W, double H, const TNestRect& Part, double Gap) {
  const TVRect2D plate = TVRect2D::FromSize(W, H).Inflate(Gap / 2).Translate({Gap / 2, Gap / 2});
  const double gap = Gap >= 1 ? Gap - 1e-9 : Gap;
  const TVRect2D grown = Part.BoundBox.Inflate(gap / 2).Translate({gap / 2, gap / 2});
  const bool isVertical = grown.Width() < grown.Height();
  const double px = std::max(grown.Width(), grown.Height());
  const double py = std::min(grown.Width(), grown.Height());
  const TPlateNestInfo root = TPathRecursion(plate.Width(), plate.Height(), px, py).Root();
  EXPECT_EQ(detail::BestStrips(plate.Width(), plate.Height(), px, py).Amt, root.Amt);
  TNestedRects list;
  double x = 0;
  double y = 0;
  for (const bool bottom : root.NestArr) {
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

TEST(RectangleNest, EqualsTheRecursionThatCarriesItsPaths) {
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
      return A.Trans.X == B.Trans.X && A.Trans.Y == B.Trans.Y && A.IsRotate == B.IsRotate;
    };
    ASSERT_TRUE(std::equal(list.begin(), list.end(), expected.begin(), expected.end(), same));
    ASSERT_EQ(Fault(list, w, h, gap), "");
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

//      +-----+--+        8 high, 11 wide; the strip on the left holds two copies, the next one, along the bottom, two
//      |     |  |        turned ones; the last is upright again.
TEST(RectangleNest, PlacementsAscendByRightEdgeThenByY) {
  const std::tuple<double, double, bool> expected[] = {
      {0, 0, false}, {0, 3, false}, {8, 0, true}, {5, 5, false}, {11, 0, true}};
  const TResult result = Nest(11, 8, 5, 3);
  ASSERT_EQ(result.Count, 5);
  for (int i = 0; i < 5; ++i) {
    const TNestedRect& item = result.List.At(i);
    EXPECT_EQ(std::tuple(item.Trans.X, item.Trans.Y, item.IsRotate), expected[i]) << i;
    EXPECT_EQ(item.Part.BoundBox.Width(), 5) << "the rectangle as given, without the gap";
  }
}

TEST(RectangleNest, AmountBelowCapacityKeepsTheLeftmost) {
  for (const auto& [amount, count, isFull] : {std::tuple{6, 5, true}, {5, 5, true}, {3, 3, false}, {0, 0, false}}) {
    const TResult result = Nest(11, 8, 5, 3, 0, amount);
    EXPECT_EQ(result.Count, count);
    EXPECT_EQ(result.IsFull, isFull);
    if (count > 0) {
      EXPECT_EQ(result.List.Last().Trans.X, count == 3 ? 8 : 11);
    }
  }
}

TEST(RectangleNest, WhatDoesNotFitOrIsNoSizeGivesNothing) {
  const double inf = std::numeric_limits<double>::infinity();
  const double cases[][5] = {{10, 4, 11, 3, 0},  {10, 4, 5, 4.1, 0},  {10, 4, kNaN, 1, 0}, {10, 4, 1, -1, 0},
                             {10, 4, 0, 1, 5},   {inf, 4, 1, 1, 0},   {-10, 4, 1, 1, 0},   {10, 0, 1, 1, 0},
                             {10, 4, 1, 1, inf}, {10, 4, 1, 1, kNaN}, {10, 4, 1, 1, -1},   {700, 0.5, 1, 1, 0},
                             {5, 5, 6, 6, -5}};
  for (const auto& c : cases) {
    const TResult result = Nest(c[0], c[1], c[2], c[3], c[4]);
    EXPECT_EQ(result.Count, 0) << c[0] << ' ' << c[2];
    EXPECT_TRUE(result.List.empty());
    EXPECT_TRUE(result.IsFull);
  }
  EXPECT_EQ(Nest(13, 4, 5, 4, -1).Count, 3) << "a negative gap lets copies overlap";
}

TEST(RectangleNest, SixHundredStripsTakeThePlainGrid) {
  const TResult strips = Nest(300, 300, 1, 1, 0, 90000);
  EXPECT_EQ(strips.Count, 90000);
  EXPECT_TRUE(strips.IsFull) << "Amount equal to the capacity, 599 strips";
  EXPECT_EQ(strips.List.At(1).Trans, (TPoint2D{0, 1})) << "column by column";

  const TResult grid = Nest(301, 300, 1, 1, 0, 90300);
  EXPECT_EQ(grid.Count, 90300);
  EXPECT_FALSE(grid.IsFull) << "Amount equal to the capacity, 600 strips";
  EXPECT_EQ(grid.List.At(1).Trans, (TPoint2D{1, 0})) << "row by row";
  EXPECT_TRUE(Nest(301, 300, 1, 1, 0, 90301).IsFull);

  const TResult none = Nest(301, 300, 1, 1, 0, 0);
  EXPECT_EQ(none.List.Count(), 90300) << "the grid stays when nothing was asked for";
  EXPECT_TRUE(none.IsFull);
  EXPECT_EQ(Nest(1e7, 1e7, 1, 1, 0, 3).List.Count(), 3);
  EXPECT_THROW(Nest(1e7, 1e7, 1, 1, 0, 0), TRangeError) << "1e14 placements";
  EXPECT_THROW(Nest(10, 10, 1, 1e-9), TRangeError) << "strips of 1e10 copies";
}

TEST(RectangleNest, TurnedCopiesOnTheGridStandOneGapFurther) {
  // Pitch 4 by 3 (less 1e-9): 300 columns of turned 2 x 3 parts.
  const TResult first = Nest(1199, 1500, 2, 3, 1);
  ASSERT_GT(first.Count, 0);
  EXPECT_TRUE(first.List.First().IsRotate);
  EXPECT_NEAR(first.List.First().Trans.X, 4, 1e-8) << "3 without the gap";
  EXPECT_NEAR(first.List.Last().Trans.X, 1200, 1e-6) << "one gap beyond the plate";
  EXPECT_EQ(Nest(1199, 1500, 3, 2, 1).Count, first.Count);
  EXPECT_EQ(Nest(3000, 2.5, 3, 2, 1).Count, 750) << "only the second layout fits a plate lower than the long side";
}

TEST(RectangleNest, EntriesAlreadyInTheListCountTowardAmount) {
  const TNestRect part(4, 0, TVRect2D::FromSize(1, 1));
  for (const double plate : {10.0, 700.0}) {
    TNestedRects list{TNestedRect(part, false, {0, 0})};
    bool isFull = true;
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
  EXPECT_NEAR(ratio(22, 16, 5, 3, 0), 22 * 15 / 352.0, 1e-12);
  EXPECT_EQ(ratio(22, 16, 50, 3, 0), 0);
}

}  // namespace
}  // namespace platenest
