#include "CircleMix.h"

#include <algorithm>
#include <limits>
#include <numbers>
#include <utility>

#include "CircleFill.h"
#include "CirclePattern.h"
#include "CirclePlates.h"
#include "PlateCover.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/StopToken.h"

namespace platenest::detail {

namespace {

// Of the search for a mix.
constexpr double kMostSteps = 1e7;
// Circles on one plate of each kind, up to which patterns are counted.
constexpr double kMostCounted = 5e5;
// Of a plate's area that circles and gaps cover at most in a mix that is tried, what the area grows by from mix to mix,
// the mixes that are tried at most, and the units in which area is counted.
constexpr double kDense = 0.9;
constexpr double kGrowth = 1.01;
constexpr int kMostMixes = 40;
constexpr int kUnits = 2000;
constexpr int kMostUnits = 1000000;
// Sizes times circles of the fills of one mix, and what they take in milliseconds.
constexpr double kMostWork = 2e5;
constexpr double kMsAWork = 2e-3;

bool HasChoice(const TCircleSearch& Search) {
  const TCircleSizes& sizes = Search.Sizes();
  return Search.PlacesAll() && std::ranges::none_of(sizes.Parts, &TCirclePart::IsUnlimited) &&
         std::ranges::count(sizes.Plates, false, &TCirclePlate::Remnant) > 1;
}

TCircleSizes WithStock(TCircleSizes Sizes, std::span<const int> Mix) {
  for (int i = 0; i < Size(Mix); ++i) Sizes.Plates[i].Count = Mix[i];
  return Sizes;
}

TCoverWorth WorthOf(const TCircleSizes& Sizes, std::span<const int> Mix) {
  TCoverWorth worth;
  for (int i = 0; i < Size(Mix); ++i) {
    worth.Cost += Sizes.Plates[i].Cost * Mix[i];
    worth.Plates += Mix[i];
  }
  worth.Cost = RoundToTwelveDigits(worth.Cost);
  return worth;
}

// What is left, and the better one of two fills.
std::pair<double, TCircleLayouts> FillMix(const TCircleSizes& Sizes, std::span<const int> Mix) {
  const TCircleSizes mixed = WithStock(Sizes, Mix);
  std::pair<double, TCircleLayouts> best{std::numeric_limits<double>::infinity(), {}};
  for (const TFillSide side : {TFillSide::Left, TFillSide::Bottom}) {
    TCircleLayouts layouts = FillPlates(mixed, PlateOrders(mixed).front(), [&](int plate, std::span<const int> left) {
      TCircleSpots spots;
      FillPlate(mixed, plate, left, side, spots);
      return spots;
    });
    const double unplaced = MeritOf(Sizes, layouts).UnplacedArea;
    if (unplaced < best.first) best = {unplaced, std::move(layouts)};
  }
  return best;
}

}  // namespace

std::vector<int> CheapestMix(const TCircleSizes& Sizes, std::span<const int> Each, int Need) {
  std::vector<int> remnants(Sizes.Plates.size());
  std::vector<TCoverKind> kinds;
  Int64 need = Need;
  for (int kind = 0; kind < Size(remnants); ++kind) {
    const TCirclePlate& plate = Sizes.Plates[kind];
    if (plate.Remnant) remnants[kind] = plate.Count;
    need -= Int64{remnants[kind]} * Each[kind];
    kinds.push_back({Each[kind], plate.Remnant ? 0 : plate.Count, plate.Cost});
  }
  if (need <= 0) return {};
  std::vector<int> mix = CheapestCover(kinds, static_cast<int>(need), kMostSteps);
  for (int kind = 0; kind < Size(mix); ++kind) mix[kind] += remnants[kind];
  return mix;
}

void MixPatterns(TCircleSearch& Search) {
  const TCircleSizes& sizes = Search.Sizes();
  if (!HasChoice(Search) || Search.IsOver()) return;
  const double radius = sizes.Parts.front().Radius;
  double most = 0;
  for (const TCirclePlate& plate : sizes.Plates) most += MostOnPlate(sizes, plate, radius);
  if (most > kMostCounted) return;
  Int64 need = 0;
  for (const TCirclePart& part : sizes.Parts) need += part.Amount;
  if (static_cast<double>(need) > kMostSteps) return;
  std::vector<int> each;
  for (const TCirclePlate& plate : sizes.Plates)
    each.push_back(Size(PatternPoints(plate.Width, plate.Height, radius, sizes.Gap)));
  const std::vector<int> mix = CheapestMix(sizes, each, static_cast<int>(need));
  if (mix.empty()) return;
  const TCircleSizes mixed = WithStock(sizes, mix);
  Search.Try([&] {
    Search.Offer("pattern", FillPlates(mixed, PlateOrders(mixed).front(), [&](int plate, std::span<const int> left) {
                   return NestPattern(mixed, plate, left);
                 }));
  });
}

std::vector<TCircleLayouts> MixFills(TCircleSearch& Search) {
  if (!HasChoice(Search)) return {};
  const TCircleSizes& sizes = Search.Sizes();
  double copies = 0;
  double demand = 0;
  for (const TCirclePart& part : sizes.Parts) {
    const double grown = part.Radius + sizes.Gap / 2;
    demand += std::numbers::pi * grown * grown * part.Amount;
    copies += part.Amount;
  }
  const double work = copies * Size(sizes.Parts);
  if (work > kMostWork) return {};
  std::vector<int> each;
  for (const TCirclePlate& plate : sizes.Plates) {
    const double area = kDense * (plate.Width + sizes.Gap) * (plate.Height + sizes.Gap);
    each.push_back(Trunc<int>(std::min<double>(kMostUnits, kUnits * area / demand)));
  }
  std::vector<std::pair<double, TCircleLayouts>> tried;
  double need = kUnits;
  while (Size(tried) < kMostMixes && !Search.IsOver() && !RunStopRequested()) {
    const std::vector<int> mix = CheapestMix(sizes, each, Ceil<int>(need));
    if (mix.empty() || !(WorthOf(sizes, mix) < TCoverWorth{Search.Merit().Cost, Search.Merit().Plates})) break;
    if (!Search.Control().Affords(kMsAWork * work)) break;
    tried.push_back(FillMix(sizes, mix));
    if (tried.back().first <= 0) {
      Search.Try([&] { Search.Offer("pack", std::move(tried.back().second)); });
      tried.pop_back();
      break;
    }
    double held = 0;
    for (int kind = 0; kind < Size(mix); ++kind) held += static_cast<double>(mix[kind]) * each[kind];
    need = std::max(held + 1, kGrowth * need);
  }
  SortBy(tried, [](const auto& a, const auto& b) { return Sign(a.first, b.first); });
  std::vector<TCircleLayouts> left;
  for (auto& [unplaced, layouts] : tried) left.push_back(std::move(layouts));
  return left;
}

}  // namespace platenest::detail
