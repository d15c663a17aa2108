#include "platenest/foundation/Polyline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <set>
#include <utility>

#include "platenest/foundation/PolygonBasicAlgo.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

constexpr double kPi = std::numbers::pi;

TVPolyline2D Box(double Left, double Bottom, double Right, double Top) {
  return TVPolyline2D(TVRect2D(TPoint2D{Left, Bottom}, TPoint2D{Right, Top}));
}

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

std::set<std::pair<double, double>> AsSet(const TVPoint2DList& Points) {
  std::set<std::pair<double, double>> result;
  for (const TPoint2D& point : Points) result.emplace(std::round(point.X * 1e5) / 1e5, std::round(point.Y * 1e5) / 1e5);
  return result;
}

TEST(Line, NearestPointOfASegmentStaysOnIt) {
  double t = -1;
  EXPECT_DOUBLE_EQ((TVLine2D{{0, 0}, {10, 0}}.SegmentDistanceTo({12, 1}, t)), std::sqrt(5));
  EXPECT_EQ(t, 1);
  EXPECT_DOUBLE_EQ((TVLine2D{{2, 2}, {2, 2}}.SegmentDistanceTo({5, 6}, t)), 5);
  EXPECT_EQ((TVLine2D{{0.1, 0.7}, {0.3, -0.9}}.EvalPoint(1).Y), -0.9);
}

TEST(Circle, MeetsALineInNoneOneOrTwoPointsAlongTheLine) {
  const TCircle2D circle{{3, 4}, 2};
  const TIntersectPoint2D two = circle.Intersect({{-100, 4}, {-99, 4}});
  ASSERT_EQ(two.Count, 2);
  EXPECT_TRUE((two.Points[0] == TPoint2D{1, 4}) && (two.Points[1] == TPoint2D{5, 4}));
  for (const double height : {6.0, 6.0 + 0.9e-6, 6.0 - 1e-13, 6 + 2e-6})
    EXPECT_EQ(circle.Intersect({{9, height}, {0, height}}).Count, height > 6.000001 ? 0 : 1) << height;
  EXPECT_EQ(circle.Intersect({{3, 4}, {3, 4}}).Count, 0) << "a line of one point has no direction";
}

TEST(Polyline, DirectionAndHalfTurn) {
  TVPolyline2D box = Box(1, 2, 5, 4);
  EXPECT_EQ(box.Area(), -8);
  box.SetIsClockwise(false);
  box.Mirror();
  EXPECT_EQ(box.Area(), 8) << "a half turn, no reflection";
  EXPECT_EQ(box.BoundBox().Left, -5);
  const TVPolyline2D far{{1e8, 1e8}, {1e8 + 0.25, 1e8}, {1e8 + 0.25, 1e8 + 0.25}};
  EXPECT_EQ(far.Area(), 0.03125) << "far from the origin no digit is lost";
}

TEST(Polyline, ConvexContoursTurnOneWayRoundOnce) {
  TVPolyline2D star;
  for (int i = 0; i < 5; ++i) star.push_back(TPoint2D{1, 0}.RotateBy(i * 4 * kPi / 5));
  const std::pair<TVPolyline2D, bool> cases[] = {
      {Box(0, 0, 3, 1), true},
      {{{0, 0}, {1, 0}, {2, 0}, {2, 0}, {2, 2}}, true},              // vertex on an edge, point twice
      {Turned({{0, 0}, {1, 0}, {2, 0}, {2, 2}}, 0.3), true},         // the same with rounded coordinates
      {{{0, 0}, {2, 0}, {2, 2}, {1, 1.9999}, {0, 2}}, false},        // a shallow dent
      {{{0, 0}, {2, 2}, {2, 0}, {0, 2}}, false},                     // crosses itself
      {star, false},                                                 // turns one way, but twice round
      {{{0, 0}, {4, 0}, {2, 0}, {2, 2}}, false},                     // folds back
      {{{0, 0}, {1, 0}, {-1, 2}, {-1, 1}, {0, 1}, {-1, 1}}, false},  // the same on its second way round
      {{{0, 0}, {4, 0}}, false},
      {{}, false}};
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
    TVPolyline2D hull;
    points.ConvexHull(hull);
    for (const TPoint2D& corner : hull) EXPECT_TRUE(AsSet(points).contains({corner.X, corner.Y}));
    for (int i = 0; i < hull.Count(); ++i)
      for (const TPoint2D& point : points)
        EXPECT_GE(TPoint2DUtils::IsLeft(hull[i], hull[(i + 1) % hull.Count()], point), 0) << round;
    for (int i = 0; hull.Count() > 2 && i < hull.Count(); ++i)
      EXPECT_GT(TPoint2DUtils::IsLeft(hull[i], hull[(i + 1) % hull.Count()], hull[(i + 2) % hull.Count()]), 0);
  }
}

