#include "platenest/URectNest/CoEdge.h"

#include <gtest/gtest.h>

#include "Rects.h"
#include "platenest/foundation/GeometryLog.h"

namespace platenest {
namespace {

TEST(CalcCoedgeLength, EachPairCountsFromBothSidesWithItsOverlap) {
  const TNestedRect base = Placed(10, 10, 0, 0);
  EXPECT_NEAR(CalcCoedgeLength({base, Placed(10, 10, 10, 6)}), 8.04, 1e-9) << "four units shared";
  EXPECT_NEAR(CalcCoedgeLength({base, Placed(10, 4, 14, 0, 0, true)}), 20.04, 1e-9) << "turned: from x 10 to 14";
  EXPECT_EQ(CalcCoedgeLength({base, Placed(10, 10, 10.03, 0)}), 0);
}

TEST(OutputNestedRects, GivesClosedContoursAndKeepsThePositionOfUnturnedParts) {
  TVPolyline2DList shown;
  std::string name;
  const TDebugGeometryScope view([&](const TVPolyline2DList& Geometry, std::string_view Name) {
    shown = Geometry;
    name = Name;
  });
  TNestedRects list{Placed(4, 3, 100, 200), Placed(4, 3, 100, 200, 0, true)};
  for (TNestedRect& item : list) item.Part.BoundBox = item.Part.BoundBox.Translate({10, 20});
  OutputNestedRects(list, "layout.xdr");
  EXPECT_EQ(name.rfind("layout_", 0), 0u);
  ASSERT_EQ(shown.Count(), 2);
  EXPECT_TRUE(shown[0].Count() == 5 && shown[0].First() == shown[0].Last());
  EXPECT_EQ(shown[0].BoundBox().Left, 110);
  EXPECT_EQ(shown[1].BoundBox().Left, 97);
}

}  // namespace
}  // namespace platenest
