#pragma once

#include <cstdint>
#include <vector>

#include "RskfBoxes.h"
#include "RskfCells.h"
#include "RskfPass.h"
#include "RskfTables.h"
#include "platenest/URectNest/RectRecords.h"

namespace platenest::detail {

// Draws the layout of a cell in plate units, with the lower left corner of the plate at the origin. Pieces are given
// out by the boxes behind them, and a cell for which none is left stays empty; a grid of tiny parts fills its cell, but
// is cut off where the demand for its part ends.
class TRskfRebuild {
 public:
  // All lists belong to the caller. Parts by position.
  TRskfRebuild(const TRskfProblem& Problem, const TRskfTables& Tables, const TRskfUnits& Units,
               const TNestRectList& Parts, std::vector<TRasterBox>& RasterBoxes);

  // Adds the layout to List, lower and left sides of cuts first. Cost: O(points of both axes) per piece, for rare cells
  // O(cells of the raster).
  void Draw(const TRskfCell& Cell, TNestedRects& List);

 private:
  // A cell on the plate; its lower left corner in units.
  struct TPlaced {
    int X;
    int Y;
    TRskfCell Cell;
  };

  void Divide(const TPlaced& Whole);
  int BoxAt(const TRskfCell& Cell) const;
  void AddNestedRect(const TPlaced& Place, TNestedRects& List);
  void AddSmallGroup(const TPlaced& Place, const TNestRect& Part, TNestedRects& List);
  void AddGrid(const TPoint2D& Origin, const TPoint2D& Pitch, const TCopyGrid& Grid, const TNestRect& Part, bool Turned,
               TNestedRects& List);
  void AddPlain(const TPlaced& Place, const TIntBox& Box, bool Rotate, const TNestRect& Part, TNestedRects& List);
  void Add(const TNestRect& Part, bool Rotate, const TPoint2D& Trans, TNestedRects& List);

  const TRskfProblem FProblem;
  const TRskfUnits FUnits;
  const TNestRectList& FParts;
  std::vector<TRasterBox>& FRasterBoxes;
  TRskfCells FCells;
  std::vector<TPlaced> FPending;  // the next one last
  std::vector<int> FPlaced;       // copies drawn, by part
};

}  // namespace platenest::detail
