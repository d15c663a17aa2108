#include "RskfBoxes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "RskfProbe.h"
#include "platenest/foundation/Errors.h"

namespace platenest::detail {
namespace {

using testing::ElementsAre;

struct TBoxFields {
  int A;
  int B;
  int Amount;
  Int64 Value;
  bool SmallGroup = false;

  friend bool operator==(const TBoxFields&, const TBoxFields&) = default;
  friend void PrintTo(const TBoxFields& F, std::ostream* Out) {
    *Out << F.A << 'x' << F.B << " amount " << F.Amount << " value " << F.Value << (F.SmallGroup ? " group" : "");
  }
};

std::optional<TBoxFields> Box(const TNestRect& Rect, double ShortSide, const TRskfUnits& Units = {},
                              bool Weighted = false) {
  const auto box = IntBoxOf(Rect, 0, Units, ShortSide, Weighted);
  if (!box) return std::nullopt;
  return TBoxFields{box->A, box->B, box->Amount, box->Area, box->SmallGroup};
}

TEST(RskfBoxes, PartsBelowATwentiethOfTheShortSideAreBundled) {
  using F = TBoxFields;
  EXPECT_EQ(Box(Part(9, 5, 7), 100), (F{5, 7, 9, 3500})) << "a twentieth is not below";
  EXPECT_EQ(Box(Part(9, 4.99, 7), 100), (F{10, 7, 4, 6986, true})) << "2 x 1";
  EXPECT_EQ(Box(Part(1, 4.99, 7), 100), std::nullopt) << "left to the filling";
  EXPECT_EQ(Box(Part(2, 4.99, 7), 100), (F{10, 7, 1, 6986, true}));
  EXPECT_EQ(Box(Part(9, 2, 1), 100), (F{6, 3, 1, 1800, true})) << "3 x 5 shrinks to 3 x 3";
  EXPECT_EQ(Box(Part(3, 4, 3), 100), (F{4, 6, 1, 2400, true})) << "2 x 2, wider than high: loses a column first";
  EXPECT_EQ(Box(Part(3, 3, 4), 100), (F{6, 4, 1, 2400, true})) << "otherwise a row";
  EXPECT_EQ(Box(Part(3, 4, 4), 100), (F{8, 4, 1, 3200, true}));
  EXPECT_EQ(Box(Part(9, 4, 7, 3.3), 100, {}, true), (F{8, 7, 4, 6, true})) << "the worth of all, truncated";
  const TRskfUnits gap{.Amp = 10, .Gap = 1, .IntGap = 5};
  EXPECT_EQ(Box(Part(9, 4, 7), 100, gap), (F{50, 80, 9, 2800})) << "the gap counts: 5 is a twentieth";
  EXPECT_EQ(Box(Part(9, 3.9, 7), 100, gap), (F{98, 80, 4, 5460, true}));
}

TEST(RskfBoxes, SidesAreRoundedUpWithBothHalvesOfTheGap) {
  using F = TBoxFields;
  EXPECT_EQ(Box(Part(9, 10, 0.3), 1, {.Amp = 10, .Gap = 0.1, .IntGap = 1}), (F{102, 5, 9, 300}))
      << "a gap of one unit costs two";
  EXPECT_EQ(Box(Part(9, 1.1, 2.00000001), 4, {.Amp = 10}), (F{11, 20, 9, 220})) << "noise is no length";
  EXPECT_EQ(Box(Part(9, 21, 20), 40, {.Amp = -4, .Gap = 2, .IntGap = 1}), (F{8, 7, 9, 42000}));
  EXPECT_EQ(Box(Part(9, 0.1, 0.04), 0.1), (F{1, 1, 9, 1})) << "an area too small to count is that of the box";
  EXPECT_EQ(Box(Part(9, 4, 5, 0.9), 4, {}, true), (F{4, 5, 9, 0})) << "a stated worth is not";

  constexpr double inf = std::numeric_limits<double>::infinity();
  const TNestRect none[] = {Part(0, 2, 3),   Part(-1, 2, 3),  Part(9, 0, 3),
                            Part(9, 2, -3),  Part(9, inf, 3), Part(9, std::numeric_limits<double>::quiet_NaN(), 3),
                            Part(9, 2, 1e12)};
  for (const TNestRect& rect : none) EXPECT_EQ(Box(rect, 4), std::nullopt);
  EXPECT_EQ(Box(Part(9, 2, 3), 4, {.Gap = -2, .IntGap = -1}), std::nullopt) << "nothing is left of the part";
}

std::vector<int> GivenOut(TRasterBox Box) {
  std::vector<int> given;
  while (const auto piece = Box.PlaceOne()) given.push_back(piece->Rotate ? -piece->Idx : piece->Idx);
  return given;
}

TIntBox IntBox(int A, int B, int Idx, int Amount, Int64 Value) {
  TIntBox box(A, B, Idx, Amount, 1);
  box.Area = Value;
  return box;
}

TEST(RskfBoxes, BoxesOfOneSizeBecomeOneAndTheFirstInOrderIsGivenOutFirst) {
  const TIntBoxList boxes{IntBox(5, 7, 1, 2, 30), IntBox(7, 5, 2, 1, 50), IntBox(7, 5, 3, 2, 30),
                          IntBox(9, 1, 4, 1, 9),  IntBox(7, 4, 5, 1, 8),  IntBox(5, 7, 6, 1, 50)};
  const auto merge = [&](bool canRotate, bool weighted) {
    TIntBoxList merged = boxes;
    std::vector<TRasterBox> pieces;
    MergeCongruentBoxes(merged, pieces, canRotate, weighted);
    std::vector<std::tuple<int, int, Int64, std::vector<int>>> result;
    for (int b = 0; b < Size(merged); ++b) {
      const std::vector<int> given = GivenOut(pieces[b]);
      EXPECT_EQ(merged[b].Amount, Size(given));
      result.emplace_back(merged[b].A, merged[b].B, merged[b].Area, given);
    }
    return result;
  };
  using V = std::vector<int>;
  EXPECT_THAT(merge(true, false), ElementsAre(std::tuple(7, 4, 8, V{5}), std::tuple(7, 5, 50, V{-1, -1, 3, 3, 2, -6}),
                                              std::tuple(9, 1, 9, V{4})));
  EXPECT_THAT(merge(true, true),
              ElementsAre(std::tuple(7, 4, 8, V{5}), std::tuple(7, 5, 50, V{2, -6}), std::tuple(9, 1, 9, V{4})));
  EXPECT_THAT(merge(false, true), ElementsAre(std::tuple(5, 7, 50, V{6}), std::tuple(7, 4, 8, V{5}),
                                              std::tuple(7, 5, 50, V{2}), std::tuple(9, 1, 9, V{4})));

  TIntBoxList full{IntBox(2, 2, 0, std::numeric_limits<int>::max(), 4), IntBox(2, 2, 1, 5, 4)};
  std::vector<TRasterBox> pieces;
  MergeCongruentBoxes(full, pieces, true, false);
  EXPECT_EQ(full[0].Amount, std::numeric_limits<int>::max());
}

TEST(RskfBoxes, RowsOfPieceEndsAscendAndNameEveryBoxOfACell) {
  const TIntBoxList boxes{IntBox(3, 9, 0, 1, 1), IntBox(6, 4, 1, 1, 1), IntBox(4, 4, 2, 1, 1), IntBox(12, 4, 3, 1, 1),
                          IntBox(11, 11, 4, 1, 1)};
  TRaster raster(12, 10, {}, true, true);
  raster.ConstructNormalPattern({0, 4, 6, 12}, {0, 4, 9, 10});
  raster.ConstructIndex(12, 10);
  TRskfPieceRows rows = PieceRowsOf(boxes, raster, true);
  using V = std::vector<std::uint16_t>;
  EXPECT_THAT(rows.Rows, ElementsAre(1, 2)) << "3 turned and 4 fit nowhere";
  EXPECT_THAT(rows.Columns, ElementsAre(V{1, 2, 3, 3}, V{1, 1}));
  EXPECT_THAT(rows.Boxes, ElementsAre(V{2, 1, 0, 3}, V{0, 1}));
  rows = PieceRowsOf(boxes, raster, false);
  EXPECT_THAT(rows.Columns, ElementsAre(V{1, 2, 3}, V{1}));

  EXPECT_THROW(PieceRowsOf({IntBox(1, 1, 0, 1, Int64{1} << 60)}, raster, true), TRangeError);
  EXPECT_THROW(PieceRowsOf(TIntBoxList(65536, boxes[0]), raster, true), TRangeError);
}

}  // namespace
}  // namespace platenest::detail
