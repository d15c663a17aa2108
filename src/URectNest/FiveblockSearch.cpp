#include "FiveblockSearch.h"

#include <algorithm>
#include <span>

#include "FiveblockRules.h"
#include "platenest/URectNest/BarnesBound.h"

namespace platenest::detail {

Int64 GetLowerBound(Int64 L, Int64 W, Int64 A, Int64 B) {
  return std::max((L / A) * (W / B), (L / B) * (W / A));
}

std::optional<TFiveblockBest> SolveByOneGuillotineCut(const TFiveblockPoints& Points, int A, int B,
                                                      const TFiveblockBudget& Budget) {
  const int L = Points.L();
  const int W = Points.W();
  if (Budget.IsSpent()) return std::nullopt;
  TFiveblockBest best{GetLowerBound(L, W, A, B)};
  const Int64 upper = BarnesBound(L, W, A, B);
  const auto tryCut = [&](Int64 count, const TCutPoint& cut) {
    if (best.Count < count) best = {count, cut};
  };
  const auto cutAlong = [&](int whole, auto valueOf) {
    TRasterWalk walk(whole);
    int steps = 0;
    for (int p = walk.Next(Points); best.Count < upper && Points.Length(p) <= Points.Length(whole) / 2;
         p = walk.Next(Points)) {
      if (++steps % kStepsPerPoll == 0 && Budget.IsSpent()) return false;
      valueOf(Points.Length(p), Points.Length(Points.Rest(whole, p)));
    }
    return true;
  };
  if (best.Count == 0 || best.Count == upper) return best;
  const bool isWhole = cutAlong(Points.Rows() - 1,
                                [&](int x, int rest) {
                                  tryCut(GetLowerBound(x, W, A, B) + GetLowerBound(rest, W, A, B), {x, x, 0, 0, 0});
                                }) &&
                       cutAlong(Points.Columns() - 1, [&](int y, int rest) {
                         tryCut(GetLowerBound(L, rest, A, B) + GetLowerBound(L, y, A, B), {0, 0, y, y, 0});
                       });
  return isWhole ? std::optional(best) : std::nullopt;
}

TFiveblockSearch::TFiveblockSearch(const TFiveblockPoints& Points, int A, int B, int NMax,
                                   const TFiveblockBudget& Budget)
    : FPoints(Points),
      FBudget(Budget),
      FA(A),
      FB(B),
      FUnit(FA * FB),
      FNMax(NMax),
      FColumns(static_cast<std::size_t>(Points.Columns())) {
  FillTable();
}

std::size_t TFiveblockSearch::CellAt(int First, int Second) const {
  return static_cast<std::size_t>(std::max(First, Second)) * FColumns +
         static_cast<std::size_t>(std::min(First, Second));
}

void TFiveblockSearch::FillTable() {
  FCells.resize(static_cast<std::size_t>(FPoints.Rows()) * FColumns, TCell{FNMax, 0, 0});
  FWorth.resize(FCells.size());
  for (int row = 0; row < FPoints.Rows(); ++row) {
    const int columns = std::min(row + 1, FPoints.Columns());
    for (int column = 0; column < columns; ++column) {
      TCell& cell = FCells[CellAt(row, column)];
      const int length = FPoints.Length(row);
      const int width = FPoints.Length(column);
      cell.Upper = static_cast<int>(BarnesBound(length, width, FA, FB));
      cell.Lower = static_cast<int>(GetLowerBound(length, width, FA, FB));
    }
  }
}

void TFiveblockSearch::RateBlocks(bool ByLowerBound) {
  for (int row = 0; row < FPoints.Rows(); ++row) {
    for (int column = 0; column < std::min(row + 1, FPoints.Columns()); ++column) {
      const TCell& cell = FCells[CellAt(row, column)];
      SetWorth(row, column, ByLowerBound ? cell.Lower : cell.LocalUpper());
    }
  }
}

void TFiveblockSearch::SetWorth(int Row, int Column, int Value) {
  Worth(Row, Column) = Value;
  if (Row < FPoints.Columns()) Worth(Column, Row) = Value;
}

TCutPoint TFiveblockSearch::CutOf(int L, int W) const {
  const TCell& cell = FCells[CellAt(FPoints.Position(L), FPoints.Position(W))];
  const auto& [x1, x2, y1, y2] = cell.Cut;
  return {x1, x2, y1, y2, cell.Homo ? 1 : 0};
}

// Polls once in a while; a spent budget stays spent.
bool TFiveblockSearch::IsSpent(int Steps) {
  FSteps += Steps;
  if (FSteps < kStepsPerPoll) return false;
  FSteps = 0;
  FSpent = FBudget.IsSpent();
  return FSpent;
}

std::optional<int> TFiveblockSearch::Solve(int N) {
  FSpent = FBudget.IsSpent();
  if (FSpent) return std::nullopt;
  RateBlocks(N >= FNMax);
  FFrames.clear();
  FArenaTop = 0;
  if (!Open(RootCell(), N)) return FCells[RootCell()].Lower;
  for (;;) {
    const TOutcome outcome = Continue();
    if (outcome == TOutcome::Spent) return std::nullopt;
    if (outcome == TOutcome::Descended) continue;
    if (FFrames.size() == 1) return FFrames.back().Best;
    Close();
  }
}

// Begins to solve a plate. False if its bounds settle it: the cell is proven then.
bool TFiveblockSearch::Open(std::size_t Cell, int N) {
  const int row = static_cast<int>(Cell / FColumns);
  const int column = static_cast<int>(Cell % FColumns);
  TCell& cell = FCells[Cell];
  cell.ReachedLimit = false;
  if (cell.Lower == 0 || cell.Lower == cell.LocalUpper()) {
    cell.Depth = kProven;
    SetWorth(row, column, cell.Lower);
    return false;
  }
  TFrame& f = FFrames.emplace_back();
  f.Cell = Cell;
  f.Row = row;
  f.Column = column;
  f.N = N;
  f.Upper = cell.LocalUpper();
  f.Best = cell.Lower;
  f.Spare = Spare(f);
  f.WalkX1 = TRasterWalk(row);
  KeepRaster(f);
  return true;
}

// Leaves a solved block to the plate above, which comes back to its cell.
void TFiveblockSearch::Close() {
  const TFrame& f = FFrames.back();
  TCell& cell = FCells[f.Cell];
  cell.Lower = f.Best;
  cell.Depth = cell.ReachedLimit ? f.N - 1 : kProven;
  if (cell.Depth == kProven) SetWorth(f.Row, f.Column, f.Best);
  FArenaTop = f.Widths.First;
  FFrames.pop_back();
}

// Works on the last plate until it is solved or a block of it must be solved first.
TFiveblockSearch::TOutcome TFiveblockSearch::Continue() {
  TFrame& f = FFrames.back();
  for (;;) {
    if (f.Block < f.Blocks && !WeighBlocks(f)) return TOutcome::Descended;
    if (f.Best == f.Upper) {
      FCells[f.Cell].ReachedLimit = false;
      return TOutcome::Solved;
    }
    if (!NextCut(f)) return FSpent ? TOutcome::Spent : TOutcome::Solved;
    BeginCut(f);
  }
}

Int64 TFiveblockSearch::Spare(const TFrame& F) const {
  return Int64{Length(F.Row)} * Length(F.Column) - (Int64{F.Best} + 1) * FUnit;
}

void TFiveblockSearch::BeginCut(TFrame& F) {
  const auto rest = [this](int whole, int part) { return FPoints.Rest(whole, part); };
  switch (F.Kind) {
    case TCutKind::Five:
      F.Blocks = 5;
      F.BlockCell = {CellAt(F.X1, rest(F.Column, F.Y1)), CellAt(rest(F.Row, F.X1), rest(F.Column, F.Y2)),
                     CellAt(rest(F.X2, F.X1), rest(F.Y2, F.Y1)), CellAt(F.X2, F.Y1), CellAt(rest(F.Row, F.X2), F.Y2)};
      break;
    case TCutKind::Vertical:
      F.Blocks = 2;
      F.BlockCell = {CellAt(F.X1, F.Column), CellAt(rest(F.Row, F.X1), F.Column)};
      break;
    default:
      F.Blocks = 2;
      F.BlockCell = {CellAt(F.Row, rest(F.Column, F.Y1)), CellAt(F.Row, F.Y1)};
  }
  F.Lo = F.Up = 0;
  for (int k = 0; k < F.Blocks; ++k) {
    const TCell& cell = FCells[F.BlockCell[k]];
    F.Lo += F.OldLower[k] = cell.Lower;
    F.Up += F.OldUpper[k] = cell.LocalUpper();
  }
  F.Block = 0;
  if (F.N >= FNMax)
    CountAtLimit(F);
  else if (F.Best >= F.Up)
    F.Block = F.Blocks;
}

void TFiveblockSearch::CountAtLimit(TFrame& F) {
  FCells[F.Cell].ReachedLimit = true;
  if (F.Best < F.Lo) Improve(F, F.Lo);
  F.Block = F.Blocks;
}

// Replaces the bounds of the blocks by their counts, one after the other, until the cut cannot win any more. False if a
// block has to be solved first; the call is repeated after that.
bool TFiveblockSearch::WeighBlocks(TFrame& F) {
  while (F.Block < F.Blocks) {
    const std::size_t id = F.BlockCell[F.Block];
    const TCell& cell = FCells[id];
    if (cell.Depth > F.N && Open(id, F.N + 1)) return false;
    if (cell.ReachedLimit) FCells[F.Cell].ReachedLimit = true;
    F.Lo += cell.Lower - F.OldLower[F.Block];
    F.Up += cell.Lower - F.OldUpper[F.Block];
    ++F.Block;
    if (F.Best < F.Up && F.Best < F.Lo) Improve(F, F.Lo);
    if (F.Best >= F.Up || F.Best == F.Upper) F.Block = F.Blocks;
  }
  return true;
}

void TFiveblockSearch::Improve(TFrame& F, int Count) {
  TCell& cell = FCells[F.Cell];
  cell.Homo = false;
  cell.Cut = LengthsOf(F);
  F.Best = Count;
  F.Spare = Spare(F);
}

std::array<std::int32_t, 4> TFiveblockSearch::LengthsOf(const TFrame& F) const {
  switch (F.Kind) {
    case TCutKind::Five:
      return {Length(F.X1), Length(F.X2), Length(F.Y1), Length(F.Y2)};
    case TCutKind::Vertical:
      return {Length(F.X1), Length(F.X1), 0, 0};
    default:
      return {0, 0, Length(F.Y1), Length(F.Y1)};
  }
}

}  // namespace platenest::detail
