#include "platenest/foundation/Polyline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "BoxContour.h"
#include "Contours.h"
#include "platenest/foundation/PolygonBasicAlgo.h"

namespace platenest {
namespace {

constexpr double kPi = std::numbers::pi;

TVPolyline2D Turned(TVPolyline2D Contour, double Angle) {
  for (TPoint2D& point : Contour) point = point.RotateBy(Angle);
  return Contour;
}

TVPolyline2D Repeated(TVPolyline2D Contour) {
  const TPoint2D first = Contour.First();
  Contour.push_back(first);
  return Contour;
}

TVPolyline2D GridContour(int Count, int Range) {
  TVPolyline2D contour;
  for (int i = 0; i < Count; ++i) contour.push_back(Point2D(Random(Range), Random(Range)));
  return contour;
}

bool IsAmong(const TPoint2D& Point, const TVPoint2DList& Points) {
  return std::ranges::count(Points, Point) > 0;
}

TEST(Line, NearestPointOfASegmentStaysOnIt) {
  double t = -1;
  EXPECT_DOUBLE_EQ((TVLine2D{{0, 0}, {10, 0}}.SegmentDistanceTo({12, 1}, t)), std::sqrt(5));
  EXPECT_DOUBLE_EQ((TVLine2D{{2, 2}, {2, 2}}.SegmentDistanceTo({5, 6}, t)), 5);
  EXPECT_EQ((TVLine2D{{0.1, 0.7}, {0.3, -0.9}}.EvalPoint(1).Y), -0.9);
}

TEST(Circle, MeetsALineInNoneOneOrTwoPoints) {
  const TCircle2D circle{{3, 4}, 2};
  for (const auto& [height, count] : {std::pair{4.0, 2}, {6.0, 1}, {6 + 0.9e-6, 1}, {6 - 1e-13, 1}, {6 + 2e-6, 0}})
    EXPECT_EQ(circle.Intersect({{9, height}, {0, height}}).Count, count) << height;
  EXPECT_EQ(circle.Intersect({{9, 4}, {0, 4}}).Points[0], (TPoint2D{5, 4})) << "in the direction of the line";
  EXPECT_EQ(circle.Intersect({{3, 4}, {3, 4}}).Count, 0) << "a line of one point has no direction";
}

TEST(Polyline, HalfTurnAreaAndDistance) {
  TVPolyline2D box = Box(1, 2, 5, 4);
  box.Mirror();
  EXPECT_TRUE(box.Area() == 8 && box.BoundBox().Left == -5) << "a half turn, no reflection";
  const TVPolyline2D far{{1e8, 1e8}, {1e8 + 0.25, 1e8}, {1e8 + 0.25, 1e8 + 0.25}};
  EXPECT_EQ(far.Area(), 0.03125) << "far from the origin no digit is lost";
  TPoint2D nearest;
  EXPECT_DOUBLE_EQ(Box(0, 0, 10, 10).DistTo({-2, 5}, nearest), 2) << "to the closing edge";
}

TEST(Polyline, ConvexContoursTurnOneWayRoundOnce) {
  const TVPolyline2D p = test::Circle(5, 1);
  const std::pair<TVPolyline2D, bool> cases[] = {
      {{{0, 0}, {1, 0}, {2, 0}, {2, 0}, {2, 2}}, true},              // vertex on an edge, point twice
      {Turned({{0, 0}, {1, 0}, {2, 0}, {2, 2}}, 0.3), true},         // the same with rounded coordinates
      {{{0, 0}, {2, 0}, {2, 2}, {1, 1.9999}, {0, 2}}, false},        // a shallow dent
      {{{0, 0}, {2, 2}, {2, 0}, {0, 2}}, false},                     // crosses itself
      {{p[0], p[2], p[4], p[1], p[3]}, false},                       // turns one way, but twice round
      {{{0, 0}, {4, 0}, {2, 0}, {2, 2}}, false},                     // folds back
      {{{0, 0}, {1, 0}, {-1, 2}, {-1, 1}, {0, 1}, {-1, 1}}, false},  // the same on its second way round
      {{{0, 0}, {4, 0}}, false}};
  for (const auto& [contour, expected] : cases) {
    TVPolyline2D other = contour;
    EXPECT_EQ(contour.IsConvexPolygon(), expected) << &contour - &cases[0].first;
    other.Reverse();
    EXPECT_EQ(other.IsConvexPolygon(), expected);
  }
}

TEST(Polyline, RectanglesAreStrictOnlyParallelToTheAxes) {
  const TVPolyline2D box = Box(-3, 2, 5, 4);
  for (const TVPolyline2D& contour : {box, Repeated(box), Turned(box, kPi / 2)}) EXPECT_TRUE(contour.IsRect(true));
  EXPECT_TRUE(Turned(box, 0.4).IsRect(false));
  EXPECT_FALSE(Turned(box, 1e-6).IsRect(true)) << "off by more than the tolerance at its far end";
  const TVPolyline2D others[] = {{{0, 0}, {4, 0}, {5, 3}, {1, 3}},   // parallelogram
                                 {{0, 0}, {1, 2}, {0, 4}, {-1, 2}},  // rhombus
                                 {{0, 0}, {2, 2}, {2, 0}, {0, 2}},   // corners in the wrong order
                                 Box(0, 0, 5, 0)};
  for (const TVPolyline2D& other : others) EXPECT_FALSE(other.IsRect(false)) << &other - others;
}

TEST(ConvexHull, IsAConvexRingOfInputPointsThatHoldsAll) {
  const TRandomScope seed(5);
  for (int round = 0; round < 400; ++round) {
    const TVPolyline2D points = GridContour(3 + Random(12), 1 + Random(8));
    TVPolyline2D hull = points;
    hull.ConvexHull(hull);
    for (int i = 0; i < hull.Count(); ++i) {
      EXPECT_TRUE(IsAmong(hull[i], points));
      const TPoint2D& next = hull[(i + 1) % hull.Count()];
      for (const TPoint2D& point : points) EXPECT_GE(TPoint2DUtils::IsLeft(hull[i], next, point), 0) << round;
      EXPECT_TRUE(hull.Count() < 3 || TPoint2DUtils::IsLeft(hull[i], next, hull[(i + 2) % hull.Count()]) > 0);
    }
  }
  TVPolyline2D hull;
  TVPolyline2D{{3, 3}, {1, 1}}.ConvexHull(hull);
  EXPECT_EQ(hull[0], (TPoint2D{3, 3})) << "two points stay as they are";
}

struct TCrossings {
  TVPoint2DList Points;
  TVLine2DList Lines;
};

TCrossings Cross(const TVPolyline2D& A, const TVPolyline2D& B) {
  TCrossings result;
  A.CrossWith(B, result.Points, result.Lines);
  return result;
}

//   +---+          points in the order of the receiver, which runs counter-clockwise from its lower left corner
//   | +-2-+
//   +-1-+ |
//     +---+
TEST(CrossWith, GivesPointsAlongTheReceiverAndOverlapsAsLinesWithoutTheirEnds) {
  const TVPolyline2D box = Box(0, 0, 2, 2);
  const TCrossings found = Cross(box, Box(1, -1, 3, 1));
  EXPECT_TRUE(found.Points.size() == 2 && found.Lines.empty());
  EXPECT_TRUE((found.Points[0] == TPoint2D{1, 0}) && (found.Points[1] == TPoint2D{2, 1}));
  const TCrossings beside = Cross(box, Box(2, 1, 4, 5));
  EXPECT_TRUE(beside.Points.empty() && beside.Lines.size() == 1);
  EXPECT_EQ(beside.Lines[0].EndPoint, (TPoint2D{2, 2})) << "in the direction of the receiver";
  const TCrossings tilted = Cross(TVPolyline2D{{5, 0}, {5.01, 5e-7}, {5, 1}}, Box(0, -9, 1000, 0));
  EXPECT_EQ(tilted.Lines.size(), 1u) << "a short edge within the tolerance of a long one";
  EXPECT_EQ(Cross(box, Box(2, 2, 4, 4)).Points.size(), 1u) << "corner to corner";
  EXPECT_EQ(Cross(box, TVPolyline2D{{0, 0}, {1, 3}, {-3, -0.5}}).Points.size(), 2u) << "at its first corner";
  EXPECT_TRUE(Cross(box, Box(2 + 2e-6, 0, 4, 4)).Points.empty());
}

TEST(CrossWith, IsTheSameFromBothSides) {
  const TRandomScope seed(8);
  TPoint2D nearest;
  for (int round = 0; round < 400; ++round) {
    const TVPolyline2D a = GridContour(3 + Random(4), 7);
    const TVPolyline2D b = GridContour(3 + Random(4), 7);
    const TCrossings ab = Cross(a, b);
    const TCrossings ba = Cross(Repeated(b), a);
    EXPECT_EQ(ab.Lines.size(), ba.Lines.size()) << round;
    for (const TPoint2D& point : ba.Points) EXPECT_TRUE(IsAmong(point, ab.Points)) << round;
    for (const TPoint2D& point : ab.Points) {
      EXPECT_TRUE(IsAmong(point, ba.Points)) << round;
      EXPECT_TRUE(a.DistTo(point, nearest) < 1e-6 && b.DistTo(point, nearest) < 1e-6) << round;
    }
  }
}

TEST(PolygonBasicAlgo, TangentsHaveTheWholeListBetweenThem) {
  const TVPolyline2D ring = test::Circle(17, 5);
  for (const TPoint2D& eye : test::Circle(50, 5.5)) {
    int right = -1, left = -1;
    TPolygonBasicAlgo::PointTangants(ring, eye, right, left);
    for (const TPoint2D& point : ring) {
      EXPECT_GE(TPoint2DUtils::IsLeft(eye, ring[right], point), 0);
      EXPECT_LE(TPoint2DUtils::IsLeft(eye, ring[left], point), 0);
    }
  }
}

TEST(PolygonBasicAlgo, SimplifyGivesPartsAndHolesFromLargeToSmallInTheDirectionOfTheInput) {
  const std::pair<TVPolyline2D, std::vector<double>> cases[] = {
      {{{0, 0}, {5, 0}, {5, -9}, {20, -9}, {20, 0}, {5, 0}, {5, 5}, {0, 5}}, {135, 25}},             // share a corner
      {{{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {5, 0}, {5, 5}, {0, 5}}, {81}},                      // wound twice
      {{{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {3, 3}, {3, 6}, {6, 6}, {6, 3}, {3, 3}}, {81, -9}},  // hole in touch
      {{{0, 0}, {5, 5}, {9, 9}}, {}},
      {{{0, 0}, {1e-6, 0}, {0, 1e-6}}, {}},  // below one unit
      {{}, {}},
  };
  for (auto [contour, areas] : cases) {
    for (const double sign : {1, -1}) {
      const TVPolyline2DList parts = TPolygonBasicAlgo::PolygonSimplify(contour, 100000);
      ASSERT_EQ(parts.size(), areas.size());
      for (std::size_t i = 0; i < parts.size(); ++i) EXPECT_DOUBLE_EQ(parts[i].Area(), sign * areas[i]);
      contour.Reverse();
    }
  }
}

TEST(HPolygon, CentroidHasTheHolesTakenOut) {
  const TVPolyline2D corner{{0, 0}, {4, 0}, {4, 2}, {2, 2}, {2, 4}, {0, 4}};  // 12 = 16 - 4
  TVHPolygon withHole{Box(0, 0, 4, 4), Box(2, 2, 4, 4)};
  for (const bool clockwise : {false, true}) {
    withHole.SetIsClockwise(clockwise);
    EXPECT_TRUE(withHole[0].IsClockwise() == clockwise && withHole[1].IsClockwise() != clockwise);
    withHole[0].SetIsClockwise(false);
    for (const TVHPolygon& polygon : {withHole, TVHPolygon{corner}, TVHPolygon{Repeated(corner)}})
      EXPECT_EQ(polygon.Gravity(), (TPoint2D{20.0 / 12, 20.0 / 12})) << "whatever the direction of the hole";
  }
  EXPECT_EQ((TVHPolygon{TVPolyline2D{{0, 0}, {0.3, 0.1}, {3, 1}}}.Gravity()), (TPoint2D{1.5, 0.5})) << "flat";
}

}  // namespace
}  // namespace platenest
