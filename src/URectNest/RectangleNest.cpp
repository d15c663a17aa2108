#include "platenest/URectNest/RectangleNest.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "StripLayout.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

// More strips than this on one path, and the plain grid is taken.
constexpr double kMostStrips = 599;
// Room that makes whole copies fit when strips are counted.
constexpr double kStripRoom = 1e-6;
// Gaps from kLeastShortenedGap on lose kGapShortfall on the rectangle, never on the plate.
constexpr double kLeastShortenedGap = 1.0;
constexpr double kGapShortfall = 1e-9;

// The box with its lower left corner kept and its upper right corner moved out by Gap.
TVRect2D Grown(const TVRect2D& Box, double Gap) {
  return Box.Inflate(Gap / 2).Translate({Gap / 2, Gap / 2});
}

bool IsPositive(double Length) {
  return std::isfinite(Length) && Length > 0;
}

bool HasPositiveSides(const TVRect2D& Box) {
  return IsPositive(Box.Width()) && IsPositive(Box.Height());
}

__extension__ using TWide = __int128;

int Counted(TWide Count) {
  if (Count > std::numeric_limits<int>::max())
    throw TRangeError("[Error] TRectangleNest: more rectangles on the plate than can be counted");
  return static_cast<int>(Count);
}

// Makes room for Added more placements.
void Reserve(TNestedRects& List, TWide Added) {
  List.reserve(static_cast<std::size_t>(Counted(Size(List) + Added)));
}

// Ascending by right edge, while turned placements still carry their lower left corner.
int CompareByRight(const TNestedRect& Left, const TNestedRect& Right) {
  const auto edge = [](const TNestedRect& item) {
    return item.Trans.X + (item.IsRotate ? item.Part.BoundBox.Height() : item.Part.BoundBox.Width());
  };
  const int byEdge = Sign(edge(Left), edge(Right));
  return byEdge != 0 ? byEdge : Sign(Left.Trans.Y, Right.Trans.Y);
}

}  // namespace

TRectangleNest::TRectangleNest(const TVRect2D& Plate, const TNestRect& PartRect, double Gap)
    : FPlate(Grown(Plate, Gap)), FInitPart(PartRect), FMaxAmount(std::max(PartRect.Amount, 0)) {
  const TVRect2D part = Grown(PartRect.BoundBox, Gap >= kLeastShortenedGap ? Gap - kGapShortfall : Gap);
  FIsvertical = part.Width() < part.Height();
  FPartX = std::max(part.Width(), part.Height());
  FPartY = std::min(part.Width(), part.Height());
  FUsable = std::isfinite(Gap) && HasPositiveSides(Plate) && HasPositiveSides(PartRect.BoundBox) &&
            HasPositiveSides(part) && HasPositiveSides(FPlate);
  FPlainGrid = FUsable && std::trunc((W() + H() - FPartY + kStripRoom) / FPartX) > kMostStrips;
}

int TRectangleNest::SingleNest(TNestedRects& ResultList, bool& IsFull) const {
  if (!FUsable) {
    IsFull = true;
    return 0;
  }
  return FPlainGrid ? NestOnGrid(ResultList, IsFull) : NestByStrips(ResultList, IsFull);
}

TRectangleNest::TSummary TRectangleNest::Summary() const {
  if (!FUsable) return {};
  return FPlainGrid ? GridSummary() : StripSummary();
}

double TRectangleNest::NestUsageRatio(const TVRect2D& Plate, const TNestRect& PartRect, double Gap) {
  const int count = TRectangleNest(Plate, PartRect, Gap).Summary().Count;
  if (count == 0) return 0;
  return (PartRect.BoundBox.Width() + Gap) * count * (PartRect.BoundBox.Height() + Gap) /
         ((Plate.Height() + Gap) * (Plate.Width() + Gap));
}

