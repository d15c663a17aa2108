#include "RskfBoxes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <tuple>
#include <vector>

#include "RskfProbe.h"
#include "platenest/foundation/Errors.h"

namespace platenest::detail {
namespace {

using testing::ElementsAre;

// A, B, copies, value, whether it is a group.
using F = std::tuple<int, int, int, Int64, bool>;

std::optional<F> Box(const TNestRect& Rect, double ShortSide, const TRskfUnits& Units = {}, bool Weighted = false) {
  const auto box = IntBoxOf(Rect, 0, Units, ShortSide, Weighted);
  if (!box) return std::nullopt;
  return F{box->A, box->B, box->Amount, box->Area, box->SmallGroup};
}

TEST(RskfBoxes, PartsBelowATwentiethOfTheShortSideAreBundled) {
  EXPECT_EQ(Box(Part(9, 5, 7), 100), (F{5, 7, 9, 3500, false})) << "a twentieth is not below";
  EXPECT_EQ(Box(Part(9, 4.99, 7), 100), (F{10, 7, 4, 6986, true})) << "2 x 1";
  EXPECT_EQ(Box(Part(1, 4.99, 7), 100), std::nullopt) << "left to the filling";
  EXPECT_EQ(Box(Part(9, 2, 1), 100), (F{6, 3, 1, 1800, true})) << "3 x 5 shrinks to 3 x 3";
  EXPECT_EQ(Box(Part(3, 4, 3), 100), (F{4, 6, 1, 2400, true})) << "2 x 2, wider than high: loses a column first";
  EXPECT_EQ(Box(Part(3, 3, 4), 100), (F{6, 4, 1, 2400, true})) << "otherwise a row";
  EXPECT_EQ(Box(Part(2'000'000'000, 1e-9, 1e-9), 100), (F{1, 1, 1, 1, true})) << "five thousand million across";
  EXPECT_EQ(Box(Part(9, 4, 7, 3.3), 100, {}, true), (F{8, 7, 4, 6, true})) << "the worth of all, truncated";
  const TRskfUnits gap{.Amp = 10, .Gap = 1, .IntGap = 5};
  EXPECT_EQ(Box(Part(9, 4, 7), 100, gap), (F{50, 80, 9, 2800, false})) << "the gap counts: 5 is a twentieth";
  EXPECT_EQ(Box(Part(9, 3.9, 7), 100, gap), (F{98, 80, 4, 5460, true}));
}

TEST(RskfBoxes, SidesAreRoundedUpWithBothHalvesOfTheGap) {
  EXPECT_EQ(Box(Part(9, 10, 0.3), 1, {.Amp = 10, .Gap = 0.1, .IntGap = 1}), (F{102, 5, 9, 300, false}))
      << "a gap of one unit costs two";
  EXPECT_EQ(Box(Part(9, 1.1, 2.00000001), 4, {.Amp = 10}), (F{11, 20, 9, 220, false})) << "noise is no length";
  EXPECT_EQ(Box(Part(9, 21, 20), 40, {.Amp = -4, .Gap = 2, .IntGap = 1}), (F{8, 7, 9, 42000, false}));
  EXPECT_EQ(Box(Part(9, 0.1, 0.04), 0.1), (F{1, 1, 9, 1, false})) << "an area too small to count is that of the box";
  EXPECT_EQ(Box(Part(9, 4, 5, 0.9), 4, {}, true), (F{4, 5, 9, 0, false})) << "a stated worth is not";

  constexpr double inf = std::numeric_limits<double>::infinity();
  const TNestRect none[] = {Part(0, 2, 3),    Part(-1, 2, 3),    Part(9, 0, 3),
                            Part(9, 2, -3),   Part(9, inf, 3),   Part(9, std::numeric_limits<double>::quiet_NaN(), 3),
                            Part(9, 2, 1e12), Part(9, 1e-320, 3)};
  for (const TNestRect& rect : none) EXPECT_EQ(Box(rect, 4), std::nullopt);
  EXPECT_EQ(Box(Part(9, 2, 3), 4, {.Gap = -2, .IntGap = -1}), std::nullopt) << "nothing is left of the part";
}

TEST(RskfBoxes, BoxesOfOneSizeBecomeOneAndTheFirstInOrderIsGivenOutFirst) {
  const TIntBoxList boxes{TIntBox(5, 7, 1, 2, 30), TIntBox(7, 5, 2, 1, 50), TIntBox(7, 5, 3, 2, 30),
                          TIntBox(9, 1, 4, 1, 9),  TIntBox(7, 4, 5, 1, 8),  TIntBox(5, 7, 6, 1, 50)};
  using V = std::vector<int>;  // of the pieces, -Idx for a turned one
  const auto merge = [&](bool weighted) {
    TIntBoxList merged = boxes;
    std::vector<TRasterBox> pieces;
    MergeCongruentBoxes(merged, pieces, true, weighted);
    std::vector<std::tuple<int, int, Int64, V>> result;
    for (int b = 0; b < Size(merged); ++b) {
      V given;
      while (const auto piece = pieces[b].PlaceOne()) given.push_back(piece->Rotate ? -piece->Idx : piece->Idx);
      EXPECT_EQ(merged[b].Amount, Size(given));
      result.emplace_back(merged[b].A, merged[b].B, merged[b].Area, given);
    }
    return result;
  };
  const std::tuple first(7, 4, Int64{8}, V{5});
  const std::tuple last(9, 1, Int64{9}, V{4});
  EXPECT_THAT(merge(false), ElementsAre(first, std::tuple(7, 5, 50, V{-1, -1, 3, 3, 2, -6}), last));
  EXPECT_THAT(merge(true), ElementsAre(first, std::tuple(7, 5, 50, V{2, -6}), last));
}

TEST(RskfBoxes, TablesThatCouldOverflowAreRefused) {
  const TRaster raster(12, 10, {}, true, true);
  EXPECT_THROW(PieceRowsOf({TIntBox(1, 1, 0, 9, Int64{1} << 60)}, raster, true), TRangeError);
  EXPECT_NO_THROW(PieceRowsOf({TIntBox(1, 1, 0, 1, Int64{1} << 60)}, raster, true)) << "there is one copy only";
  EXPECT_THROW(PieceRowsOf(TIntBoxList(65536, TIntBox(3, 9, 0, 1, 1)), raster, true), TRangeError);
}

}  // namespace
}  // namespace platenest::detail
