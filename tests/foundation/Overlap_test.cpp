#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "BoxContour.h"
#include "ForEachSeed.h"
#include "Shapes.h"
#include "platenest/foundation/HostShapes.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

TVPolyline2D Moved(TVPolyline2D Contour, double X, double Y) {
  Contour.Translate({X, Y});
  return Contour;
}

TVPolyline2D Clockwise(TVPolyline2D Contour) {
  Contour.SetIsClockwise(true);
  return Contour;
}

bool Overlap(const TVPolyline2D& A, const TVPolyline2D& B) {
  const bool forward = TMPolygon(A).TestOverlap(TMPolygon(B));
  EXPECT_EQ(TMPolygon(B).TestOverlap(TMPolygon(A)), forward) << "symmetric";
  EXPECT_EQ(TMPolygon(Clockwise(A)).TestOverlap(TMPolygon(B)), forward) << "a solid has no direction";
  return forward;
}

bool InCavity(const TVPolyline2D& Cavity, const TVPolyline2D& Part) {
  const TMPolygon plate(Clockwise(Cavity), nullptr, true);
  const TMPolygon part(Part, nullptr, true);
  EXPECT_EQ(plate.TestOverlap(part), part.TestOverlap(plate));
  return !plate.TestOverlap(part);
}

// A star of Count points on the integer grid: angles fall in order, so it is simple.
TVPolyline2D GridStar(int Count, int Radius) {
  TVPolyline2D star;
  for (int i = 0; i < Count; ++i) {
    const double angle = 2 * std::numbers::pi * i / Count;
    const double reach = Radius / 2 + Random(Radius / 2 + 1);
    star.push_back({std::round(reach * std::cos(angle)), std::round(reach * std::sin(angle))});
  }
  return star;
}

// On the integer grid, slanted or rectilinear.
TVPolyline2D GridShape() {
  constexpr TShapeKind kKinds[] = {TShapeKind::Comb, TShapeKind::Staircase, TShapeKind::UShape};
  if (Random(2) == 0) return GridStar(3 + Random(9), 8);
  return MakeShape(kKinds[Random(3)], 4 + Random(24), 8, Random(1000)).front();
}

TEST(Overlap, ContactWithinTheToleranceIsNone) {
  const TVPolyline2D box = Box(0, 0, 10, 10);
  const struct {
    double X, Y;
    bool Overlaps;
  } cases[] = {{10 - 0.9e-6, 0, false}, {10 - 2e-6, 0, true}, {10 - 2e-6, 5, true},   {10 - 2e-6, 10 - 0.5e-6, false},
               {1e-9, 0, true},         {0, 0, true},         {0.5e-6, -0.5e-6, true}};
  for (const auto& [x, y, overlaps] : cases) EXPECT_EQ(Overlap(box, Moved(box, x, y)), overlaps) << x << ", " << y;
  EXPECT_FALSE(Overlap(box, TVPolyline2D{{10, 5}, {15, 4}, {15, 6}})) << "a tip on an edge";
  EXPECT_TRUE(Overlap(box, TVPolyline2D{{10 - 2e-6, 5}, {15, 4}, {15, 6}}));
  EXPECT_FALSE(Overlap(box, TVPolyline2D{{1, 1}, {2, 2}, {3, 3}})) << "without area";
  EXPECT_FALSE(Overlap(box, TVPolyline2D()));
}

/*  +---------+
    |  +---+  |     The bay of a U takes a bar of its own width. */
TEST(Overlap, FillsBaysAndCavitiesExactly) {
  const TVPolyline2D u{{0, 0}, {9, 0}, {9, 9}, {6, 9}, {6, 3}, {3, 3}, {3, 9}, {0, 9}};
  EXPECT_FALSE(Overlap(u, Box(3 - 0.5e-6, 3, 6 + 0.5e-6, 12)));
  EXPECT_TRUE(Overlap(u, Box(3 - 2e-6, 3, 6, 12)));
  const TVPolyline2D cavity = Box(0, 0, 10, 10);
  EXPECT_TRUE(InCavity(cavity, cavity));
  EXPECT_TRUE(InCavity(cavity, Box(-0.5e-6, 0, 10, 5)));
  EXPECT_FALSE(InCavity(cavity, Box(-2e-6, 0, 10, 5)));
  EXPECT_FALSE(InCavity(u, Box(1, 1, 8, 8))) << "spans the bay";
  EXPECT_TRUE(TMPolygon(Clockwise(cavity), nullptr, true).TestOverlap(TMPolygon(Clockwise(u), nullptr, true)));
}

TEST(Overlap, AgreesWithTheCommonArea) {
  ForEachSeed(1500, [](unsigned Seed) {
    const TRandomScope scope(Seed);
    const TVPolyline2D a = GridShape();
    const TVPolyline2D b = Moved(GridShape(), Random(15) - 7, Random(15) - 7);
    const double common = RegionArea(Clipped(PolygonOf({a}), PolygonOf({b}), ClipperLib::ctIntersection));
    EXPECT_EQ(Overlap(a, b), common > 1e-3) << common;
    EXPECT_EQ(InCavity(a, b), std::fabs(common - b.Area()) < 1e-3);
  });
}

}  // namespace
}  // namespace platenest
