// The cuts of a plate in their fixed order. A five-block cut is left out where the areas that its blocks lose for sure
// already add up to more than a better count can afford: its sum of bounds would not beat the best count either.
#include <algorithm>

#include "FiveblockRules.h"
#include "FiveblockSearch.h"

namespace platenest::detail {

bool TFiveblockSearch::NextCut(TFrame& F) {
  if (F.Kind == TCutKind::Five) {
    if (NextFive(F)) return true;
    if (FSpent) return false;
    F.Kind = TCutKind::Vertical;
    F.WalkX1 = TRasterWalk(F.Row);
  }
  if (F.Kind == TCutKind::Vertical) {
    if (NextGuillotine(F, F.Row)) return true;
    if (FSpent) return false;
    F.Kind = TCutKind::Horizontal;
    F.WalkX1 = TRasterWalk(F.Column);
  }
  return NextGuillotine(F, F.Column);
}

bool TFiveblockSearch::NextGuillotine(TFrame& F, int Whole) {
  const int cut = F.WalkX1.Next(FPoints);
  if (Length(cut) > Length(Whole) / 2 || IsSpent(1)) return false;
  (F.Kind == TCutKind::Vertical ? F.X1 : F.Y1) = cut;
  return true;
}

bool TFiveblockSearch::NextFive(TFrame& F) {
  if (F.Widths.Count < 2) return false;
  for (;;) {
    for (; F.AtY1 < F.Y1s.Count; ++F.AtY1, F.AtY2 = 0)
      if (NextY2(F)) return true;
    if (!NextLengths(F)) return false;
  }
}

// The next Y2 for the lengths and the Y1 at work.
bool TFiveblockSearch::NextY2(TFrame& F) {
  const std::span<const TWidth> y2s = In(F.Y2s);
  const TWidth& y1 = In(F.Y1s)[F.AtY1];
  const Int64 spare = F.Spare - y1.Waste;
  if (F.LeastWaste > spare) return false;
  const int mostY2 = F.IsTwin ? Length(F.Column) - y1.Length : Length(F.Column);
  const int centreLength = Length(F.X2) - Length(F.X1);
  const int centreRow = FPoints.Position(centreLength);
  FSteps += static_cast<int>(y2s.size() - std::min(F.AtY2, y2s.size()));
  while (F.AboveY1 < y2s.size() && y2s[F.AboveY1].Position <= y1.Position) ++F.AboveY1;
  for (std::size_t at = std::max(F.AtY2, F.AboveY1); at < y2s.size(); ++at) {
    const TWidth& y2 = y2s[at];
    if (y2.Waste > spare) continue;
    if (y2.Length > mostY2) break;
    const int width = y2.Length - y1.Length;
    const Int64 lost = Int64{centreLength} * width - Worth(centreRow, FPoints.Position(width)) * FUnit;
    if (y2.Waste + lost > spare) continue;
    F.Y1 = y1.Position;
    F.Y2 = y2.Position;
    F.AtY2 = at + 1;
    return true;
  }
  F.AtY2 = y2s.size();
  return false;
}

// The next X1 and X2 that leave widths on both sides.
bool TFiveblockSearch::NextLengths(TFrame& F) {
  do {
    while (F.HasX1 && NextX2(F)) {
      if (F.Y1s.Count > 0 && F.Y2s.Count > 0) return true;
    }
    F.HasX1 = !FSpent && NextX1(F);
  } while (F.HasX1);
  return false;
}

bool TFiveblockSearch::NextX1(TFrame& F) {
  F.X1 = F.WalkX1.Next(FPoints);
  if (Length(F.X1) > Length(F.Row) / 2) return false;
  const int rest = Length(F.Row) - Length(F.X1);
  const std::size_t room = F.Widths.Count;
  F.Below = Keep(F.Widths, F.Widths.First + room, F.Spare, Length(F.X1), true);
  F.Above = Keep(F.Widths, F.Widths.First + 2 * room, F.Spare, rest, true);
  F.WalkX2 = F.WalkX1;
  return true;
}

bool TFiveblockSearch::NextX2(TFrame& F) {
  F.X2 = F.WalkX2.Next(FPoints);
  const int rest = Length(F.Row) - Length(F.X2);
  if (F.Below.Count == 0 || F.Above.Count == 0 || Length(F.X1) > rest) return false;
  if (IsSpent(static_cast<int>(F.Below.Count + F.Above.Count))) return false;
  const std::size_t room = F.Widths.Count;
  F.Y1s = Keep(F.Below, F.Widths.First + 3 * room, F.Spare, Length(F.X2), false);
  F.Y2s = Keep(F.Above, F.Widths.First + 4 * room, F.Spare, rest, false);
  F.IsTwin = Length(F.X1) == rest;
  F.AtY1 = F.AtY2 = F.AboveY1 = 0;
  const auto leastFirst = [](const TWidth& left, const TWidth& right) { return left.Waste < right.Waste; };
  F.LeastWaste = F.Y2s.Count > 0 ? std::ranges::min(In(F.Y2s), leastFirst).Waste : 0;
  return true;
}

// Copies to To the widths of From at which no more than Most is lost once a block of this length and the width, or the
// width's rest, lies beside them.
TFiveblockSearch::TRange TFiveblockSearch::Keep(TRange From, std::size_t To, Int64 Most, int BlockLength, bool ByRest) {
  const int whole = Length(FFrames.back().Column);
  const int* const worth = &Worth(FPoints.Position(BlockLength), 0);
  const TWidth* const from = FArena.data() + From.First;
  TWidth* to = FArena.data() + To;
  for (std::size_t k = 0; k < From.Count; ++k) {
    const TWidth& width = from[k];
    const Int64 length = ByRest ? whole - width.Length : width.Length;
    const Int64 lost = width.Waste + BlockLength * length - worth[ByRest ? width.Rest : width.Position] * FUnit;
    if (lost > Most) continue;
    *to = width;
    (to++)->Waste = lost;
  }
  return {To, static_cast<std::size_t>(to - FArena.data()) - To};
}

// Lays down the raster of the width, and room behind it for the widths that are kept of it.
void TFiveblockSearch::KeepRaster(TFrame& F) {
  F.Widths.First = FArenaTop;
  TRasterWalk walk(F.Column);
  for (int y = walk.Next(FPoints); y != F.Column; y = walk.Next(FPoints)) {
    if (FArenaTop == FArena.size()) FArena.resize(2 * FArena.size() + 64);
    FArena[FArenaTop++] = {0, y, Length(y), FPoints.Rest(F.Column, y)};
  }
  F.Widths.Count = FArenaTop - F.Widths.First;
  FArenaTop += 4 * F.Widths.Count;
  if (FArenaTop > FArena.size()) FArena.resize(2 * FArenaTop);
}

}  // namespace platenest::detail
