#include "platenest/NfpAlgorithmSet/PartNfp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "Contours.h"
#include "Disturbance.h"
#include "ExactMinkowski.h"
#include "ForEachSeed.h"
#include "InnerFit.h"
#include "NfpSampling.h"
#include "Shapes.h"
#include "platenest/NfpAlgorithmSet/NfpStatistics.h"
#include "platenest/NfpAlgorithmSet/VectorGraph.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TVPolyline2D Box(double Left, double Right, double Bottom, double Top) {
  return {{Left, Bottom}, {Right, Bottom}, {Right, Top}, {Left, Top}};
}

TVRect2D Bounds(double Left, double Right, double Bottom, double Top) {
  return TVRect2D::FromBounds(Top, Left, Bottom, Right);
}

TPath Path(double Left, double Right, double Bottom, double Top) {
  return TPathUtils::CreatePath(TVPolyline2D{{Left, Top}, {Left, Bottom}, {Right, Bottom}, {Right, Top}}, kPathScale);
}

TPaths NfpOf(TVHPolygon Static, TVHPolygon Dynamic, bool PutInside = false, TNFPType Required = ntComplete) {
  TPaths paths;
  TPartNFP(Required).Nfp(Static, Dynamic, PutInside, paths);
  return paths;
}

TVHPolygon Moved(TVHPolygon Part, const TPoint2D& By) {
  for (TVPolyline2D& contour : Part) contour.Translate(By);
  return Part;
}

TVHPolygon Turned(TVHPolygon Part, double Angle) {
  for (TVPolyline2D& contour : Part)
    for (TPoint2D& point : contour) point = point.RotateBy(Angle);
  return Part;
}

// Tells a difference above Share of the exact area.
std::string Compared(const TPaths& Paths, const TPaths& Exact, double Share, double Band) {
  const TRegionDifference difference = CompareRegions(Paths, Exact, Band, 4e-6);
  if (difference.Relative() <= Share) return "";
  return "lost " + std::to_string(difference.Lost) + ", surplus " + std::to_string(difference.Surplus) + " of " +
         std::to_string(difference.Exact);
}

// Cleaning takes up to 25 path units off an outline.
constexpr double kCleaningBand = 2.5e-4;

