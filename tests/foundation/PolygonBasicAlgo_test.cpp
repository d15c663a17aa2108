#include "platenest/foundation/PolygonBasicAlgo.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace platenest {
namespace {

TEST(PolygonBasicAlgo, TangentsHaveTheWholeListBetweenThem) {
  std::vector<TPoint2D> ring;
  for (int i = 0; i < 17; ++i) {
    const double angle = 2 * std::numbers::pi * i / 17;
    ring.push_back({5 * std::cos(angle), 3 * std::sin(angle)});
  }
  for (int i = 0; i < 50; ++i) {
    const double angle = 0.1 + 2 * std::numbers::pi * i / 50;
    const TPoint2D eye{5.5 * std::cos(angle), 4 * std::sin(angle)};
    int right = -1;
    int left = -1;
    TPolygonBasicAlgo::PointTangants(ring, eye, right, left);
    for (const TPoint2D& point : ring) {
      EXPECT_GE(TPoint2DUtils::IsLeft(eye, ring[right], point), 0) << i;
      EXPECT_LE(TPoint2DUtils::IsLeft(eye, ring[left], point), 0) << i;
    }
  }
}

}  // namespace
}  // namespace platenest
