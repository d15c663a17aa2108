#include <gtest/gtest.h>

#include "BoxContour.h"
#include "ForEachSeed.h"
#include "Region.h"
#include "Shapes.h"
#include "platenest/foundation/Errors.h"
#include "platenest/services/arrayInfo.h"

namespace platenest {
namespace {

using TSucker = TSuckerInPartAlgo;

TVPolyline2D Closed(TVPolyline2D Line) {
  Line.push_back(TPoint2D(Line.front()));
  return Line;
}

// Only the first contour is asked whether it is closed: an open outline means no place, an open hole is a hole.
TEST(Sucker, CentroidElseNearestPointElseNone) {
  const TVPolyline2D open = Box(0, 0, 10, 10);
  const TVPolyline2D hole = Box(4, 4, 6, 6);
  TPoint2D at{-1, -1};
  for (const TVHPolygon& part : {TVHPolygon{}, TVHPolygon{open, Closed(hole)}})
    EXPECT_FALSE(TSucker::CalcSuckerPosInPart(part, 1, at));
  EXPECT_FALSE(TSucker::CalcSuckerPosInPart({Closed(open)}, 5.01, at));
  EXPECT_EQ(at.X, -1);
  ASSERT_TRUE(TSucker::CalcSuckerPosInPart({Closed(open)}, 2, at));
  EXPECT_EQ(at, (TPoint2D{5, 5}));
  ASSERT_TRUE(TSucker::CalcSuckerPosInPart({Closed(open), hole}, 1, at));
  EXPECT_NEAR(std::max(std::fabs(at.X - 5), std::fabs(at.Y - 5)), 2, 1e-5);
  // The first of equals, here on the closing edge.
  EXPECT_EQ(TSucker::CalcNearestPt({{open}, {Box(-14, 0, -4, 10)}}, {-2, 5}), (TPoint2D{0, 5}));
  EXPECT_THROW(TSucker::CalcSuckerPosInPart({Closed(open)}, std::numeric_limits<double>::infinity(), at),
               TArgumentError);
  EXPECT_THROW(TSucker::CalcSuckerPosInPart({Closed(Box(0, 0, 1e14, 10))}, 1, at), TArgumentError);
}

TEST(Sucker, DiscLiesInRandomParts) {
  int found = 0;
  ForEachSeed(44, [&](unsigned Seed) {
    TVHPolygon part = MakeShape(kShapeKinds[Seed % kShapeKinds.size()], 14, 50, Seed);
    const TPaths paths = PolygonOf(part);
    part.front() = Closed(part.front());
    const double radius = 0.2 + Seed % 7;
    TPoint2D at;
    if (!TSucker::CalcSuckerPosInPart(part, radius, at)) return;
    ++found;
    const TIntPoint center = TPathUtils::CreateIntPoint(at, kPathScale);
    EXPECT_EQ(PlaceOf(center, paths), TPlace::Inside);
    EXPECT_GE(DistanceToBorder(center, paths) / kPathScale, radius - 1e-4);
  });
  EXPECT_GT(found, 10);
}

}  // namespace
}  // namespace platenest
