#include "platenest/URectNest/RectJostler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "ForEachSeed.h"
#include "platenest/foundation/Errors.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

constexpr double kTol = 1e-4;
const TVRect2D kPlate = TVRect2D::FromSize(1000, 1000);

TNestedRect Placed(double Width, double Height, double X, double Y, int Idx = 0, bool Turned = false) {
  return TNestedRect(TNestRect(1, Idx, TVRect2D::FromSize(Width, Height)), Turned, {X, Y});
}

TNestedRects Jostled(const TNestedRects& List, double Gap = 0, bool Hor = true, bool Vert = true) {
  TNestedRects result;
  EXPECT_TRUE(TRectJostler::TryJostle(List, result, kPlate, Gap, Hor, Vert, kTol));
  return result;
}

void ExpectTrans(const TNestedRects& List, std::initializer_list<TPoint2D> Expected) {
  ASSERT_EQ(List.size(), Expected.size());
  for (std::size_t i = 0; i < List.size(); ++i) {
    EXPECT_NEAR(List[i].Trans.X, Expected.begin()[i].X, 1e-9) << i;
    EXPECT_NEAR(List[i].Trans.Y, Expected.begin()[i].Y, 1e-9) << i;
  }
}

TEST(RectJostler, DropsLeftBeforeDownAndBothTwice) {
  ExpectTrans(Jostled({Placed(30, 20, 50, 40)}), {{0, 0}});
  ExpectTrans(Jostled({Placed(30, 20, 70, 40, 0, true)}), {{20, 0}});
  ExpectTrans(Jostled({Placed(30, 20, 50, 40)}, 5, false, false), {{0, 0}});
  ExpectTrans(Jostled({Placed(20, 10, 0, 0), Placed(10, 10, 22, 10, 1)}), {{0, 0}, {0, 10}});
  // The third passes below the second only after it has come down beside it.
  const TNestedRects twice{Placed(10, 20, 0, 0), Placed(30, 10, 0, 20, 1), Placed(10, 10, 35, 20, 2)};
  ExpectTrans(Jostled(twice), {{0, 0}, {10, 0}, {0, 20}});
  ExpectTrans(Jostled(twice, 3), {{0, 0}, {13 - 1e-5, 0}, {0, 23 - 1e-5}});
}

// Two neighbours above an obstacle that carries the first only: joined, the second stays up beside it.
TEST(RectJostler, NeighboursOfOneIndexAndTurnMoveAsOneBlock) {
  const auto second = [](double Hole, int Idx, bool Turned, double Gap, bool Hor) {
    const TNestedRects list{Placed(20, 10, 0, 0, 9), Placed(20, 20, 0, 50),
                            Placed(20, 20, 20 + Hole + Turned * 20, 50, Idx, Turned)};
    return Jostled(list, Gap, Hor, true).Last().Trans.Y > 5;
  };
  EXPECT_TRUE(second(0.05, 0, false, 0, true));
  EXPECT_FALSE(second(0.05, 1, false, 0, true)) << "another index of the same size";
  EXPECT_FALSE(second(0.05, 0, true, 0, true)) << "another turn";
  EXPECT_FALSE(second(0.05, 0, false, 0, false)) << "rows are not aligned";
  EXPECT_TRUE(second(0.1, 0, false, 0, true));
  EXPECT_FALSE(second(0.11, 0, false, 0, true)) << "too far";
  EXPECT_TRUE(second(4.09, 0, false, 4, true)) << "the gap comes on top";
  const TNestedRects column{Placed(10, 20, 0, 0, 9), Placed(20, 20, 50, 0), Placed(20, 20, 50, 20.05)};
  ExpectTrans(Jostled(column, 0, false, true), {{0, 0}, {10, 0}, {10, 20}});
  ExpectTrans(Jostled(column, 0, true, false), {{0, 0}, {10, 0}, {0, 20}});
}

TEST(RectJostler, BlocksCloseToAGrid) {
  ExpectTrans(Jostled({Placed(20, 10, 40.1, 0), Placed(20, 10, 0, 0), Placed(20, 10, 20.05, 0)}),
              {{0, 0}, {20, 0}, {40, 0}});
  TNestedRects turned;
  for (int i = 5; i >= 0; --i) turned.push_back(Placed(20, 10, 60 + i % 3 * 12.05, 7 + i / 3 * 22.1, 0, true));
  ExpectTrans(Jostled(turned, 2.00001), {{10, 0}, {22, 0}, {34, 0}, {10, 22}, {22, 22}, {34, 22}});
  // Twelve of width 1 above eleven with holes of 0.1: equal sides, yet no grid.
  TNestedRects narrow;
  for (int i = 0; i < 11; ++i) narrow.push_back(Placed(1, 1, i * 1.1, 0));
  for (int i = 0; i < 12; ++i) narrow.push_back(Placed(1, 1, i, 1));
  EXPECT_EQ(CheckRectLayout(Jostled(narrow), kPlate, 0, {TNestRect(23, 0, TVRect2D::FromSize(1, 1))}), "");
}

// A part drawn off the origin: blocks meet the corner as drawn, single rectangles by their Trans.
TEST(RectJostler, PositionOfThePartCountsInAlignedBlocksOnly) {
  TNestedRects list{Placed(20, 10, 50, 50)};
  list[0].Part.BoundBox = list[0].Part.BoundBox.Translate({3, 4});
  ExpectTrans(Jostled(list), {{-3, -4}});
  ExpectTrans(Jostled(list, 0, false, false), {{0, 0}});
}

