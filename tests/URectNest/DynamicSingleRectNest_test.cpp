#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "Rects.h"
#include "platenest/URectNest/RectangleNest.h"

namespace platenest {
namespace {

// The search with every trial layout built.
double SearchWithLists(const TNestRect& PartRect, double H, double W, double Gap, TNestedRects& List) {
  const double width = PartRect.BoundBox.Width();
  const double unitArea = (width + Gap) * (PartRect.BoundBox.Height() + Gap);
  bool isFull = false;
  const auto nestOn = [&](double Length, TNestedRects& On) {
    return TRectangleNest(TVRect2D::FromSize(Length, H), PartRect, Gap).SingleNest(On, isFull);
  };
  const auto right = [&](const TNestedRect& Item) { return Item.Trans.X + (Item.IsRotate ? 0 : width); };
  int count = nestOn(W, List);
  double ratio = count * unitArea / (H + Gap) / (W + Gap);
  if (!isFull) return ratio;
  TNestedRects rest = List;
  double lastX = right(rest.Last()) - Gap;
  double best = count * unitArea / H / lastX;
  while (lastX * 3.0 > W) {
    rest.pop_back();
    const double x = right(rest.Last()) - Gap;
    if (fEqual(x, lastX)) continue;
    if (x * 3.0 <= W) break;
    TNestedRects trial;
    const int trialCount = nestOn((x + lastX) / 2, trial);
    const double kept = rest.Count() * unitArea / H / x;
    ratio = trialCount * unitArea / (H + Gap) / right(trial.Last());
    if (kept > best) List = rest;
    best = std::max(best, kept);
    if (ratio > best) List = trial;
    best = std::max(best, ratio);
    lastX = x;
  }
  return ratio;
}

TEST(DynamicSingleRectNest, EqualsTheSearchThatBuildsEveryTrial) {
  std::mt19937 random(17);
  std::uniform_real_distribution<double> real(0, 1);
  int raised = 0;
  int trimmed = 0;
  for (int round = 0; round < 1000; ++round) {
    const bool grid = round % 61 == 7;
    const double h = grid ? 3 * real(random) : 5 + std::ceil(60 * real(random));
    const double w = grid ? 700 + 300 * real(random) : 5 + std::ceil(60 * real(random));
    const double gap = round % 3 * 0.6;
    const auto side = [&] { return (grid ? 0.08 : 1) * std::ceil(16 * real(random)); };
    const double width = side();
    const TNestRect part = Part(round % 10 == 0 ? 0 : round % 4 == 0 ? 40 : 1'000'000, width, side());
    const auto ratioOf = [&](auto& search, TNestedRects& layout) -> std::optional<double> {
      try {
        return search(part, h, w, gap, layout);
      } catch (const TRangeError&) {
        return std::nullopt;
      }
    };
    TNestedRects expected, list, whole;
    const auto expectedRatio = ratioOf(SearchWithLists, expected);
    ASSERT_EQ(ratioOf(DynamicSingleRectNest, list), expectedRatio) << round;
    if (!expectedRatio) {
      ++raised;
      ASSERT_TRUE(list.empty());
      continue;
    }
    ASSERT_EQ(list.Count(), expected.Count()) << round;
    for (int i = 0; i < list.Count(); ++i)
      ASSERT_TRUE(list.At(i).Trans == expected.At(i).Trans && list.At(i).IsRotate == expected.At(i).IsRotate);
    bool isFull = false;
    trimmed += TRectangleNest(TVRect2D::FromSize(w, h), part, gap).SingleNest(whole, isFull) != list.Count();
  }
  EXPECT_GT(raised, 10);
  EXPECT_GT(trimmed, 50);
}

TEST(DynamicSingleRectNest, AStopLeavesTheFullPlate) {
  TStopToken stop;
  stop.RequestStop();
  const TStopTokenScope scope(&stop);
  TNestedRects list;
  DynamicSingleRectNest(Part(100, 3, 2), 5, 8, 0, list);
  EXPECT_EQ(list.Count(), 6) << "untrimmed";
}

}  // namespace
}  // namespace platenest
