#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platenest/URectNest/RectRecords.h"
#include "platenest/foundation/Grid.h"

namespace platenest::detail {

using TWord = std::uint64_t;

// Where the counts of all boxes lie in a vector of words: fields of as many bits as the limit of a box needs, each with
// a guard bit above. Two vectors that keep the limits are added without carry into a neighbour, and a sum breaks a
// limit just when it sets a guard bit after the bias was added.
class TPiecePacking {
 public:
  TPiecePacking() = default;
  // The limit of a box is its amount, at most 65535, and what the area of the plate can hold, which no layout exceeds.
  TPiecePacking(const TIntBoxList& Boxes, Int64 PlateArea);

  int Words() const { return static_cast<int>(FBias.size()); }
  const TWord* Bias() const { return FBias.data(); }
  const TWord* Guards() const { return FGuards.data(); }
  void SetSingle(TWord* Vector, int Box) const {
    std::fill_n(Vector, FBias.size(), TWord{0});
    Vector[FFields[Box].Word] = TWord{1} << FFields[Box].Shift;
  }
  std::uint16_t CountOf(const TWord* Vector, int Box) const;
  // No count of Part is above that of Whole.
  bool Holds(const TWord* Whole, const TWord* Part) const;

 private:
  struct TField {
    int Word;
    int Shift;
    TWord Mask;
  };

  std::vector<TField> FFields;  // by box
  std::vector<TWord> FBias;
  std::vector<TWord> FGuards;
};

// One vector for each cell; a row takes memory when it is first used.
class TPieceTable {
 public:
  TPieceTable() = default;
  TPieceTable(int Rows, int Columns, int Words) : FColumns(Columns), FWords(Words), FRows(Rows) {}

  void Use(int Row) {
    if (FRows[Row].empty()) FRows[Row].resize(static_cast<std::size_t>(FColumns) * FWords);
  }
  // Of a row in use.
  TWord* Row(int Index) { return FRows[Index].data(); }
  const TWord* At(int Row, int Column) const { return FRows[Row].data() + static_cast<std::size_t>(Column) * FWords; }

 private:
  int FColumns = 0;
  int FWords = 0;
  std::vector<std::vector<TWord>> FRows;
};

// What a pass knows about each cell, the part of the plate up to a raster point on both axes.
struct TRskfTables {
  TGrid<Int64> F;          // [row][column]: best value
  TGrid<std::uint16_t> X;  // [row][column]: where its layout is cut along the length; the column itself for no cut
  TGrid<std::uint16_t> Y;  // [column][row]: along the width, likewise; 0 for the layout of a smaller cell
  TPiecePacking Packing;   // of the bounded pass; without words otherwise
  TPieceTable Used;        // the pieces of that layout, in rows that were reached
};

}  // namespace platenest::detail
