#include "platenest/UCircleNest/MaxCirclePacking.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <numbers>
#include <set>

#include "ForEachSeed.h"
#include "PatternFault.h"
#include "platenest/foundation/Errors.h"

namespace platenest {
namespace {

constexpr int kSheared = 1;

struct TProbe : TMaxCirclePacking {
  using TMaxCirclePacking::PlaceInfo;
  using TMaxCirclePacking::Result;
  using TMaxCirclePacking::TMaxCirclePacking;

  // Lattices beside square blocks alone.
  void TryBlocksOnly() {
    BeginTrials();
    TrySquareBlocks();
    ShapeResultPt();
  }
  // All blocks, and the last of them once more with two circles that it does not have.
  void TryBlocksWithFalseClaims() {
    BeginTrials();
    TrySquareBlocks();
    FHonest = Result();
    Offer(FHonest + 1);
    Offer(FHonest + 2);
    ShapeResultPt();
  }
  int Honest() const { return FHonest; }
  // Family and variant of the answer.
  int Family() const { return 10 * PlaceInfo().SquareMode + PlaceInfo().AddMode; }

 private:
  int FHonest = 0;
};

int CountOn(double W, double H) {
  return TMaxCirclePacking(TVRect2D::FromSize(W, H), 0.5).TryMaxFill();
}

TEST(MaxCirclePacking, EveryAnswerIsLaidOutWithBothGapsAndStaysWhenThePlateIsTurned) {
  std::set<int> families;
  ForEachSeed(2000, [&families](unsigned Seed) {
    SetSeed(Seed);
    const double radius = RandomIn(0.2, 30);
    const double gap = Seed % 3 == 0 ? 0 : RandomIn(-0.2, 1) * radius;
    const double plateGap = Seed % 5 == 0 ? 0 : RandomIn(-0.3, 2) * radius;
    const double pitch = 2 * radius + gap;
    const double w = RandomExtent(2, Seed % 2 == 0 ? 10 : 25);
    const double h = RandomExtent(2, Seed % 4 == 0 ? 20 : 7);
    const double rim = 2 * plateGap - gap;
    TProbe packing(TVRect2D::FromSize(w * pitch + rim, h * pitch + rim), radius, plateGap, gap);
    const int count = packing.TryMaxFill();
    TVPoint2DList points = packing.ResultPt();
    for (TPoint2D& point : points) point = (point - TPoint2D{rim / 2, rim / 2}) / pitch;
    EXPECT_EQ(PatternFault(points, count, w, h), "");
    EXPECT_EQ(packing.FallbackCount(), 0);
    families.insert(packing.Family());

    TProbe turned(TVRect2D::FromSize(h, w), 0.5);
    const bool turns = turned.TryMaxFill() == count || packing.Family() == kSheared || turned.Family() == kSheared;
    EXPECT_TRUE(turns) << w << " x " << h;
  });
  EXPECT_THAT(families, testing::IsSupersetOf({0, 1, 10, 20, 30, 31, 33, 41, 42}));
}

// The limits of the sheared grid differ along X and Y, so these plates take one circle more in one direction.
TEST(MaxCirclePacking, TurningThePlateCostsTheCircleOfAShearedGridNearItsLimit) {
  EXPECT_EQ(CountOn(3.396767, 3.355584), 10);
  EXPECT_EQ(CountOn(3.355584, 3.396767), 9);
}

TEST(MaxCirclePacking, EveryKindOfLatticeBesideABlockIsLaidOut) {
  std::set<std::string> kinds;
  ForEachSeed(3000, [&kinds](unsigned Seed) {
    SetSeed(Seed);
    double w = RandomExtent(1.5, 12);
    double h = Seed % 2 == 0 ? RandomIn(2.35, 3) : RandomExtent(2, 9);
    if (Seed % 4 < 2) std::swap(w, h);
    TProbe packing(TVRect2D::FromSize(w, h), 0.5);
    packing.TryBlocksOnly();
    EXPECT_EQ(PatternFault(packing.ResultPt(), packing.Result(), w, h), "");
    EXPECT_EQ(packing.FallbackCount(), 0);
    const TPlaceInfo& info = packing.PlaceInfo();
    std::string kind = info.Direct ? "x" : "y";
    if (info.Spec) kind += "spec" + std::to_string(info.Columns);
    kind += std::string(info.NewState ? "rest" : "") + (info.ShapeMethod5 ? "five" : "");
    kinds.insert(kind + (info.SquareNum > 0 ? "+" : info.SquareNum < 0 ? "-" : ""));
  });
  EXPECT_THAT(kinds, testing::IsSupersetOf(
                         {"x", "y", "x+", "y+", "x-", "y-", "xrest", "yrest", "xfive", "yfive", "xspec3+", "yspec3-"}));
}

TEST(MaxCirclePacking, APatternThatDoesNotStandGivesWayToTheNextBest) {
  TProbe packing(TVRect2D::FromSize(9.3, 6.1), 0.5);
#ifdef NDEBUG
  packing.TryBlocksWithFalseClaims();
  EXPECT_EQ(packing.FallbackCount(), 2);
  EXPECT_EQ(packing.Result(), packing.Honest());
  EXPECT_EQ(PatternFault(packing.ResultPt(), packing.Honest(), 9.3, 6.1), "");
#else
  EXPECT_THROW(packing.TryBlocksWithFalseClaims(), TAssertionError);
#endif
}

// The last ones stand or fall with one rule each.
TEST(MaxCirclePacking, FillsKnownPlates) {
  struct TCase {
    double W, H;
    int Count;
  };
  const TCase cases[] = {
      {1.9, 5, 9},        // two staggered columns
      {2, 1.5, 2},        // exactly at both limits
      {1.999, 1.999, 0},  // the longer side below its limit
      {2, 1.4999, 0},     // the shorter one
      {5, 5, 25},         // equal counts: the grid comes first
      {7, 7, 49},
      {8, 8, 68},
      {9, 9, 86},
      {10, 10, 106},
      {2.8660, 2.8660, 6},
      {2.86603, 2.86603, 7},
      {3.4, 3.4, 10},
      {4.3, 4.3, 17},
      {3.95, 3.95, 15},
      {3.931851652578, 3.931851652578, 15},  // just room for the turned corner
      {2.45, 7.99, 17},
      {2.3763, 10.0191, 21},  // a block between the outer rows, little slack
      {10.0679, 2.3659, 21},
      {2.51, 4.18, 9},  // two rows plus one: rows not spread,
      {4.19, 2.51, 9},
      {2.4518, 4.2678, 9},   // just enough height,
      {4.4171, 2.36, 9},     // and just enough of both
      {8.4269, 7.0921, 62},  // a rest strip beyond spread rows,
      {7.1162, 8.4222, 62},
      {3.4388, 4.4626, 14},        // of five rows
      {3.5621, 3.4966, 10},        // and never of four
      {4.8660254037845, 5.5, 26},  // corner strips of two and four lines
      {6.5491, 6.5888, 43},        // a stretched strip above
      {3.3083, 4.6218, 14},        // a stack of loose rows
      {4.7269, 3.8998, 17},        // one that fills its length to the last thousandth
      {5.3594, 5.451, 29},         // loose rows that leave too much for a change of sign
      {5.3187, 3.6807, 19},        // a staggered row on top
      {2.7934, 6.9325, 19},        // a block half way between the outer rows
      {3.4962, 5.8025, 19},        // triangles and a wall column
      {2.8135, 4.9127, 13},        // triangles on a small plate
  };
  for (const TCase& c : cases) EXPECT_EQ(CountOn(c.W, c.H), c.Count) << c.W << " x " << c.H;
  TProbe grid(TVRect2D::FromSize(5, 5), 0.5);
  grid.TryMaxFill();
  EXPECT_EQ(grid.Family(), 0);
  // 0.7 / 0.1 lies below 7 in doubles.
  EXPECT_EQ(TMaxCirclePacking(TVRect2D::FromSize(0.7, 0.7), 0.05).TryMaxFill(), 49);
  EXPECT_EQ(TMaxCirclePacking(TVRect2D::FromSize(0.7, 0.1 + 0.4 * std::numbers::sqrt3), 0.05).TryMaxFill(), 59);
}

TEST(MaxCirclePacking, HoldsNothingWithoutAUsableSizeAndRefusesHugePlates) {
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const TVRect2D plate = TVRect2D::FromSize(10, 10);
  for (const double radius : {0.0, -1.0, inf, nan}) EXPECT_EQ(TMaxCirclePacking(plate, radius).TryMaxFill(), 0);
  for (const double gap : {-2.0, -3.0, inf, nan}) EXPECT_EQ(TMaxCirclePacking(plate, 1, 0, gap).TryMaxFill(), 0);
  for (const TVRect2D& rect : {TVRect2D::FromSize(inf, 10), TVRect2D::FromSize(10, nan), TVRect2D::InvalidRect})
    EXPECT_EQ(TMaxCirclePacking(rect, 1).TryMaxFill(), 0);
  EXPECT_THROW(TMaxCirclePacking(TVRect2D::FromSize(1e5, 1e5), 1).TryMaxFill(), TRangeError);
}

TEST(DynamicSinglCircleNest, ReturnsTheDensityOfWhatItLaysOut) {
  int shorter = 0;
  ForEachSeed(150, [&shorter](unsigned Seed) {
    SetSeed(Seed);
    const double radius = RandomIn(0.5, 3);
    const double gap = Seed % 2 == 0 ? 0 : RandomIn(0, 1);
    const double pitch = 2 * radius + gap;
    const double x = RandomExtent(3, 12);
    const double y = RandomExtent(2, 8);
    TVPoint2DList points{TPoint2D{-1, -1}};
    const double density = DynamicSinglCircleNest(radius, y * pitch - gap, x * pitch - gap, gap, points);
    double end = 0;
    for (TPoint2D& point : points) {
      point = (point + TPoint2D{gap / 2, gap / 2}) / pitch;
      end = std::max(end, point.X + 0.5);
    }
    const int count = static_cast<int>(points.size());
    EXPECT_EQ(PatternFault(points, count, x, y), "");
    const double perPitch = count * std::numbers::pi / 4 / y;
    const bool whole = std::abs(density - perPitch / x) < 1e-9;
    EXPECT_TRUE(whole || std::abs(density - perPitch / end) < 1e-9) << density;
    EXPECT_GE(density, CountOn(x, y) * std::numbers::pi / 4 / y / x - 1e-9);
    EXPECT_GT(end, x / 3);
    if (!whole) ++shorter;
  });
  EXPECT_GT(shorter, 20);
}

TEST(DynamicSinglCircleNest, UsesTheDensestLength) {
  struct TCase {
    double Y, X, Gap;
    int Count;
    double LargestX, Density;
  };
  constexpr TCase cases[] = {
      {3.36, 3.85, 0.1, 3, 0.5, 0.749079173183},   // one column, denser than a plate packed anew before it
      {4.24, 4.87, 0.0, 12, 2.5, 0.740941663582},  // packed anew
      {2.32, 4.98, 0.1, 6, 2.7, 0.713998330361},   // two columns would be as dense
      {3.24, 4.44, 0.0, 8, 2.22, 0.712961295749},  // less than a third would be denser
  };
  for (const TCase& c : cases) {
    TVPoint2DList points;
    EXPECT_NEAR(DynamicSinglCircleNest(0.5, c.Y, c.X, c.Gap, points), c.Density, 1e-9) << c.Y << " x " << c.X;
    EXPECT_EQ(points.size(), static_cast<std::size_t>(c.Count)) << c.Y << " x " << c.X;
    const auto byX = [](const TPoint2D& A, const TPoint2D& B) { return A.X < B.X; };
    EXPECT_NEAR(std::ranges::max_element(points, byX)->X, c.LargestX, 1e-9) << c.Y << " x " << c.X;
  }
}

// Ten circles in the first five pitches would be as dense, but all circles together count for the whole length.
TEST(DynamicSinglCircleNest, TakesExtentYFirstAndLeavesTheStripBeyondTheColumnsUnused) {
  TVPoint2DList points;
  EXPECT_NEAR(DynamicSinglCircleNest(0.5, 2, 5.3, 0, points), std::numbers::pi / 4, 1e-9);
  EXPECT_EQ(PatternFault(points, 8, 4, 2), "");
  EXPECT_EQ(DynamicSinglCircleNest(0.5, 1, 20, 0, points), 0);
  EXPECT_THAT(points, testing::IsEmpty());
}

}  // namespace
}  // namespace platenest
