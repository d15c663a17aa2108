#include "RskfRebuild.h"

#include <algorithm>
#include <utility>

#include "RskfRules.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

// How many pitches a length holds, noise aside.
int PitchesIn(double Length, double Pitch) {
  return Floor<int>(RoundTo(Length / Pitch, kRskfLengthDigit));
}

}  // namespace

TRskfRebuild::TRskfRebuild(const TRskfProblem& Problem, const TRskfTables& Tables, const TRskfUnits& Units,
                           const TNestRectList& Parts, std::vector<TRasterBox>& RasterBoxes)
    : FProblem(Problem),
      FUnits(Units),
      FParts(Parts),
      FRasterBoxes(RasterBoxes),
      FCells(Tables, Problem.Raster),
      FPlaced(Parts.size()) {}

void TRskfRebuild::Draw(const TRskfCell& Cell, TNestedRects& List) {
  FPending.push_back({-FUnits.IntGap, -FUnits.IntGap, FCells.Tightest(Cell)});
  while (!FPending.empty()) {
    const TPlaced next = FPending.back();
    FPending.pop_back();
    if (FCells.FormOf(next.Cell) == TCellForm::Single)
      AddNestedRect(next, List);
    else
      Divide(next);
  }
}

void TRskfRebuild::Divide(const TPlaced& Whole) {
  const auto [first, second, acrossWidth] = FCells.Halves(Whole.Cell);
  TPlaced rest{Whole.X, Whole.Y, second};
  if (acrossWidth)
    rest.Y += FProblem.Raster.RasterW[first.Row];
  else
    rest.X += FProblem.Raster.RasterL[first.Column];
  FPending.push_back(rest);
  FPending.push_back({Whole.X, Whole.Y, first});
}

// The box whose piece the pass put into a cell, -1 for none: of all that end there the first of the largest value.
int TRskfRebuild::BoxAt(const TRskfCell& Cell) const {
  const auto row = std::lower_bound(FProblem.Z.begin(), FProblem.Z.end(), Cell.Row);
  if (row == FProblem.Z.end() || *row != Cell.Row) return -1;
  const auto k = row - FProblem.Z.begin();
  const auto& columns = FProblem.U[k];
  const auto& boxes = FProblem.T[k];
  const auto [begin, end] = std::equal_range(columns.begin(), columns.end(), Cell.Column);
  const auto best =
      std::max_element(boxes.begin() + (begin - columns.begin()), boxes.begin() + (end - columns.begin()),
                       [&](int left, int right) { return FProblem.Boxes[left].Area < FProblem.Boxes[right].Area; });
  return begin == end ? -1 : *best;
}

void TRskfRebuild::AddNestedRect(const TPlaced& Place, TNestedRects& List) {
  const int b = BoxAt(Place.Cell);
  if (b < 0) return;
  const auto piece = FRasterBoxes[b].PlaceOne();
  if (!piece) return;
  if (piece->SmallGroup)
    AddSmallGroup(Place, FParts[piece->Idx], List);
  else
    AddPlain(Place, FProblem.Boxes[b], piece->Rotate, FParts[piece->Idx], List);
}

void TRskfRebuild::AddSmallGroup(const TPlaced& Place, const TNestRect& Part, TNestedRects& List) {
  double cellX = FUnits.ToPlate(FProblem.Raster.RasterL[Place.Cell.Column]);
  double cellY = FUnits.ToPlate(FProblem.Raster.RasterW[Place.Cell.Row]);
  TPoint2D origin(FUnits.ToPlate(Place.X + FUnits.IntGap), FUnits.ToPlate(Place.Y + FUnits.IntGap));
  if (FUnits.PlateRotate) {
    std::swap(cellX, cellY);
    std::swap(origin.X, origin.Y);
  }
  const double wide = Part.BoundBox.Width() + FUnits.Gap;
  const double high = Part.BoundBox.Height() + FUnits.Gap;
  const TCopyGrid straight{PitchesIn(cellX, wide), PitchesIn(cellY, high)};
  const TCopyGrid turned{PitchesIn(cellX, high), PitchesIn(cellY, wide)};
  if (turned.Copies() < straight.Copies()) return AddGrid(origin, {wide, high}, straight, Part, false, List);
  origin.X += Part.BoundBox.Height();
  AddGrid(origin, {high, wide}, turned, Part, true, List);
}

void TRskfRebuild::AddGrid(const TPoint2D& Origin, const TPoint2D& Pitch, const TCopyGrid& Grid, const TNestRect& Part,
                           bool Turned, TNestedRects& List) {
  for (int column = 0; column < Grid.Columns; ++column) {
    for (int row = 0; row < Grid.Rows; ++row) {
      if (FPlaced[Part.Idx] >= Part.Amount) return;
      Add(Part, Turned, {Origin.X + column * Pitch.X, Origin.Y + row * Pitch.Y}, List);
    }
  }
}

// A piece lies across its cell when its box is turned there. Rotate tells whether the box itself stands for the part
// turned; a plate that lies along y turns everything once more.
void TRskfRebuild::AddPlain(const TPlaced& Place, const TIntBox& Box, bool Rotate, const TNestRect& Part,
                            TNestedRects& List) {
  const int length = FProblem.Raster.RasterL[Place.Cell.Column];
  const int width = FProblem.Raster.RasterW[Place.Cell.Row];
  const bool isAcross = Box.A > length || Box.B > width;
  const bool isTurned = Rotate != (isAcross != FUnits.PlateRotate);
  int x = Place.X + FUnits.IntGap;
  int y = Place.Y + FUnits.IntGap;
  if (FUnits.PlateRotate) std::swap(x, y);
  const int alongX = isAcross != FUnits.PlateRotate ? Box.B : Box.A;
  if (isTurned) x += alongX - 2 * FUnits.IntGap;
  Add(Part, isTurned, {FUnits.ToPlate(x), FUnits.ToPlate(y)}, List);
}

void TRskfRebuild::Add(const TNestRect& Part, bool Rotate, const TPoint2D& Trans, TNestedRects& List) {
  ++FPlaced[Part.Idx];
  List.emplace_back(Part, Rotate, Trans);
}

}  // namespace platenest::detail
