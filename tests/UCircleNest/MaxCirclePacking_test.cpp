#include "platenest/UCircleNest/MaxCirclePacking.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <set>
#include <string>

#include "ForEachSeed.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

// The first thing wrong with circles of diameter 1 that are said to be Count on a plate of W by H, or nothing.
std::string Fault(TVPoint2DList Points, int Count, double W, double H) {
  const std::string plate = " on " + testing::PrintToString(std::pair(W, H));
  if (Size(Points) != Count) return "other count than told" + plate;
  if (Count > 2 / std::numbers::sqrt3 * (W - 1) * (H - 1) + W + H - 1 + 1e-9) return "more than can stand" + plate;
  std::ranges::sort(Points, {}, &TPoint2D::X);
  for (auto p = Points.begin(); p != Points.end(); ++p) {
    if (std::min({p->X, p->Y, W - p->X, H - p->Y}) < 0.5 - 2e-9) return "outside" + plate;
    for (auto q = p + 1; q != Points.end() && q->X < p->X + 1; ++q)
      if (p->DistanceTo(*q) < 1 - 1e-9) return "too near" + plate;
  }
  return "";
}

// The patterns that a trial finds, on a plate of W by H pitches.
struct TProbe : TMaxCirclePacking {
  using TMaxCirclePacking::BeginTrials, TMaxCirclePacking::Bound, TMaxCirclePacking::CalcRef, TMaxCirclePacking::Offer,
      TMaxCirclePacking::PlaceInfo, TMaxCirclePacking::Result, TMaxCirclePacking::TriangleDivide,
      TMaxCirclePacking::TryCornerBlocks, TMaxCirclePacking::TryMethod2, TMaxCirclePacking::TryMethodNew,
      TMaxCirclePacking::TrySquareBlocks;

  TProbe(double W, double H, const std::function<void(TProbe&)>& Trial)
      : TMaxCirclePacking(TVRect2D::FromSize(W, H), 0.5), FW(W), FH(H) {
    BeginTrials();
    Trial(*this);
    ShapeResultPt();
  }
  std::string Fault() const { return platenest::Fault(ResultPt(), Result(), FW, FH); }

 private:
  double FW;
  double FH;
};

using TTrial = void (*)(TProbe&);
constexpr TTrial kAll = [](TProbe& P) { P.TryMaxFill(); };
constexpr TTrial kLattices = [](TProbe& P) { P.TrySquareBlocks(); };
constexpr TTrial kCorners = [](TProbe& P) { P.TryCornerBlocks(); };
constexpr TTrial kStacks = [](TProbe& P) { P.TryMethodNew(); };
constexpr TTrial kTriangles = [](TProbe& P) {
  if (std::max(P.Bound().X, P.Bound().Y) >= 4.47) P.TriangleDivide();
};

int CountOn(double W, double H) {
  return TMaxCirclePacking(TVRect2D::FromSize(W, H), 0.5).TryMaxFill();
}

double RandomIn(double Low, double High) {
  return Low + (High - Low) * Random(1 << 30) / (1 << 30);
}

// A length that a pattern just needs, of half pitches and hexagonal lines, or any other one.
double RandomExtent(double Low, double High) {
  if (Random(2) == 0) return RandomIn(Low, High);
  const double whole = RandomIn(Low, High) - 0.5;
  return std::floor(2 * whole) / 2 + std::numbers::sqrt3 / 2 * (1 + Random(5)) + (Random(2) == 0 ? 1e-7 : 0.0);
}

// Just above the least height on which a trial still finds as many; counts round up by a few 1e-9.
double LeastHeight(double W, double H, double Least, const std::function<void(TProbe&)>& Trial) {
  const int count = TProbe(W, H, Trial).Result();
  for (double mid = Least; H - Least > 1e-8; mid = (Least + H) / 2)
    (TProbe(W, mid, Trial).Result() < count ? Least : H) = mid;
  return H + 1e-8;
}

using TPatterns = std::set<std::array<int, 6>>;

// Upright and on its side, where only a sheared grid may hold another count.
void ExpectLaidOut(double W, double H, const std::function<void(TProbe&)>& Trial, TPatterns& Seen) {
  const TProbe probes[] = {{W, H, Trial}, {H, W, Trial}};
  bool isSheared = false;
  for (const TProbe& probe : probes) {
    EXPECT_EQ(probe.Fault(), "");
    EXPECT_EQ(probe.FallbackCount(), 0) << W << " x " << H;
    const TPlaceInfo& info = probe.PlaceInfo();
    isSheared |= info.SquareMode == 0 && info.AddMode == 1;
    if (probe.Result() > 0)
      Seen.insert({info.SquareMode, info.AddMode, info.Direct, info.Spec, info.NewState, info.ShapeMethod5});
  }
  EXPECT_TRUE(isSheared || probes[0].Result() == probes[1].Result()) << W << " x " << H;
}

