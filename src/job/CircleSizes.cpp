#include "CircleSizes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Assembly.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

// From this length on the longest side of plates in the nesters' units; a single decimal place more for longer ones.
constexpr double kFinerThanLengths = 100;
constexpr double kLongestForOnePlace = 400;
// By which a plate may be too small for a part, in the nesters' units.
constexpr double kFitSlack = 1e-6;

std::vector<TCirclePlate> PlatesOf(const Job& AJob, const TScale& Scale) {
  std::vector<TCirclePlate> plates;
  for (const bool isRemnant : {true, false}) {
    for (int i = 0; i < Size(AJob.Plates); ++i) {
      const Plate& plate = AJob.Plates[i];
      if (plate.Remnant != isRemnant) continue;
      const TScaledPlate scaled(AJob, plate, Scale);
      if (!(scaled.Width > 0 && scaled.Height > 0)) continue;
      const double area = plate.Width * plate.Height;
      const int count = plate.Count.value_or(static_cast<int>(limits::kPlates));
      plates.push_back({i, scaled.Width, scaled.Height, count, plate.Cost.value_or(area), area, isRemnant});
    }
  }
  if (plates.empty()) RequireRoom(TScaledPlate(AJob, AJob.Plates.at(0), Scale), AJob.Plates[0]);
  return plates;
}

std::vector<TCirclePart> PartsOf(const Job& AJob, const TScale& Scale, const std::vector<TCirclePlate>& Plates) {
  std::vector<TCirclePart> parts;
  for (int i = 0; i < Size(AJob.Parts); ++i) {
    const Part& demand = AJob.Parts[i];
    const TCirclePart part{.Position = i,
                           .Radius = Scale.Up(demand.Radius),
                           .Amount = demand.Amount.value_or(0),
                           .IsUnlimited = !demand.Amount,
                           .Area = std::numbers::pi * demand.Radius * demand.Radius};
    if (std::ranges::any_of(Plates, [&](const TCirclePlate& plate) { return Holds(plate, part); }))
      parts.push_back(part);
  }
  SortBy(parts, [](const TCirclePart& a, const TCirclePart& b) { return Sign(b.Radius, a.Radius); });
  return parts;
}

// The most copies of a part without limit that the stock can hold, or one more than are allowed. Raises LimitError
// where square grids hold too many.
int MostCopies(const TCircleSizes& Sizes, const TCirclePart& APart) {
  const double pitch = 2 * APart.Radius + Sizes.Gap;
  double most = 0;
  double inGrids = 0;
  for (const TCirclePlate& plate : Sizes.Plates) {
    most += plate.Count * MostOnPlate(Sizes, plate, APart.Radius);
    inGrids += plate.Count * std::floor((plate.Width + Sizes.Gap) / pitch + kFitSlack) *
               std::floor((plate.Height + Sizes.Gap) / pitch + kFitSlack);
  }
  const double limit = static_cast<double>(limits::kCopies);
  if (inGrids > limit) RaiseTooManyCopies(APart.Position);
  return Trunc<int>(std::min(most, limit + 1));
}

// No plate is used without a copy on it.
void CapCounts(TCircleSizes& Sizes) {
  for (TCirclePlate& plate : Sizes.Plates) {
    Int64 copies = 0;
    for (const TCirclePart& part : Sizes.Parts)
      if (Holds(plate, part)) copies += part.Amount;
    plate.Count = static_cast<int>(std::min<Int64>(plate.Count, copies));
  }
}

}  // namespace

TScale CircleScaleOf(const Job& AJob) {
  double longest = 0;
  for (const Plate& plate : AJob.Plates) longest = std::max({longest, plate.Width, plate.Height});
  return TScale(std::min(longest / kFinerThanLengths, kLongestForOnePlace));
}

bool Holds(const TCirclePlate& APlate, const TCirclePart& APart) {
  return 2 * APart.Radius <= std::min(APlate.Width, APlate.Height) + kFitSlack;
}

double MostOnPlate(const TCircleSizes& Sizes, const TCirclePlate& APlate, double Radius) {
  if (2 * Radius > std::min(APlate.Width, APlate.Height) + kFitSlack) return 0;
  // Disjoint circles cover at most their share of the densest lattice, and a circle reaches a gap's half over the edge.
  const double r = Radius + Sizes.Gap / 2;
  const double area = (APlate.Width + Sizes.Gap) * (APlate.Height + Sizes.Gap);
  return std::max(1.0, std::floor(area / (std::numbers::pi * r * r)));
}

TCircleSizes CircleSizesOf(const Job& AJob) {
  const TScale scale = CircleScaleOf(AJob);
  TCircleSizes sizes;
  sizes.Gap = scale.Up(AJob.Gap);
  sizes.Plates = PlatesOf(AJob, scale);
  sizes.Parts = PartsOf(AJob, scale, sizes.Plates);
  std::erase_if(sizes.Plates, [&](const TCirclePlate& plate) {
    return std::ranges::none_of(sizes.Parts, [&](const TCirclePart& part) { return Holds(plate, part); });
  });
  for (TCirclePart& part : sizes.Parts)
    if (part.IsUnlimited) part.Amount = MostCopies(sizes, part);
  CapCounts(sizes);
  return sizes;
}

}  // namespace platenest::detail
