#include <gtest/gtest.h>

#include <string>

#include "ExactMinkowski.h"
#include "ForEachSeed.h"
#include "InnerFit.h"
#include "NfpSampling.h"
#include "OverlapDepth.h"
#include "Shapes.h"

namespace platenest {
namespace {

TPath PathOf(const TVPoint2DList& Points) {
  return TPathUtils::CreatePath(Points, kPathScale);
}

TPath Box(double Left, double Right, double Bottom, double Top) {
  return PathOf({{Left, Bottom}, {Right, Bottom}, {Right, Top}, {Left, Top}});
}

TPath Hole(TPath Contour) {
  ClipperLib::ReversePath(Contour);
  return Contour;
}

TIntPoint Place(double X, double Y) {
  return TPathUtils::CreateIntPoint(TPoint2D{X, Y}, kPathScale);
}

const TPaths kUnitSquare{Box(0, 1, 0, 1)};
const TPaths kRoom{Box(0, 10, 0, 10), Hole(Box(4, 6, 4, 6))};
//  +--+
//  |  |
//  |  +--+
//  |     |
//  +-----+
const TPaths kAngle{PathOf({{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}})};

// A part in a hole of the other: a frame of 10 by 10 with a hole of 8 by 8 leaves 6 by 6 to a square of 2 by 2, and a
// moving part may stand around the fixed one as well.
TEST(NfpOracle, FreesThePlacesInHolesOfEitherPart) {
  const TPaths frame{Box(0, 10, 0, 10), Hole(Box(1, 9, 1, 9))};
  EXPECT_DOUBLE_EQ(RegionArea(ForbiddenRegion(frame, {Box(0, 2, 0, 2)})), 12 * 12 - 6 * 6);
  const TPaths ring{Box(0, 16, 0, 10), Hole(Box(3, 13, 2, 8))};
  const TPaths around = ForbiddenRegion({Box(100, 102, 50, 52)}, ring);
  EXPECT_DOUBLE_EQ(RegionArea(around), 18 * 12 - 8 * 4);
  EXPECT_EQ(PlaceOf(Place(89.01, 44.01), around), TPlace::Outside);
  EXPECT_EQ(PlaceOf(Place(93, 48), around), TPlace::Border);
}

TEST(NfpOracle, FindsWhereAPartFitsIntoAPlateWithHoles) {
  EXPECT_DOUBLE_EQ(RegionArea(InnerFitRegion(kRoom, kUnitSquare)), 72);
  // A plate with a hole under a part with a larger one: the part may stand around the obstacle.
  const TPaths ring{Box(0, 6, 0, 6), Hole(Box(1, 5, 1, 5))};
  EXPECT_DOUBLE_EQ(RegionArea(InnerFitRegion(kRoom, ring)), 2 * 2);
  EXPECT_TRUE(FitsAt(kRoom, ring, Place(1, 3)));
  EXPECT_FALSE(FitsAt(kRoom, ring, Place(0.99999, 3)) || FitsAt(kRoom, kUnitSquare, Place(9.00001, 0)));
}

TEST(NfpOracle, EveryPairOfKindsAgreesWithItsSamplesAndItsMirrorImage) {
  ForEachSeed(60, [](unsigned seed) {
    const TShapePair pair = MakePair(40, seed);
    SCOPED_TRACE(std::string(NameOf(pair.StaticKind)) + " and " + NameOf(pair.DynamicKind));
    for (std::size_t i = 0; i < pair.Static.size(); ++i) EXPECT_EQ(pair.Static[i].IsClockwise(), i > 0);
    const TPaths region = ForbiddenRegion(pair.Static, pair.Dynamic);
    EXPECT_EQ(CheckNfpBySampling(pair.Static, pair.Dynamic, region, seed), "");
    const TRegionDifference off = CompareRegions(Negated(ForbiddenRegion(pair.Dynamic, pair.Static)), region);
    EXPECT_LE(off.Relative(), 1e-9);
  });
}

TEST(NfpOracle, InnerRegionsAgreeWithTheirSamples) {
  ForEachSeed(30, [](unsigned seed) {
    const TVHPolygon plate = MakeShape(kShapeKinds[seed % kShapeKinds.size()], 40, 300, seed);
    const TVHPolygon part = MakeShape(kShapeKinds[seed / 3 % kShapeKinds.size()], 16, 10, seed + 1000);
    EXPECT_EQ(CheckInnerFitBySampling(plate, part, InnerFitRegion(plate, part), seed), "");
  });
}

TEST(NfpOracle, OverlapIsDecidedExactly) {
  const TPaths tall{Box(0, 9, 0, 9)};
  // A side of slope 1/3 and a vertex that lies on it or one unit beyond, of a tip too sharp for clipping.
  const TPaths slope{PathOf({{0, 0}, {9, 0}, {0, 3}})};
  const TPaths tip{PathOf({{0, 0}, {0.00001, 100}, {-0.00001, 100}})};
  const struct {
    TPaths Static, Dynamic;
    double X, Y;
    bool Overlap;
  } cases[] = {{kAngle, kAngle, 0, 0, true},
               {tall, kUnitSquare, 4, 4, true},
               {kUnitSquare, tall, -4, -4, true},
               {kUnitSquare, {Box(0, 1, 0.25, 0.75)}, 0, 0, true},             // only sides touch
               {kUnitSquare, {PathOf({{0, 0}, {1, 1}, {0, 1}})}, 0, 0, true},  // all vertices on the border
               {kUnitSquare, kUnitSquare, 1, 0, false},
               {kUnitSquare, kUnitSquare, 1, 1, false},
               {kAngle, kUnitSquare, 1, 1, false},
               {kAngle, kUnitSquare, 0.99999, 1, true},
               {kRoom, {Box(4, 6, 4, 6)}, 0, 0, false},
               {kRoom, {Box(4, 6, 4, 6)}, 0, 0.00001, true},
               {slope, tip, 3, 2, false},
               {slope, tip, 3, 1.99999, true}};
  for (const auto& c : cases) EXPECT_EQ(OverlapsAt(c.Static, c.Dynamic, Place(c.X, c.Y)), c.Overlap) << &c - cases;
}

TEST(NfpOracle, MeasuresOverlap) {
  EXPECT_NEAR(OverlapDepth(kUnitSquare, Moved(kUnitSquare, {75000, 0})), 0.25, 2e-5);
  EXPECT_EQ(OverlapDepth(kUnitSquare, Moved(kUnitSquare, {100000, 0})), 0);
  // Five drawing units long, a fiftieth of a path unit wide: alone, and beside a square of 500 units.
  TPaths region{{{482355, -1595341}, {-16805, -1585374}, {-16806, -1585374}, {482354, -1595341}}};
  EXPECT_LE(InnerWidth(region), 4e-5);
  region.push_back({{0, 0}, {300, 400}, {-100, 700}, {-400, 300}});
  EXPECT_NEAR(InnerWidth(region), 0.005, 4e-5);
}

// The checks must find what is wrong, not only pass what is right.
TEST(NfpOracle, NoticesWrongPaths) {
  const TPaths right = ForbiddenRegion(kAngle, kUnitSquare);
  const TPaths full{Box(-1, 2, -1, 2)};
  const auto fault = [&](const TPaths& Paths, const TSamplingOptions& Options = {}) {
    return CheckNfpBySampling(kAngle, kUnitSquare, Paths, 1, Options);
  };
  const auto moved = [&](Int64 By) { return Moved(right, {By, 0}); };
  EXPECT_NE(fault({}).find("overlap outside the paths"), std::string::npos);
  EXPECT_NE(fault(full).find("no overlap inside the paths"), std::string::npos);
  EXPECT_EQ(fault(moved(-2)), "") << "in the band";
  EXPECT_NE(fault(moved(-10)), "");
  EXPECT_EQ(fault(moved(-20), {.Band = 2.5e-4}), "");
  EXPECT_NE(fault(moved(-40), {.Band = 2.5e-4}), "");
  EXPECT_EQ(fault(full, {.SafeSideOnly = true}), "");
  EXPECT_NE(fault(moved(-10), {.SafeSideOnly = true}), "");

  const auto fitFault = [](const TPaths& Paths) { return CheckInnerFitBySampling(kRoom, kUnitSquare, Paths, 1); };
  EXPECT_NE(fitFault({Box(0, 9, 0, 9)}).find("no fit inside"), std::string::npos);
  EXPECT_NE(fitFault({}).find("a fit outside"), std::string::npos);

  const TRegionDifference off = CompareRegions({Box(-1, 2, -1, 1)}, right);
  EXPECT_NEAR(off.Lost, 2, 1e-9);
  EXPECT_EQ(off.Surplus, 0);
  EXPECT_NEAR(CompareRegions(full, right).Relative(), 0.125, 1e-9);
  EXPECT_EQ(CompareRegions(moved(-10), right, 6e-5).Relative(), 0) << "a sliver within the band";
  EXPECT_GT(CompareRegions(moved(-10), right, 4e-5).Relative(), 0);
  EXPECT_EQ(CompareRegions({Box(-1, 2, -1, 1)}, right, 2e-5, 2.01).Lost, 0);
}

}  // namespace
}  // namespace platenest