// On random plates, and on these as low as they may be. Of single families, too, and of single corner blocks, so that
// patterns which others beat are held to their counts.
TEST(MaxCirclePacking, EveryPatternIsLaidOut) {
  TPatterns seen;
  ForEachSeed(2000, [&seen](unsigned Seed) {
    SetSeed(Seed);
    const int longer = 2 + Random(4);
    const int shorter = 2 + Random(longer - 1);
    const auto oneCorner = [longer, shorter](TProbe& P) {
      P.TryCornerBlocks();
      P.BeginTrials();
      const bool wide = P.Bound().X > P.Bound().Y;
      if (std::min(P.Bound().X, P.Bound().Y) >= longer) P.TryMethod2(wide ? longer : shorter, wide ? shorter : longer);
    };
    const std::pair<std::function<void(TProbe&)>, double> trials[] = {
        {kAll, 2}, {kLattices, 1.5}, {kCorners, 2}, {oneCorner, 2}, {kStacks, 3}, {kTriangles, 2.8}};
    const double most = Seed % 10 == 0 ? 25 : Seed % 2 == 0 ? 9 : 5;
    for (const auto& [trial, least] : trials) {
      const double w = RandomExtent(least, most);
      const double h = RandomExtent(least, most);
      ExpectLaidOut(w, h, trial, seen);
      ExpectLaidOut(w, LeastHeight(w, h, least, trial), trial, seen);
    }
  });
  EXPECT_EQ(seen.size(), 39u) << testing::PrintToString(seen);
}

TEST(MaxCirclePacking, RadiusAndGapsScaleAndMoveTheLayout) {
  ForEachSeed(2000, [](unsigned Seed) {
    SetSeed(Seed);
    const double radius = RandomIn(0.2, 30);
    const double gap = Seed % 3 == 0 ? 0 : RandomIn(-0.2, 1) * radius;
    const double plateGap = Seed % 5 == 0 ? 0 : RandomIn(-0.3, 2) * radius;
    const double pitch = 2 * radius + gap;
    const double w = RandomExtent(2, 25);
    const double h = RandomExtent(2, 10);
    const double rim = 2 * plateGap - gap;
    TMaxCirclePacking packing(TVRect2D::FromSize(w * pitch + rim, h * pitch + rim), radius, plateGap, gap);
    EXPECT_EQ(packing.TryMaxFill(), CountOn(w, h)) << w << " x " << h;
    TVPoint2DList points = packing.ResultPt();
    for (TPoint2D& point : points) point = (point - TPoint2D{rim / 2, rim / 2}) / pitch;
    EXPECT_EQ(Fault(points, CountOn(w, h), w, h), "");
  });
}

// The limits of the sheared grid differ along X and Y, so these plates take one circle more in one direction.
TEST(MaxCirclePacking, TurningThePlateCostsTheCircleOfAShearedGridNearItsLimit) {
  EXPECT_EQ(CountOn(3.396767, 3.355584), 10);
  EXPECT_EQ(CountOn(3.355584, 3.396767), 9);
}

TEST(MaxCirclePacking, APatternThatDoesNotStandGivesWayToTheNextBest) {
  int honest = 0;
  const auto claimTooMany = [&honest](TProbe& P) {
    P.TrySquareBlocks();
    honest = P.Result();
    P.Offer(honest + 1);
    P.Offer(honest + 2);
  };
#ifdef NDEBUG
  const TProbe probe(9.3, 6.1, claimTooMany);
  EXPECT_EQ(probe.FallbackCount(), 2);
  EXPECT_EQ(probe.Result(), honest);
  EXPECT_EQ(probe.Fault(), "");
#else
  EXPECT_THROW(TProbe(9.3, 6.1, claimTooMany), TAssertionError);
#endif
}

