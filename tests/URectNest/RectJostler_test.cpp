#include "platenest/URectNest/RectJostler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "ForEachSeed.h"
#include "Rects.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

using TPlaces = std::vector<TPoint2D>;

constexpr double kTol = 9.5e-5;  // no multiple of the 1e-5 that each gap is short by
const TVRect2D kPlate = TVRect2D::FromSize(1000, 1000);

TNestedRects Jostled(const TNestedRects& List, double Gap = 0, bool Hor = true, bool Vert = true, double Tol = kTol) {
  TNestedRects result;
  EXPECT_TRUE(TRectJostler::TryJostle(List, result, kPlate, Gap, Hor, Vert, Tol));
  return result;
}

TPlaces Places(const TNestedRects& List) {
  TPlaces places;
  for (const TNestedRect& item : List) places.push_back(item.Trans);
  return places;
}

// Two neighbours above an obstacle that carries the first only: joined, the second stays up beside it.
TEST(RectJostler, NeighboursOfOneIndexAndTurnMoveAsOneBlock) {
  const auto joined = [](double Hole, int Idx, bool Turned, double Gap) {
    const TNestedRects list{Placed(20, 10, 0, 0, 9), Placed(20, 20, 0, 50),
                            Placed(20, 20, 20 + Hole + Turned * 20, 50, Idx, Turned)};
    return Jostled(list, Gap)[1].Trans.Y > 5;
  };
  EXPECT_TRUE(joined(0.1, 0, false, 0));
  EXPECT_FALSE(joined(0.11, 0, false, 0)) << "too far";
  EXPECT_TRUE(joined(4.09, 0, false, 4)) << "the gap comes on top";
  EXPECT_FALSE(joined(0.05, 1, false, 0)) << "another index of the same size";
  EXPECT_FALSE(joined(0.05, 0, true, 0)) << "another turn";
  const TNestedRects column{Placed(10, 20, 0, 0, 9), Placed(20, 20, 50, 0), Placed(20, 20, 50, 20.05)};
  EXPECT_EQ(Places(Jostled(column, 0, false, true)), (TPlaces{{0, 0}, {10, 0}, {10, 20}}));
  EXPECT_EQ(Places(Jostled(column, 0, true, false)), (TPlaces{{0, 0}, {10, 0}, {0, 20}}));
}

TEST(RectJostler, BlocksCloseToAGrid) {
  TNestedRects turned;
  for (int i = 3; i >= 0; --i) turned.push_back(Placed(20, 10, 60 + i % 2 * 12.05, 7 + i / 2 * 22.1, 0, true));
  EXPECT_EQ(Places(Jostled(turned, 2.00001)), (TPlaces{{10, 0}, {22, 0}, {10, 22}, {22, 22}}));
  for (TNestedRect& item : turned) item.Part.BoundBox = item.Part.BoundBox.Translate({3, 4});
  EXPECT_EQ(Jostled(turned).First().Trans, TPoint2D(14, -3)) << "blocks meet the corner where they are drawn";
  EXPECT_EQ(Jostled(turned, 0, false, false).First().Trans, TPoint2D(10, 0)) << "single ones by their own box";
  // Twelve of width 1 above eleven with holes of 0.1: equal sides, yet no grid.
  TNestedRects narrow;
  for (int i = 0; i < 23; ++i) narrow.push_back(i < 11 ? Placed(1, 1, i * 1.1, 0) : Placed(1, 1, i - 11, 1));
  EXPECT_EQ(CheckRectLayout(Jostled(narrow), TVRect2D::FromSize(12, 2), 0, {Part(23, 1, 1)}), "");
}

// A row may drift: each neighbour is in line with the next. And the result is in order of bottom, then of left sides.
TEST(RectJostler, SidesWithinAMillionthAreInLine) {
  TNestedRects row{Placed(20, 10, 0, 0, 9)};
  for (int i = 0; i < 3; ++i) row.push_back(Placed(20, 20, i * 20.05, 50 + i * 8e-7));
  for (const bool vert : {true, false})
    EXPECT_EQ(Places(Jostled(row, 0, true, vert)), (TPlaces{{0, 0}, {0, 10}, {20, 10}, {40, 10}}));
  row.Last().Trans.Y += 4e-7;
  EXPECT_EQ(Places(Jostled(row))[1], TPoint2D(40, 0)) << "out of line with the second: falls beside the obstacle";
  const TNestedRects stacks{Placed(10, 0.1, 0, 0, 1), Placed(10, 0.2, 0, 0.1, 2), Placed(10, 10, 0, 0.1 + 0.2, 3),
                            Placed(10, 0.3, 10, 0, 4), Placed(10, 10, 10, 0.3, 5)};
  const TNestedRects ordered = Jostled(stacks, 0, false, false);
  EXPECT_EQ(ordered.At(3).Part.Idx, 3) << "0.1 + 0.2 above 0.3";
  EXPECT_EQ(ordered.At(4).Part.Idx, 5);
}