TEST(ConvexHull, GoesIntoItselfAndKeepsTwoPoints) {
  TVPolyline2D hull = Repeated(Box(0, 0, 1, 1));
  hull.ConvexHull(hull);
  EXPECT_EQ(hull.size(), 4u);
  TVPolyline2D{{3, 3}, {1, 1}}.ConvexHull(hull);
  EXPECT_EQ(hull[0], (TPoint2D{3, 3}));
}

TEST(Polyline, DistanceCountsTheClosingEdge) {
  TPoint2D nearest;
  EXPECT_DOUBLE_EQ(Box(0, 0, 10, 10).DistTo({-2, 5}, nearest), 2);
  EXPECT_EQ(nearest, (TPoint2D{0, 5}));
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

//   +---+          points in the order of the receiver, which runs clockwise from its top left corner
//   | +-1-+
//   +-2-+ |
//     +---+
TEST(CrossWith, GivesPointsAlongTheReceiverAndOverlapsAsLinesWithoutTheirEnds) {
  const TVPolyline2D box = Box(0, 0, 2, 2);
  const TCrossings found = Cross(box, Box(1, -1, 3, 1));
  EXPECT_TRUE(found.Points.size() == 2 && found.Lines.empty());
  EXPECT_TRUE((found.Points[0] == TPoint2D{2, 1}) && (found.Points[1] == TPoint2D{1, 0}));
  const TCrossings beside = Cross(box, Box(2, 1, 4, 5));
  EXPECT_TRUE(beside.Points.empty() && beside.Lines.size() == 1);
  EXPECT_EQ(beside.Lines[0].EndPoint, (TPoint2D{2, 1})) << "in the direction of the receiver";
  const TCrossings tilted = Cross(TVPolyline2D{{5, 0}, {5.01, 5e-7}, {5, 1}}, Box(0, -9, 1000, 0));
  EXPECT_EQ(tilted.Lines.size(), 1u) << "a short edge within the tolerance of a long one";
  EXPECT_EQ(Cross(box, Box(2, 2, 4, 4)).Points.size(), 1u) << "corner to corner";
  EXPECT_EQ(Cross(box, TVPolyline2D{{0, 2}, {1, -1}, {-3, 2.5}}).Points.size(), 2u) << "at its first corner";
  EXPECT_TRUE(Cross(box, Box(2 + 2e-6, 0, 4, 4)).Points.empty());
}

TEST(CrossWith, IsTheSameFromBothSides) {
  const TRandomScope seed(8);
  int points = 0;
  int lines = 0;
  for (int round = 0; round < 400; ++round) {
    const TVPolyline2D a = GridContour(3 + Random(4), 7);
    const TVPolyline2D b = GridContour(3 + Random(4), 7);
    const TCrossings ab = Cross(a, b);
    const TCrossings ba = Cross(Repeated(b), a);
    EXPECT_EQ(AsSet(ab.Points), AsSet(ba.Points)) << round;
    EXPECT_EQ(ab.Lines.size(), ba.Lines.size()) << round;
    TPoint2D nearest;
    for (const TPoint2D& point : ab.Points) {
      EXPECT_LT(a.DistTo(point, nearest), 1e-6);
      EXPECT_LT(b.DistTo(point, nearest), 1e-6);
    }
    points += Size(ab.Points);
    lines += Size(ab.Lines);
  }
  EXPECT_GT(points, 400);
  EXPECT_GT(lines, 20);
}

TEST(PolygonBasicAlgo, TangentsHaveTheWholeListBetweenThem) {
  std::vector<TPoint2D> ring;
  for (int i = 0; i < 17; ++i) ring.push_back({5 * std::cos(2 * kPi * i / 17), 3 * std::sin(2 * kPi * i / 17)});
  for (int i = 0; i < 50; ++i) {
    const double angle = 0.1 + 2 * kPi * i / 50;
    const TPoint2D eye{5.5 * std::cos(angle), 4 * std::sin(angle)};
    int right = -1, left = -1;
    TPolygonBasicAlgo::PointTangants(ring, eye, right, left);
    for (const TPoint2D& point : ring) {
      EXPECT_GE(TPoint2DUtils::IsLeft(eye, ring[right], point), 0) << i;
      EXPECT_LE(TPoint2DUtils::IsLeft(eye, ring[left], point), 0) << i;
    }
  }
}

struct TRepair {
  const char* Name;
  TVPolyline2D Contour;
  std::vector<double> Areas;
};

TEST(PolygonBasicAlgo, SimplifyGivesPartsAndHolesFromLargeToSmallInTheDirectionOfTheInput) {
  const TRepair cases[] = {
      {"boxes that share a corner", {{0, 0}, {5, 0}, {5, -9}, {20, -9}, {20, 0}, {5, 0}, {5, 5}, {0, 5}}, {135, 25}},
      {"wound twice", {{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {5, 0}, {5, 5}, {0, 5}}, {81}},
      {"hole in touch", {{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {3, 3}, {3, 6}, {6, 6}, {6, 3}, {3, 3}}, {81, -9}},
      {"flat", {{0, 0}, {5, 5}, {9, 9}}, {}},
      {"below one unit", {{0, 0}, {1e-6, 0}, {0, 1e-6}}, {}},
      {"empty", {}, {}},
  };
  for (TRepair c : cases) {
    for (const double sign : {1, -1}) {
      const TVPolyline2DList parts = TPolygonBasicAlgo::PolygonSimplify(c.Contour, 100000);
      ASSERT_EQ(parts.size(), c.Areas.size()) << c.Name;
      for (std::size_t i = 0; i < parts.size(); ++i) EXPECT_DOUBLE_EQ(parts[i].Area(), sign * c.Areas[i]) << c.Name;
      c.Contour.Reverse();
    }
  }
}

TEST(HPolygon, CentroidHasTheHolesTakenOut) {
  const TVPolyline2D corner{{0, 0}, {4, 0}, {4, 2}, {2, 2}, {2, 4}, {0, 4}};  // 12 = 16 - 4
  TVHPolygon withHole{Box(0, 0, 4, 4), Box(2, 2, 4, 4)};
  for (const bool clockwise : {false, true}) {
    withHole[1].SetIsClockwise(clockwise);
    for (const TVHPolygon& polygon : {withHole, TVHPolygon{corner}, TVHPolygon{Repeated(corner)}})
      EXPECT_EQ(polygon.Gravity(), (TPoint2D{20.0 / 12, 20.0 / 12})) << "whatever the direction of the hole";
  }
  withHole.SetIsClockwise(true);
  EXPECT_TRUE(withHole[0].IsClockwise() && !withHole[1].IsClockwise()) << "holes run against their outer contour";
  EXPECT_EQ((TVHPolygon{TVPolyline2D{{0, 0}, {0.3, 0.1}, {3, 1}}}.Gravity()), (TPoint2D{1.5, 0.5})) << "flat";
}

}  // namespace
}  // namespace platenest
