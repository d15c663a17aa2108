#pragma once

#include <optional>
#include <vector>

#include "RskfPass.h"
#include "RskfTables.h"
#include "platenest/URectNest/Raster.h"

namespace platenest::detail {

// How the layout of a cell came about.
enum class TCellForm { Inherited, Single, CutAcrossWidth, CutAcrossLength };

struct TCellHalves {
  TRskfCell First;  // lower or left
  TRskfCell Second;
  bool AcrossWidth;  // lower and upper
};

// Finds the cells of a layout again. A pass keeps the value of a part of the plate and the place of its cut, but not
// the cells on the two sides of it: those follow from the values and, after a bounded pass, from the piece vectors.
// Among cells of equal value the one with the wanted pieces is taken if there is one, and a cut that is not that of the
// pieces is replaced, so that the layout is the one that the pass had in mind and keeps the amounts.
//
// Errors are written to the warning channel and raised as TNestError.
class TRskfCells {
 public:
  TRskfCells(const TRskfTables& Tables, const TRaster& Raster);

  TCellForm FormOf(const TRskfCell& Cell) const;
  Int64 ValueOf(const TRskfCell& Cell) const { return FTables.F.At(Cell.Row, Cell.Column); }
  // The smallest cell with the layout of Cell.
  TRskfCell Tightest(const TRskfCell& Cell);
  // The smallest cells for the two sides of a cut cell.
  TCellHalves Halves(const TRskfCell& Cell);

 private:
  // A cell is taken for another one only if its value is the same; Pieces is nullptr where any will do.
  struct TGoal {
    Int64 Value;
    const TWord* Pieces;
  };

  bool HasVectors() const { return FTables.Packing.Words() > 0; }
  const TWord* PiecesOf(const TRskfCell& Cell) const { return FTables.Used.At(Cell.Row, Cell.Column); }
  bool IsGoal(const TRskfCell& Cell, const TGoal& Goal) const;
  bool IsSound(const TRskfCell& Cell) const;
  TRskfCell FirstHalf(const TRskfCell& Cell) const;
  TRskfCell RestOf(const TRskfCell& Cell, const TRskfCell& First) const;
  TGoal GoalOfRest(const TRskfCell& Cell, const TRskfCell& First);
  std::optional<TCellHalves> Recut(const TRskfCell& Cell);
  TRskfCell FindTightestRaster(const TRskfCell& From, const TGoal& Goal);
  std::optional<TRskfCell> FindPos(const TRskfCell& From, const TGoal& Goal, bool MustBeSound) const;
  TRskfCell FindMinimumPos(const TRskfCell& From, const TGoal& Goal) const;

  const TRskfTables& FTables;
  const TRaster& FRaster;
  std::vector<TWord> FRest;  // pieces wanted on the second side of a cut
};

}  // namespace platenest::detail
