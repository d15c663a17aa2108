#include <gtest/gtest.h>

#include "BoxContour.h"
#include "ForEachSeed.h"
#include "Region.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

const TVHPolygon kFrame{Box(0, 0, 10, 10), Box(2, 2, 8, 8)};

TEST(HPolygonList, PointIsInsideOnTheEdgeOrOutside) {
  const TVHPolygonList list{TVHPolygon(), kFrame, TVHPolygon{Box(10, 0, 20, 5)}, TVHPolygon{Box(1, 1, 3, 3)}};
  const std::pair<TPoint2D, int> cases[] = {{{8, 5}, 0},  {{8 - 0.9e-6, 5}, 0},  {{8 - 1.1e-6, 5}, -1},
                                            {{10, 2}, 0}, {{10, 10 + 2e-6}, -1}, {{2, 2}, 1}};
  for (const auto& [point, relation] : cases)
    EXPECT_EQ(list.RelationWithPoint(point, 1e-6), relation) << point.X << ", " << point.Y;
}

// Boxes on a grid: cells covered tell the area of the union, cells covered twice the overlap.
TEST(HPolygonList, AgreesWithCountedCells) {
  ForEachSeed(300, [](unsigned Seed) {
    const TRandomScope scope(Seed);
    TVHPolygonList list;
    int covers[12][12] = {};
    for (int i = 1 + Random(5); i > 0; --i) {
      const int left = Random(9);
      const int bottom = Random(9);
      const int side = 1 + Random(3);
      TVHPolygon shape{Box(left, bottom, left + side, bottom + side)};
      if (side == 3) shape.push_back(Box(left + 1, bottom + 1, left + 2, bottom + 2));
      for (int x = 0; x < side; ++x)
        for (int y = 0; y < side; ++y) covers[left + x][bottom + y] += side < 3 || x != 1 || y != 1;
      list.push_back(shape);
    }
    int covered = 0;
    bool twice = false;
    for (int x = 0; x < 12; ++x) {
      for (int y = 0; y < 12; ++y) {
        covered += covers[x][y] > 0;
        twice |= covers[x][y] > 1;
        EXPECT_EQ(list.RelationWithPoint({x + 0.5, y + 0.5}, 1e-6), covers[x][y] > 0 ? 1 : -1);
      }
    }
    const TVHPolygonList united = list.IntersectSelf();
    double area = 0;
    for (const TVHPolygon& shape : united) area += RegionArea(PolygonOf(shape));
    EXPECT_NEAR(area, covered, 1e-9);
    EXPECT_FALSE(united.MembersOverlap());
    EXPECT_EQ(list.MembersOverlap(), twice);
  });
}

}  // namespace
}  // namespace platenest
