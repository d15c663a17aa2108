#include "platenest/URectNest/CoEdge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platenest/foundation/GeometryLog.h"

namespace platenest {
namespace {

TNestedRect Placed(double Width, double Height, double X, double Y, bool Turned = false) {
  return TNestedRect(TNestRect(1, 0, TVRect2D::FromSize(Width, Height)), Turned, {X, Y});
}

TEST(CalcCoedgeLength, EachPairCountsFromBothSidesWithItsOverlap) {
  const TNestedRect base = Placed(10, 10, 0, 0);
  EXPECT_NEAR(CalcCoedgeLength({base, Placed(10, 10, 10, 0)}), 20.04, 1e-9) << "side by side";
  EXPECT_NEAR(CalcCoedgeLength({base, Placed(10, 10, 10, 6)}), 8.04, 1e-9) << "four units shared";
  EXPECT_NEAR(CalcCoedgeLength({base, Placed(10, 10, 10, 10)}), 0.04, 1e-9) << "a corner";
  EXPECT_NEAR(CalcCoedgeLength({base, Placed(10, 4, 14, 0, true)}), 20.04, 1e-9) << "turned: from x 10 to 14";
  EXPECT_EQ(CalcCoedgeLength({base, Placed(10, 10, 10.03, 0)}), 0);
  EXPECT_EQ(CalcCoedgeLength({base}), 0);
  EXPECT_EQ(CalcCoedgeLength({}), 0);
}

TEST(CalcCoedgeLength, EqualsAllPairs) {
  std::mt19937 random(23);
  std::uniform_int_distribution<int> draw(1, 40);
  TNestedRects list;
  for (int i = 0; i < 300; ++i)
    list.push_back(Placed(draw(random), draw(random), 5 * draw(random), 5 * draw(random), i % 2));
  double expected = 0;
  for (const TNestedRect& a : list) {
    for (const TNestedRect& b : list) {
      if (&a == &b) continue;
      const TVRect2D common = a.BoundBox().Inflate(0.01).Intersect(b.BoundBox().Inflate(0.01));
      if (common.IsValid()) expected += std::max(common.Width(), common.Height());
    }
  }
  EXPECT_NEAR(CalcCoedgeLength(list), expected, 1e-9 * expected);
}

TEST(OutputNestedRects, GivesClosedContoursAndKeepsThePositionOfUnturnedParts) {
  TVPolyline2DList shown;
  std::string name;
  const TDebugGeometryScope view([&](const TVPolyline2DList& Geometry, std::string_view Name) {
    shown = Geometry;
    name = Name;
  });
  TNestedRects list{Placed(4, 3, 100, 200), Placed(4, 3, 100, 200, true)};
  for (TNestedRect& item : list) item.Part.BoundBox = item.Part.BoundBox.Translate({10, 20});
  OutputNestedRects(list, "layout.xdr");
  EXPECT_EQ(name.rfind("layout_", 0), 0u);
  ASSERT_EQ(shown.Count(), 2);
  const auto expectBox = [](const TVPolyline2D& Contour, double Left, double Bottom, double Right, double Top) {
    EXPECT_EQ(Contour.Count(), 5);
    EXPECT_EQ(Contour.First(), Contour.Last());
    const TVRect2D box = Contour.BoundBox();
    EXPECT_EQ(std::tuple(box.Left, box.Bottom, box.Right, box.Top), std::tuple(Left, Bottom, Right, Top));
  };
  expectBox(shown[0], 110, 220, 114, 223);
  expectBox(shown[1], 97, 200, 100, 204);
}

}  // namespace
}  // namespace platenest
