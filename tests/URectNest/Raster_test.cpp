#include "platenest/URectNest/Raster.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace platenest {
namespace {

using TInts = std::vector<int>;

// The sums by one pass over a flag per length and copy.
class TFlagPass {
 public:
  TFlagPass(int L, int W, const TIntBoxList& Boxes, bool AllowRotate) {
    for (const TIntBox& box : Boxes) {
      const int copies = std::min(L / std::min(box.A, box.B), box.Amount);
      for (int k = 0; k < copies; ++k) FUnits.push_back(box);
    }
    Resize(L);
    for (const TIntBox& unit : FUnits) {
      for (int t = L; t >= 0; --t) {
        Take(t, unit.A);
        if (AllowRotate) Take(t, unit.B);
      }
    }
    Collect(ListL, L, L);
    if (!AllowRotate) {
      Resize(W);
      for (const TIntBox& unit : FUnits)
        for (int t = W; t >= unit.B; --t) Take(t, unit.B);
    }
    Collect(ListW, AllowRotate ? std::min(L, W) : W, W);
  }

  TInts ListL, ListW;

 private:
  void Resize(int Size) {
    FFlags.resize(static_cast<std::size_t>(Size) + 1);
    std::fill_n(FFlags.begin(), std::min(Size + 1, 4), false);
    FFlags[0] = true;
  }
  void Take(int T, int Side) {
    if (T >= Side && FFlags[static_cast<std::size_t>(T - Side)]) FFlags[static_cast<std::size_t>(T)] = true;
  }
  void Collect(TInts& List, int Last, int End) {
    for (int t = 0; t <= Last; ++t)
      if (FFlags[static_cast<std::size_t>(t)]) List.push_back(t);
    if (List.back() != End) List.push_back(End);
  }

  TIntBoxList FUnits;
  std::vector<bool> FFlags;
};

// Straight from the definition: each member's rest, replaced by the largest member that fits in it.
TInts Reduced(int Size, const TInts& List) {
  TInts points;
  for (const int member : List) points.push_back(*std::prev(std::upper_bound(List.begin(), List.end(), Size - member)));
  points.push_back(0);
  std::sort(points.begin(), points.end());
  points.erase(std::unique(points.begin(), points.end()), points.end());
  return points;
}

void ExpectIndices(const TInts& Points, const TInts& Index, const TInts& Mirrored, int Size) {
  ASSERT_EQ(Index.size(), static_cast<std::size_t>(Size) + 1);
  for (int x = 0; x <= Size; ++x)
    ASSERT_EQ(Index[static_cast<std::size_t>(x)], std::lower_bound(Points.begin(), Points.end(), x) - Points.begin());
  ASSERT_EQ(Mirrored.size(), Points.size());
  for (std::size_t i = 0; i < Points.size(); ++i)
    ASSERT_EQ(Mirrored[i], Index[static_cast<std::size_t>(Size - Points[i])]);
}

TEST(Raster, BoxesWithoutBothSidesAreNoSums) {
  const TIntBoxList boxes{TIntBox(0, 3, 0, 5, 1), TIntBox(3, -1, 0, 5, 1), TIntBox(3, 3, 0, -2, 1)};
  EXPECT_EQ(TRaster(10, 7, boxes, true, true).RasterL, (TInts{0, 10}));
  EXPECT_THROW(TRaster(-1, 7, {}, true, true), TArgumentError);
  EXPECT_THROW(TRaster(2'000'000'000, 7, {}, true, true), TRangeError);
}

TEST(Raster, EqualsTheFlagPassOnAnyPlateAndAmount) {
  std::mt19937 random(7);
  const auto draw = [&](int Low, int High) { return std::uniform_int_distribution<int>(Low, High)(random); };
  for (int round = 0; round < 400; ++round) {
    SCOPED_TRACE(round);
    const int l = draw(0, round % 4 == 0 ? 900 : 150);
    const int w = draw(0, round % 3 == 0 ? 200 : 100);
    TIntBoxList boxes;
    for (int k = draw(0, 4); k > 0; --k) boxes.emplace_back(draw(1, 60), draw(1, 60), k, draw(0, k % 2 ? 5 : 500), 0);
    for (const bool rotate : {false, true}) {
      const TFlagPass expected(l, w, boxes, rotate);
      const TRaster normal(l, w, boxes, rotate, true);
      ASSERT_EQ(normal.RasterL, expected.ListL);
      ASSERT_EQ(normal.RasterW, expected.ListW);
      ExpectIndices(normal.RasterL, normal.IndexL, normal.IndexInvL, l);
      const TRaster reduced(l, w, boxes, rotate, false);
      ASSERT_EQ(reduced.RasterL, Reduced(l, expected.ListL));
      ASSERT_EQ(reduced.RasterW, Reduced(w, expected.ListW));
      ExpectIndices(reduced.RasterW, reduced.IndexW, reduced.IndexInvW, w);
    }
  }
}

}  // namespace
}  // namespace platenest
