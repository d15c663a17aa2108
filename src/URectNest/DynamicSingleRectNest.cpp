#include <optional>
#include <utility>

#include "platenest/URectNest/RectangleNest.h"

namespace platenest {

namespace {

// A used length up to this part of the plate is not tried.
constexpr double kLeastLengthDivisor = 3.0;

struct TTrimmed {
  double Ratio;
  int Kept;                          // placements of the full plate's layout that stay
  std::optional<double> PlateWidth;  // the layout is that of a narrower plate instead
};

// The lengths that the plate would have if it ended behind each placement.
TListOf<double> UsedLengths(const TNestedRects& Layout, double Gap) {
  TListOf<double> lengths;
  lengths.reserve(Layout.size());
  for (const TNestedRect& item : Layout)
    lengths.push_back(item.IsRotate ? item.Trans.X - Gap : item.Trans.X + item.Part.BoundBox.Width() - Gap);
  return lengths;
}

}  // namespace

double DynamicSingleRectNest(const TNestRect& PartRect, double PlateHeight, double PlateWidth, double Gap,
                             TNestedRects& ResultList) {
  const auto nestOn = [&](double Width) {
    return TRectangleNest(TVRect2D::FromSize(Width, PlateHeight), PartRect, Gap);
  };
  const double unitArea = (PartRect.BoundBox.Width() + Gap) * (PartRect.BoundBox.Height() + Gap);
  const auto use = [&](int Count, double Height, double Length) { return Count * unitArea / Height / Length; };

  TNestedRects layout;
  bool isFull = false;
  int count = nestOn(PlateWidth).SingleNest(layout, isFull);
  double ratio = use(count, PlateHeight + Gap, PlateWidth + Gap);
  if (!isFull) {
    ResultList = std::move(layout);
    return ratio;
  }

  TListOf<double> lengths = UsedLengths(layout, Gap);
  double lastX = lengths.Last();
  double prevX = lastX;
  TTrimmed best{use(count, PlateHeight, lastX), count, std::nullopt};
  while (lastX * kLeastLengthDivisor > PlateWidth && !RectNestStopped()) {
    lengths.pop_back();
    --count;
    lastX = lengths.Last();
    if (fEqual(lastX, prevX)) continue;
    if (!(lastX * kLeastLengthDivisor > PlateWidth)) break;
    ratio = use(count, PlateHeight, lastX);
    if (ratio > best.Ratio) best = {ratio, count, std::nullopt};

    const double width = (lastX + prevX) / 2;
    const TRectangleNest::TSummary trial = nestOn(width).Summary();
    if (trial.Placed == 0) static_cast<void>(TNestedRects().Last());  // raises as every empty list does
    ratio = use(trial.Count, PlateHeight + Gap, trial.Right);
    if (ratio > best.Ratio) best = {ratio, count, width};
    prevX = lastX;
  }

  if (best.PlateWidth) {
    layout.clear();
    nestOn(*best.PlateWidth).SingleNest(layout, isFull);
  } else {
    layout.erase(layout.begin() + best.Kept, layout.end());
  }
  ResultList = std::move(layout);
  return ratio;
}

}  // namespace platenest
