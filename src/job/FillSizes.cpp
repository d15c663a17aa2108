#include "FillSizes.h"

#include <algorithm>

#include "Assembly.h"
#include "OneSizeBounds.h"
#include "Scale.h"

namespace platenest::detail {

namespace {

bool Fits(const TFillSizes& Sizes, const TFillPart& Part) {
  const auto isHeld = [&](double W, double H) { return W <= Sizes.PlateWidth && H <= Sizes.PlateHeight; };
  return isHeld(Part.Width, Part.Height) || (Part.MayTurn && isHeld(Part.Height, Part.Width));
}

void CountCopies(const TFillSizes& Sizes, const Part& Demand, TFillPart& Part) {
  const TOneSizeBounds bounds = BoundOneSize({Sizes.PlateWidth, Sizes.PlateHeight, Part.Width, Part.Height, Sizes.Gap});
  if (!Demand.Amount && bounds.Grid > limits::kCopies) RaiseTooManyCopies(Part.Position);
  const Int64 asked = Demand.Amount.value_or(static_cast<int>(limits::kCopies));
  Part.Asked = static_cast<int>(asked);
  Part.IsScarce = asked < std::min(bounds.Area, bounds.Barnes);
  Part.Most = static_cast<int>(std::min({asked, bounds.Area, bounds.Barnes}));
  // Twice what could fit: nesters that bundle small parts or count in coarse units must not see a limit where none is.
  Part.Offered = static_cast<int>(std::min(asked, 2 * bounds.Area + 100));
}

std::optional<int> DecimalsOf(const TFillSizes& Sizes) {
  std::vector<double> lengths{Sizes.PlateWidth, Sizes.PlateHeight, Sizes.Gap};
  for (const TFillPart& part : Sizes.Parts) lengths.insert(lengths.end(), {part.Width, part.Height});
  return CommonDecimals(lengths);
}

TFillSizes SizesWith(const Job& AJob, bool MayTurn) {
  const TScaledPlate scaled(AJob, AJob.Plates.at(0));
  TFillSizes sizes{scaled.Width, scaled.Height, scaled.Gap, {}, false, {}};
  for (int i = 0; i < Size(AJob.Parts); ++i) {
    const Part& demand = AJob.Parts[i];
    TFillPart part;
    part.Position = i;
    part.Width = scaled.Scale.Up(demand.Width);
    part.Height = scaled.Scale.Up(demand.Height);
    part.Worth = WorthOf(demand);
    part.MayTurn = MayTurn && demand.Turn == Rotate::Any;
    if (!Fits(sizes, part)) continue;
    CountCopies(sizes, demand, part);
    sizes.HasValues |= demand.Value.has_value();
    sizes.Parts.push_back(part);
  }
  sizes.Decimals = DecimalsOf(sizes);
  return sizes;
}

}  // namespace

TFillSizes FillSizesOf(const Job& AJob) {
  return SizesWith(AJob, true);
}

TFillSizes UnturnedSizesOf(const Job& AJob) {
  return SizesWith(AJob, false);
}

}  // namespace platenest::detail