TEST(PartNfpRects, InnerRegionStartsAtOneUnitAndEndsWhereThePartIsTooLarge) {
  const struct {
    const char* Name;
    double Width;  // of a part in a plate of width 10
    Int64 Units;   // width of the region; -1: none
  } cases[] = {{"room", 2, 800'000},
               {"at the least range", 10 - 1.001e-5, 1},
               {"just fits", 10, 1},
               {"too large within the tolerance", 10 + 0.9e-6, 1},
               {"too large", 10 + 1.1e-6, -1}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Name);
    TPaths paths;
    TPartNFP::CalcRectInnerNfp(Bounds(0, 10, 0, 10), Bounds(1, 1 + c.Width, 2, 5), paths);
    if (c.Units < 0) {
      EXPECT_THAT(paths, IsEmpty());
      continue;
    }
    ASSERT_THAT(paths, SizeIs(1));
    const TIntRect box = TPathUtils::BoundBox(paths);
    EXPECT_EQ(box.Left, -100'000);
    EXPECT_EQ(box.Width(), c.Units);
    EXPECT_EQ(box.Bottom, -200'000);
    EXPECT_EQ(box.Top, 500'000);
  }
}

TEST(PartNfpRects, TwoRectanglesNeedNoConvolution) {
  NfpStatistics = {};
  TVHPolygon fixed{Box(0, 4, 0, 3)};
  TVHPolygon moving{Box(0, 2, 0, 1)};
  TPartNFP kernel(ntComplete);
  TPaths paths;
  kernel.Nfp(fixed, moving, false, paths);
  EXPECT_THAT(paths, ElementsAre(Path(-2, 4, -1, 3)));
  EXPECT_EQ(kernel.Returned(), ntComplete);
  kernel.Nfp(fixed, moving, true, paths);
  EXPECT_THAT(paths, ElementsAre(Path(0, 2, 0, 2)));
  EXPECT_EQ(NfpStatistics.Convolutions, 0);
}

TEST(PartNfpRects, RectangularPlateTakesTheBoxOfAnyPart) {
  const TVHPolygon plate{{Box(0, 10, 0, 10)}};
  const TVHPolygon diamond{{{{1, 0}, {2, 1}, {1, 2}, {0, 1}}}};
  EXPECT_THAT(NfpOf(plate, diamond, true), ElementsAre(Path(0, 8, 0, 8)));
  const TVHPolygon turned = Turned(plate, 0.3);
  EXPECT_EQ(CheckInnerFitBySampling(turned, diamond, NfpOf(turned, diamond, true), 1), "");
}

TEST(PartNfp, FewerThanThreePointsHaveNoPaths) {
  TPaths paths{Path(0, 1, 0, 1)};
  TVPolyline2D line{{0, 0}, {1, 1}};
  TVPolyline2D box = Box(0, 1, 0, 1);
  EXPECT_EQ(TPartNFP(ntConcaveHull).CalcNfp(box, line, false, paths), ntComplete);
  EXPECT_THAT(paths, IsEmpty());
  EXPECT_THAT(NfpOf({}, {box}), IsEmpty());
  EXPECT_THAT(NfpOf({box}, {}, true), IsEmpty());
}

TEST(PartNfp, RandomPairsAgreeWithTheOracle) {
  ForEachSeed(40, [](unsigned Seed) {
    const TShapePair pair = MakePair(24, Seed);
    const TPaths paths = NfpOf(pair.Static, pair.Dynamic);
    SCOPED_TRACE(std::string(NameOf(pair.StaticKind)) + " and " + NameOf(pair.DynamicKind));
    EXPECT_EQ(CheckNfpBySampling(pair.Static, pair.Dynamic, paths, Seed, {60, kCleaningBand}), "");
    EXPECT_EQ(Compared(paths, ForbiddenRegion(pair.Static, pair.Dynamic), 1e-4, kCleaningBand), "");
  });
}

TEST(PartNfp, SwappedRolesMirrorTheResult) {
  ForEachSeed(10, [](unsigned Seed) {
    const TShapePair pair = MakePair(20, Seed + 100);
    const TPaths paths = NfpOf(pair.Static, pair.Dynamic);
    EXPECT_EQ(Compared(Negated(NfpOf(pair.Dynamic, pair.Static)), paths, 1e-4, kCleaningBand), "");
  });
}

TEST(PartNfp, MovedAndTurnedPartsMoveAndTurnTheResult) {
  ForEachSeed(10, [](unsigned Seed) {
    const TShapePair pair = MakePair(20, Seed + 200);
    const TPaths paths = NfpOf(pair.Static, pair.Dynamic);
    const TPoint2D by{17.25, -3.5};
    const TPointL2D shift = TPathUtils::CreatePointL2D(TPathUtils::CreateIntPoint(by, kPathScale));
    EXPECT_EQ(
        Compared(NfpOf(Moved(pair.Static, by), pair.Dynamic), TPathUtils::Translate(paths, shift), 1e-4, kCleaningBand),
        "");
    EXPECT_EQ(Compared(NfpOf(pair.Static, Moved(pair.Dynamic, by)), TPathUtils::Translate(paths, -shift), 1e-4,
                       kCleaningBand),
              "");
    EXPECT_EQ(Compared(NfpOf(Turned(pair.Static, 0.7), Turned(pair.Dynamic, 0.7)), TPathUtils::Rotate(paths, 0.7), 1e-4,
                       kCleaningBand),
              "");
  });
}

// A part may stand in a hole of the other one: the free places lie clockwise in the outline.
TEST(PartNfp, HolesOfEitherPartAreFreePlaces) {
  const TVHPolygon frame{Box(0, 16, 0, 10), Box(3, 13, 2, 8)};
  const TVHPolygon small{{Box(100, 102, 50, 52)}};
  const TVHPolygon corner{{{{0, 0}, {3, 0}, {3, 1}, {1, 1}, {1, 3}, {0, 3}}}};
  const TPaths around = NfpOf(frame, small);
  ASSERT_THAT(around, SizeIs(2));
  EXPECT_EQ(TPathUtils::BoundBox(around[1]), (TIntRect{-9'700'000, -8'900'000, -4'400'000, -4'800'000}));
  EXPECT_LT(ClipperLib::Area(around[1]), 0);
  const TPaths over = NfpOf(small, frame);
  ASSERT_THAT(over, SizeIs(2));
  EXPECT_EQ(TPathUtils::BoundBox(over[1]), (TIntRect{8'900'000, 9'700'000, 4'800'000, 4'400'000}));
  EXPECT_LT(ClipperLib::Area(over[1]), 0);
  for (const TVHPolygon& part : {corner, Turned(corner, 1)}) {
    EXPECT_EQ(CheckNfpBySampling(frame, part, NfpOf(frame, part), 1), "");
    EXPECT_EQ(CheckNfpBySampling(part, frame, NfpOf(part, frame), 1), "");
    EXPECT_EQ(Compared(NfpOf(frame, part), ForbiddenRegion(frame, part), 1e-6, 2e-5), "");
    EXPECT_EQ(Compared(NfpOf(part, frame), ForbiddenRegion(part, frame), 1e-6, 2e-5), "");
  }
}

TEST(PartNfp, PartsOfSimilarAreaDoNotLookIntoHoles) {
  const TVHPolygon frame{Box(0, 10, 0, 10), Box(0.01, 9.99, 0.01, 9.99)};
  EXPECT_THAT(NfpOf(frame, {{Box(0, 9.998, 0, 9.998)}}), SizeIs(1));
  EXPECT_THAT(NfpOf(frame, {{Box(0, 9.97, 0, 9.97)}}), SizeIs(2));
}

TEST(PlateNfp, HolesOfThePlateAreObstacles) {
  const TVHPolygon plate{Box(0, 10, 0, 10), Box(4, 6, 4, 6)};
  const TVHPolygon square{{Box(0, 1, 0, 1)}};
  EXPECT_DOUBLE_EQ(RegionArea(NfpOf(plate, square, true)), 81 - 9);
  EXPECT_THAT(NfpOf(plate, {{Box(0, 10.1, 0, 1)}}, true), IsEmpty());
}

TEST(PlateNfp, RandomPlatesAgreeWithTheOracle) {
  ForEachSeed(20, [](unsigned Seed) {
    const TVHPolygon part = MakeShape(kShapeKinds[Seed % kShapeKinds.size()], 12, 8, Seed);
    TVHPolygon plate = MakeShape(Seed % 2 == 0 ? TShapeKind::Convex : TShapeKind::Holed, 12, 40, Seed);
    if (plate.Count() == 1) plate.push_back(MakeShape(TShapeKind::Star, 9, 5, Seed).front());
    const TPaths paths = NfpOf(plate, part, true);
    const TRegionDifference difference = CompareRegions(paths, InnerFitRegion(plate, part), kCleaningBand, 4e-6);
    EXPECT_LT(difference.Surplus, 1e-4) << "places at which the part does not fit";
    EXPECT_LT(difference.Lost, 1e-4 * difference.Exact + 1e-4);
    EXPECT_EQ(CheckInnerFitBySampling(plate, part, paths, Seed, {60, kCleaningBand, true}), "");
  });
}

// A frame around a small island in the plate: the island may stand in the hole of the frame.
TEST(PlateNfp, HolesOfThePartPassOverThoseOfThePlate) {
  const TVHPolygon plate{Box(0, 20, 0, 20), Box(9.5, 10.5, 9.5, 10.5)};
  const TVHPolygon frame{Box(0, 6, 0, 6), Box(1, 5, 1, 5)};
  const TPaths paths = NfpOf(plate, frame, true);
  EXPECT_NEAR(RegionArea(paths), 14 * 14 - 7 * 7 + 3 * 3, 1e-3);
  EXPECT_EQ(CheckInnerFitBySampling(plate, frame, paths, 1), "");
}

// The last piece of a jigsaw: found with the least play that the boxes must have, not without any.
TEST(PlateNfp, LastPieceOfAJigsawNeedsALittlePlay) {
  for (const TShapeKind kind : kShapeKinds) {
    SCOPED_TRACE(NameOf(kind));
    for (const double grow : {0.0, 0.002}) {
      const TJigsaw jigsaw = MakeJigsaw(kind, 16, 20, grow, 3);
      const TPaths paths = NfpOf({jigsaw.Plate[1]}, jigsaw.Part, true);
      ASSERT_EQ(paths.empty(), grow == 0);
      if (paths.empty()) continue;
      const TIntPoint place = TPathUtils::CreateIntPoint(jigsaw.Place, kPathScale);
      EXPECT_TRUE(PlaceOf(place, paths) != TPlace::Outside || DistanceToBorder(place, paths) < 200);
    }
  }
}

// Nearly parallel edges leave needles many units long beside the true region, at whose points the part would overlap.
TEST(PlateNfp, NeedlesAreNoRegions) {
  const struct {
    TShapeKind Kind;
    double Grow;
    unsigned Seed;
  } cases[] = {{TShapeKind::NearParallel, 0.00170191, 1656},
               {TShapeKind::Convex, 0.00087, 6666},
               {TShapeKind::Holed, 0.00333432, 4100},
               {TShapeKind::Holed, 0.0026, 5464}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Seed);
    const TJigsaw jigsaw = MakeJigsaw(c.Kind, 16, 20, c.Grow, c.Seed);
    const TVHPolygon cavity{jigsaw.Plate[1]};
    const TVHPolygon part{jigsaw.Part[0]};
    const TPaths paths = NfpOf(cavity, part, true);
    EXPECT_FALSE(paths.empty());
    EXPECT_EQ(CheckInnerFitBySampling(cavity, part, paths, 1, {40, 3e-4, true}), "");
  }
}

TVHPolygon PlateWithHoles(int Count) {
  TVHPolygon plate{Box(0, 100, 0, 100)};
  for (int i = 0; i < Count; ++i) {
    plate.push_back(test::Circle(26, 0.5));
    plate.back().Translate({5.0 + 9 * (i % 10), 5.0 + 9 * (i / 10)});
  }
  return plate;
}

// After the first of more than 49 holes the others are asked for as hulls, which a part with a hole of its own shows:
// it is hulled itself. The request after that is none of it, not even where a hole of the plate has raised.
TEST(PlateNfp, ManyHolesLowerTheQualityForTheirRequestOnly) {
  const TVHPolygon part{test::Polar(402, [](int i) { return i == 0 ? 1.8 : 2; }), Box(-1, 1, -1, 1)};
  TPartNFP kernel(ntComplete);
  TPaths paths;
  for (const int holes : {49, 50}) {
    TVHPolygon plate = PlateWithHoles(holes);
    TVHPolygon dynamicPart = part;
    kernel.Nfp(plate, dynamicPart, true, paths);
    EXPECT_EQ(dynamicPart[0].IsConvexPolygon(), holes == 50);
  }
  TVHPolygon plate = PlateWithHoles(51);
  plate.push_back({{5, 99}, {35, 99}, {20, 99.0001}});  // no loop can be made of it
  TVHPolygon dynamicPart = part;
  EXPECT_THROW(kernel.Nfp(plate, dynamicPart, true, paths), TNestError);
  // A product of points that would count as hulls if the lowered quality were still asked for.
  TVHPolygon fixed{test::Circle(250, 50)};
  TVHPolygon moving{test::Circle(201, 20)};
  kernel.Nfp(fixed, moving, false, paths);
  EXPECT_EQ(kernel.Returned(), ntComplete);
}

// Thinned before the convolution, which would be too heavy at this quality.
TEST(PartNfp, HeavyPairsBelowCompleteAreThinned) {
  const TVHPolygon fixed{test::Circle(2100, 50)};
  const TVHPolygon moving{test::Circle(1500, 20)};
  const TPaths paths = NfpOf(fixed, moving, false, ntConcaveHull);
  ASSERT_THAT(paths, SizeIs(1));
  EXPECT_LT(paths[0].size(), 3400U);
  EXPECT_EQ(CheckNfpBySampling(fixed, moving, paths, 1, {60, 0.005}), "");
}

// A hull is asked for by the product of the point counts; whether the result counts as one follows that rule alone.
TEST(PartNfpHulls, ProductOfThePointCountsDecides) {
  const struct {
    int Static, Dynamic;
    TNFPType Returned;
  } cases[] = {{250, 200, ntComplete},
               {2381, 21, ntConvexHull},
               {400, 130, ntConvexHull},
               {25, 400, ntComplete},
               {25, 401, ntConvexHull}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Static);
    TVHPolygon fixed{test::Circle(c.Static, 50)};
    TVHPolygon moving{test::Circle(c.Dynamic, 20)};
    TPartNFP kernel(ntConvexHull);
    TPaths paths;
    kernel.Nfp(fixed, moving, false, paths);
    EXPECT_EQ(kernel.Returned(), c.Returned);
    EXPECT_THAT(paths, SizeIs(1));
  }
}

// The hull of a plate would let the part stick out of it.
TEST(PartNfpHulls, PlatesAreNeverHulled) {
  const TRandomScope seed(3);
  const TVHPolygon plate{test::Star(600, 100, 0.8)};
  const TVHPolygon part{test::Star(100, 10, 0.8)};
  const TPaths paths = NfpOf(plate, part, true, ntConvexHull);
  ASSERT_FALSE(paths.empty());
  EXPECT_EQ(CheckInnerFitBySampling(plate, part, paths, 1, {100, 1e-3, true}), "");
}

TEST(PartNfp, RequestsAboveTheCeilingAreLowered) {
  TVHPolygon fixed{test::Circle(20, 5)};
  TVHPolygon moving{test::Circle(10, 2)};
  TPaths paths;
  TPartNFP kernel(ntExact);
  kernel.Nfp(fixed, moving, false, paths);
  EXPECT_EQ(kernel.Returned(), ntComplete);
}

// Each step but the last convolves a shifted contour, and the paths come back to where the shapes are.
TEST(PartNfpLadder, StepsAnswerInTurn) {
  const TVPolyline2D zigzag{{0, -0.001}, {1.0 / 6, 0.001}, {1.0 / 3, -0.001}, {0.5, 0.001}};
  const struct {
    int Step;
    TVHPolygon Static, Dynamic;
  } cases[] = {{1, {test::Circle(13, 2)}, {test::Circle(10, 0.0008)}},
               {2, {zigzag}, {{{0, 0}, {1, 0.1}, {0.3, 1}}}},
               {3, {test::Circle(12, 1)}, {test::Circle(10, 0.0006)}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Step);
    const TRandomScope seed(1);
    NfpStatistics = {};
    const TPaths paths = NfpOf(c.Static, c.Dynamic);
    EXPECT_EQ(NfpStatistics.Ladder[c.Step], 1);
    EXPECT_EQ(CheckNfpBySampling(c.Static, c.Dynamic, paths, 1, {60, 0.03, c.Step == 3}), "");
    EXPECT_EQ(BoldPointPrec, 0);
  }
}

// Too small for the area test of the convolution: every step of the ladder fails in turn but the last one.
TEST(PartNfpLadder, TinyPartGetsTheBoxes) {
  NfpStatistics = {};
  const TVHPolygon fixed{{{{0, 0}, {100, 0}, {100, 50}, {50, 50}, {50, 100}, {0, 100}}}};
  const TVHPolygon moving{{{{0, 0}, {0.02, 0}, {0, 0.02}}}};
  const TRandomScope seed(1);
  EXPECT_THAT(NfpOf(fixed, moving), ElementsAre(Path(-0.02, 100, -0.02, 100)));
  EXPECT_EQ(NfpStatistics.Ladder[4], 1);
  EXPECT_EQ(BoldPointPrec, 0);
}

// Beyond the range of paths: each convolution gives up on its own, the boxes of the last step cannot.
TEST(PartNfpLadder, BoldPointPrecIsBackAfterAnError) {
  TVHPolygon fixed{test::Circle(20, 1e14)};
  TVHPolygon moving{test::Circle(10, 1e14)};
  TPaths paths;
  EXPECT_THROW(TPartNFP(ntComplete).Nfp(fixed, moving, false, paths), TRangeError);
  EXPECT_EQ(BoldPointPrec, 0);
}

TEST(Disturbance, EverySecondVertexMovesALittle) {
  ForEachSeed(20, [](unsigned Seed) {
    const TRandomScope random(Seed);
    const TVPolyline2D shape = test::Polar(40, [](int i) { return i % 2 == 0 ? 10.0 : 7.0; });
    const TVPolyline2D disturbed = DisturbPolyline(shape, 0.0002);
    ASSERT_EQ(disturbed.Count(), shape.Count());
    for (int i = 0; i < shape.Count(); ++i) {
      const double moved = disturbed[i].DistanceTo(shape[i]);
      if (i % 2 == 0)
        EXPECT_GT(moved, 0) << i;
      else
        EXPECT_EQ(moved, 0) << i;
      EXPECT_LT(moved, 0.06);
    }
  });
}

TEST(Disturbance, LongEdgesStayAndKeepTheirPivot) {
  const TRandomScope random(1);
  // The closing edge is long and the start of the walk, so that nothing moves at all.
  const TVPolyline2D held{{0, 0}, {5, 0}, {5, 3}, {90, 40}, {0, 150}};
  const TVPolyline2D same = DisturbPolyline(held, 0.01);
  ASSERT_EQ(same.Count(), held.Count());
  for (int i = 0; i < held.Count(); ++i) EXPECT_EQ(same[i].DistanceTo(held[i]), 0) << i;
}

TEST(Disturbance, LosesTheRepeatedPointAndSimplifies) {
  const TRandomScope random(1);
  TVPolyline2D contour{{0, 0}, {5, 0.001}, {10, 0}, {10, 5}, {10, 10}, {0, 10}, {0, 0}};
  DisturbPolylineInPlace(contour, 1e-9);
  EXPECT_EQ(contour.Count(), 4);
}

TVHPolygonList PackOf(std::vector<TVHPolygon> Parts) {
  return TVHPolygonList(std::move(Parts));
}

TEST(PartsPackNfp, StaticPartsForbidTogether) {
  const TVHPolygon square{{Box(0, 1, 0, 1)}};
  const TNFP nfp = TPartsPackNFP().CalcNFP(PackOf({square}), PackOf({square, Moved(square, {3, 0})}), false, ntExact);
  EXPECT_THAT(*nfp.NFP, SizeIs(2));
  EXPECT_DOUBLE_EQ(RegionArea(*nfp.NFP), 8);
  // Several pairs start from the type asked for, though no pair can be exact below the ceiling.
  EXPECT_EQ(nfp.NFPType, ntExact);
}

TEST(PartsPackNfp, DynamicPartsMoveAsOne) {
  const TVHPolygon square{{Box(0, 1, 0, 1)}};
  const TVHPolygonList dynamics = PackOf({square, Moved(square, {1, 0})});
  const TNFP outer = TPartsPackNFP().CalcNFP(dynamics, PackOf({square}), false, ntComplete);
  EXPECT_THAT(*outer.NFP, ElementsAre(SizeIs(4)));
  EXPECT_DOUBLE_EQ(RegionArea(*outer.NFP), 3 * 2);
  const TVHPolygon plate{{Box(0, 10, 0, 10)}};
  const TNFP inner = TPartsPackNFP().CalcNFP(dynamics, PackOf({plate}), true, ntComplete);
  EXPECT_DOUBLE_EQ(RegionArea(*inner.NFP), 8 * 9);
  const TVHPolygonList tooLarge = PackOf({square, {{Box(0, 11, 0, 1)}}, square});
  EXPECT_TRUE(TPartsPackNFP().CalcNFP(tooLarge, PackOf({plate}), true, ntComplete).IsEmpty());
}

TEST(PartsPackNfp, AnyOfSeveralPlatesWillDo) {
  const TVHPolygon plate{{Box(0, 10, 0, 10)}};
  const TVHPolygon exact{{Box(20, 22, 0, 10)}};
  const TVHPolygonList part = PackOf({{{Box(0, 2, 0, 1)}}});
  const TNFP nfp = TPartsPackNFP().CalcNFP(part, PackOf({plate, exact}), true, ntComplete);
  ASSERT_THAT(*nfp.NFP, SizeIs(2));
  EXPECT_NEAR(RegionArea(*nfp.NFP), 8 * 9 + 9 * 1e-5, 1e-9) << "the exact fit is one unit wide and survives the union";
}

bool AreIdentical(const TVHPolygonList& A, const TVHPolygonList& B) {
  const auto samePoint = [](const TPoint2D& P, const TPoint2D& Q) { return P.X == Q.X && P.Y == Q.Y; };
  const auto sameContour = [&](const TVPolyline2D& P, const TVPolyline2D& Q) {
    return std::equal(P.begin(), P.end(), Q.begin(), Q.end(), samePoint);
  };
  return std::equal(A.begin(), A.end(), B.begin(), B.end(), [&](const TVHPolygon& P, const TVHPolygon& Q) {
    return std::equal(P.begin(), P.end(), Q.begin(), Q.end(), sameContour);
  });
}

TEST(PartsPackNfp, CalcLeavesItsArgumentsAlone) {
  TVHPolygon closed{{{{0, 0}, {0, 5}, {2, 2}, {5, 0}, {0, 0}}}};  // clockwise and with repeated first point
  const TVHPolygonList statics = PackOf({closed});
  const TVHPolygonList dynamics = PackOf({Moved(closed, {1, 1})});
  const TVHPolygonList staticsBefore = statics;
  const TVHPolygonList dynamicsBefore = dynamics;
  for (const bool putInside : {false, true}) TPartsPackNFP().CalcNFP(dynamics, statics, putInside, ntConvexHull);
  EXPECT_TRUE(AreIdentical(statics, staticsBefore));
  EXPECT_TRUE(AreIdentical(dynamics, dynamicsBefore));
}

}  // namespace
}  // namespace platenest
