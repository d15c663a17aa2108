#include "platenest/foundation/PolyOffsetter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "BoxContour.h"

namespace platenest {
namespace {

constexpr double kTwoDegrees = 0.03490658503988659;
constexpr int kSquare = 0;
constexpr int kRound = 1;
constexpr int kMitre = 2;

TPaths PathsOf(const TVHPolygon& Contours) {
  TPaths paths;
  for (const TVPolyline2D& contour : Contours) paths.push_back(TPathUtils::CreatePath(contour, kPathScale));
  return paths;
}

double Area(const TPaths& Paths) {
  return TPathUtils::Area(Paths, 0) / (kPathScale * kPathScale);
}

TEST(PolyOffsetter, JoinsShapeTheCorners) {
  const TPaths box = PathsOf({Box(0, 0, 10, 10)});
  const double rim = 100 + 4 * 10;
  EXPECT_NEAR(Area(TPolyOffsetter::OffsetPathsToPaths(box, 100000, kMitre, kTwoDegrees)), rim + 4, 1e-6);
  // The corner is cut at distance 1 from it: the unit square less the triangle beyond.
  const double beyond = std::numbers::sqrt2 - 1;
  EXPECT_NEAR(Area(TPolyOffsetter::OffsetPathsToPaths(box, 100000, kSquare, kTwoDegrees)),
              rim + 4 * (1 - beyond * beyond), 1e-3);
  const TPaths round = TPolyOffsetter::OffsetPathsToPaths(box, 100000, kRound, kTwoDegrees);
  EXPECT_NEAR(Area(round), rim + std::numbers::pi, 1e-3);
  EXPECT_NEAR(static_cast<double>(round[0].size()), 180, 8) << "chords of two degrees";
  EXPECT_THROW(TPolyOffsetter::OffsetPathsToPaths(box, 1, 3, kTwoDegrees), TArgumentError);
}

TEST(PolyOffsetter, SharpMitresReachAsFarAsTheAngleTells) {
  const TPaths needle = PathsOf({TVPolyline2D{{0, -1}, {20, 0}, {0, 1}}});  // 5.7 degrees at the tip
  const auto reach = [&](double Angle) {
    const TPaths grown = TPolyOffsetter::OffsetPathsToPaths(needle, 100000, kMitre, Angle);
    return static_cast<double>(TPathUtils::BoundBox(grown).Right) / kPathScale - 20;
  };
  EXPECT_NEAR(reach(0.09), std::sqrt(401), 1e-3);
  EXPECT_LT(reach(0.11), 2) << "sharper than that, cut off";
  EXPECT_LT(reach(0), 2);
}

// The contour that reaches highest decides what the offsetter underneath takes for a hole.
TEST(PolyOffsetter, DirectionsDoNotTurnTheRegionInsideOut) {
  TVHPolygon frame{Box(0, 0, 10, 10), Box(2, 2, 8, 8)};
  frame.SetIsClockwise(false);
  TPaths paths = PathsOf(frame);
  const double grown = 12.0 * 12 - 4.0 * 4;
  for (const bool reversed : {false, true}) {
    if (reversed) ClipperLib::ReversePaths(paths);
    EXPECT_NEAR(Area(TPolyOffsetter::OffsetPathsToPaths(paths, 100000, kMitre, 0.1)), grown, 1e-6) << reversed;
    EXPECT_NEAR(Area(TPolyOffsetter::OffsetPathsToPaths(paths, -50000, kMitre, 0.1)), 81 - 49, 1e-6) << reversed;
  }
  TPaths apart = PathsOf({Box(0, 0, 2, 2), Box(10, 10, 12, 12)});
  ClipperLib::ReversePath(apart[1]);
  EXPECT_NEAR(Area(TPolyOffsetter::OffsetPathsToPaths(apart, 100000, kMitre, 0.1)), 32, 1e-6) << "both are outer";
  const TPaths seam = PathsOf({Box(0, 0, 5, 5), Box(4, 0, 9, 5)});
  EXPECT_NEAR(Area(TPolyOffsetter::OffsetPathsToPaths(seam, -100000, kMitre, 0.1)), 7 * 3, 1e-6) << "no seam";
}

TEST(PolyOffsetter, ThinAndEmptyShapes) {
  EXPECT_TRUE(TPolyOffsetter::OffsetHPolygon({}, 1, kSquare, kTwoDegrees).empty());
  EXPECT_TRUE(TPolyOffsetter::OffsetHPolygon({Box(0, 0, 10, 2)}, -1, kSquare, kTwoDegrees).empty());
}

/*  A dumb-bell falls apart; the hole of its larger end stays with it. */
TEST(PolyOffsetter, PiecesKeepTheirHoles) {
  const TVPolyline2D bell{{0, 0},   {20, 0},  {20, 9},  {30, 9},  {30, 5},  {40, 5},
                          {40, 15}, {30, 15}, {30, 11}, {20, 11}, {20, 20}, {0, 20}};
  const TVHPolygon shape{bell, Box(8, 8, 12, 12)};
  const TVHPolygonList pieces = TPolyOffsetter::OffsetHPolygon(shape, -1.5, kSquare, kTwoDegrees);
  ASSERT_EQ(pieces.Count(), 2);
  ASSERT_EQ(pieces[0].Count(), 2);
  EXPECT_TRUE(pieces[0][1].IsClockwise());
  EXPECT_NEAR(pieces[0][1].BoundBox().Width(), 7, 1e-4);
  EXPECT_EQ(pieces[1].Count(), 1);
}

}  // namespace
}  // namespace platenest
