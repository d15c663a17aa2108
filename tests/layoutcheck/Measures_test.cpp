#include "platenest/layoutcheck/Measures.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "ForEachSeed.h"
#include "platenest/foundation/Random.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

using TBoxes = std::vector<TPlacedBox>;

double Between(double Low, double High) {
  return Low + (High - Low) * Random(1 << 30) / (1 << 30);
}

TBoxes OnGrid(int Count, int Grid, int Largest) {
  TBoxes boxes(Count);
  for (TPlacedBox& box : boxes) {
    const double x = Random(Grid), y = Random(Grid);
    box = {x, y, x + 1 + Random(Largest), y + 1 + Random(Largest)};
  }
  return boxes;
}

TBoxes Anywhere(int Count, double Largest) {
  TBoxes boxes(Count);
  for (TPlacedBox& box : boxes) {
    const double x = Between(0, 100), y = Between(0, 100);
    box = {x, y, x + Between(0, Largest), y + Between(0, Largest)};
  }
  return boxes;
}

// As nesters list them: rows from below, or columns from the left, of one size or of several, here and there without a
// copy.
TBoxes InRows(int Count, double Gap, bool IsAcross) {
  const bool isMixed = Random(2) == 1;
  TBoxes boxes;
  double x = 0, y = 0;
  for (int i = 0; i < Count; ++i) {
    const double width = isMixed ? Between(2, 12) : 8;
    const TPlacedBox box{x, y, x + width, y + (isMixed ? Between(3, 5) : 5)};
    if (Random(12) > 0) boxes.push_back(IsAcross ? TPlacedBox{box.Bottom, box.Left, box.Top, box.Right} : box);
    x += width + Gap;
    if (x > 80) x = 0, y += 5 + Gap;
  }
  return boxes;
}

TEST(LeastClearance, EqualsAllPairsAsDoesTheFirstPairTooClose) {
  ForEachSeed(2000, [](unsigned Seed) {
    SetSeed(Seed);
    const int count = 2 + Random(30);
    TBoxes boxes = Seed % 8 == 0   ? OnGrid(count, 60, 4)
                   : Seed % 8 == 4 ? OnGrid(2 + count / 3, 14, 4)
                   : Seed % 4 == 1 ? InRows(2 * count, Between(0.1, 3), Random(2) == 1)
                                   : Anywhere(count, Seed % 4 == 2 ? 3 : 15);
    if (Seed % 8 == 4)
      for (TPlacedBox& box : boxes) box.Right -= 1;  // down to no width at all
    double least = std::numeric_limits<double>::infinity();
    for (const TPlacedBox& a : boxes)
      for (const TPlacedBox& b : boxes)
        if (&a < &b) least = std::min(least, Clearance(a, b));
    EXPECT_EQ(LeastClearance(boxes), std::max(0.0, least));
    for (const double gap : {-1.5, 0.0, 1.0, 3.3}) {
      const std::optional<TBoxPair> pair = FirstTooClose(boxes, gap);
      ASSERT_EQ(pair.has_value(), least < gap - 1e-6) << gap;
      if (!pair) continue;
      EXPECT_LT(pair->First, pair->Second);
      EXPECT_EQ(pair->Clearance, Clearance(boxes[pair->First], boxes[pair->Second]));
      EXPECT_LT(pair->Clearance, gap - 1e-6);
    }
  });
  EXPECT_EQ(LeastClearance(TBoxes{{0, 0, 1, 1}}), std::nullopt);
  EXPECT_EQ(LeastClearance(TBoxes{{0, 0, 1, 1}, {4, 5, 5, 6}}), 5) << "3 and 4 on the axes";
}

// Tries every line along an edge, both axes, and every order of cuts.
bool NaiveEdgeToEdge(const TBoxes& Boxes) {
  if (Boxes.size() < 2) return true;
  for (const bool isVertical : {true, false})
    for (const TPlacedBox& edge : Boxes) {
      const double line = isVertical ? edge.Right : edge.Top;
      TBoxes before;
      TBoxes behind;
      for (const TPlacedBox& b : Boxes) {
        if ((isVertical ? b.Right : b.Top) <= line) before.push_back(b);
        if ((isVertical ? b.Left : b.Bottom) >= line) behind.push_back(b);
      }
      if (behind.empty() || before.size() + behind.size() != Boxes.size()) continue;
      if (NaiveEdgeToEdge(before) && NaiveEdgeToEdge(behind)) return true;
    }
  return false;
}

TBoxes Disjoint(const TBoxes& Boxes) {
  TBoxes kept;
  for (const TPlacedBox& box : Boxes)
    if (std::ranges::all_of(kept, [&](const TPlacedBox& other) { return Clearance(box, other) >= 0; }))
      kept.push_back(box);
  return kept;
}

TEST(IsEdgeToEdge, EqualsTheSearchOverAllCuts) {
  ForEachSeed(3000, [](unsigned Seed) {
    SetSeed(Seed);
    const TBoxes boxes = Disjoint(OnGrid(40, 7, 4));
    EXPECT_EQ(IsEdgeToEdge(boxes), NaiveEdgeToEdge(boxes));
    EXPECT_TRUE(IsEdgeToEdge(InRows(60, Seed % 2, Seed % 3 == 0)));
  });
  EXPECT_FALSE(IsEdgeToEdge(TBoxes{{0, 0, 2, 2}, {1, 1, 3, 3}}));
}

