#include "platenest/colgen/RectPattern.h"

#include <gmock/gmock.h>

#include <vector>

#include "RectCases.h"
#include "platenest/colgen/RectNestProblem.h"

namespace platenest {
namespace {

using testing::ElementsAre;

// Items of 10 by 20 with the given indices; where they lie does not matter.
TRectPattern Pattern(const std::vector<int>& Indices, double Width = 100, double Height = 50) {
  TNestedRects layout;
  for (const int idx : Indices)
    layout.emplace_back(TNestRect(1, idx, TVRect2D::FromSize(10, 20)), false, TPoint2D(idx, 3));
  return TRectPattern(layout, TVRect2D::FromSize(Width, Height));
}

TEST(RectPattern, ColumnAndUsageFollowTheLayout) {
  TRectPattern pattern = Pattern({3, 1, 3});
  EXPECT_THAT(pattern.Column(), ElementsAre(0, 1, 0, 2));
  EXPECT_THAT(pattern.GetColumn(6), ElementsAre(0, 1, 0, 2, 0, 0));
  EXPECT_THROW(pattern.GetColumn(3), TAssertionError);
  EXPECT_DOUBLE_EQ(pattern.Usage(), 600.0 / 5000);
  pattern.NestedRects().pop_back();
  pattern.NestedRects().pop_back();
  pattern.UpdateUsage();
  EXPECT_THAT(pattern.Column(), ElementsAre(0, 0, 0, 1));
  EXPECT_DOUBLE_EQ(pattern.GetActualCost(), 200.0 / 5000);
  EXPECT_THROW(Pattern({-1}), TArgumentError);
  EXPECT_THAT(Pattern({}).Column(), ElementsAre(0));
  EXPECT_TRUE(TRectPattern::CreateEmpty()->Column().empty());
}

TEST(RectPattern, SameAreCopiesAndPlateNotPlaces) {
  const TRectPattern pattern = Pattern({0, 2, 2});
  EXPECT_TRUE(pattern.IsSameWith(*pattern.Clone()));
  EXPECT_TRUE(pattern.IsSameWith(Pattern({2, 0, 2}, 50, 100)));
  EXPECT_FALSE(pattern.IsSameWith(Pattern({0, 2, 2}, 25, 200)));
  EXPECT_FALSE(pattern.IsSameWith(Pattern({0, 0, 2})));
  EXPECT_FALSE(pattern.IsSameWith(Pattern({0, 2, 3})));
  TRectPattern shrunk = Pattern({0, 2, 2});
  shrunk.NestedRects()[0].Part.BoundBox = TVRect2D::FromSize(10, 19.4);  // 0.0012 of the plate less
  shrunk.UpdateUsage();
  EXPECT_FALSE(pattern.IsSameWith(shrunk));
}

TEST(RectNestProblem, KeepsOnlyWhatIsStrictlySmallerThanThePlate) {
  const TNestRectList rects = {Part(100, 20, 5), Part(99.999999, 20, 5), Part(99.9999, 20, 4), Part(60, 50, 5),
                               Part(49, 99, 3),  Part(60, 60, 1),        Part(5, 5, 0),        Part(49, 49, 2)};
  const TRectNestProblem problem(rects, TVRect2D::FromSize(100, 50), 1);
  std::vector<int> positions;
  for (const TNestRect& row : problem.Rects()) positions.push_back(row.Idx);
  EXPECT_THAT(positions, ElementsAre(2, 4, 7));
  EXPECT_THAT(problem.BVec(), ElementsAre(4, 3, 2));
  EXPECT_THAT(problem.IneqVec(), ElementsAre(1, 1, 1));
  EXPECT_THAT(problem.RowDict(), ElementsAre(0, 1, 2));
}

TEST(RectNestProblem, SubProblemsDropRowsWithoutDemandAndKeepIndices) {
  const TNestRectList rects = {Part(200, 20, 5), Part(30, 20, 5), Part(20, 20, 4), Part(20, 10, 9)};
  TRectNestProblem problem(rects, TVRect2D::FromSize(100, 50), 1);
  EXPECT_EQ(problem.GetDefaultDualCost(0), 600);
  const auto base = problem.GetSubBCPProblem({0, 1, 2}, TDoubleDynArray{1.9995, 0.998, 7});
  const auto& sub = dynamic_cast<const TRectNestProblem&>(*base);
  EXPECT_THAT(sub.RowDict(), ElementsAre(0, 2));
  EXPECT_THAT(sub.BVec(), ElementsAre(2, 7));
  EXPECT_EQ(sub.Rects()[1].Idx, 3);
  EXPECT_EQ(sub.Rects()[1].Amount, 7);
  EXPECT_THROW(problem.GetSubBCPProblem({0}, TIntegerDynArray{1, 2}), TAssertionError);

  problem.SetDualCost({1.0001e-5, 1e-5, 2}, 10000);
  EXPECT_NEAR(problem.Rects()[0].Area, 0.10001, 1e-9);
  EXPECT_EQ(problem.Rects()[1].Area, 1.0);
  EXPECT_EQ(problem.Rects()[2].Area, 20000);
  EXPECT_THROW(problem.SetDualCost({1}, 1), TAssertionError);
}

}  // namespace
}  // namespace platenest
