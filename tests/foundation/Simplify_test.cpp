#include "platenest/foundation/Simplify.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "Contours.h"
#include "SimplifyCore.h"

namespace platenest {
namespace {

TVPoint2DList Wavy(int Count, double Noise) {
  const auto radius = [&](int i) {
    return 5 + 2 * std::cos(6 * std::numbers::pi * i / Count) + test::Uniform(0, Noise);
  };
  return test::Polar(Count, radius);
}

TEST(Simplify, KeepsWhatExceedsTheTolerance) {
  const TVPoint2DList points{{0, 0}, {1, 0.1}, {2, -0.1}, {3, 5}, {4, 6}, {5, 7}};
  EXPECT_EQ(DPSimplify(TVPoint2DList{{0, 0}, {5, 0.5}, {10, 0}}, 0.5, false).size(), 2u) << "the bound itself may go";
  EXPECT_EQ(DPSimplify(TVPoint2DList{{0, 0}, {10.5, 0}, {10, 0}}, 0.4, false).size(), 3u) << "beyond the end";
  EXPECT_EQ(DPSimplify(points, std::nan(""), false).size(), 5u);
}

TEST(Simplify, ClosedFormAlsoCleansTheClosingEdge) {
  const TVPoint2DList box{{0, 0}, {5, 0}, {10, 0}, {10, 5}, {10, 10}, {0, 10}, {0, 5}};
  EXPECT_EQ(DPSimplify(box, 0.01).size(), 4u);
  EXPECT_EQ(DPSimplify(box, 0.01, false).size(), 5u) << "an open line keeps its end";
  TVPoint2DList repeated = box;
  repeated.push_back({0, 0});
  const TVPoint2DList result = DPSimplify(repeated, 0.01);
  ASSERT_EQ(result.size(), 5u);
  EXPECT_EQ(result.First(), result.Last());
}

TEST(Simplify, ClosedContoursKeepThreePoints) {
  EXPECT_EQ(DPSimplify(TVPoint2DList{{0, 0}, {10, 0}, {4, 0}, {2, 0}}, 1).size(), 3u);
  EXPECT_EQ(DPSimplify(TVPoint2DList{{1, 1}, {1, 1}, {1, 1}, {1, 1}, {1, 1}}, 1).size(), 4u) << "and the closing one";
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(DPSimplify(TVPoint2DList{{nan, 0}, {nan, 1}, {nan, 2}, {nan, 3}}, nan).size(), 3u) << "ends at all";
}

TEST(Simplify, StaysWithinTheToleranceOfTheInput) {
  const TRandomScope seed(3);
  for (int round = 0; round < 200; ++round) {
    const bool flag = Random(2) == 0;
    const double tol = std::pow(10.0, -Random(5)) * (1 + Random(9));
    TVPoint2DList points = Wavy(3 + Random(200), 0.2 * Random(3));
    if (Random(2) == 0) points.push_back(TPoint2D(points[0]));
    const TVPolyline2D result(DPSimplify(points, tol, flag));
    TPoint2D nearest;
    for (const TPoint2D& point : points) EXPECT_LE(result.DistTo(point, nearest), tol * (1 + 1e-12));
    for (const TPoint2D& point : result) EXPECT_GT(std::ranges::count(points, point), 0);
    EXPECT_TRUE(result.First() == points.First() && (flag || result.Last() == points.Last())) << "ends stay";
    EXPECT_EQ(points.First() == points.Last(), result.First() == result.Last());
    EXPECT_GE(result.size(), flag ? 3u : 2u);
  }
  EXPECT_LT(DPSimplify(Wavy(3000, 0), 0.01).size(), 150u) << "and does drop points";
}

TEST(Simplify, PathsTakeTheToleranceInDrawingUnits) {
  const Int64 far = Int64{1} << 60;
  const TPath distant{{far, far}, {far + 100, far + 1}, {far + 200, far}, {far + 100, far + 200}};
  EXPECT_EQ(DPSimplify(distant, 0.000005).size(), 4u) << "half a unit";
  EXPECT_EQ(DPSimplify(distant, 0.00001).size(), 3u) << "one unit";
}

// Growing teeth make every split cut off one point, so the plain method would test all pairs.
TEST(Simplify, LopsidedInputCostsNoMoreThanItsBound) {
  std::vector<TPoint2D> teeth;
  const int count = 20000;
  for (int i = 0; i < count; ++i) teeth.push_back({i * 1e-3, (i % 2 == 0 ? 1.0 : -1.0) * i});
  const auto result = detail::KeepPoints(teeth, 0.5, false);
  EXPECT_LT(result.DistanceTests, 40LL * count * 15);
  EXPECT_EQ(std::count(result.Kept.begin(), result.Kept.end(), 1), count);
}

}  // namespace
}  // namespace platenest
