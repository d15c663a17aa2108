#include "platenest/URectNest/CoEdge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platenest/URectNest/BarnesBound.h"
#include "platenest/foundation/Errors.h"
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

TEST(BarnesBound, KnownPlates) {
  EXPECT_EQ(BarnesBound(10, 10, 3, 3), 11) << "9 fit, the bound does not know it";
  EXPECT_EQ(BarnesBound(5, 5, 3, 2), 4) << "strips of three and of two each waste one unit";
  EXPECT_EQ(BarnesBound(6, 6, 4, 1), 8) << "four units are lost though the area takes nine copies";
  EXPECT_EQ(BarnesBound(0, 10, 3, 2), 0);
  EXPECT_EQ(BarnesBound(2, 2, 3, 3), 0);
}

TEST(BarnesBound, ProductsBeyond64BitsStayExact) {
  constexpr Int64 kHuge = 4'000'000'000'000;
  EXPECT_EQ(BarnesBound(kHuge, kHuge, kHuge / 2, kHuge / 4), 8);
  EXPECT_THROW(BarnesBound(kHuge, kHuge, 1, 1), TRangeError);
}

TEST(BarnesBound, HundredthsRoundThePlateDownAndTheRectangleToNearest) {
  EXPECT_EQ(BarnesUpbound(9.999, 5.009, 2.504, 3.336), BarnesBound(999, 500, 250, 334));
  EXPECT_THROW(BarnesUpbound(10, 10, 0.001, 3), TArgumentError) << "a side of no hundredths";
  EXPECT_THROW(BarnesUpbound(-10, 10, 3, 3), TArgumentError);
}

TEST(OutputNestedRects, GivesClosedContoursAndKeepsThePositionOfUnturnedParts) {
  TVPolyline2DList shown;
  const TDebugGeometryScope view([&](const TVPolyline2DList& Geometry, std::string_view Name) {
    shown = Geometry;
    EXPECT_TRUE(Name.starts_with("layout_"));
  });
  TNestedRects list{Placed(4, 3, 100, 200), Placed(4, 3, 100, 200, true)};
  for (TNestedRect& item : list) item.Part.BoundBox = item.Part.BoundBox.Translate({10, 20});
  OutputNestedRects(list, "layout.xdr");
  ASSERT_EQ(shown.Count(), 2);
  const TVRect2D expected[] = {{{110, 220}, {114, 223}}, {{97, 200}, {100, 204}}};
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(shown[i].Count(), 5);
    EXPECT_EQ(shown[i].First(), shown[i].Last());
    EXPECT_EQ(shown[i].BoundBox().RelationWithRectangle(expected[i], 0), rrArgumentInside);
    EXPECT_EQ(shown[i].BoundBox().Area(), expected[i].Area());
  }
}

}  // namespace
}  // namespace platenest
