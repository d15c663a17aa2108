#include "platenest/foundation/PolyOffsetter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "BoxContour.h"
#include "Region.h"

namespace platenest {
namespace {

using ClipperLib::jtMiter, ClipperLib::jtRound, ClipperLib::jtSquare;

constexpr double kTwoDegrees = 0.03490658503988659;

double GrownArea(const TPaths& Shape, Int64 Delta, int JoinType) {
  return RegionArea(TPolyOffsetter::OffsetPathsToPaths(Shape, Delta, JoinType, kTwoDegrees));
}

TEST(PolyOffsetter, JoinsShapeTheCorners) {
  const TPaths box = PolygonOf({Box(0, 0, 10, 10)});
  const double rim = 100 + 4 * 10;
  EXPECT_NEAR(GrownArea(box, 100000, jtMiter), rim + 4, 1e-6);
  // The corner is cut at distance 1 from it: the unit square less the triangle beyond.
  const double beyond = std::numbers::sqrt2 - 1;
  EXPECT_NEAR(GrownArea(box, 100000, jtSquare), rim + 4 * (1 - beyond * beyond), 1e-3);
  const TPaths round = TPolyOffsetter::OffsetPathsToPaths(box, 100000, jtRound, kTwoDegrees);
  EXPECT_NEAR(RegionArea(round), rim + std::numbers::pi, 1e-3);
  EXPECT_NEAR(static_cast<double>(round[0].size()), 180, 8) << "chords of two degrees";
  EXPECT_THROW(GrownArea(box, 1, 3), TArgumentError);
}

TEST(PolyOffsetter, SharpMitresReachAsFarAsTheAngleTells) {
  const TPaths needle = PolygonOf({TVPolyline2D{{0, -1}, {20, 0}, {0, 1}}});  // 5.7 degrees at the tip
  const auto reach = [&](double Angle) {
    const TPaths grown = TPolyOffsetter::OffsetPathsToPaths(needle, 100000, jtMiter, Angle);
    return static_cast<double>(TPathUtils::BoundBox(grown).Right) / kPathScale - 20;
  };
  EXPECT_NEAR(reach(0.09), std::sqrt(401), 1e-3);
  EXPECT_LT(reach(0.11), 2) << "sharper than that, cut off";
  EXPECT_LT(reach(0), 2);
}

// The contour that reaches highest decides what the offsetter underneath takes for a hole.
TEST(PolyOffsetter, DirectionsDoNotTurnTheRegionInsideOut) {
  TPaths frame = PolygonOf({Box(0, 0, 10, 10), Box(2, 2, 8, 8)});
  TPaths apart = PolygonOf({Box(0, 0, 2, 2), Box(10, 10, 12, 12)});  // one of them clockwise
  for (int reversed = 0; reversed < 2; ++reversed) {
    EXPECT_NEAR(GrownArea(frame, 100000, jtMiter), 12 * 12 - 4 * 4, 1e-6) << reversed;
    EXPECT_NEAR(GrownArea(frame, -50000, jtMiter), 81 - 49, 1e-6) << reversed;
    EXPECT_NEAR(GrownArea(apart, 100000, jtMiter), 32, 1e-6) << "both are outer";
    ClipperLib::ReversePaths(frame);
    ClipperLib::ReversePaths(apart);
  }
  TPaths seam = PolygonOf({Box(0, 0, 5, 5)});
  TPathUtils::PathsAddRange(seam, PolygonOf({Box(4, 0, 9, 5)}));
  EXPECT_NEAR(GrownArea(seam, -100000, jtMiter), 7 * 3, 1e-6) << "no seam";
}

/*  A dumb-bell falls apart; the hole of its larger end stays with it. */
TEST(PolyOffsetter, PiecesKeepTheirHoles) {
  const TVPolyline2D bell{{0, 0},   {20, 0},  {20, 9},  {30, 9},  {30, 5},  {40, 5},
                          {40, 15}, {30, 15}, {30, 11}, {20, 11}, {20, 20}, {0, 20}};
  const TVHPolygon shape{bell, Box(8, 8, 12, 12)};
  const TVHPolygonList pieces = TPolyOffsetter::OffsetHPolygon(shape, -1.5, jtSquare, kTwoDegrees);
  ASSERT_EQ(pieces.Count(), 2);
  ASSERT_EQ(pieces[0].Count(), 2);
  EXPECT_TRUE(pieces[0][1].IsClockwise());
  EXPECT_NEAR(pieces[0][1].BoundBox().Width(), 7, 1e-4);
  EXPECT_EQ(pieces[1].Count(), 1);
  EXPECT_TRUE(TPolyOffsetter::OffsetHPolygon({}, 1, jtSquare, kTwoDegrees).empty());
  EXPECT_TRUE(TPolyOffsetter::OffsetHPolygon({Box(0, 0, 10, 2)}, -1, jtSquare, kTwoDegrees).empty());
}

}  // namespace
}  // namespace platenest
