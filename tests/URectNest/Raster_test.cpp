#include "platenest/URectNest/Raster.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Rects.h"

namespace platenest {
namespace {

using TInts = std::vector<int>;
using TFlags = std::vector<bool>;  // one for each length

// One pass for each copy: from 0 and what Flags hold above 3, each length below Size that a side more leads to.
void AddSums(int Size, int L, const TIntBoxList& Boxes, int TIntBox::*Side, int TIntBox::*OtherSide, TFlags& Flags) {
  Flags.resize(Size + 1);
  std::fill_n(Flags.begin(), std::min(Size + 1, 4), false);
  Flags[0] = true;
  const auto take = [&](int t, int side) {
    if (t >= side && Flags[t - side]) Flags[t] = true;
  };
  for (const TIntBox& box : Boxes) {
    for (int k = std::min(L / std::min(box.A, box.B), box.Amount); k > 0; --k) {
      for (int t = Size; t >= 0; --t) {
        take(t, box.*Side);
        take(t, box.*OtherSide);
      }
    }
  }
}

TInts Members(const TFlags& Flags, int Size) {
  TInts list;
  for (int t = 0; t <= Size && t < std::ssize(Flags); ++t)
    if (Flags[t]) list.push_back(t);
  if (list.back() != Size) list.push_back(Size);
  return list;
}

// Straight from the definition: each member's rest, replaced by the largest member that fits in it.
TInts Reduced(int Size, const TInts& List) {
  TInts points{0};
  for (const int member : List) points.push_back(*std::prev(std::upper_bound(List.begin(), List.end(), Size - member)));
  std::sort(points.begin(), points.end());
  points.erase(std::unique(points.begin(), points.end()), points.end());
  return points;
}

void ExpectIndices(const TInts& Points, const TInts& Index, const TInts& Mirrored, int Size) {
  ASSERT_EQ(std::ssize(Index), Size + 1);
  for (int x = 0; x <= Size; ++x)
    ASSERT_EQ(Index[x], std::lower_bound(Points.begin(), Points.end(), x) - Points.begin());
  ASSERT_EQ(Mirrored.size(), Points.size());
  for (int i = 0; i < std::ssize(Points); ++i) ASSERT_EQ(Mirrored[i], Index[Size - Points[i]]);
}

TEST(Raster, EqualsTheFlagPassOnAnyPlateAndAmount) {
  TDice from(7);
  for (int round = 0; round < 400; ++round) {
    SCOPED_TRACE(round);
    const int l = from(0, round % 4 == 0 ? 900 : 150);
    const int w = from(0, round % 3 == 0 ? 200 : 100);
    TIntBoxList boxes;
    for (int k = from(0, 4); k > 0; --k) boxes.emplace_back(from(1, 60), from(1, 60), k, from(0, k % 2 ? 5 : 500), 0);
    for (const bool rotate : {false, true}) {
      TFlags flags;
      AddSums(l, l, boxes, &TIntBox::A, rotate ? &TIntBox::B : &TIntBox::A, flags);
      const TInts listL = Members(flags, l);
      if (!rotate) AddSums(w, l, boxes, &TIntBox::B, &TIntBox::B, flags);
      const TInts listW = Members(flags, w);
      const TRaster normal(l, w, boxes, rotate, true);
      ASSERT_EQ(normal.RasterL, listL);
      ASSERT_EQ(normal.RasterW, listW);
      ExpectIndices(normal.RasterL, normal.IndexL, normal.IndexInvL, l);
      const TRaster reduced(l, w, boxes, rotate, false);
      ASSERT_EQ(reduced.RasterL, Reduced(l, listL));
      ASSERT_EQ(reduced.RasterW, Reduced(w, listW));
      ExpectIndices(reduced.RasterW, reduced.IndexW, reduced.IndexInvW, w);
    }
  }
}

TEST(Raster, BoxesWithoutBothSidesAreNoSums) {
  const TIntBoxList boxes{TIntBox(0, 3, 0, 5, 1), TIntBox(3, -1, 0, 5, 1), TIntBox(3, 3, 0, -2, 1)};
  EXPECT_EQ(TRaster(10, 7, boxes, true, true).RasterL, (TInts{0, 10}));
  EXPECT_THROW(TRaster(-1, 7, {}, true, true), TArgumentError);
  EXPECT_THROW(TRaster(2'000'000'000, 7, {}, true, true), TRangeError);
}

}  // namespace
}  // namespace platenest
