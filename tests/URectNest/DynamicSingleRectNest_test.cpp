#include <gtest/gtest.h>

#include <random>

#include "platenest/URectNest/RectangleNest.h"

namespace platenest {
namespace {

TNestRect Part(double Width, double Height, int Amount) {
  return TNestRect(Amount, 0, TVRect2D::FromSize(Width, Height));
}

// The search with every trial layout built.
double SearchWithLists(const TNestRect& Part, double H, double W, double Gap, TNestedRects& List) {
  const double width = Part.BoundBox.Width();
  const double unitArea = (width + Gap) * (Part.BoundBox.Height() + Gap);
  bool isFull = false;
  const int amt = TRectangleNest(TVRect2D::FromSize(W, H), Part, Gap).SingleNest(List, isFull);
  double ratio = amt * unitArea / (H + Gap) / (W + Gap);
  if (!isFull) return ratio;
  TListOf<double> xs;
  for (const TNestedRect& item : List) xs.push_back(item.IsRotate ? item.Trans.X - Gap : item.Trans.X + width - Gap);
  double lastX = xs.Last();
  double prevX = lastX;
  int count = amt;
  int bestAmt = amt;
  double bestRatio = amt * unitArea / H / lastX;
  TNestedRects copy;
  bool bestIsCopy = false;
  while (lastX * 3.0 > W) {
    xs.pop_back();
    --count;
    lastX = xs.Last();
    if (fEqual(lastX, prevX, 1e-6)) continue;
    if (lastX * 3.0 <= W) break;
    ratio = count * unitArea / H / lastX;
    if (ratio > bestRatio) {
      bestIsCopy = false;
      bestAmt = count;
      bestRatio = ratio;
    }
    TNestedRects scratch;
    bool unused = false;
    const int amt2 = TRectangleNest(TVRect2D::FromSize((lastX + prevX) / 2, H), Part, Gap).SingleNest(scratch, unused);
    const double right = scratch.Last().Trans.X + (scratch.Last().IsRotate ? 0 : width);
    ratio = amt2 * unitArea / (H + Gap) / right;
    if (ratio > bestRatio) {
      copy = scratch;
      bestIsCopy = true;
      bestAmt = count;
      bestRatio = ratio;
    }
    prevX = lastX;
  }
  if (bestIsCopy) List = copy;
  while (!bestIsCopy && List.Count() > bestAmt) List.pop_back();
  return ratio;
}

TEST(DynamicSingleRectNest, AStopLeavesTheFullPlate) {
  TStopToken stop;
  stop.RequestStop();
  const TStopTokenScope scope(&stop);
  TNestedRects list;
  DynamicSingleRectNest(Part(3, 2, 100), 5, 8, 0, list);
  EXPECT_EQ(list.Count(), 6) << "untrimmed";
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
    const TNestRect part = Part(width, side(), round % 10 == 0 ? 0 : round % 4 == 0 ? 40 : 1'000'000);
    TNestedRects expected;
    TNestedRects list;
    double expectedRatio = 0;
    try {
      expectedRatio = SearchWithLists(part, h, w, gap, expected);
    } catch (const TRangeError&) {
      ++raised;
      ASSERT_THROW(DynamicSingleRectNest(part, h, w, gap, list), TRangeError) << round;
      ASSERT_TRUE(list.empty());
      continue;
    }
    ASSERT_EQ(DynamicSingleRectNest(part, h, w, gap, list), expectedRatio) << round;
    ASSERT_EQ(list.Count(), expected.Count()) << round;
    for (int i = 0; i < list.Count(); ++i)
      ASSERT_TRUE(list.At(i).Trans == expected.At(i).Trans && list.At(i).IsRotate == expected.At(i).IsRotate);
    TNestedRects whole;
    bool isFull = false;
    TRectangleNest(TVRect2D::FromSize(w, h), part, gap).SingleNest(whole, isFull);
    if (whole.Count() != list.Count()) ++trimmed;
  }
  EXPECT_GT(raised, 10);
  EXPECT_GT(trimmed, 50);
}

}  // namespace
}  // namespace platenest
