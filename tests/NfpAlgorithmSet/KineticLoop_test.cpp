#include "platenest/NfpAlgorithmSet/KineticLoop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "Contours.h"
#include "Shapes.h"
#include "platenest/foundation/DiscRoller.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Simplify.h"

namespace platenest {
namespace {

using testing::ElementsAre;

TKMPLoop LoopOf(TVPolyline2D Contour) {
  TKMPLoop loop;
  loop.Initialize(Contour);
  return loop;
}

TVPolyline2D Reversed(TVPolyline2D Contour) {
  Contour.Reverse();
  return Contour;
}

TVPolyline2D UnitSquare() {
  return {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
}

std::vector<int> Angles(const TKMPLoop& Loop) {
  std::vector<int> angles;
  for (int i = 0; i < Loop.Count(); ++i) angles.push_back(Loop[i].FAngle);
  return angles;
}

int ClockwiseTurns(const TKMPLoop& Loop) {
  int count = 0;
  for (int i = 0; i < Loop.Count(); ++i)
    for (const TKMPEdge& edge : Loop.Chain(i)) count += edge.FIsConvex;
  return count;
}

TEST(KineticLoop, SquareHasFourDirectionsOfLength100) {
  const TKMPLoop loop = LoopOf(UnitSquare());
  EXPECT_EQ(loop.FCount(), 4);
  EXPECT_THAT(Angles(loop), ElementsAre(0, QUARTER_TURN_ANGLE, HALF_TURN_ANGLE, 471238898));
  EXPECT_DOUBLE_EQ(loop.Area(), 1);
  for (int i = 0; i < 4; ++i) {
    EXPECT_DOUBLE_EQ(loop[i].FDirectionVector.Mag(), 100);
    EXPECT_DOUBLE_EQ(loop[i].GetLength(), 1);
    EXPECT_EQ(&loop.Next(loop[i]), &loop[loop.NextEdge(i, true)]) << "a square runs in the order of its directions";
  }
}

TEST(KineticLoop, ClockwiseTurnsAreTheMarkedOnes) {
  EXPECT_EQ(ClockwiseTurns(LoopOf(UnitSquare())), 0);
  EXPECT_EQ(ClockwiseTurns(LoopOf(Reversed(UnitSquare()))), 4);
  const TKMPLoop angle = LoopOf({{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}});
  EXPECT_EQ(angle.Count(), 4);
  EXPECT_EQ(angle.FCount(), 6);
  ASSERT_EQ(ClockwiseTurns(angle), 1);
  EXPECT_FALSE(angle.IsConvex());
  for (int i = 0; i < angle.Count(); ++i)
    for (const TKMPEdge& edge : angle.Chain(i))
      EXPECT_EQ(edge.FIsConvex, edge.FLocation == Point2D(1, 1)) << "the mark stands at the edge after the turn";
}

// Edges of one direction: the first along the contour leads, the others follow last to first.
//    __    __    __
//   |  |__|  |__|  |
//   |______________|
TEST(KineticLoop, SiblingsStandNewestFirst) {
  const TKMPLoop loop =
      LoopOf({{0, 0}, {10, 0}, {10, 5}, {8, 5}, {8, 3}, {6, 3}, {6, 5}, {4, 5}, {4, 3}, {2, 3}, {2, 5}, {0, 5}});
  ASSERT_EQ(loop.Count(), 4);
  EXPECT_EQ(loop.FCount(), 12);
  std::vector<double> starts;
  for (const TKMPEdge& edge : loop.Chain(2)) starts.push_back(edge.FLocation.X);
  EXPECT_THAT(starts, ElementsAre(10, 2, 4, 6, 8));
  EXPECT_EQ(loop.Chain(0).size(), 1u);
}

TEST(KineticLoop, ClosingPointMakesNoDifferenceAndIsDeletedFromTheInput) {
  const TKMPLoop open = LoopOf({{3, 1}, {7, 2}, {4, 6}});
  for (const double gap : {0.0, 0.0009, -0.0009}) {
    TVPolyline2D closed{{3, 1}, {7, 2}, {4, 6}, {3 + gap, 1 - gap}};
    TKMPLoop loop;
    loop.Initialize(closed);
    EXPECT_EQ(closed.size(), 3u);
    EXPECT_EQ(Angles(loop), Angles(open));
  }
  TVPolyline2D apart{{3, 1}, {7, 2}, {4, 6}, {3.002, 1.001}};
  EXPECT_EQ(LoopOf(apart).FCount(), 4);
}

struct TCleaning {
  const char* Name;
  TVPolyline2D Contour;
  int Edges;
};

TEST(KineticLoop, CleaningDropsShortEdgesAndStraightVertices) {
  const TCleaning cases[] = {
      {"flat turn", {{0, 0}, {5, 3e-5}, {10, 0}, {10, 10}, {0, 10}}, 4},
      {"turn beyond the limit", {{0, 0}, {5, 5e-5}, {10, 0}, {10, 10}, {0, 10}}, 5},
      {"short edge", {{0, 0}, {10, 0}, {10, 10}, {9.9995, 10.0005}, {0, 10}}, 4},
      {"edge of the limit", {{0, 0}, {10, 0}, {10, 10}, {9.999, 10.0002}, {0, 10}}, 5},
      {"fold-back", {{0, 0}, {5, 0}, {15, 0}, {10, 0}, {10, 10}, {0, 10}}, 4},
      {"last vertex straight, where the walk began", {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}}, 4},
      {"first vertex straight", {{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}, 4},
      {"first and last straight", {{0, 2}, {0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}}, 4},
      {"first, second and last straight", {{0, 4}, {0, 2}, {0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 8}, {0, 5}}, 4},
      {"fold-back over the start", {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, -5}}, 4},
      {"closing edge of no length", {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {0, 0}}, 4},
      {"short closing edge, spared", {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {4e-4, 4e-4}, {2e-4, 1e-4}}, 5},
  };
  for (const TCleaning& c : cases) {
    EXPECT_EQ(LoopOf(c.Contour).FCount(), c.Edges) << c.Name;
    EXPECT_NEAR(LoopOf(c.Contour).GetPolyline().Area(), c.Contour.Area(), 0.02) << c.Name;
  }
}

// A removed vertex is the end of the edge looked at, so of a cluster the first one stays.
TEST(KineticLoop, FirstOfACloseClusterStays) {
  const TKMPLoop loop = LoopOf({{0, 0}, {10, 0}, {10.0006, 0.0001}, {10.0003, 0.0005}, {10, 10}, {0, 10}});
  ASSERT_EQ(loop.FCount(), 4);
  bool isKept = false;
  for (const TPoint2D& vertex : loop.GetPolyline()) isKept |= vertex.X == 10 && vertex.Y == 0;
  EXPECT_TRUE(isKept);
}

TEST(KineticLoop, DirectionJustBelowAFullTurnIsZero) {
  const TKMPLoop loop = LoopOf({{0, 0}, {10, -1e-8}, {10, 10}});
  EXPECT_EQ(loop[0].FAngle, 0);
  EXPECT_EQ(loop.FindFirstEqualLarger(FULL_TURN_ANGLE - 1), -1);
  EXPECT_EQ(loop.NextEdge(0, false), 2);
}

int FirstEqualLargerByScan(const TKMPLoop& Loop, int Angle) {
  for (int i = 0; i < Loop.Count(); ++i)
    if (Loop[i].FAngle >= Angle) return i;
  return -1;
}

// Table and ring tell of the same contour.
TEST(KineticLoop, RandomLoopsHoldTheirContour) {
  const TRandomScope seed(2);
  for (int round = 0; round < 50; ++round) {
    TVPolyline2D contour = test::Star(5 + Random(100), 30, 0.5);
    contour.Translate({700, -300});
    if (round % 2 == 0) contour.Reverse();
    const TKMPLoop loop = LoopOf(contour);
    const TVPolyline2D polyline = loop.GetPolyline();
    ASSERT_EQ(loop.FCount(), contour.Count());
    ASSERT_EQ(polyline.Count(), loop.FCount() + 1);
    EXPECT_NEAR(polyline.Area(), contour.Area(), 1e-9);
    EXPECT_EQ(loop.Area(), contour.Area());
    EXPECT_EQ(polyline.front().X, loop[0].FLocation.X);
    int edges = 0;
    for (int i = 0; i < loop.Count(); ++i) {
      EXPECT_TRUE(i == 0 || loop[i - 1].FAngle < loop[i].FAngle);
      for (const int angle : {loop[i].FAngle - 1, loop[i].FAngle, loop[i].FAngle + 1})
        EXPECT_EQ(loop.FindFirstEqualLarger(angle), FirstEqualLargerByScan(loop, angle));
      for (const TKMPEdge& edge : loop.Chain(i)) {
        const TPoint2D way = loop.Next(edge).FLocation - edge.FLocation;
        EXPECT_NEAR(way.CrossMul(edge.FDirectionVector), 0, 1e-9);
        EXPECT_NEAR(way.DotMul(edge.FDirectionVector), 100 * edge.FLength, 1e-9);
        EXPECT_LE(std::abs(way.Angle() * 1e8 - edge.FAngle), 0.5001);
        ++edges;
      }
    }
    EXPECT_EQ(edges, loop.FCount());
    EXPECT_TRUE(loop.GetBoundbox().SizeEquals(contour.BoundBox(), 0));
  }
}

TEST(KineticLoop, GivenAreaIsKept) {
  TVPolyline2D contour = UnitSquare();
  TKMPLoop loop;
  loop.SetArea(-7);
  loop.Initialize(contour);
  EXPECT_EQ(loop.Area(), -7);
  EXPECT_DOUBLE_EQ(loop.ToConvexLoop().Area(), 1) << "a stand-in has its own";
  TKMPLoop unknown;
  unknown.SetArea(1e-12);
  unknown.Initialize(contour);
  EXPECT_DOUBLE_EQ(unknown.Area(), 1);
}

TEST(KineticLoop, NeedleBecomesItsInflatedBox) {
  const TRandomScope seed(3);
  for (int round = 0; round < 200; ++round) {
    const TPoint2D at{test::Uniform(-900, 900), test::Uniform(-900, 900)};
    const TPoint2D along = Random(2) == 0 ? TPoint2D{10, 0} : TPoint2D{0, 10};
    const TKMPLoop loop = LoopOf({at, at + along, at + along * 0.5});
    ASSERT_EQ(loop.FCount(), 4) << at.X << " " << at.Y;
    EXPECT_NEAR(loop.GetBoundbox().Area(), 10.001 * 0.001, 1e-9);
    EXPECT_GT(loop.GetPolyline().Area(), 0);
  }
}

TEST(KineticLoop, WhatCannotBeRepairedRaisesTheText) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const TVPolyline2D hopeless[] = {{},
                                   {{5, 5}},
                                   {{0, 0}, {1000, 0.005}, {2000, 0}},
                                   {{0, 0}, {10, 0}, {nan, 10}},
                                   {{0, 0}, {1e300, 0}, {1e300, 1e300}, {0, -1e300}}};
  for (TVPolyline2D contour : hopeless) {
    TKMPLoop loop = LoopOf(UnitSquare());
    try {
      loop.Initialize(contour);
      FAIL();
    } catch (const TNestError& error) {
      EXPECT_STREQ(error.what(),
                   "\xE5\x9B\xBE\xE5\xBD\xA2\xE5\xAD\x98\xE5\x9C\xA8\xE9\x87\x8D\xE5\xA4\x8D"
                   "\xE8\xBE\xB9\xE6\x88\x96\xE8\x80\x85\xE8\x87\xAA\xE4\xBA\xA4");
    }
    EXPECT_EQ(loop.FCount(), 4) << "the edges are as they were";
  }
}

TEST(KineticLoop, ParallelWithinTheToleranceCountsOnRequest) {
  TKMPEdge edge;
  TKMPEdge other;
  double mul = 0;
  edge.FDirectionVector = {100, 0};
  for (const double lift : {0.9e-9, -0.9e-9}) {
    other.FDirectionVector = {100, lift};
    EXPECT_TRUE(edge.IsLeft(other, true, mul) && edge.isRight(other, true, mul));
    EXPECT_FALSE(edge.IsLeft(other, false, mul) || edge.isRight(other, false, mul));
    EXPECT_DOUBLE_EQ(mul, 100 * lift);
  }
  other.FDirectionVector = {100, 1.1e-9};
  EXPECT_TRUE(edge.IsLeft(other, false, mul));
  EXPECT_FALSE(edge.isRight(other, true, mul));
}

TEST(KineticLoop, ConvexLoopIsThinnedByItsSize) {
  EXPECT_EQ(LoopOf(test::Circle(600, 300)).ToConvexLoop().FCount(), 600);
  for (const auto& [count, tol] : {std::pair{1200, 0.012}, {3600, 0.02}, {7200, 0.02}}) {
    const TVPolyline2D circle = test::Circle(count, 300);
    const int edges = LoopOf(circle).ToConvexLoop().FCount();
    TVPolyline2D hull;
    circle.ConvexHull(hull);
    EXPECT_EQ(edges, LoopOf(TVPolyline2D(DPSimplify(hull, tol, false))).FCount()) << count;
  }
  EXPECT_GT(LoopOf(Reversed(test::Circle(50, 10))).ToConvexLoop().Area(), 0) << "counter-clockwise, whatever came";
}

TEST(KineticLoop, SmallContoursTakeNoHull) {
  const TRandomScope seed(4);
  const TVPolyline2D nineteen = test::Star(19, 10, 0.3);
  const TVPolyline2D twenty = test::Star(20, 10, 0.3);
  for (const bool ccw : {true, false}) {
    for (const TVPolyline2D& contour : {nineteen, Reversed(nineteen)}) {
      const TKMPLoop loop = LoopOf(contour).ToConvexLoop(ccw);
      EXPECT_EQ(loop.FCount(), 19);
      EXPECT_FALSE(loop.IsConvex());
      EXPECT_EQ(loop.Area() > 0, ccw);
    }
    const TKMPLoop loop = LoopOf(twenty).ToConvexLoop(ccw);
    EXPECT_TRUE(loop.IsConvex());
    EXPECT_EQ(loop.Area() > 0, ccw);
  }
}

TEST(KineticLoop, BoxLoopIsSkewWhereItIsLargeEnough) {
  const TKMPLoop box = LoopOf({{0, 0}, {9, 1}, {10, 4}, {3, 3}}).ToBoundBoxLoop();
  const TVPolyline2D corners = box.GetPolyline();
  ASSERT_EQ(corners.Count(), 5);
  const TPoint2D expected[] = {{0, 0}, {10.011, 0}, {10, 4}, {0.008, 3.9927}};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(corners[i], expected[i]) << i;
  EXPECT_EQ(box.Count(), 4);
  for (int i = 0; i < 4; ++i) {
    for (int k = 0; k < i; ++k) {
      const int turn = box[i].FAngle - box[k].FAngle;
      EXPECT_GT(std::abs(turn), 1000);
      EXPECT_GT(std::abs(turn - HALF_TURN_ANGLE), 1000) << "no two edges are parallel";
    }
  }
  EXPECT_TRUE(LoopOf({{0, 0}, {5, 0}, {5, 0.05}, {0, 0.05}}).ToBoundBoxLoop().GetPolyline().IsRect(true));
  EXPECT_GT(LoopOf(Reversed(UnitSquare())).ToBoundBoxLoop().Area(), 0);
}

// A box of 0.2 by 0.1 with a low roof: too small for the disc to drop a point, so line simplification has to.
TEST(KineticLoop, LineSimplificationFollowsTheDisc) {
  struct TCase {
    int Level;
    TNFPType Type;
    double Tol;  // the roof goes below it
  };
  const TCase cases[] = {{1, ntExact, 0.005},       {3, ntExact, 0.005},     {4, ntExact, 0.008},
                         {5, ntExact, 0.01},        {6, ntExact, 0.012},     {1, ntComplete, 0.04},
                         {0, ntComplete, 0.04},     {0, ntConvexHull, 0.04}, {4, ntConcaveHull, 0.04},
                         {6, ntConcaveHull, 0.048}, {1, ntNone, 0.04}};
  const auto house = [](double Roof) { return LoopOf({{0, 0}, {0.2, 0}, {0.2, 0.1}, {0.1, 0.1 + Roof}, {0, 0.1}}); };
  for (const TCase& c : cases) {
    EXPECT_EQ(house(c.Tol - 2e-4).ToReducedLoop(c.Level, c.Type).FCount(), 4) << c.Level << " " << c.Tol;
    EXPECT_EQ(house(c.Tol + 2e-4).ToReducedLoop(c.Level, c.Type).FCount(), 5) << c.Level << " " << c.Tol;
  }
  EXPECT_EQ(house(1e-3).ToReducedLoop(0, ntExact).FCount(), 5) << "no line step at all";
  const TKMPLoop arrow = LoopOf({{0, 0}, {0.1, 0.05}, {0, 0.1}, {0.05, 0.05}});
  EXPECT_EQ(arrow.ToReducedLoop(0, ntExact).FCount(), 3) << "the hull is the last resort";
}

TEST(KineticLoop, LightLevelsTakeTheFineTraceOfTheDiscAndHeavyOnesTheCoarse) {
  const TVPolyline2D wave = test::Polar(600, [](int i) { return 100 + 3 * std::sin(i * 0.2); });
  const TVPolyline2D outline = LoopOf(wave).GetPolyline();
  for (const int level : {1, 3, 4, 6}) {
    TDiscRoller roller(outline, level);
    roller.Run();
    ASSERT_LT(roller.Coarse().size(), roller.Fine().size());
    const TVPolyline2D& expected = level > 3 ? roller.Coarse() : roller.Fine();
    EXPECT_NEAR(LoopOf(wave).ToReducedLoop(level, ntConcaveHull).Area(), expected.Area(), 1e-6) << level;
  }
  // A roof that only the coarse trace reaches is lifted by it, not cut off by line simplification.
  const TVPolyline2D house{{0, 0}, {100, 0}, {100, 100}, {50, 100.05}, {0, 100}};
  const TKMPLoop reduced = LoopOf(house).ToReducedLoop(3, ntConcaveHull);
  EXPECT_EQ(reduced.FCount(), 4);
  EXPECT_GT(reduced.Area(), house.Area());
}

// That they lie inside is shown with the reducers.
TEST(KineticLoop, ReducedCavitiesRunClockwiseAndAreSmaller) {
  for (const TShapeKind kind : kShapeKinds) {
    const TKMPLoop loop = LoopOf(Reversed(MakeShape(kind, 1200, 300, 5).front()));
    for (const int level : {1, 2, 3, 4, 6}) {
      const TKMPLoop reduced = loop.ToReducedInnerLoop(level);
      EXPECT_LE(reduced.FCount(), loop.FCount()) << NameOf(kind);
      EXPECT_LT(reduced.Area(), 0);
      EXPECT_GE(reduced.Area(), loop.Area() * (1 + 1e-12));
    }
  }
}

}  // namespace
}  // namespace platenest