// Plain quotients: a column that only rounding keeps from fitting is lost.
TRectangleNest::TGrid TRectangleNest::PlanGrid() const {
  const TGrid alongX{Trunc(W() / FPartX), Trunc(H() / FPartY), FPartX, FPartY, FIsvertical};
  const TGrid alongY{Trunc(W() / FPartY), Trunc(H() / FPartX), FPartY, FPartX, !FIsvertical};
  return TWide{alongY.Columns} * alongY.Rows > TWide{alongX.Columns} * alongX.Rows ? alongY : alongX;
}

// A turned copy is set one pitch along, the gap included.
TPoint2D TRectangleNest::GridTrans(const TGrid& Grid, Int64 Column, Int64 Row) const {
  return {static_cast<double>(Column + (Grid.Turned ? 1 : 0)) * Grid.PitchX, static_cast<double>(Row) * Grid.PitchY};
}

int TRectangleNest::NestOnGrid(TNestedRects& ResultList, bool& IsFull) const {
  const TGrid grid = PlanGrid();
  const TWide capacity = TWide{grid.Columns} * grid.Rows;
  const int free = FMaxAmount - Size(ResultList);
  Reserve(ResultList, free > 0 ? std::min<TWide>(free, capacity) : capacity);
  IsFull = true;
  for (Int64 row = 0; row < grid.Rows && IsFull; ++row) {
    for (Int64 column = 0; column < grid.Columns && IsFull; ++column) {
      ResultList.emplace_back(FInitPart, grid.Turned, GridTrans(grid, column, row));
      IsFull = Size(ResultList) != FMaxAmount;
    }
  }
  return Counted(std::min<TWide>(FMaxAmount, capacity));
}

TRectangleNest::TSummary TRectangleNest::GridSummary() const {
  const TGrid grid = PlanGrid();
  const TWide capacity = TWide{grid.Columns} * grid.Rows;
  TSummary summary;
  summary.Count = Counted(std::min<TWide>(FMaxAmount, capacity));
  summary.Placed = FMaxAmount > 0 ? summary.Count : Counted(capacity);
  if (summary.Placed == 0) return summary;
  const Int64 last = summary.Placed - 1;
  summary.Right = GridTrans(grid, last % grid.Columns, last / grid.Columns).X;
  if (!grid.Turned) summary.Right += FInitPart.BoundBox.Width();
  return summary;
}

detail::TStripLayout TRectangleNest::PlanStrips() const {
  return {W(), H(), {FPartX, FPartY, FIsvertical, FInitPart.BoundBox.Width(), FInitPart.BoundBox.Height()}};
}

int TRectangleNest::NestByStrips(TNestedRects& ResultList, bool& IsFull) const {
  const detail::TStripLayout layout = PlanStrips();
  const bool alone = ResultList.empty();
  IsFull = Counted(Size(ResultList) + layout.Count()) <= FMaxAmount;
  int wanted = alone && !IsFull ? FMaxAmount : static_cast<int>(layout.Count());
  Reserve(ResultList, wanted);
  for (const auto& column : layout.Columns()) {
    for (int k = 0; k < column.Count && wanted > 0; ++k, --wanted)
      ResultList.emplace_back(FInitPart, column.Turned, TPoint2D{column.X, layout.Y(column, k)});
  }
  if (!alone) ResultList.Sort(CompareByRight);
  if (!IsFull) ResultList.erase(ResultList.begin() + FMaxAmount, ResultList.end());
  for (TNestedRect& item : ResultList) {
    if (item.IsRotate) item.Trans.X += FInitPart.BoundBox.Height();
  }
  return Size(ResultList);
}

TRectangleNest::TSummary TRectangleNest::StripSummary() const {
  const detail::TStripLayout layout = PlanStrips();
  TSummary summary;
  summary.Count = summary.Placed = Counted(std::min<Int64>(layout.Count(), FMaxAmount));
  Int64 before = 0;
  for (const auto& column : layout.Columns()) {
    if (before >= summary.Placed) break;
    summary.Right = column.Right;
    before += column.Count;
  }
  return summary;
}

}  // namespace platenest
