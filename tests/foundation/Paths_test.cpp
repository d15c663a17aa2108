#include "platenest/foundation/Paths.h"

#include <gmock/gmock.h>

#include <numbers>
#include <utility>

#include "platenest/foundation/Errors.h"

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
  EXPECT_EQ(TPathUtils::TotalLength({Square(9), Square(2)}), 72 + 16);
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

std::vector<Int64> Crossings(TPaths Contours, Int64 Level, bool Flag, Int64 Tol) {
  const std::vector<Int64> found = TPathUtils::CalcXByY(Contours, Level, Flag, Tol);
  for (TPath& path : Contours)
    for (TIntPoint& point : path) std::swap(point.X, point.Y);
  EXPECT_EQ(TPathUtils::CalcYByX(Contours, Level, Flag, Tol), found) << "the other axis";
  return found;
}

TEST(PathCrossings, EdgesThatMeetTheBandGiveTheirNearestPoint) {
  TPaths square{Square(100000)};
  EXPECT_THAT(Crossings(square, 0, false, 0), ElementsAre(100000)) << "without the closing edge";
  for (int repeats = 0; repeats < 2; ++repeats) {
    EXPECT_THAT(Crossings(square, 0, true, 0), ElementsAre(100000, -100000)) << "edge order";
    EXPECT_THAT(Crossings(square, 100001, true, 20), ElementsAre(100000, 100000, -100000, -100000))
        << "the end of a side, both ends of the upper edge, the end of the other side";
    TPathUtils::ConnectHeadTail(square);
  }
  EXPECT_THAT(Crossings(square, 100021, true, 20), IsEmpty());
  EXPECT_THAT(Crossings({{}, {{5, 0}}}, 0, true, 20), IsEmpty()) << "no edges";
  EXPECT_THAT(Crossings({{{0, -5}, {100, 5}, {100, -50}}}, 0, true, 5), ElementsAre(0, 100, 100, 0))
      << "an edge inside the band gives both ends, one that leaves it its crossing or nearest end";
}

TEST(PathCrossings, AreExactAndRoundTiesToEven) {
  EXPECT_THAT(Crossings({{{1, 0}, {2, 2}}, {{2, 2}, {3, 0}}, {{-2, 2}, {-1, 0}}}, 1, false, 0), ElementsAre(2, 2, -2));
  const Int64 far = Int64{1} << 61;
  EXPECT_THAT(Crossings({{{-far, -far + 1}, {far, far + 1}}}, 1, false, 0), ElementsAre(0));
  EXPECT_THAT(Crossings({{{far, -far}, {far - 2, far}}}, 0, false, 0), ElementsAre(far - 1));
}

}  // namespace
}  // namespace platenest
