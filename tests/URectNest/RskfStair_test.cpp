#include "RskfStair.h"

#include <gtest/gtest.h>

namespace platenest {
namespace {

using TStair = TRSKF::TLStair;
using TList = std::vector<double>;

TNestedRect Placed(double Width, double Height, double X, double Y, bool Turned = false) {
  return TNestedRect(TNestRect(1, 0, TVRect2D::FromSize(Width, Height)), Turned, {X, Y});
}

TNestRectList Parts(std::vector<std::pair<double, double>> Sizes) {
  TNestRectList list;
  for (const auto& [w, h] : Sizes) list.emplace_back(1, Size(list), TVRect2D::FromSize(w, h));
  return list;
}

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
const TNestedRects kTwo{Placed(20, 30, 70, 0, true), Placed(40, 30, 0, 0)};

TEST(RskfStair, FreeAreasReachOverRunsOfLowerSteps) {
  const TStair stair(kPlate, kTwo, 0);
  EXPECT_EQ(stair.Xs(), (TList{0, 40, 70, 100}));
  EXPECT_EQ(stair.XHeights(), (TList{30, 20, 0}));
  EXPECT_EQ(stair.Ys(), (TList{0, 20, 30, 60}));
  EXPECT_EQ(stair.YHeights(), (TList{70, 40, 0}));
  const TList above{0, 30, 100, 60};
  const TList middle{40, 20, 100, 60};
  const TList right{70, 0, 100, 60};
  EXPECT_EQ(Areas(stair, Parts({{9, 9}})), (std::vector{above, middle, right, right, middle, above}));
  EXPECT_EQ(Areas(stair, Parts({{30, 30}})), (std::vector{middle, middle})) << "areas of width 30 are refused";
  EXPECT_EQ(Areas(stair, Parts({{9, 100}, {50, 50}})), (std::vector{above, above})) << "long side to long side";
  EXPECT_TRUE(Areas(stair, Parts({{1, 101}})).empty());
}

TEST(RskfStair, GapIsTakenOffAnAreaAndAskedForAgainAroundARectangle) {
  const TStair stair(TVRect2D::FromSize(60, 30).Inflate(2), {Placed(40, 30, 0, 0)}, 4);
  EXPECT_EQ(Areas(stair, Parts({{12, 26}})), (std::vector(2, TList{44, 0, 60, 30})));
  EXPECT_TRUE(Areas(stair, Parts({{13, 26}})).empty()) << "although it would fit";
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
