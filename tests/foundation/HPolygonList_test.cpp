#include <gtest/gtest.h>

#include "BoxContour.h"
#include "ForEachSeed.h"
#include "OverlapDepth.h"
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

TEST(HPolygonList, AgreesWithExactRegions) {
  ForEachSeed(300, [](unsigned Seed) {
    const TRandomScope scope(Seed);
    TVHPolygonList list;
    TPaths all;
    bool overlap = false;
    for (int i = 1 + Random(5); i > 0; --i) {
      const int left = Random(9), bottom = Random(9), side = 1 + Random(3);
      TVHPolygon shape{Box(left, bottom, left + side, bottom + side)};
      if (side == 3) shape.push_back(Box(left + 1, bottom + 1, left + 2, bottom + 2));
      for (const TVHPolygon& other : list) overlap |= Overlaps(PolygonOf(other), PolygonOf(shape));
      TPathUtils::PathsAddRange(all, PolygonOf(shape));
      list.push_back(shape);
    }
    EXPECT_EQ(list.MembersOverlap(), overlap);
    for (int i = 0; i < 144; ++i) {
      const TPoint2D point{i / 12 + 0.5, i % 12 + 0.5};
      const bool isInside = PlaceOf(TPathUtils::CreateIntPoint(point, kPathScale), all) == TPlace::Inside;
      EXPECT_EQ(list.RelationWithPoint(point, 1e-6), isInside ? 1 : -1);
    }
    const TVHPolygonList united = list.IntersectSelf();
    double area = 0;
    for (const TVHPolygon& shape : united) area += RegionArea(PolygonOf(shape));
    EXPECT_NEAR(area, RegionArea(all), 1e-9);
    EXPECT_FALSE(united.MembersOverlap());
  });
}

}  // namespace
}  // namespace platenest
