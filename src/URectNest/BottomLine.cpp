#include "BottomLine.h"

#include <algorithm>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Errors.h"

namespace platenest::detail {

namespace {

constexpr double kNoHeight = -1.7e308;

}  // namespace

TBottomLine::TBottomLine(const TVLine2D& ALine, double AGap, bool IsHorizontal)
    : FGap(AGap), FIsHorizontal(IsHorizontal) {
  for (const TPoint2D& point : {ALine.StartPoint, ALine.EndPoint}) {
    FWidths.push_back(IsHorizontal ? point.X : point.Y);
    FHeights.push_back(IsHorizontal ? point.Y : point.X);
  }
}

void TBottomLine::DropBlock(TJostleBlock& ABlock, double ATol) {
  const TVRect2D grown = ABlock.BoundBox.Inflate(FGap / 2);
  const double start = FIsHorizontal ? grown.Left : grown.Bottom;
  const double end = FIsHorizontal ? grown.Right : grown.Top;
  const TRange range = SearchIdx(start, end, ATol);
  const double height = HeightUnder(range, end, ATol);
  NestAssert(height != kNoHeight);
  if (FIsHorizontal)
    ABlock.Translate({0, height - ABlock.BoundBox.Bottom + FGap / 2});
  else
    ABlock.Translate({height - ABlock.BoundBox.Left + FGap / 2, 0});
  Raise(range, start, end, FGap / 2 + (FIsHorizontal ? ABlock.BoundBox.Top : ABlock.BoundBox.Right), ATol);
}

TBottomLine::TRange TBottomLine::SearchIdx(double Start, double End, double Tolerance) const {
  const int low = LastUpTo(Start, 0, Tolerance);
  return {low, LastUpTo(End, std::max(low, 0), Tolerance)};
}

// The first index from From on that is equal to Position, or else the last one below it; From - 1 if there is none.
int TBottomLine::LastUpTo(double Position, int From, double Tolerance) const {
  const auto found = std::partition_point(FWidths.begin() + From, FWidths.end(),
                                          [&](double Width) { return fSmall(Width, Position, Tolerance); });
  const int index = static_cast<int>(found - FWidths.begin());
  return found != FWidths.end() && fEqual(*found, Position, Tolerance) ? index : index - 1;
}

// A step that begins at the far end of a block does not carry it.
double TBottomLine::HeightUnder(const TRange& Range, double End, double Tolerance) const {
  const bool isOnLine = Range.Low >= 0 && Range.Low + 1 < Size(FWidths);
  if (!isOnLine) return kNoHeight;
  double highest = kNoHeight;
  for (int i = Range.Low; i <= Range.High; ++i) {
    if (FHeights[i] > highest && !fEqual(FWidths[i], End, Tolerance)) highest = FHeights[i];
  }
  return highest;
}

void TBottomLine::Raise(TRange Range, double Start, double End, double Height, double Tolerance) {
  if (!fEqual(FWidths[Range.High], End, Tolerance)) Cut(++Range.High, End);
  if (!fEqual(FWidths[Range.Low], Start, Tolerance)) {
    Cut(++Range.Low, Start);
    ++Range.High;
  }
  std::fill(FHeights.begin() + Range.Low, FHeights.begin() + Range.High, Height);
}

// The step before Index ends at Position, where another of its height begins.
void TBottomLine::Cut(int Index, double Position) {
  FWidths.insert(FWidths.begin() + Index, Position);
  const double height = FHeights[Index - 1];
  FHeights.insert(FHeights.begin() + Index, height);
}

}  // namespace platenest::detail