void Halve(const TPlacedBox& Box, int Times, TBoxes& Boxes) {
  if (Times == 0) return Boxes.push_back(Box);
  TPlacedBox first = Box, second = Box;
  if (Times % 2 == 0)
    first.Right = second.Left = Between(Box.Left, Box.Right);
  else
    first.Top = second.Bottom = Between(Box.Bottom, Box.Top);
  Halve(first, Times - 1, Boxes);
  Halve(second, Times - 1, Boxes);
}

// One strip within the other around a block cut in halves: more turns than are made across all pieces at once.
TEST(IsEdgeToEdge, FollowsLongChainsOfCuts) {
  SetSeed(1);
  TBoxes boxes;
  Halve({15, 15, 50, 50}, 6, boxes);
  for (double at = 0; at < 15; ++at) boxes.insert(boxes.end(), {{at, at, at + 1, 100}, {at + 1, at, 100, at + 1}});
  EXPECT_TRUE(IsEdgeToEdge(boxes));
  boxes.insert(boxes.end(), {{50, 50, 52, 51}, {52, 50, 53, 52}, {51, 52, 53, 53}, {50, 51, 51, 53}});
  EXPECT_FALSE(IsEdgeToEdge(boxes)) << "no cut parts a pinwheel";
}

// Every pair of vertical limits, and the highest gap between the obstacles in between.
double NaiveFreeArea(TBoxes Boxes, const TPlacedBox& Area, double Clearance) {
  std::vector<double> lines = {Area.Left, Area.Right};
  for (TPlacedBox& b : Boxes) {
    b = {b.Left - Clearance, b.Bottom - Clearance, b.Right + Clearance, b.Top + Clearance};
    lines.insert(lines.end(), {std::clamp(b.Left, Area.Left, Area.Right), std::clamp(b.Right, Area.Left, Area.Right)});
  }
  std::ranges::sort(Boxes, {}, &TPlacedBox::Bottom);
  double best = 0;
  for (const double left : lines)
    for (const double right : lines) {
      if (right <= left) continue;
      double from = Area.Bottom;
      for (const TPlacedBox& b : Boxes) {
        if (b.Right <= left || b.Left >= right) continue;
        best = std::max(best, (std::min(b.Bottom, Area.Top) - from) * (right - left));
        from = std::max(from, b.Top);
      }
      best = std::max(best, (Area.Top - from) * (right - left));
    }
  return best;
}

void ExpectLargestFree(const TBoxes& Boxes, const TPlacedBox& Area, double Gap) {
  const double expected = NaiveFreeArea(Boxes, Area, Gap);
  const std::optional<TPlacedBox> free = LargestFreeBox(Boxes, Area, Gap);
  ASSERT_EQ(free.has_value(), expected > 1e-6);
  if (!free) return;
  EXPECT_NEAR(free->Area(), expected, 1e-9 * expected);
  EXPECT_TRUE(free->Left >= Area.Left && free->Bottom >= Area.Bottom);
  EXPECT_TRUE(free->Right <= Area.Right && free->Top <= Area.Top);
  for (const TPlacedBox& b : Boxes)
    EXPECT_TRUE(free->Left >= b.Right + Gap || free->Right <= b.Left - Gap || free->Bottom >= b.Top + Gap ||
                free->Top <= b.Bottom - Gap);
}

TEST(LargestFreeBox, EqualsTheSearchOverAllRectangles) {
  ForEachSeed(1200, [](unsigned Seed) {
    SetSeed(Seed);
    const int count = Random(40);
    ExpectLargestFree(OnGrid(count, 12, 4), {1, 0, 12, 13}, Seed % 3 == 0 ? 1 : 0);
    ExpectLargestFree(Anywhere(count, Seed % 2 == 0 ? 10 : 2), {0, 0, 100, 100}, Seed % 5);
    ExpectLargestFree(InRows(2 * count, Seed % 3, Seed % 2 == 0), {0, 0, 92, 97}, Seed % 3);
    TBoxes bars = Anywhere(count, 3);
    for (std::size_t i = 0; i < bars.size(); i += 2) bars[i].Right = bars[i].Left + Between(20, 100);
    for (std::size_t i = 0; i < bars.size(); i += 5) bars[i].Top = bars[i].Bottom + Between(20, 100);
    ExpectLargestFree(bars, {-5, -5, 110, 90}, 0);
  });
}

TEST(LargestFreeBox, KeepsTheClearanceAndNamesTheOffcutExactly) {
  //   +--------+--+
  //   |  part  |  |   the part grown by 4 leaves [34.1, 0, 40, 20], not 34.1 - 1e-15 from some sum
  //   +--------+--+
  const TPlacedBox area{0, 0, 40, 20};
  EXPECT_EQ(LargestFreeBox(TBoxes{{0, 0, 30.1, 20}}, area, 4), (TPlacedBox{30.1 + 4, 0, 40, 20}));
  EXPECT_EQ(LargestFreeBox(TBoxes{{0, 0, 36, 20}}, area, 4), std::nullopt);
}

}  // namespace
}  // namespace platenest
