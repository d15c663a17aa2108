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

TPath RandomPath(int Count, int Range) {
  TPath path;
  for (int i = 0; i < Count; ++i)
    path.push_back(TPathUtils::CreateIntPoint(Random(2 * Range + 1) - Range, Random(2 * Range + 1) - Range));
  return path;
}

TEST(Paths, DrawingCoordinatesRoundToNearestEven) {
  EXPECT_EQ(TPathUtils::CreateIntPoint(Point2D(0.5, 1.5), 1), TIntPoint(0, 2));
  EXPECT_EQ(TPathUtils::CreateIntPoint(Point2D(2.5, -0.5), 1), TIntPoint(2, 0));
  EXPECT_EQ(TPathUtils::CreateIntPoint(Point2D(-1.000004, 1.000006), kPathScale), TIntPoint(-100000, 100001));
  EXPECT_THROW(TPathUtils::CreateIntPoint(Point2D(1e15, 0), kPathScale), TRangeError);
  for (const Int64 units : {Int64{1}, Int64{-123456789}, Int64{1073741823}}) {
    const TIntPoint point(units, -units);
    EXPECT_EQ(TPathUtils::CreateIntPoint(TPathUtils::CreatePoint2D(point, kPathScale), kPathScale), point);
  }
}

TEST(Paths, RepeatedClosingPointIsLeftOutAlsoWhenRoundingMakesIt) {
  EXPECT_EQ(TPathUtils::CreatePath(TVPoint2DList{{0, 0}, {1, 0}, {1, 1}, {0, 0}}, 10),
            (TPath{{0, 0}, {10, 0}, {10, 10}}));
  EXPECT_EQ(TPathUtils::CreatePath(TVPoint2DList{{0, 0}, {1, 0}, {1, 1}, {0.04, 0}}, 10).size(), 3u);
  EXPECT_EQ(TPathUtils::CreatePath(TVPoint2DList{{0, 0.4999999}, {1, 0}, {1, 1}, {0, 0.5000001}}, 1).size(), 3u)
      << "equal in the drawing, a unit apart as path points";
  EXPECT_EQ(TPathUtils::CreatePath(TVPoint2DList{{3, 4}}, 10), (TPath{{30, 40}}));
}

TEST(Paths, OuterContourComesFirstWhereverItStood) {
  const TVHPolygon polygon = TPathUtils::CreateHPolygon({Square(1), Square(7), Square(2)}, 1);
  ASSERT_EQ(polygon.size(), 3u);
  EXPECT_EQ(polygon[0].Area(), 196);
  EXPECT_EQ(polygon[1].Area(), 4);
  EXPECT_EQ(polygon[2].Area(), 16);
  EXPECT_TRUE(TPathUtils::CreateHPolygon({}, 1).empty());
}

TEST(Paths, AreaSumsSignedOrAbsolute) {
  TPath hole = Square(50000);
  ClipperLib::ReversePath(hole);
  const TPaths paths{Square(100000), hole};
  EXPECT_EQ(TPathUtils::Area(paths, 0), 3e10);
  EXPECT_EQ(TPathUtils::Area(paths, 1), 5e10);
  EXPECT_EQ(TPathUtils::TotalLength(paths), 1.2e6);
}

TEST(Paths, BoundBoxInPathAndDrawingUnits) {
  const TPaths paths{{{1, 2}, {3, 9}}, {}, {{-4, 5}}};
  const TIntRect box = TPathUtils::BoundBox(paths);
  EXPECT_EQ(box, (TIntRect{.Left = -4, .Right = 3, .Top = 9, .Bottom = 2}));
  EXPECT_EQ(box.ToRect(10).Top, 0.9);
  EXPECT_EQ(box.ToRect(10).Left, -0.4);
  EXPECT_FALSE(TPathUtils::BoundBox(TPaths{{}}).ToRect(kPathScale).IsValid());
}

