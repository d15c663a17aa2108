#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platenest/URectNest/Raster.h"
#include "platenest/URectNest/RectRecords.h"

namespace platenest::detail {

// How plate units and the raster program's whole units belong together.
struct TRskfUnits {
  int Amp = 1;               // units per plate unit, or minus plate units per unit
  double Gap = 0;            // in plate units
  int IntGap = 0;            // half the gap in units, rounded up
  bool PlateRotate = false;  // the length axis of the program runs along y

  double ToUnits(double Length) const { return Amp > 0 ? Length * Amp : Length / -static_cast<double>(Amp); }
  double ToPlate(double Units) const { return Amp > 0 ? Units / Amp : Units * -static_cast<double>(Amp); }
};

// The columns and rows of a grid of copies.
struct TCopyGrid {
  int Columns = 1;
  int Rows = 1;
  Int64 Copies() const { return Int64{Columns} * Rows; }
};

// The grid that is to stand for one copy of Width by Height, gap included, on a plate with that short side: 1 by 1 for
// all but tiny parts.
TCopyGrid BundleGrid(double Width, double Height, double ShortSide);
// The grid made small enough for Amount copies, at least one: one off the longer direction at a
// time, off the rows of a square unless a copy is wider than high.
TCopyGrid ShrunkGrid(const TCopyGrid& Grid, double Width, double Height, int Amount);

// The integer box of a part or of a grid of it; nothing for a part without copies or positive sizes, for one that no
// raster holds, and for a single copy of a tiny part.
std::optional<TIntBox> IntBoxOf(const TNestRect& Rect, int Idx, const TRskfUnits& Units, double ShortSide,
                                bool Weighted);

// The pieces behind one integer box: a stack of parts with their counts.
class TRasterBox {
 public:
  struct TPiece {
    int Idx = 0;
    bool Rotate = false;      // the box stands for the part turned
    bool SmallGroup = false;  // it is a grid of parts
  };

  TRasterBox(int AIdx, int ACount, bool ARotate, bool ASmallGroup) { AddRect(AIdx, ACount, ARotate, ASmallGroup); }
  // No effect for a count of 0 or a negative index.
  void AddRect(int AIdx, int ACount, bool ARotate, bool ASmallGroup);
  // Takes one piece off the top; nothing when none is left or the top has a negative count.
  std::optional<TPiece> PlaceOne();

 private:
  struct TEntry {
    TPiece Piece;
    int Count;
  };
  std::vector<TEntry> FEntries;
};

// Sorts boxes by A, B and value, ascending, and leaves one of each size, that of the largest value, with the pieces
// that it stands for in RasterBoxes, the first in sorted order on top. Unweighted, all boxes of a size are joined;
// weighted, those of the largest value only, and the others are lost. CanRotate: boxes are laid along A first.
// Cost: O(n log n).
void MergeCongruentBoxes(TIntBoxList& Boxes, std::vector<TRasterBox>& RasterBoxes, bool CanRotate, bool Weighted);

// Where single pieces end on a raster: for each row that has any, the columns and boxes, ascending by column, then in
// the order of the boxes, unturned first.
struct TRskfPieceRows {
  std::vector<std::uint16_t> Rows;
  std::vector<std::vector<std::uint16_t>> Columns;
  std::vector<std::vector<std::uint16_t>> Boxes;
};

// Boxes that do not fit the plate, which is the last point on both axes, are left out. Raises TRangeError for more than
// 65535 boxes or points on an axis, and where a layout could be worth more than 64 bits hold. Cost: O(n log n).
TRskfPieceRows PieceRowsOf(const TIntBoxList& Boxes, const TRaster& Raster, bool CanRotate);

}  // namespace platenest::detail
