#include "platenest/foundation/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TPath Square(Int64 Half) {
  return {{-Half, -Half}, {Half, -Half}, {Half, Half}, {-Half, Half}};
}

TEST(Paths, DrawingCoordinatesRoundToNearestEven) {
  EXPECT_EQ(TPathUtils::CreateIntPoint(Point2D(2.5, -0.5), 1), TIntPoint(2, 0));
  EXPECT_EQ(TPathUtils::CreateIntPoint(Point2D(-1.000004, 1.000006), kPathScale), TIntPoint(-100000, 100001));
  EXPECT_THROW(TPathUtils::CreateIntPoint(Point2D(1e15, 0), kPathScale), TRangeError);
}

TEST(Paths, RepeatedClosingPointIsLeftOutAlsoWhenRoundingMakesIt) {
  EXPECT_EQ(TPathUtils::CreatePath(TVPoint2DList{{0, 0}, {1, 0}, {1, 1}, {0.04, 0}}, 10).size(), 3u);
  EXPECT_EQ(TPathUtils::CreatePath(TVPoint2DList{{0, 0.4999999}, {1, 0}, {1, 1}, {0, 0.5000001}}, 1).size(), 3u)
      << "equal in the drawing, a unit apart as path points";
}

TEST(Paths, OuterContourComesFirstWhereverItStood) {
  const TVHPolygon polygon = TPathUtils::CreateHPolygon({Square(1), Square(7), Square(2)}, 1);
  EXPECT_THAT((std::vector{polygon[0].Area(), polygon[1].Area(), polygon[2].Area()}), ElementsAre(196, 4, 16));
}

TEST(Paths, DirectionsFollowTheFirstPathOrAreAllTheSame) {
  const TPath flat{{0, 0}, {5, 5}, {9, 9}};
  TPaths paths{Square(9), Square(2), flat};
  const auto areas = [&] { return TPathUtils::Area({paths[0]}, 0) + 1000 * TPathUtils::Area({paths[1]}, 0); };
  TPathUtils::SetIsClockwise(paths, false);
  EXPECT_EQ(areas(), 324 - 16000);
  EXPECT_EQ(paths[2], flat) << "no area, no direction";
  TPathUtils::SetIsClockwise(paths, true);
  EXPECT_EQ(areas(), -324 + 16000);
  EXPECT_EQ(TPathUtils::Area(paths, 1), 340) << "absolute";
  TPathUtils::SetIsClockwise(paths, false, true);
  EXPECT_EQ(areas(), 324 + 16000);
}

TEST(Paths, HeadAndTailAreConnectedOnce) {
  TPaths paths{Square(1), {{7, 7}}, {}};
  for (int i = 0; i < 2; ++i) TPathUtils::ConnectHeadTail(paths);
  EXPECT_EQ(paths, (TPaths{{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}, {-1, -1}}, {{7, 7}}, {}}));
}

TEST(Paths, MovedTurnedAndScaledCopies) {
  const TPaths paths{{{100000, 0}, {3, -7}}};
  EXPECT_EQ(TPathUtils::Translate(paths, {-3, 7}), (TPaths{{{99997, 7}, {0, 0}}}));
  EXPECT_EQ(TPathUtils::Rotate(paths, std::numbers::pi / 2), (TPaths{{{0, 100000}, {7, 3}}}));
  EXPECT_EQ(TPathUtils::Zoom({{{250, 350}, {-150, 449}}}, 0.01), (TPaths{{{2, 4}, {-2, 4}}})) << "ties to even";
}

TEST(PathCrossings, EdgesThatMeetTheBandGiveTheirNearestPoint) {
  const TPaths square{Square(100000)};
  EXPECT_THAT(TPathUtils::CalcXByY(square, 0, true, 0), ElementsAre(100000, -100000)) << "edge order";
  EXPECT_THAT(TPathUtils::CalcXByY(square, 0, false, 0), ElementsAre(100000)) << "without the closing edge";
  EXPECT_THAT(TPathUtils::CalcXByY(square, 100001, true, 20), ElementsAre(100000, 100000, -100000, -100000))
      << "the end of a side, both ends of the upper edge, the end of the other side";
  EXPECT_THAT(TPathUtils::CalcXByY(square, 100021, true, 20), IsEmpty());
  EXPECT_THAT(TPathUtils::CalcXByY({{}, {{5, 0}}}, 0, true, 20), IsEmpty()) << "no edges";
  EXPECT_THAT(TPathUtils::CalcXByY({{{0, -5}, {100, 5}, {100, -50}}}, 0, true, 5), ElementsAre(0, 100, 100, 0))
      << "an edge inside the band gives both ends, one that leaves it its crossing or nearest end";
}

TEST(PathCrossings, AreExactAndRoundTiesToEven) {
  EXPECT_THAT(TPathUtils::CalcXByY({{{1, 0}, {2, 2}}, {{2, 2}, {3, 0}}, {{-2, 2}, {-1, 0}}}, 1, false, 0),
              ElementsAre(2, 2, -2));
  const Int64 far = Int64{1} << 61;
  EXPECT_THAT(TPathUtils::CalcXByY({{{-far, -far + 1}, {far, far + 1}}}, 1, false, 0), ElementsAre(0));
  EXPECT_THAT(TPathUtils::CalcXByY({{{far, -far}, {far - 2, far}}}, 0, false, 0), ElementsAre(far - 1));
}

TEST(PathCrossings, BothAxesAgree) {
  const TRandomScope seed(11);
  for (int round = 0; round < 200; ++round) {
    TPath path, turned;
    for (int i = Random(8) + 3; i > 0; --i) path.emplace_back(Random(25) - 12, Random(25) - 12);
    for (const TIntPoint& point : path) turned.emplace_back(point.Y, point.X);
    const int level = Random(27) - 13;
    const std::vector<Int64> found = TPathUtils::CalcXByY({path}, level, true, round % 3);
    EXPECT_EQ(TPathUtils::CalcYByX({turned}, level, true, round % 3), found);
    path.push_back(TIntPoint(path[0]));
    EXPECT_EQ(TPathUtils::CalcXByY({path}, level, true, round % 3), found) << "a repeated point changes nothing";
  }
}

}  // namespace
}  // namespace platenest