TEST(Paths, DirectionsFollowTheFirstPathOrAreAllTheSame) {
  const TPath flat{{0, 0}, {5, 5}, {9, 9}};
  const auto signs = [](const TPaths& Paths) {
    std::vector<int> result;
    for (const TPath& path : Paths) result.push_back(Sign(ClipperLib::Area(path), 0.0));
    return result;
  };
  TPaths paths{Square(9), Square(2), flat, Square(3)};
  TPathUtils::SetIsClockwise(paths, false);
  EXPECT_THAT(signs(paths), ElementsAre(1, -1, 0, -1));
  EXPECT_EQ(paths[2], flat) << "no area, no direction";
  TPathUtils::SetIsClockwise(paths, true);
  EXPECT_THAT(signs(paths), ElementsAre(-1, 1, 0, 1));
  TPathUtils::SetIsClockwise(paths, false, true);
  EXPECT_THAT(signs(paths), ElementsAre(1, 1, 0, 1));
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
  EXPECT_EQ(TPathUtils::Rotate(paths, std::numbers::pi / 4)[0][0], TIntPoint(70711, 70711));
  EXPECT_EQ(TPathUtils::Zoom({{{250, 350}, {-150, 449}}}, 0.01), (TPaths{{{2, 4}, {-2, 4}}})) << "ties to even";
  TPaths all = paths;
  TPathUtils::PathsAddRange(all, paths);
  TPathUtils::PathsAddRange(all, TPaths{Square(1)});
  EXPECT_EQ(all, (TPaths{paths[0], paths[0], Square(1)}));
}

TEST(PathCrossings, EdgesThatMeetTheBandGiveTheirNearestPoint) {
  const TPaths square{Square(100000)};
  EXPECT_THAT(TPathUtils::CalcXByY(square, 0, true, 0), ElementsAre(100000, -100000)) << "edge order";
  EXPECT_THAT(TPathUtils::CalcXByY(square, 100001, true, 0), IsEmpty());
  EXPECT_THAT(TPathUtils::CalcXByY(square, 100001, true, 20), ElementsAre(100000, 100000, -100000, -100000))
      << "the end of a side, both ends of the upper edge, the end of the other side";
  EXPECT_THAT(TPathUtils::CalcXByY(square, 100021, true, 20), IsEmpty());
  EXPECT_THAT(TPathUtils::CalcXByY({{}, {{5, 0}}}, 0, true, 20), IsEmpty()) << "no edges";
  EXPECT_THAT(TPathUtils::CalcXByY({{{0, 0}, {10, 10}, {20, 0}}}, 10, true, 0), ElementsAre(10, 10))
      << "touched vertex";
  EXPECT_THAT(TPathUtils::CalcXByY({{{0, -5}, {100, 5}, {100, -50}}}, 0, true, 5), ElementsAre(0, 100, 100, 0))
      << "an edge inside the band gives both ends, one that leaves it its crossing or nearest end";
}

TEST(PathCrossings, FlagCountsTheClosingEdgeAndARepeatedPointChangesNothing) {
  TPaths paths{Square(10), Square(20)};
  EXPECT_THAT(TPathUtils::CalcXByY(paths, 0, false, 0), ElementsAre(10, 20));
  const std::vector<Int64> closed = TPathUtils::CalcXByY(paths, 0, true, 0);
  EXPECT_THAT(closed, ElementsAre(10, -10, 20, -20)) << "paths in order";
  TPathUtils::ConnectHeadTail(paths);
  EXPECT_EQ(TPathUtils::CalcXByY(paths, 0, true, 0), closed);
}

TEST(PathCrossings, AreExactAndRoundTiesToEven) {
  EXPECT_THAT(TPathUtils::CalcXByY({{{1, 0}, {2, 2}}}, 1, false, 0), ElementsAre(2));
  EXPECT_THAT(TPathUtils::CalcXByY({{{2, 2}, {3, 0}}}, 1, false, 0), ElementsAre(2));
  EXPECT_THAT(TPathUtils::CalcXByY({{{-2, 2}, {-1, 0}}}, 1, false, 0), ElementsAre(-2));
  const Int64 far = Int64{1} << 61;
  EXPECT_THAT(TPathUtils::CalcXByY({{{-far, -far + 1}, {far, far + 1}}}, 1, false, 0), ElementsAre(0));
  EXPECT_THAT(TPathUtils::CalcXByY({{{far, -far}, {far - 2, far}}}, 0, false, 0), ElementsAre(far - 1));
}

TEST(PathCrossings, BothAxesAgree) {
  const TRandomScope seed(11);
  for (int round = 0; round < 200; ++round) {
    const TPath path = RandomPath(3 + Random(8), 12);
    TPath turned = path;
    for (TIntPoint& point : turned) std::swap(point.X, point.Y);
    const int level = Random(27) - 13;
    const int tol = Random(3);
    EXPECT_EQ(TPathUtils::CalcYByX({turned}, level, true, tol), TPathUtils::CalcXByY({path}, level, true, tol));
  }
}

}  // namespace
}  // namespace platenest
