#include <gtest/gtest.h>

#include "ForEachSeed.h"
#include "Region.h"
#include "Shapes.h"
#include "platenest/foundation/Errors.h"
#include "platenest/services/arrayInfo.h"

namespace platenest {
namespace {

TVPolyline2D Box(double Left, double Bottom, double Right, double Top) {
  return TVPolyline2D{{Left, Bottom}, {Right, Bottom}, {Right, Top}, {Left, Top}, {Left, Bottom}};
}

TVPolyline2D Opened(TVPolyline2D Line) {
  Line.pop_back();
  return Line;
}

TEST(Sucker, CentroidOfASquareOrNone) {
  const TVHPolygon square{Box(0, 0, 10, 10)};
  TPoint2D at{-1, -1};
  EXPECT_FALSE(TSuckerInPartAlgo::CalcSuckerPosInPart(square, 5.01, at));
  EXPECT_EQ(at.X, -1);
  ASSERT_TRUE(TSuckerInPartAlgo::CalcSuckerPosInPart(square, 2, at));
  EXPECT_EQ(at, (TPoint2D{5, 5}));
}

// Only the first contour is asked: an open outline means no place, an open hole is a hole.
TEST(Sucker, FirstContourDecidesForAll) {
  TPoint2D at{-1, -1};
  EXPECT_FALSE(TSuckerInPartAlgo::CalcSuckerPosInPart({Opened(Box(0, 0, 10, 10)), Box(4, 4, 6, 6)}, 1, at));
  EXPECT_FALSE(TSuckerInPartAlgo::CalcSuckerPosInPart({}, 1, at));
  ASSERT_TRUE(TSuckerInPartAlgo::CalcSuckerPosInPart({Box(0, 0, 10, 10), Opened(Box(4, 4, 6, 6))}, 1, at));
  EXPECT_GE(std::max(std::fabs(at.X - 5), std::fabs(at.Y - 5)), 2 - 1e-5);
}

TEST(Sucker, NearestPointTakesTheFirstOfEqualsAndTheClosingEdge) {
  const TVHPolygonList two{TVHPolygon{Opened(Box(0, 0, 2, 2))}, TVHPolygon{Opened(Box(-4, 0, -2, 2))}};
  EXPECT_EQ(TSuckerInPartAlgo::CalcNearestPt(two, {-1, 1}), (TPoint2D{0, 1}));
  EXPECT_EQ(TSuckerInPartAlgo::CalcNearestPt(two, {-1.5, 1}), (TPoint2D{-2, 1}));
  EXPECT_THROW(TSuckerInPartAlgo::CalcNearestPt({}, {0, 0}), TRangeError);
}

TEST(Sucker, RefusesNumbersWithoutMeaning) {
  TPoint2D at;
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_THROW(TSuckerInPartAlgo::CalcSuckerPosInPart({Box(0, 0, 10, 10)}, inf, at), TArgumentError);
  EXPECT_THROW(TSuckerInPartAlgo::CalcSuckerPosInPart({Box(0, 0, 1e14, 10)}, 1, at), TArgumentError);
}

TEST(Sucker, DiscLiesInRandomParts) {
  int found = 0;
  ForEachSeed(44, [&](unsigned Seed) {
    TVHPolygon part = MakeShape(kShapeKinds[Seed % kShapeKinds.size()], 14, 50, Seed);
    const TPaths paths = PolygonOf(part);
    for (TVPolyline2D& contour : part) contour.push_back(contour.front());
    const double radius = 0.2 + Seed % 7;
    TPoint2D at;
    if (!TSuckerInPartAlgo::CalcSuckerPosInPart(part, radius, at)) return;
    ++found;
    const TIntPoint center = TPathUtils::CreateIntPoint(at, kPathScale);
    EXPECT_EQ(PlaceOf(center, paths), TPlace::Inside);
    EXPECT_GE(DistanceToBorder(center, paths) / kPathScale, radius - 1e-4);
  });
  EXPECT_GT(found, 10);
}

}  // namespace
}  // namespace platenest
