#include "platenest/foundation/PolylineTree.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "BoxContour.h"

namespace platenest {
namespace {

using TAreas = std::vector<std::vector<double>>;

// Areas of the contours of each shape.
TAreas Sorted(const TVPolyline2DList& Contours) {
  TAreas result;
  for (const TVHPolygon& shape : TVPolyline2DTree(Contours).CreateHPolygons()) {
    result.emplace_back();
    for (const TVPolyline2D& contour : shape) result.back().push_back(std::fabs(contour.Area()));
  }
  return result;
}

TEST(PolylineTree, IslandsInHolesAreShapesOfTheirOwn) {
  TVPolyline2D clockwise = Box(1, 1, 9, 9);
  clockwise.SetIsClockwise(true);
  const TVPolyline2DList nested{Box(4, 4, 5, 5), clockwise,         Box(20, 0, 25, 5),
                                Box(2, 2, 7, 7), Box(0, 0, 10, 10), Box(7.5, 7.5, 8, 8)};
  EXPECT_EQ(Sorted(nested), (TAreas{{100, 64}, {25}, {25, 1}, {0.25}}));
  EXPECT_TRUE(TVPolyline2DTree(nested).CreateHPolygons()[0][1].IsClockwise()) << "directions stay";
}

/*  +-----+
    |\    |     Holes may touch their contour, at vertices, on edges, or with every vertex. */
TEST(PolylineTree, ContactsDoNotDecide) {
  const TVPolyline2D box = Box(0, 0, 4, 4);
  EXPECT_EQ(Sorted({box, TVPolyline2D{{2, 0}, {4, 2}, {2, 4}, {0, 2}}}), (TAreas{{16, 8}}));
  EXPECT_EQ(Sorted({box, box}), (TAreas{{16}, {16}})) << "equal contours do not contain each other";
  const TVPolyline2D u{{0, 0}, {9, 0}, {9, 9}, {6, 9}, {6, 3}, {3, 3}, {3, 9}, {0, 9}};
  EXPECT_EQ(Sorted({u, Box(3, 3, 6, 9), Box(4, 5, 5, 6)}), (TAreas{{63}, {18, 1}})) << "the bay is outside";
}

}  // namespace
}  // namespace platenest