TEST(RectJostler, DoorsAndOffThePlate) {
  TNestedRects result{Placed(1, 1, 7, 7)};
  const auto run = [&](const TNestedRects& List, const TVRect2D& Plate = kPlate, double Gap = 0) {
    return TRectJostler::TryJostle(List, result, Plate, Gap, true, true, kTol);
  };
  EXPECT_FALSE(run({}));
  EXPECT_THROW(run({Placed(10, 10, 0, -1)}), TAssertionError);
  EXPECT_THROW(run({Placed(10, 10, 0, 1000)}), TAssertionError);
  EXPECT_THROW(run({Placed(-1, 10, 0, 0)}), TArgumentError);
  EXPECT_THROW(run({Placed(1, 1, 0, 0)}, kPlate, std::numeric_limits<double>::quiet_NaN()), TArgumentError);
  ExpectTrans(result, {{7, 7}});
  EXPECT_TRUE(run(result, kPlate.Translate({500, -300})));
  ExpectTrans(result, {{0, 0}});
}

struct TKind {
  double Width, Height;
};
constexpr TKind kKinds[] = {{60, 40}, {40, 40}, {90, 25}, {33, 17}, {12, 70}};

// A guillotine cut down to cells, each with a grid of one kind that does not fill it.
class TShiftedGuillotine {
 public:
  TShiftedGuillotine(unsigned Seed, double Gap) : FRandom(Seed), FGap(Gap) {
    Cut(0, 0, kPlate.Width(), kPlate.Height());
  }
  const TNestedRects& List() const { return FList; }

 private:
  int Draw(int Least, int Most) { return std::uniform_int_distribution<int>(Least, Most)(FRandom); }

  void Cut(double X, double Y, double W, double H) {
    const bool isWide = W > H;
    const double side = isWide ? W : H;
    if (side < 250) return Fill(X, Y, W, H);
    const double at = Draw(60, static_cast<int>(side) - 60);
    Cut(X, Y, isWide ? at : W, isWide ? H : at);
    const double next = at + FGap;
    Cut(isWide ? X + next : X, isWide ? Y : Y + next, isWide ? W - next : W, isWide ? H : H - next);
  }

  void Fill(double X, double Y, double W, double H) {
    const int idx = Draw(0, 4);
    const bool turned = Draw(0, 1) == 1;
    const double w = turned ? kKinds[idx].Height : kKinds[idx].Width;
    const double h = turned ? kKinds[idx].Width : kKinds[idx].Height;
    const double pitch = FGap + 0.04 * Draw(0, 3);
    const int columns = static_cast<int>((W + pitch) / (w + pitch));
    const int rows = static_cast<int>((H + pitch) / (h + pitch));
    if (columns == 0 || rows == 0) return;
    const double x = X + Draw(0, 4) / 4.0 * (W - columns * (w + pitch) + pitch);
    const double y = Y + Draw(0, 4) / 4.0 * (H - rows * (h + pitch) + pitch);
    for (int k = 0; k < columns * rows; ++k)
      FList.push_back(Placed(kKinds[idx].Width, kKinds[idx].Height, x + k % columns * (w + pitch) + turned * w,
                             y + k / columns * (h + pitch), idx, turned));
  }

  std::mt19937 FRandom;
  double FGap;
  TNestedRects FList;
};

TEST(RectJostler, KeepsEveryRectangleInsideApartAndNoFurtherOut) {
  ForEachSeed(2000, [](unsigned Seed) {
    const double gap = Seed % 3 == 0 ? 0 : Seed % 7;
    TNestedRects list = TShiftedGuillotine(Seed, gap).List();
    std::shuffle(list.begin(), list.end(), std::mt19937(Seed));
    TNestRectList demand;
    for (int k = 0; k < 5; ++k) {
      const auto isKind = [k](const TNestedRect& Item) { return Item.Part.Idx == k; };
      demand.emplace_back(static_cast<int>(std::count_if(list.begin(), list.end(), isKind)), k,
                          TVRect2D::FromSize(kKinds[k].Width, kKinds[k].Height));
    }
    TLayoutCheckOptions options;
    options.Tol = 2e-5 + 2 * kTol;
    const auto spread = [](const TNestedRects& List) {
      double sum = 0;
      for (const TNestedRect& item : List) sum += item.BoundBox().Left + item.BoundBox().Bottom;
      return sum;
    };
    const auto turned = [](const TNestedRect& Item) { return Item.IsRotate; };
    ASSERT_EQ(CheckRectLayout(list, kPlate, gap, demand), "");
    const TNestedRects result = Jostled(list, gap, Seed % 4 != 0, Seed % 5 != 0);
    EXPECT_EQ(result.Count(), list.Count());
    EXPECT_EQ(CheckRectLayout(result, kPlate, gap, demand, options), "");
    EXPECT_EQ(std::count_if(result.begin(), result.end(), turned), std::count_if(list.begin(), list.end(), turned));
    EXPECT_LE(spread(result), spread(list) + 1e-6);
    EXPECT_LE(result.BoundBox().Right, list.BoundBox().Right + kTol);
    EXPECT_LE(result.BoundBox().Top, list.BoundBox().Top + kTol);
  });
}

}  // namespace
}  // namespace platenest