// The last ones of all patterns stand or fall with one rule each. Counts of single families were laid out by other
// means.
TEST(MaxCirclePacking, FillsKnownPlates) {
  struct TCase {
    double W, H;
    int Count;
    TTrial Trial = kAll;
  };
  constexpr double line = 0.8660254037845;
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
      {2.51, 4.18, 9},        // two rows plus one: rows not spread,
      {2.4518, 4.2678, 9},    // just enough height,
      {4.4171, 2.36, 9},      // and just enough of both
      {8.4269, 7.0921, 62},   // a rest strip beyond spread rows,
      {7.1162, 8.4222, 62},
      {3.4388, 4.4626, 14},        // beyond five rows that stand nearer than a lattice's,
      {3.5621, 3.4966, 10},        // and never beyond four, where a sheared grid holds more
      {4.8660254037845, 5.5, 26},  // corner strips of two and four lines
      {6.5491, 6.5888, 43},        // a stretched strip above
      {3.3083, 4.6218, 14},        // a stack of loose rows
      {4.7269, 3.8998, 17},        // one that fills its length to the last thousandth
      {5.3594, 5.451, 29},         // loose rows that leave too much for a change of sign
      {5.3187, 3.6807, 19},        // a staggered row on top
      {2.7934, 6.9325, 19},        // a block half way between the outer rows
      {3.4962, 5.8025, 19},        // triangles and a wall column
      {2.8135, 4.9127, 13},        // triangles on a small plate
      {2 + 2 * line, 2 + 3 * line, 16, kCorners},
      {3 + 3 * line, 3 + 3 * line, 31, kCorners},
      {4 + 2 * line, 4 + 2 * line, 33, kCorners},
      {7.997431, 7.997431, 66, kStacks},  // hex and rest, hex and turned
      {8.361064, 8.361064, 71, kStacks},  // a quad, two staggers
      {8.907992, 8.907992, 81, kStacks},  // a hexagonal row on tight ones
      {9.268349, 9.268349, 88, kStacks},  // two quads under a staggered row
      {6.4018, 6.3454, 41, kStacks},      // a quad whose two ends fit on one side of its inner row only
      {27.0693, 17.9596, 535, kStacks},   // a rest row first
      {2.7321, 2.9319, 7, kStacks},       // the rest row alone
      {3, 5, 15, kStacks},       // two staggers of height 2, which thousandths also let into a length of 3.9997
      {3, 4.9997, 14, kStacks},  // the next best has one, and a pair or a quad
      {4.5, 5.866, 0, kStacks},  // no stack between the fractions of loose and tight rows
      {20.965788, 16.7726305, 390, kTriangles},  // as many as in the densest known packing
      {13.866, 11.25, 167, kTriangles},
      {15.5594, 5.2094, 84, kTriangles},
      {7.73, 7.73, 60, kTriangles},
  };
  for (const TCase& c : cases)
    for (const TProbe& probe : {TProbe(c.W, c.H, c.Trial), TProbe(c.H, c.W, c.Trial)}) {
      EXPECT_EQ(probe.Result(), c.Count) << c.W << " x " << c.H;
      EXPECT_EQ(probe.Fault(), "");
    }
  EXPECT_EQ(TProbe(5, 5, kAll).PlaceInfo().SquareMode, 0);
  EXPECT_GT(TProbe(4.5, 5.8661, kStacks).Result(), 0);
  EXPECT_GT(TProbe(4.4999, 5.866, kStacks).Result(), 0);
  EXPECT_THROW(TProbe::CalcRef(3.5, 0.5), TAssertionError);
  EXPECT_NO_THROW(TProbe::CalcRef(3.5, 0.4999));
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

TEST(DynamicSinglCircleNest, TakesExtentYFirstAndUsesTheDensestLength) {
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
      {2, 5.3, 0, 8, 3.5, std::numbers::pi / 4},   // all columns count for their length, half of them would be as dense
      {1, 20, 0, 0, 0, 0},                         // no pattern
  };
  for (const TCase& c : cases)
    for (const double scale : {1.0, 7.0}) {
      TVPoint2DList points{{}};
      const double density = DynamicSinglCircleNest(scale / 2, scale * c.Y, scale * c.X, scale * c.Gap, points);
      EXPECT_NEAR(density, c.Density, 1e-9) << c.Y << " x " << c.X;
      double largest = 0;
      for (TPoint2D& point : points) {
        largest = std::max(largest, point.X / scale);
        point = (point / scale + TPoint2D{c.Gap / 2, c.Gap / 2}) / (1 + c.Gap);
      }
      EXPECT_NEAR(largest, c.LargestX, 1e-9) << c.Y << " x " << c.X;
      EXPECT_EQ(Fault(points, c.Count, (c.X + c.Gap) / (1 + c.Gap), (c.Y + c.Gap) / (1 + c.Gap)), "");
    }
}

}  // namespace
}  // namespace platenest
