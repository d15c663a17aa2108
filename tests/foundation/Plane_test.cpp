#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "platenest/foundation/Rect2D.h"

namespace platenest {
namespace {

constexpr double kPi = std::numbers::pi;

TEST(Point, AnglesStayInTheHalfOpenTurn) {
  EXPECT_EQ((TPoint2D{0, 0}.Angle()), 0);
  EXPECT_NEAR((TPoint2D{2, 1}.Angle()), std::atan(0.5), 1e-15);
  EXPECT_EQ((TPoint2D{1, -1e-300}.Angle()), 0) << "a full turn counts as 0";
  EXPECT_NEAR((TPoint2D{1, 0}.AngleFrom({0, 1})), 1.5 * kPi, 1e-15);
}

TEST(Point, QuadrantNamesTheAxesWithNegativeNumbers) {
  const std::pair<TPoint2D, int> cases[] = {{{3, 2}, 1},  {{-3, 2}, 2}, {{-3, -2}, 3}, {{3, -2}, 4},
                                            {{3, 0}, -1}, {{0, 2}, -2}, {{-3, 0}, -3}, {{0, -2}, -4}};
  for (const auto& [vector, quadrant] : cases) EXPECT_EQ(TPoint2DUtils::Quadrant(vector), quadrant);
}

TEST(Rect, HoldsBySizeAndPrefersTheUnturnedFit) {
  const TVRect2D plate = TVRect2D::FromSize(10, 5);
  EXPECT_EQ(plate.Holds90(TVRect2D::FromSize(5, 5).Translate({100, 100})), 0);
  EXPECT_EQ(plate.Holds90(TVRect2D::FromSize(5, 10)), 1);
  EXPECT_EQ(plate.Holds90(TVRect2D::FromSize(10.0000001, 1)), -1) << "no tolerance";
}

TEST(Rect, RelationTellsTouchFromGapAndNamesBothContainments) {
  const TVRect2D box = TVRect2D::FromSize(10, 10);
  EXPECT_EQ(box.RelationWithRectangle(box.Translate({10, 10}), 1e-6), rrOverlap) << "corner contact";
  EXPECT_EQ(box.RelationWithRectangle(box.Translate({10 + 0.9e-6, 0}), 1e-6), rrOverlap);
  EXPECT_EQ(box.RelationWithRectangle(box.Translate({10 + 2e-6, 0}), 1e-6), rrDisjoint);
  EXPECT_EQ(box.RelationWithRectangle(box, 0), rrArgumentInside) << "equal boxes";
  EXPECT_EQ(box.RelationWithRectangle(box.Inflate(-1), 0), rrArgumentInside);
  EXPECT_EQ(box.RelationWithRectangle(box.Inflate(1), 0), rrReceiverInside);
}

}  // namespace
}  // namespace platenest
