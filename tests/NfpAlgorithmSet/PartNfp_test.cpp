#include "platenest/NfpAlgorithmSet/PartNfp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>

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

using testing::SizeIs;

TVPolyline2D Box(double Left, double Right, double Bottom, double Top) {
  return {{Left, Bottom}, {Right, Bottom}, {Right, Top}, {Left, Top}};
}

TPaths NfpOf(TVHPolygon Static, TVHPolygon Dynamic, bool PutInside = false, TNFPType Required = ntComplete) {
  TPaths paths;
  TPartNFP(Required).Nfp(Static, Dynamic, PutInside, paths);
  return paths;
}

// Cleaning takes up to 25 path units off an outline.
constexpr double kCleaningBand = 2.5e-4;

TEST(PartNfpRects, InnerRegionStartsAtOneUnitAndEndsWhereThePartIsTooLarge) {
  // The width of the region for a part in a plate of width 10; -1: none.
  const auto units = [](double width) -> Int64 {
    TPaths paths;
    TPartNFP::CalcRectInnerNfp(Box(0, 10, 0, 10).BoundBox(), Box(1, 1 + width, 2, 5).BoundBox(), paths);
    if (paths.empty()) return -1;
    const TIntRect box = TPathUtils::BoundBox(paths);
    EXPECT_EQ(box, (TIntRect{-100'000, box.Right, 500'000, -200'000}));
    return box.Width();
  };
  EXPECT_EQ(units(2), 800'000);
  EXPECT_EQ(units(10 - 1.001e-5), 1) << "at the least range";
  EXPECT_EQ(units(10), 1);
  EXPECT_EQ(units(10 + 0.9e-6), 1) << "too large within the tolerance";
  EXPECT_EQ(units(10 + 1.1e-6), -1);
}

TEST(PartNfpRects, TwoRectanglesNeedNoConvolution) {
  NfpStatistics = {};
  const TVHPolygon fixed{Box(0, 4, 0, 3)}, moving{Box(0, 2, 0, 1)};
  const TPath around{{-200'000, 300'000}, {-200'000, -100'000}, {400'000, -100'000}, {400'000, 300'000}};
  const TPath inside{{0, 200'000}, {0, 0}, {200'000, 0}, {200'000, 200'000}};
  EXPECT_EQ(NfpOf(fixed, moving), TPaths{around});
  EXPECT_EQ(NfpOf(fixed, moving, true), TPaths{inside});
  EXPECT_EQ(NfpStatistics.Convolutions, 0);
}

TEST(PartNfp, RandomPairsAgreeWithTheOracle) {
  ForEachSeed(40, [](unsigned Seed) {
    const TShapePair pair = MakePair(24, Seed);
    const TPaths paths = NfpOf(pair.Static, pair.Dynamic);
    SCOPED_TRACE(std::string(NameOf(pair.StaticKind)) + " and " + NameOf(pair.DynamicKind));
    EXPECT_EQ(CheckNfpBySampling(pair.Static, pair.Dynamic, paths, Seed, {60, kCleaningBand}), "");
    const TPaths exact = ForbiddenRegion(pair.Static, pair.Dynamic);
    EXPECT_LE(CompareRegions(paths, exact, kCleaningBand, 4e-6).Relative(), 1e-4);
  });
}

TEST(PartNfp, PartsOfSimilarAreaDoNotLookIntoHoles) {
  const TVHPolygon frame{Box(0, 10, 0, 10), Box(0.01, 9.99, 0.01, 9.99)};
  EXPECT_THAT(NfpOf(frame, {{Box(0, 9.998, 0, 9.998)}}), SizeIs(1));
  EXPECT_THAT(NfpOf(frame, {{Box(0, 9.97, 0, 9.97)}}), SizeIs(2));
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
  for (const auto& [kind, grow, seed] :
       {std::tuple{TShapeKind::NearParallel, 0.00170191, 1656u}, std::tuple{TShapeKind::Convex, 0.00087, 6666u},
        std::tuple{TShapeKind::Holed, 0.00333432, 4100u}, std::tuple{TShapeKind::Holed, 0.0026, 5464u}}) {
    SCOPED_TRACE(seed);
    const TJigsaw jigsaw = MakeJigsaw(kind, 16, 20, grow, seed);
    const TVHPolygon cavity{jigsaw.Plate[1]}, part{jigsaw.Part[0]};
    const TPaths paths = NfpOf(cavity, part, true);
    EXPECT_FALSE(paths.empty());
    EXPECT_EQ(CheckInnerFitBySampling(cavity, part, paths, 1, {40, 3e-4, true}), "");
  }
}

// After the first of more than 49 holes the others are asked for as hulls, which a part with a hole of its own shows:
// it is hulled itself. The request after that is none of it.
TEST(PlateNfp, ManyHolesLowerTheQualityForTheirRequestOnly) {
  const TVHPolygon part{test::Polar(402, [](int i) { return i == 0 ? 1.8 : 2; }), Box(-1, 1, -1, 1)};
  TPartNFP kernel(ntComplete);
  TPaths paths;
  for (const int holes : {49, 50}) {
    TVHPolygon plate{Box(0, 100, 0, 100)};
    for (int i = 0; i < holes; ++i) {
      plate.push_back(test::Circle(26, 0.5));
      plate.back().Translate({5.0 + 9 * (i % 10), 5.0 + 9 * (i / 10)});
    }
    TVHPolygon dynamicPart = part;
    kernel.Nfp(plate, dynamicPart, true, paths);
    EXPECT_EQ(dynamicPart[0].IsConvexPolygon(), holes == 50);
    plate.push_back({{5, 99}, {35, 99}, {20, 99.0001}});  // no loop can be made of it
    dynamicPart = part;
    EXPECT_THROW(kernel.Nfp(plate, dynamicPart, true, paths), TNestError);
  }
  // A product of points that would count as hulls if the lowered quality were still asked for.
  TVHPolygon fixed{test::Circle(250, 50)}, moving{test::Circle(201, 20)};
  kernel.Nfp(fixed, moving, false, paths);
  EXPECT_EQ(kernel.Returned(), ntComplete);
}

// Thinned before the convolution, which would be too heavy at this quality.
TEST(PartNfp, HeavyPairsBelowCompleteAreThinned) {
  const TVHPolygon fixed{test::Circle(2100, 50)}, moving{test::Circle(1500, 20)};
  const TPaths paths = NfpOf(fixed, moving, false, ntConcaveHull);
  ASSERT_THAT(paths, SizeIs(1));
  EXPECT_LT(paths[0].size(), 3400U);
  EXPECT_EQ(CheckNfpBySampling(fixed, moving, paths, 1, {60, 0.005}), "");
}

// A hull is asked for by the product of the point counts; whether the result counts as one follows that rule alone. No
// request is above the ceiling.
TEST(PartNfpHulls, ProductOfThePointCountsDecides) {
  const auto returned = [](int points, int movingPoints, TNFPType required) {
    TVHPolygon fixed{test::Circle(points, 50)}, moving{test::Circle(movingPoints, 20)};
    TPartNFP kernel(required);
    TPaths paths;
    kernel.Nfp(fixed, moving, false, paths);
    EXPECT_THAT(paths, SizeIs(1));
    return kernel.Returned();
  };
  EXPECT_EQ(returned(250, 200, ntConvexHull), ntComplete);
  EXPECT_EQ(returned(2381, 21, ntConvexHull), ntConvexHull);
  EXPECT_EQ(returned(400, 130, ntConvexHull), ntConvexHull);
  EXPECT_EQ(returned(25, 400, ntConvexHull), ntComplete);
  EXPECT_EQ(returned(25, 401, ntConvexHull), ntConvexHull);
  EXPECT_EQ(returned(20, 10, ntExact), ntComplete);
}

// The hull of a plate would let the part stick out of it.
TEST(PartNfpHulls, PlatesAreNeverHulled) {
  const TRandomScope seed(3);
  const TVHPolygon plate{test::Star(600, 100, 0.8)}, part{test::Star(100, 10, 0.8)};
  const TPaths paths = NfpOf(plate, part, true, ntConvexHull);
  ASSERT_FALSE(paths.empty());
  EXPECT_EQ(CheckInnerFitBySampling(plate, part, paths, 1, {100, 1e-3, true}), "");
}

// Each step but the last convolves a shifted contour, and the paths come back to where the shapes are.
TEST(PartNfpLadder, StepsAnswerInTurn) {
  const TVPolyline2D zigzag{{0, -0.001}, {1.0 / 6, 0.001}, {1.0 / 3, -0.001}, {0.5, 0.001}};
  const std::tuple<int, TVHPolygon, TVHPolygon> cases[] = {
      {1, {test::Circle(13, 2)}, {test::Circle(10, 0.0008)}},
      {2, {zigzag}, {{{0, 0}, {1, 0.1}, {0.3, 1}}}},
      {3, {test::Circle(12, 1)}, {test::Circle(10, 0.0006)}},
      // Too small for the area test of the convolution: the boxes are left.
      {4, {{{0, 0}, {100, 0}, {100, 50}, {50, 50}, {50, 100}, {0, 100}}}, {{{0, 0}, {0.02, 0}, {0, 0.02}}}}};
  for (const auto& [step, fixed, moving] : cases) {
    SCOPED_TRACE(step);
    const TRandomScope seed(1);
    NfpStatistics = {};
    const TPaths paths = NfpOf(fixed, moving);
    EXPECT_EQ(NfpStatistics.Ladder[step], 1);
    EXPECT_EQ(CheckNfpBySampling(fixed, moving, paths, 1, {60, 0.03, step >= 3}), "");
    EXPECT_EQ(BoldPointPrec, 0);
  }
}

// Beyond the range of paths: each convolution gives up on its own, the boxes of the last step cannot.
TEST(PartNfpLadder, BoldPointPrecIsBackAfterAnError) {
  TVHPolygon fixed{test::Circle(20, 1e14)}, moving{test::Circle(10, 1e14)};
  TPaths paths;
  EXPECT_THROW(TPartNFP(ntComplete).Nfp(fixed, moving, false, paths), TRangeError);
  EXPECT_EQ(BoldPointPrec, 0);
}

TEST(Disturbance, LongEdgesStayAndRepeatedOrFlatPointsGo) {
  const TRandomScope random(1);
  // The closing edge is long and the start of the walk, so that nothing moves at all.
  const TVPolyline2D held{{0, 0}, {5, 0}, {5, 3}, {90, 40}, {0, 150}};
  const TVPolyline2D same = DisturbPolyline(held, 0.01);
  ASSERT_EQ(same.Count(), held.Count());
  for (int i = 0; i < held.Count(); ++i) EXPECT_EQ(same[i].DistanceTo(held[i]), 0) << i;
  TVPolyline2D contour{{0, 0}, {5, 0.001}, {10, 0}, {10, 5}, {10, 10}, {0, 10}, {0, 0}};
  DisturbPolylineInPlace(contour, 1e-9);
  EXPECT_EQ(contour.Count(), 4);
}

TEST(PartsPackNfp, StaticPartsForbidTogetherAndDynamicPartsMoveAsOne) {
  using TPack = TVHPolygonList;
  const auto nfp = [](const TPack& dynamics, const TPack& statics, bool putInside) {
    return TPartsPackNFP().CalcNFP(dynamics, statics, putInside, ntExact);
  };
  const auto areaOf = [&](const TPack& dynamics, const TPack& statics, bool putInside) {
    return RegionArea(*nfp(dynamics, statics, putInside).NFP);
  };
  const TVHPolygon square{{Box(0, 1, 0, 1)}}, second{{Box(1, 2, 0, 1)}}, plate{{Box(0, 10, 0, 10)}};
  const TNFP apart = nfp(TPack({square}), TPack({square, {{Box(3, 4, 0, 1)}}}), false);
  EXPECT_THAT(*apart.NFP, SizeIs(2));
  EXPECT_DOUBLE_EQ(RegionArea(*apart.NFP), 8);
  // Several pairs start from the type asked for, though no pair can be exact below the ceiling.
  EXPECT_EQ(apart.NFPType, ntExact);
  EXPECT_DOUBLE_EQ(areaOf(TPack({square, second}), TPack({square}), false), 3 * 2);
  EXPECT_DOUBLE_EQ(areaOf(TPack({square, second}), TPack({plate}), true), 8 * 9);
  EXPECT_DOUBLE_EQ(areaOf(TPack({square, {{Box(0, 11, 0, 1)}}, square}), TPack({plate}), true), 0);
  // Any plate will do, and a fit without play, one unit wide, survives the union.
  EXPECT_NEAR(areaOf(TPack({{{Box(0, 2, 0, 1)}}}), TPack({plate, {{Box(20, 22, 0, 10)}}}), true), 72 + 9e-5, 1e-9);
}

}  // namespace
}  // namespace platenest