// The last one comes to lie 5e-5 over the edge of the first, which holds it up only where that exceeds the tolerance.
TEST(RectJostler, SidesWithinTheToleranceOfTheCallerPassEachOther) {
  const TNestedRects list{Placed(10, 10, 0, 0, 1), Placed(10 - 5e-5, 20, 0, 10, 2), Placed(10, 20, 10, 10, 3)};
  EXPECT_EQ(Places(Jostled(list)), (TPlaces{{0, 0}, {10, 0}, {0, 10}}));
  EXPECT_EQ(Places(Jostled(list, 0, true, true, 4e-5)), (TPlaces{{0, 0}, {0, 10}, {10 - 5e-5, 10}}));
}

TEST(RectJostler, DoorsAndOffThePlate) {
  TNestedRects list{Placed(1, 1, 7, 7)};
  const auto run = [&](const TNestedRects& List, const TVRect2D& Plate = kPlate) {
    return TRectJostler::TryJostle(List, list, Plate, 0, true, true, kTol);
  };
  EXPECT_FALSE(run({}));
  EXPECT_THROW(run({Placed(10, 10, 0, -1)}), TAssertionError);
  EXPECT_THROW(run({Placed(10, 10, 0, 1000)}), TAssertionError);
  EXPECT_THROW(run({Placed(-1, 10, 0, 0)}), TArgumentError);
  EXPECT_EQ(Places(list), (TPlaces{{7, 7}}));
  EXPECT_TRUE(run(list, kPlate.Translate({500, -300})));
  EXPECT_EQ(Places(list), (TPlaces{{0, 0}})) << "relative to the plate";
}

// Columns of cells, each with a shifted grid of one kind that does not fill it. Demand gets the amounts.
TNestedRects LooseLayout(TDice& From, double Gap, TNestRectList& Demand) {
  TNestedRects list;
  for (double x = 0, w = 0; x < kPlate.Right; x += w + Gap) {
    w = std::min<double>(From(60, 250), kPlate.Right - x);
    for (double y = 0, h = 0; y < kPlate.Top; y += h + Gap) {
      h = std::min<double>(From(60, 250), kPlate.Top - y);
      TNestRect& kind = Demand[From(0, Size(Demand) - 1)];
      const bool isTurned = From(0, 1) == 1;
      const TVRect2D box = TNestedRect(kind, isTurned, {}).BoundBox();
      const double hole = Gap + 0.04 * From(0, 3);
      const TPoint2D pitch(box.Width() + hole, box.Height() + hole);
      const int columns = Trunc<int>((w + hole) / pitch.X);
      const int rows = Trunc<int>((h + hole) / pitch.Y);
      const double left = x + From(0, 4) / 4.0 * (w + hole - columns * pitch.X) - box.Left;
      const double bottom = y + From(0, 4) / 4.0 * (h + hole - rows * pitch.Y);
      for (int k = 0; k < columns * rows; ++k, ++kind.Amount)
        list.emplace_back(kind, isTurned, TPoint2D{left + k % columns * pitch.X, bottom + k / columns * pitch.Y});
    }
  }
  std::shuffle(list.begin(), list.end(), From.Random);
  return list;
}

TEST(RectJostler, KeepsEveryRectangleInsideApartAndNoFurtherOut) {
  const auto spread = [](double Sum, const TNestedRect& Item) { return Sum + Item.Trans.X + Item.Trans.Y; };
  ForEachSeed(2000, [&](unsigned Seed) {
    TDice from(Seed);
    const double gap = Seed % 3 == 0 ? 0 : Seed % 7;
    TNestRectList demand =
        Numbered({Part(0, 60, 40), Part(0, 40, 40), Part(0, 90, 25), Part(0, 33, 17), Part(0, 12, 70)});
    const TNestedRects list = LooseLayout(from, gap, demand);
    ASSERT_EQ(CheckRectLayout(list, kPlate, gap, demand), "");
    const TNestedRects result = Jostled(list, gap, Seed % 4 != 0, Seed % 5 != 0);
    EXPECT_EQ(CheckRectLayout(result, kPlate, gap, demand, {.Tol = 1e-5 + 2 * kTol}), "");
    EXPECT_LE(std::accumulate(result.begin(), result.end(), -1e-6, spread),
              std::accumulate(list.begin(), list.end(), 0.0, spread));
  });
}

}  // namespace
}  // namespace platenest
