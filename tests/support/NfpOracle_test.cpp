#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>

#include "ConvexPieces.h"
#include "ExactMinkowski.h"
#include "ForEachSeed.h"
#include "InnerFit.h"
#include "NfpInstances.h"
#include "NfpSampling.h"
#include "OverlapDepth.h"
#include "Shapes.h"

namespace platenest {
namespace {

using TPoints = std::vector<std::array<double, 2>>;

TPath PathOf(const TPoints& Points) {
  TVPoint2DList list;
  for (const auto& p : Points) list.push_back({p[0], p[1]});
  return TPathUtils::CreatePath(list, kPathScale);
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

bool IsConvex(const TPath& Contour) {
  const std::size_t n = Contour.size();
  for (std::size_t i = 0; i < n; ++i) {
    if (Turn(Contour[i], Contour[(i + 1) % n], Contour[(i + 2) % n]) < 0) return false;
  }
  return true;
}

TEST(NfpOracle, KnowsTheForbiddenAreaOfSmallPairs) {
  EXPECT_DOUBLE_EQ(RegionArea(ForbiddenRegion(kUnitSquare, kUnitSquare)), 4);
  EXPECT_DOUBLE_EQ(RegionArea(ForbiddenRegion(kAngle, kUnitSquare)), 8);
  EXPECT_EQ(CellForbiddenArea(kAngle, kUnitSquare), 8);
  EXPECT_EQ(TPathUtils::BoundBox(ForbiddenRegion(kUnitSquare, {Box(2, 3, 5, 6)})),
            TPathUtils::BoundBox(Box(-3, -1, -6, -4)));
  EXPECT_TRUE(ForbiddenRegion(kUnitSquare, {}).empty());
}

// A part in a hole of the other: a frame of 10 by 10 with a hole of 8 by 8 leaves 6 by 6 to a square of 2 by 2, and a
// moving part may stand around the fixed one as well.
TEST(NfpOracle, FreesThePlacesInHolesOfEitherPart) {
  const TPaths frame{Box(0, 10, 0, 10), Hole(Box(1, 9, 1, 9))};
  EXPECT_DOUBLE_EQ(RegionArea(ForbiddenRegion(frame, {Box(0, 2, 0, 2)})), 12 * 12 - 6 * 6);
  EXPECT_EQ(CellForbiddenArea(frame, {Box(0, 2, 0, 2)}), 12 * 12 - 6 * 6);
  const TPaths ring{Box(0, 16, 0, 10), Hole(Box(3, 13, 2, 8))};
  const TPaths around = ForbiddenRegion({Box(100, 102, 50, 52)}, ring);
  EXPECT_DOUBLE_EQ(RegionArea(around), 18 * 12 - 8 * 4);
  EXPECT_EQ(PlaceOf(Place(89.01, 44.01), around), TPlace::Outside);
  EXPECT_EQ(PlaceOf(Place(96.99, 47.99), around), TPlace::Outside);
  EXPECT_EQ(PlaceOf(Place(88.99, 46), around), TPlace::Inside);
  EXPECT_EQ(PlaceOf(Place(93, 48), around), TPlace::Border);
}

TEST(NfpOracle, FindsWhereAPartFitsIntoAPlateWithHoles) {
  EXPECT_DOUBLE_EQ(RegionArea(InnerFitRegion(kRoom, kUnitSquare)), 72);
  EXPECT_DOUBLE_EQ(RegionArea(InnerFitRegion({Box(0, 10, 0, 10)}, {Box(1, 3, 2, 5)})), 8 * 7);
  EXPECT_TRUE(InnerFitRegion(kUnitSquare, {Box(0, 1.1, 0, 0.5)}).empty());
  // A plate with a hole under a part with a larger one: the part may stand around the obstacle.
  const TPaths ring{Box(0, 6, 0, 6), Hole(Box(1, 5, 1, 5))};
  EXPECT_DOUBLE_EQ(RegionArea(InnerFitRegion(kRoom, ring)), 2 * 2);
  EXPECT_TRUE(FitsAt(kRoom, ring, Place(1, 3)));
  EXPECT_FALSE(FitsAt(kRoom, ring, Place(0.99999, 3)));
  EXPECT_FALSE(FitsAt(kRoom, kUnitSquare, Place(9.00001, 0)));
}

TEST(NfpOracle, AllWaysToTheSumAgreeOnShapesOfTheGrid) {
  ForEachSeed(40, [](unsigned seed) {
    const TShapeKind kinds[] = {TShapeKind::Comb, TShapeKind::Staircase, TShapeKind::LShape, TShapeKind::UShape};
    const TPaths s = PolygonOf(MakeShape(kinds[seed % 4], 24, 10, seed));
    const TPaths d = PolygonOf(MakeShape(kinds[seed / 4 % 4], 20, 10, seed + 1000));
    const TPaths region = ForbiddenRegion(s, d);
    EXPECT_DOUBLE_EQ(RegionArea(region), static_cast<double>(CellForbiddenArea(s, d)));
    EXPECT_EQ(CheckNfpBySampling(s, d, region, seed), "");
  });
}

TEST(NfpOracle, ConvexPairsEqualTheMergedEdges) {
  ForEachSeed(40, [](unsigned seed) {
    const TPaths s = PolygonOf(MakeShape(TShapeKind::Convex, 30, 100, seed));
    const TPaths d = PolygonOf(MakeShape(TShapeKind::Convex, 12, 20, seed + 1000));
    const TPaths merged{ConvexSum(s.front(), Negated(d).front())};
    // Ears and their joints do not take the short way that a whole convex contour would.
    std::vector<TPath> ears;
    for (std::size_t i = 1; i + 1 < s.front().size(); ++i) {
      ears.push_back({s.front()[0], s.front()[i], s.front()[i + 1]});
    }
    const TRegionDifference off = CompareRegions(MinkowskiSumOfPieces(ears, ConvexPieces(Negated(d))), merged);
    EXPECT_EQ(off.Lost, 0);
    EXPECT_EQ(off.Surplus, 0);
    EXPECT_EQ(CheckNfpBySampling(s, d, merged, seed), "");
  });
}

TEST(NfpOracle, EveryPairOfKindsAgreesWithItsSamplesAndItsMirrorImage) {
  ForEachSeed(60, [](unsigned seed) {
    const TShapePair pair = MakePair(40, seed);
    SCOPED_TRACE(std::string(NameOf(pair.StaticKind)) + " and " + NameOf(pair.DynamicKind));
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
  const auto at = [](const TPaths& s, const TPaths& d, double x, double y) { return OverlapsAt(s, d, Place(x, y)); };
  EXPECT_TRUE(at(kAngle, kAngle, 0, 0)) << "equal shapes";
  EXPECT_TRUE(at({Box(0, 9, 0, 9)}, kUnitSquare, 4, 4)) << "one within the other";
  EXPECT_TRUE(at(kUnitSquare, {Box(0, 9, 0, 9)}, -4, -4));
  EXPECT_TRUE(at(kUnitSquare, {Box(0, 1, 0.25, 0.75)}, 0, 0)) << "only sides touch, insides are shared";
  EXPECT_TRUE(at(kUnitSquare, {PathOf({{0, 0}, {1, 1}, {0, 1}})}, 0, 0)) << "all vertices on the border";
  EXPECT_FALSE(at(kUnitSquare, kUnitSquare, 1, 0)) << "a common side";
  EXPECT_FALSE(at(kUnitSquare, kUnitSquare, 1, 1)) << "a common vertex";
  EXPECT_FALSE(at(kAngle, kUnitSquare, 1, 1)) << "in the notch";
  EXPECT_TRUE(at(kAngle, kUnitSquare, 0.99999, 1)) << "one unit deep";
  EXPECT_FALSE(at(kRoom, {Box(4, 6, 4, 6)}, 0, 0)) << "fills the hole";
  EXPECT_TRUE(at(kRoom, {Box(4, 6, 4, 6)}, 0, 0.00001));
  // A side of slope 1/3 and a vertex that lies on it or one unit beyond, of a tip too sharp for clipping.
  const TPaths slope{PathOf({{0, 0}, {9, 0}, {0, 3}})};
  const TPaths tip{PathOf({{0, 0}, {0.00001, 100}, {-0.00001, 100}})};
  EXPECT_FALSE(at(slope, tip, 3, 2));
  EXPECT_TRUE(at(slope, tip, 3, 1.99999));
}

TEST(NfpOracle, MeasuresOverlap) {
  const TPaths moved = TPathUtils::Translate(kUnitSquare, {75000, 0});
  EXPECT_DOUBLE_EQ(OverlapArea(kUnitSquare, moved), 0.25);
  EXPECT_NEAR(OverlapDepth(kUnitSquare, moved), 0.25, 2e-5);
  EXPECT_EQ(OverlapDepth(kUnitSquare, TPathUtils::Translate(kUnitSquare, {100000, 0})), 0);
  // Five drawing units long, a fiftieth of a path unit wide: alone, and beside a square of 500 units.
  TPaths region{{{482355, -1595341}, {-16805, -1585374}, {-16806, -1585374}, {482354, -1595341}}};
  EXPECT_LE(InnerWidth(region), 4e-5);
  region.push_back({{0, 0}, {300, 400}, {-100, 700}, {-400, 300}});
  EXPECT_NEAR(InnerWidth(region), 0.005, 4e-5);
}

// The checks must find what is wrong, not only pass what is right.
TEST(NfpOracle, NoticesWrongPaths) {
  const TPaths right = ForbiddenRegion(kAngle, kUnitSquare);
  const TPaths small = TPathUtils::Translate(right, {-10, 0});
  EXPECT_NE(CheckNfpBySampling(kAngle, kUnitSquare, small, 1), "");
  EXPECT_NE(CheckNfpBySampling(kAngle, kUnitSquare, {}, 1).find("overlap outside the paths"), std::string::npos);
  EXPECT_NE(CheckNfpBySampling(kAngle, kUnitSquare, {Box(-1, 2, -1, 2)}, 1).find("no overlap inside the paths"),
            std::string::npos);
  EXPECT_EQ(CheckNfpBySampling(kAngle, kUnitSquare, TPathUtils::Translate(right, {-2, 0}), 1), "") << "in the band";

  TSamplingOptions wide;
  wide.Band = 2.5e-4;
  EXPECT_EQ(CheckNfpBySampling(kAngle, kUnitSquare, TPathUtils::Translate(right, {-20, 0}), 1, wide), "");
  EXPECT_NE(CheckNfpBySampling(kAngle, kUnitSquare, TPathUtils::Translate(right, {-40, 0}), 1, wide), "");
  TSamplingOptions safeSide;
  safeSide.SafeSideOnly = true;
  EXPECT_EQ(CheckNfpBySampling(kAngle, kUnitSquare, {Box(-1, 2, -1, 2)}, 1, safeSide), "");
  EXPECT_NE(CheckNfpBySampling(kAngle, kUnitSquare, small, 1, safeSide), "");

  const TPaths fit = InnerFitRegion(kRoom, kUnitSquare);
  EXPECT_NE(CheckInnerFitBySampling(kRoom, kUnitSquare, {Box(0, 9, 0, 9)}, 1).find("no fit inside"), std::string::npos);
  EXPECT_NE(CheckInnerFitBySampling(kRoom, kUnitSquare, {}, 1).find("a fit outside"), std::string::npos);
  EXPECT_NE(CheckInnerFitBySampling(kRoom, kUnitSquare, TPathUtils::Translate(fit, {10, 10}), 1), "");

  const TRegionDifference off = CompareRegions({Box(-1, 2, -1, 1)}, right);
  EXPECT_NEAR(off.Lost, 2, 1e-9);
  EXPECT_EQ(off.Surplus, 0);
  EXPECT_NEAR(CompareRegions({Box(-1, 2, -1, 2)}, right).Surplus, 1, 1e-9);
  EXPECT_NEAR(CompareRegions({Box(-1, 2, -1, 2)}, right).Relative(), 0.125, 1e-9);
  EXPECT_EQ(CompareRegions(small, right, 6e-5).Relative(), 0) << "a sliver within the band";
  EXPECT_GT(CompareRegions(small, right, 4e-5).Relative(), 0);
  EXPECT_EQ(CompareRegions({Box(-1, 2, -1, 1)}, right, 2e-5, 2.01).Lost, 0);
}

TEST(ConvexPieces, CoverThePolygonOnce) {
  ForEachSeed(110, [](unsigned seed) {
    const TShapeKind kind = kShapeKinds[seed % kShapeKinds.size()];
    SCOPED_TRACE(NameOf(kind));
    const TPaths polygon = PolygonOf(MakeShape(kind, 40, 100, seed));
    const std::vector<TPath> pieces = ConvexPieces(polygon);
    for (const TPath& piece : pieces) EXPECT_TRUE(IsConvex(piece));
    EXPECT_DOUBLE_EQ(TPathUtils::Area(pieces), TPathUtils::Area(polygon)) << "pieces overlap";
    EXPECT_NEAR(RegionArea(TPaths(pieces.begin(), pieces.end())), TPathUtils::Area(polygon) / 1e10, 1e-3);
  });
}

TEST(ConvexPieces, TakePolygonsThatTouchOrCrossThemselves) {
  const TPaths touching{Box(0, 4, 0, 4), Hole(PathOf({{0, 2}, {1, 1}, {1, 3}})), Hole(Box(1, 2, 1.5, 2.5))};
  EXPECT_DOUBLE_EQ(TPathUtils::Area(ConvexPieces(touching)) / 1e10, 14);
  const TPaths bow{PathOf({{0, 0}, {2, 2}, {2, 0}, {0, 2}})};
  EXPECT_DOUBLE_EQ(TPathUtils::Area(ConvexPieces(bow)) / 1e10, 2);
  const TPaths pentagram{PathOf({{0, 10}, {-6, -8}, {10, 3}, {-10, 3}, {6, -8}})};  // its middle is wound twice
  EXPECT_NEAR(TPathUtils::Area(ConvexPieces(pentagram)) / 1e10, RegionArea(pentagram), 1e-3);
  EXPECT_NEAR(CompareRegions(ConvexPieces(pentagram), pentagram).Relative(), 0, 1e-9);
  EXPECT_TRUE(ConvexPieces({}).empty());
}

TEST(Shapes, AreSimpleAndTurnedAsPromised) {
  ForEachSeed(220, [](unsigned seed) {
    const TShapeKind kind = kShapeKinds[seed % kShapeKinds.size()];
    SCOPED_TRACE(NameOf(kind));
    const int edges = 8 + static_cast<int>(seed) % 93;
    const double size = std::pow(10.0, 0.5 + seed % 6 * 0.5);
    const TVHPolygon shape = MakeShape(kind, edges, size, seed);
    const TPaths polygon = PolygonOf(shape);
    EXPECT_TRUE(IsSimple(polygon));
    EXPECT_FALSE(shape[0].IsClockwise());
    for (std::size_t i = 1; i < shape.size(); ++i) EXPECT_TRUE(shape[i].IsClockwise());
    EXPECT_NEAR(RegionArea(polygon) * 1e10 / TPathUtils::Area(polygon), 1, 1e-12) << "a hole leaves the outer contour";
    EXPECT_EQ(PolygonOf(MakeShape(kind, edges, size, seed)), polygon) << "not repeatable";
  });
}

TEST(Shapes, JigsawPartsFitTheirHole) {
  ForEachSeed(44, [](unsigned seed) {
    const TShapeKind kind = kShapeKinds[seed % kShapeKinds.size()];
    SCOPED_TRACE(NameOf(kind));
    const double grow = seed % 2 == 0 ? 0 : 0.002;
    const TJigsaw jigsaw = MakeJigsaw(kind, 24, 100, grow, seed);
    const TPaths plate = PolygonOf(jigsaw.Plate);
    const TPaths part = PolygonOf(jigsaw.Part);
    const TIntPoint place = TPathUtils::CreateIntPoint(jigsaw.Place, kPathScale);
    EXPECT_FALSE(OverlapsAt(plate, part, place));
    EXPECT_EQ(PlaceOf(place, ForbiddenRegion(plate, part)), grow > 0 ? TPlace::Outside : TPlace::Inside)
        << "a place without area vanishes in the region";
    EXPECT_TRUE(OverlapsAt(plate, part, {place.X + 1000, place.Y}));
  });
}

TEST(NfpInstances, AreReadWithTheirStripPlatesAndLayout) {
  const TNfpInstance instance = ParseNfpInstance(R"({"name": "two", "source": "own", "strip_width": 4.5,
    "best_length": {"length": 7, "by": "hand"},
    "parts": [{"id": 3, "demand": 2, "rotations": [0, 180], "outer": [[0,0],[0,4],[4,4],[4,0]],
               "holes": [[[1,1],[2,1],[2,2]]]}],
    "plates": [{"id": 0, "outer": [[0,0],[9,0],[9,9]], "holes": [], "zones": []}],
    "layout": [{"part": 3, "at": [1, 2]}]})");
  EXPECT_EQ(instance.StripWidth, 4.5);
  EXPECT_EQ(instance.BestLength, 7);
  ASSERT_EQ(instance.Parts.size(), 1u);
  EXPECT_EQ(instance.Parts[0].Demand, 2);
  EXPECT_EQ(instance.Parts[0].Rotations, (std::vector<double>{0, 180}));
  EXPECT_DOUBLE_EQ(RegionArea(PolygonOf(instance.Parts[0].Shape)), 15.5);
  EXPECT_FALSE(instance.Parts[0].Shape[0].IsClockwise());
  ASSERT_EQ(instance.Plates.size(), 1u);
  EXPECT_EQ(instance.Layout[0].At.Y, 2);
  EXPECT_THROW(ParseNfpInstance("{"), std::runtime_error);
  EXPECT_THROW(ReadNfpInstance("no/such/file.json"), std::runtime_error);
}

}  // namespace
}  // namespace platenest
