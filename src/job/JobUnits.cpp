#include "JobUnits.h"

#include <algorithm>
#include <cmath>

#include "platenest/URectNest/Raster.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

std::vector<double> LengthsOf(const TJobSizes& Sizes) {
  std::vector<double> lengths;
  for (const TJobPlate& plate : Sizes.Plates) lengths.insert(lengths.end(), {plate.Width, plate.Height});
  for (const TJobPart& part : Sizes.Parts) lengths.insert(lengths.end(), {part.Width, part.Height});
  return lengths;
}

// Positions of a nester are whole steps but for the noise of doubles.
constexpr double kStepNoise = 1e-3;

}  // namespace

TJobUnits::TJobUnits(const TJobSizes& Sizes, double MostUnits)
    : FSizes(Sizes), FUnits(LengthsOf(Sizes), Sizes.Gap, MostUnits) {}

TVRect2D TJobUnits::Plate(int Kind) const {
  const TJobPlate& plate = FSizes.Plates[Kind];
  const double more = FUnits.IsExact() ? 1 : 0;
  return TVRect2D::FromSize(FUnits.Room(plate.Width) * kSteps + more, FUnits.Room(plate.Height) * kSteps + more);
}

TVRect2D TJobUnits::BoxOf(const TJobPart& Part) const {
  return TVRect2D::FromSize(FUnits.Need(Part.Width) * kSteps, FUnits.Need(Part.Height) * kSteps);
}

TNestRectList TJobUnits::Rects(std::span<const int> Copies) const {
  TNestRectList rects;
  for (int i = 0; i < Size(FSizes.Parts); ++i) {
    TNestRect rect(Copies[i], i, BoxOf(FSizes.Parts[i]));
    rect.Area = rect.BoundBox.Area();
    rects.push_back(rect);
  }
  return rects;
}

double TJobUnits::RasterStates(int Kind, std::span<const int> Copies) const {
  TIntBoxList boxes;
  for (const TNestRect& rect : Rects(Copies)) {
    if (rect.Amount <= 0) continue;
    const auto side = [&](double V) { return Round<int>(V + Gap()); };
    boxes.emplace_back(side(rect.BoundBox.Width()), side(rect.BoundBox.Height()), rect.Idx, rect.Amount, 0);
  }
  const TVRect2D plate = Plate(Kind);
  const int l = Round<int>(std::max(plate.Width(), plate.Height()) + Gap());
  const int w = Round<int>(std::min(plate.Width(), plate.Height()) + Gap());
  const TRaster raster(l, w, boxes, /*AllowRotate=*/true, /*UseNormal=*/true);
  return static_cast<double>(raster.SizeL) * raster.SizeW;
}

// Corners are brought back: the box of a part in units may be larger than the part.
TNestedRects TJobUnits::LayoutOf(const TRectPattern& Pattern) const {
  const auto down = [&](double V) {
    return (FUnits.IsExact() ? std::floor((V + kStepNoise) / kSteps) : V / kSteps) / FUnits.Scale();
  };
  TNestedRects layout;
  for (const TNestedRect& placed : Pattern.NestedRects()) {
    const TJobPart& part = FSizes.Parts.at(placed.Part.Idx);
    TNestRect record(1, placed.Part.Idx, TVRect2D::FromSize(part.Width, part.Height));
    record.Area = part.Width * part.Height;
    const TVRect2D box = placed.BoundBox();
    layout.emplace_back(record, placed.IsRotate,
                        TPoint2D{down(box.Left) + (placed.IsRotate ? part.Height : 0), down(box.Bottom)});
  }
  if (FSizes.Decimals) SnapToQuantum(layout, *FSizes.Decimals);
  return layout;
}

TRectPattern TJobUnits::PatternOf(const TJobLayout& Layout) const {
  const double factor = FUnits.Scale() * kSteps;
  TNestedRects nested;
  for (const TNestedRect& placed : Layout.Nested) {
    const TJobPart& part = FSizes.Parts[placed.Part.Idx];
    TNestRect record(1, placed.Part.Idx, BoxOf(part));
    record.Area = record.BoundBox.Area();
    const double left = placed.Trans.X - (placed.IsRotate ? part.Height : 0);
    const double shift = placed.IsRotate ? record.BoundBox.Height() : 0;
    nested.emplace_back(record, placed.IsRotate, TPoint2D{left * factor + shift, placed.Trans.Y * factor});
  }
  return TRectPattern(nested, Plate(Layout.Plate));
}

}  // namespace platenest::detail
