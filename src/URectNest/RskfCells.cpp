#include "RskfCells.h"

#include <algorithm>
#include <functional>
#include <string_view>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Host.h"

namespace platenest::detail {

namespace {

[[noreturn]] void Raise(const char* Text) {
  TCerr::W(std::string_view(Text));
  throw TNestError(Text);
}

// The last of the points up to From that is not above Length.
int PointWithin(const std::vector<int>& Points, int From, int Length) {
  while (From > 0 && Points[From] > Length) --From;
  return From;
}

}  // namespace

TRskfCells::TRskfCells(const TRskfTables& Tables, const TRaster& Raster)
    : FTables(Tables), FRaster(Raster), FRest(Tables.Packing.Words()) {}

TCellForm TRskfCells::FormOf(const TRskfCell& Cell) const {
  const int cutX = FTables.X.At(Cell.Row, Cell.Column);
  const int cutY = FTables.Y.At(Cell.Column, Cell.Row);
  if (cutX == Cell.Column && cutY == Cell.Row) return TCellForm::Single;
  if (cutY > 0 && cutY < Cell.Row) return TCellForm::CutAcrossWidth;
  if (cutX > 0 && cutX < Cell.Column) return TCellForm::CutAcrossLength;
  return TCellForm::Inherited;
}

TRskfCell TRskfCells::Tightest(const TRskfCell& Cell) {
  return FindTightestRaster(Cell, {ValueOf(Cell), HasVectors() ? PiecesOf(Cell) : nullptr});
}

TCellHalves TRskfCells::Halves(const TRskfCell& Cell) {
  if (HasVectors() && !IsSound(Cell))
    if (const auto cut = Recut(Cell)) return {Tightest(cut->First), Tightest(cut->Second), cut->AcrossWidth};
  if (FormOf(Cell) == TCellForm::Inherited) Raise("No Guillotine Point is Found");
  const TRskfCell first = FirstHalf(Cell);
  if (ValueOf(first) == 0) Raise("Value Error in FindGuillotine");
  const TRskfCell second = FindTightestRaster(RestOf(Cell, first), GoalOfRest(Cell, first));
  return {Tightest(first), second, first.Row < Cell.Row};
}

// The cut that the pieces of an unsound cell were counted for: an equal one has taken its place in the tables.
std::optional<TCellHalves> TRskfCells::Recut(const TRskfCell& Cell) {
  const auto isPart = [&](const TRskfCell& first) {
    return ValueOf(first) > 0 && ValueOf(first) < ValueOf(Cell) &&
           FTables.Packing.Holds(PiecesOf(Cell), PiecesOf(first));
  };
  for (TRskfCell first{Cell.Column, 1}; first.Row < Cell.Row; ++first.Row) {
    if (!isPart(first)) continue;
    const TGoal goal = GoalOfRest(Cell, first);
    for (TRskfCell rest = RestOf(Cell, first); rest.Row > 0; --rest.Row)
      if (IsGoal(rest, goal)) return TCellHalves{first, rest, true};
  }
  for (TRskfCell first{1, Cell.Row}; first.Column < Cell.Column; ++first.Column) {
    if (!isPart(first)) continue;
    const TGoal goal = GoalOfRest(Cell, first);
    for (TRskfCell rest = RestOf(Cell, first); rest.Column > 0; --rest.Column)
      if (IsGoal(rest, goal)) return TCellHalves{first, rest, false};
  }
  return std::nullopt;
}

TRskfCells::TGoal TRskfCells::GoalOfRest(const TRskfCell& Cell, const TRskfCell& First) {
  const Int64 value = ValueOf(Cell) - ValueOf(First);
  if (!HasVectors() || !FTables.Packing.Holds(PiecesOf(Cell), PiecesOf(First))) return {value, nullptr};
  std::transform(PiecesOf(Cell), PiecesOf(Cell) + FRest.size(), PiecesOf(First), FRest.begin(), std::minus<>());
  return {value, FRest.data()};
}

TRskfCell TRskfCells::FirstHalf(const TRskfCell& Cell) const {
  if (FormOf(Cell) == TCellForm::CutAcrossWidth) return {Cell.Column, FTables.Y.At(Cell.Column, Cell.Row)};
  return {FTables.X.At(Cell.Row, Cell.Column), Cell.Row};
}

// The largest cell that lies beyond the cut.
TRskfCell TRskfCells::RestOf(const TRskfCell& Cell, const TRskfCell& First) const {
  if (First.Row < Cell.Row) {
    const int width = FRaster.RasterW[Cell.Row] - FRaster.RasterW[First.Row];
    return {Cell.Column, PointWithin(FRaster.RasterW, FRaster.IndexW[width], width)};
  }
  const int length = FRaster.RasterL[Cell.Column] - FRaster.RasterL[First.Column];
  return {PointWithin(FRaster.RasterL, FRaster.IndexL[length], length), Cell.Row};
}

bool TRskfCells::IsGoal(const TRskfCell& Cell, const TGoal& Goal) const {
  if (ValueOf(Cell) != Goal.Value) return false;
  return Goal.Pieces == nullptr || std::equal(Goal.Pieces, Goal.Pieces + FRest.size(), PiecesOf(Cell));
}

// The pieces of a cell were counted when its value was found. A cut that came later, at no higher value, may have
// replaced the one they belong to, and where a cell inherits a cut from the left, its own first side may be worth more
// than the one that was meant.
bool TRskfCells::IsSound(const TRskfCell& Cell) const {
  const TCellForm form = FormOf(Cell);
  if (form == TCellForm::Single) return true;
  if (form == TCellForm::Inherited) return false;
  const TRskfCell first = FirstHalf(Cell);
  const Int64 value = ValueOf(first);
  if (value == 0 || value >= ValueOf(Cell) || !FTables.Packing.Holds(PiecesOf(Cell), PiecesOf(first))) return false;
  for (TRskfCell rest = RestOf(Cell, first); rest.Row > 0 && rest.Column > 0;
       --(first.Row < Cell.Row ? rest.Row : rest.Column))
    if (ValueOf(rest) == ValueOf(Cell) - value) return true;
  return false;
}

TRskfCell TRskfCells::FindTightestRaster(const TRskfCell& From, const TGoal& Goal) {
  if (From.Column > 0 && From.Row > 0) {
    if (Goal.Pieces != nullptr) {
      if (const auto start = FindPos(From, Goal, /*MustBeSound=*/false)) {
        const TRskfCell found = FindMinimumPos(*start, Goal);
        if (IsSound(found)) return found;
        if (const auto sound = FindPos(From, Goal, /*MustBeSound=*/true)) return *sound;
        if (Recut(found)) return found;
      }
    }
    const TGoal any{Goal.Value, nullptr};
    if (const auto start = FindPos(From, any, /*MustBeSound=*/false)) return FindMinimumPos(*start, any);
  }
  Raise("No Tighter Raster is Found");
}

// The cell itself, one below it, one to its left, or any in the block that they span.
std::optional<TRskfCell> TRskfCells::FindPos(const TRskfCell& From, const TGoal& Goal, bool MustBeSound) const {
  const auto isFound = [&](const TRskfCell& cell) { return IsGoal(cell, Goal) && (!MustBeSound || IsSound(cell)); };
  for (int row = From.Row; row > 0; --row)
    if (isFound({From.Column, row})) return TRskfCell{From.Column, row};
  for (int column = From.Column - 1; column > 0; --column)
    if (isFound({column, From.Row})) return TRskfCell{column, From.Row};
  for (int row = From.Row - 1; row > 0; --row)
    for (int column = From.Column - 1; column > 0; --column)
      if (isFound({column, row})) return TRskfCell{column, row};
  return std::nullopt;
}

// Values ascend along rows and columns where there are any, so a lower one ends the look ahead.
TRskfCell TRskfCells::FindMinimumPos(const TRskfCell& From, const TGoal& Goal) const {
  const auto isBelow = [&](const TRskfCell& cell) { return ValueOf(cell) != 0 && ValueOf(cell) < Goal.Value; };
  TRskfCell found = From;
  for (bool moved = true; moved;) {
    const TRskfCell start = found;
    for (TRskfCell cell = start; cell.Column > 0 && !isBelow(cell); --cell.Column)
      if (IsGoal(cell, Goal)) found = cell;
    for (TRskfCell cell = found; cell.Row > 0 && !isBelow(cell); --cell.Row)
      if (IsGoal(cell, Goal)) found = cell;
    moved = found.Column != start.Column || found.Row != start.Row;
  }
  return found;
}

}  // namespace platenest::detail
