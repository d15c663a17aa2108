#include "platenest/NfpAlgorithmSet/KineticLoop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include "Contours.h"
#include "PathFixtures.h"
#include "platenest/foundation/DiscRoller.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Simplify.h"

namespace platenest {
namespace {

using testing::ElementsAre;

const TVPolyline2D kUnitSquare = Rect(0, 0, 1, 1);

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
  for (const double gap : {0.0, 0.0009, -0.0009}) {
    TVPolyline2D closed{{3, 1}, {7, 2}, {4, 6}, {3 + gap, 1 - gap}};
    TKMPLoop loop;
    loop.Initialize(closed);
    EXPECT_EQ(closed.size(), 3u);
    EXPECT_EQ(loop.FCount(), 3);
  }
  EXPECT_EQ(LoopOf({{3, 1}, {7, 2}, {4, 6}, {3.002, 1.001}}).FCount(), 4);
}

TEST(KineticLoop, CleaningDropsShortEdgesAndStraightVertices) {
  const auto edges = [](const TVPolyline2D& contour) {
    EXPECT_NEAR(LoopOf(contour).GetPolyline().Area(), contour.Area(), 0.02);
    return LoopOf(contour).FCount();
  };
  EXPECT_EQ(edges({{0, 0}, {5, 3e-5}, {10, 0}, {10, 10}, {0, 10}}), 4);
  EXPECT_EQ(edges({{0, 0}, {5, 5e-5}, {10, 0}, {10, 10}, {0, 10}}), 5) << "turn beyond the limit";
  EXPECT_EQ(edges({{0, 0}, {10, 0}, {10, 10}, {9.9995, 10.0005}, {0, 10}}), 4);
  EXPECT_EQ(edges({{0, 0}, {10, 0}, {10, 10}, {9.999, 10.0002}, {0, 10}}), 5) << "edge of the limit";
  EXPECT_EQ(edges({{0, 0}, {5, 0}, {15, 0}, {10, 0}, {10, 10}, {0, 10}}), 4) << "fold-back";
  EXPECT_EQ(edges({{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}}), 4) << "last vertex straight, where the walk began";
  EXPECT_EQ(edges({{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}), 4) << "first vertex straight";
  EXPECT_EQ(edges({{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, -5}}), 4) << "fold-back over the start";
  EXPECT_EQ(edges({{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {0, 0}}), 4) << "closing edge of no length";
  EXPECT_EQ(edges({{0, 0}, {10, 0}, {10, 10}, {0, 10}, {4e-4, 4e-4}, {2e-4, 1e-4}}), 5) << "short closing edge, spared";
  // A removed vertex is the end of the edge looked at, so of a cluster the first one stays.
  const TKMPLoop cluster = LoopOf({{0, 0}, {10, 0}, {10.0006, 0.0001}, {10.0003, 0.0005}, {10, 10}, {0, 10}});
  EXPECT_EQ(cluster.GetPolyline().BoundBox().Right, 10);
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
    EXPECT_EQ(loop.Area(), contour.Area());
    EXPECT_NEAR(polyline.Area(), contour.Area(), 1e-9);
    int edges = 0;
    for (int i = 0; i < loop.Count(); ++i) {
      EXPECT_TRUE(i == 0 || loop[i - 1].FAngle < loop[i].FAngle);
      EXPECT_EQ(loop.FindFirstEqualLarger(loop[i].FAngle), i);
      EXPECT_EQ(loop.FindFirstEqualLarger(loop[i].FAngle + 1), i + 1 < loop.Count() ? i + 1 : -1);
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

TEST(KineticLoop, AGivenAreaIsKeptAndParallelsCountOnRequest) {
  for (const auto& [given, kept] : {std::pair{-7.0, -7.0}, {1e-12, 1.0}}) {
    TVPolyline2D contour = kUnitSquare;
    TKMPLoop loop;
    loop.SetArea(given);
    loop.Initialize(contour);
    EXPECT_DOUBLE_EQ(loop.Area(), kept);
    EXPECT_DOUBLE_EQ(loop.ToConvexLoop().Area(), 1) << "a stand-in has its own";
  }
  for (const double lift : {0.9e-9, -0.9e-9, 1.1e-9, -1.1e-9}) {
    TKMPEdge edge, other;
    edge.FDirectionVector = {100, 0};
    other.FDirectionVector = {100, lift};
    double mul = 0;
    for (const bool withParallels : {false, true}) {
      const bool counts = withParallels && std::fabs(lift) < 1e-9;
      EXPECT_EQ(edge.IsLeft(other, withParallels, mul), counts || lift > 1e-9) << lift;
      EXPECT_EQ(edge.isRight(other, withParallels, mul), counts || lift < -1e-9) << lift;
    }
  }
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
  for (TVPolyline2D hopeless : {TVPolyline2D{},
                                {{5, 5}},
                                {{0, 0}, {1000, 0.005}, {2000, 0}},
                                {{0, 0}, {10, 0}, {nan, 10}},
                                {{0, 0}, {1e300, 0}, {1e300, 1e300}, {0, -1e300}}}) {
    TKMPLoop loop = LoopOf(kUnitSquare);
    EXPECT_THAT([&] { loop.Initialize(hopeless); }, testing::ThrowsMessage<TNestError>("图形存在重复边或者自交"));
    EXPECT_EQ(loop.FCount(), 4) << "the edges are as they were";
  }
}

TEST(KineticLoop, SmallContoursTakeNoHull) {
  const TRandomScope seed(4);
  for (const int points : {19, 20}) {
    const TVPolyline2D star = test::Star(points, 10, 0.3);
    for (const TKMPLoop& given : {LoopOf(star), LoopOf(Clockwise(star))}) {
      EXPECT_EQ(given.ToConvexLoop(true).IsConvex(), points == 20);
      EXPECT_GT(given.ToConvexLoop().Area(), 0) << "counter-clockwise, whatever came";
      EXPECT_LT(given.ToConvexLoop(false).Area(), 0);
    }
  }
}

TEST(KineticLoop, BoxLoopIsSkewWhereItIsLargeEnough) {
  const TKMPLoop box = LoopOf({{0, 0}, {9, 1}, {10, 4}, {3, 3}}).ToBoundBoxLoop();
  const TVPolyline2D corners{{0, 0}, {10.011, 0}, {10, 4}, {0.008, 3.9927}, {0, 0}};
  EXPECT_THAT(box.GetPolyline(), testing::ElementsAreArray(corners));
  EXPECT_EQ(box.Count(), 4);
  for (int i = 0; i < 4; ++i)
    for (int k = 0; k < i; ++k)
      EXPECT_GT(std::abs(box[i].FAngle - box[k].FAngle) % HALF_TURN_ANGLE, 1000) << "no two edges are parallel";
  EXPECT_TRUE(LoopOf({{0, 0}, {5, 0}, {5, 0.05}, {0, 0.05}}).ToBoundBoxLoop().GetPolyline().IsRect(true));
  EXPECT_GT(LoopOf(Clockwise(kUnitSquare)).ToBoundBoxLoop().Area(), 0);
}

// A box of 0.2 by 0.1 with a low roof: too small for the disc to drop a point, so line simplification has to.
TEST(KineticLoop, LineSimplificationFollowsTheDisc) {
  const auto house = [](double roof) { return LoopOf({{0, 0}, {0.2, 0}, {0.2, 0.1}, {0.1, 0.1 + roof}, {0, 0.1}}); };
  // The roof goes below the tolerance.
  const std::tuple<int, TNFPType, double> cases[] = {
      {1, ntExact, 0.005}, {3, ntExact, 0.005},      {4, ntExact, 0.008},      {5, ntExact, 0.01},
      {6, ntExact, 0.012}, {1, ntComplete, 0.04},    {0, ntComplete, 0.04},    {0, ntConvexHull, 0.04},
      {1, ntNone, 0.04},   {4, ntConcaveHull, 0.04}, {6, ntConcaveHull, 0.048}};
  for (const auto& [level, type, tol] : cases) {
    EXPECT_EQ(house(tol - 2e-4).ToReducedLoop(level, type).FCount(), 4) << level << " " << tol;
    EXPECT_EQ(house(tol + 2e-4).ToReducedLoop(level, type).FCount(), 5) << level << " " << tol;
  }
  EXPECT_EQ(house(1e-3).ToReducedLoop(0, ntExact).FCount(), 5) << "no line step at all";
  const TKMPLoop arrow = LoopOf({{0, 0}, {0.1, 0.05}, {0, 0.1}, {0.05, 0.05}});
  EXPECT_EQ(arrow.ToReducedLoop(0, ntExact).FCount(), 3) << "the hull is the last resort";
}

}  // namespace
}  // namespace platenest
