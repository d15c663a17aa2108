#include "FillFinish.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "FillNesters.h"
#include "WholeUnits.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/layoutcheck/LayoutCheck.h"
#include "platenest/layoutcheck/Measures.h"

namespace platenest::detail {

namespace {

constexpr int kMostRounds = 12;
// Above this many copies measuring the free rectangles costs more than filling them is worth.
constexpr int kMostCopies = 20000;
// The free-rectangle nest leaves out small parts of which there are more, and its cost grows with their number.
constexpr int kMostOfOneSize = 100;

std::vector<int> LeftOver(const TFillSizes& Sizes, const TNestedRects& Layout) {
  std::vector<int> left;
  for (const TFillPart& part : Sizes.Parts) left.push_back(part.Asked);
  for (const TNestedRect& placed : Layout) --left[placed.Part.Idx];
  return left;
}

double WorthOf(const TFillSizes& Sizes, const TNestedRects& Layout) {
  double worth = 0;
  for (const TNestedRect& placed : Layout) worth += Sizes.Parts[placed.Part.Idx].Worth;
  return worth;
}

struct TGrid {
  int Part = -1;
  bool IsTurned = false;
  int Columns = 0;
  int Rows = 0;
  int Count = 0;
};

TGrid GridOf(const TFillSizes& Sizes, int Index, bool IsTurned, int Left, double Width, double Height) {
  const TFillPart& part = Sizes.Parts[Index];
  const double w = (IsTurned ? part.Height : part.Width) + Sizes.Gap;
  const double h = (IsTurned ? part.Width : part.Height) + Sizes.Gap;
  const double slack = FitSlack(Sizes.Decimals);
  const auto columns = Floor<Int64>((Width + Sizes.Gap + slack) / w);
  const auto rows = Floor<Int64>((Height + Sizes.Gap + slack) / h);
  const auto most = static_cast<Int64>(Left);
  TGrid grid{Index, IsTurned, static_cast<int>(std::min(columns, most)), static_cast<int>(std::min(rows, most)), 0};
  grid.Count = static_cast<int>(std::min(most, Int64{grid.Columns} * grid.Rows));
  return grid;
}

// The grid of one size that is worth most, the first of equals.
TGrid BestGrid(const TFillSizes& Sizes, const std::vector<int>& Left, double Width, double Height) {
  TGrid best;
  double bestWorth = 0;
  for (int i = 0; i < Size(Left); ++i) {
    for (const bool isTurned : {false, true}) {
      if (Left[i] <= 0 || (isTurned && !Sizes.Parts[i].MayTurn)) continue;
      const TGrid grid = GridOf(Sizes, i, isTurned, Left[i], Width, Height);
      const double worth = Sizes.Parts[i].Worth * grid.Count;
      if (worth <= bestWorth) continue;
      best = grid;
      bestWorth = worth;
    }
  }
  return best;
}

TNestedRects DrawGrid(const TFillSizes& Sizes, const TGrid& Grid) {
  TNestedRects layout;
  if (Grid.Count == 0) return layout;
  const TNestRect record = RecordOf(Sizes, Grid.Part, 1);
  const double w = Grid.IsTurned ? record.BoundBox.Height() : record.BoundBox.Width();
  const double h = Grid.IsTurned ? record.BoundBox.Width() : record.BoundBox.Height();
  for (int i = 0; i < Grid.Count; ++i) {
    const double x = (i % Grid.Columns) * (w + Sizes.Gap) + (Grid.IsTurned ? w : 0);
    layout.emplace_back(record, Grid.IsTurned, TPoint2D{x, (i / Grid.Columns) * (h + Sizes.Gap)});
  }
  return layout;
}

std::optional<TPlacedBox> FreeBoxOf(const TFillSizes& Sizes, const TNestedRects& Layout) {
  return LargestFreeBox(PlacedBoxesOf(Layout), {0, 0, Sizes.PlateWidth, Sizes.PlateHeight}, Sizes.Gap);
}

// The better filling of a free rectangle, at the origin.
TNestedRects FillingOf(const TFillSizes& Sizes, const std::vector<int>& Left, double Width, double Height) {
  std::vector<int> few = Left;
  for (int& count : few) count = std::min(count, kMostOfOneSize);
  TNestedRects smart = NestSmart(Sizes, few, Width, Height);
  TNestedRects grid = DrawGrid(Sizes, BestGrid(Sizes, Left, Width, Height));
  return WorthOf(Sizes, grid) > WorthOf(Sizes, smart) ? grid : smart;
}

bool FillOneBox(const TFillSizes& Sizes, TNestedRects& Layout) {
  const std::vector<int> left = LeftOver(Sizes, Layout);
  if (std::ranges::none_of(left, [](int count) { return count > 0; })) return false;
  const std::optional<TPlacedBox> box = FreeBoxOf(Sizes, Layout);
  if (!box) return false;
  TNestedRects filling = FillingOf(Sizes, left, box->Width(), box->Height());
  TidyLayout(Sizes, filling);
  for (TNestedRect& placed : filling) {
    placed.Trans.X += box->Left;
    placed.Trans.Y += box->Bottom;
  }
  if (Sizes.Decimals) SnapToQuantum(filling, *Sizes.Decimals);
  Layout.AddRange(filling);
  return !filling.empty();
}

}  // namespace

void TidyLayout(const TFillSizes& Sizes, TNestedRects& Layout) {
  std::vector<int> left = LeftOver(Sizes, {});
  TNestedRects kept;
  kept.reserve(Layout.size());
  for (TNestedRect placed : Layout) {
    const TFillPart& part = Sizes.Parts.at(placed.Part.Idx);
    if (placed.IsRotate && !part.MayTurn) {
      if (part.Width != part.Height) continue;
      placed.IsRotate = false;
      placed.Trans.X -= part.Height;
    }
    if (left[placed.Part.Idx]-- > 0) kept.push_back(placed);
  }
  Layout = std::move(kept);
}

void FillFreeBoxes(const TFillSizes& Sizes, TNestedRects& Layout) {
  for (int round = 0; round < kMostRounds && Layout.Count() <= kMostCopies; ++round)
    if (RectNestStopped() || !FillOneBox(Sizes, Layout)) return;
}

}  // namespace platenest::detail
