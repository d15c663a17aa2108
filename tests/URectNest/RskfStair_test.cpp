#include "RskfStair.h"

#include <gtest/gtest.h>

#include "Rects.h"

namespace platenest {
namespace {

using TStair = TRSKF::TLStair;
using TList = std::vector<double>;

std::vector<TList> Areas(const TStair& Stair, const TNestRectList& List) {
  std::vector<TList> bounds;
  for (const TVRect2D& area : Stair.FindCandidateArea(List))
    bounds.push_back({area.Left, area.Bottom, area.Right, area.Top});
  return bounds;
}

//   60 +--------------------+
//   30 |--------+           |
//   20 |  40x30 |-----+     |
//      |        |30x20|     |
//      0       40    70   100
const TVRect2D kPlate = TVRect2D::FromSize(100, 60);
const TNestedRects kTwo{Placed(20, 30, 70, 0, 0, true), Placed(40, 30, 0, 0)};

TEST(RskfStair, FreeAreasReachOverRunsOfLowerSteps) {
  const TStair stair(kPlate, kTwo, 0);
  EXPECT_EQ(stair.Xs(), (TList{0, 40, 70, 100}));
  EXPECT_EQ(stair.XHeights(), (TList{30, 20, 0}));
  EXPECT_EQ(stair.Ys(), (TList{0, 20, 30, 60}));
  EXPECT_EQ(stair.YHeights(), (TList{70, 40, 0}));
  const TList above{0, 30, 100, 60};
  const TList middle{40, 20, 100, 60};
  const TList right{70, 0, 100, 60};
  EXPECT_EQ(Areas(stair, {Part(1, 9, 9)}), (std::vector{above, middle, right, right, middle, above}));
  EXPECT_EQ(Areas(stair, {Part(1, 30, 30)}), (std::vector{middle, middle})) << "areas of width 30 are refused";
  EXPECT_EQ(Areas(stair, {Part(1, 9, 100), Part(1, 50, 50)}), (std::vector{above, above})) << "long side to long side";
  EXPECT_TRUE(Areas(stair, {Part(1, 1, 101)}).empty());
}

TEST(RskfStair, GapIsTakenOffAnAreaAndAskedForAgainAroundARectangle) {
  const TStair stair(TVRect2D::FromSize(60, 30).Inflate(2), {Placed(40, 30, 0, 0)}, 4);
  EXPECT_EQ(Areas(stair, {Part(1, 12, 26)}), (std::vector(2, TList{44, 0, 60, 30})));
  EXPECT_TRUE(Areas(stair, {Part(1, 13, 26)}).empty()) << "although it would fit";
}

TEST(RskfStair, EqualAndNarrowStepsAreJoined) {
  const auto outline = [](const TNestedRects& list, double gap = 0) {
    const TStair stair(kPlate, list, gap);
    return std::pair(stair.Xs(), stair.XHeights());
  };
  const auto steps = [](TList xs, TList heights) { return std::pair(xs, heights); };
  EXPECT_EQ(outline({Placed(40, 20, 0, 0), Placed(20, 20, 40, 0)}), steps({0, 60, 100}, {20, 0})) << "equal";
  EXPECT_EQ(outline({Placed(39.9995, 20, 0, 0), Placed(20, 30, 40, 0)}), steps({0, 39.9995, 60, 100}, {20, 30, 0}))
      << "a narrow slot sinks into its right neighbour";
  EXPECT_EQ(outline({Placed(40, 10, 0, 20), Placed(40.0005, 20, 0, 0)}), steps({0, 40.0005, 100}, {30, 0}))
      << "a narrow ledge belongs to its left neighbour";
  EXPECT_EQ(outline({Placed(0.0005, 20, 40, 0)}), steps({0, 40, 40.0005, 100}, {0, 20, 0})) << "a needle stands";
  EXPECT_EQ(outline({Placed(99.9995, 20, 0, 0)}), steps({0, 99.9995, 100}, {20, 0})) << "the last step stays";
  EXPECT_EQ(outline({Placed(38, 18, 1, 1), Placed(57, 23, 42, 1)}, 2).first, (TList{0, 40, 100})) << "up to the gap";
}

}  // namespace
}  // namespace platenest
