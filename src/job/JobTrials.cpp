#include "JobTrials.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Random.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

// Passes with plain keys; then with noise; then most of them change the best keys so far.
constexpr int kPlainTrials = 4;
constexpr int kDrawnTrials = 8;
constexpr double kChangeShare = 0.6;
constexpr double kMostNoise = 0.6;
constexpr int kMostChanges = 3;
// What an exact fit adds to keys of up to about 1. The first passes go through them from the highest on.
constexpr std::array kFitBonuses = {10.0, 1.0, 0.3, 0.1, 0.02, 0.0};
// Less than rounding of an area.
constexpr double kAreaTol = 1e-9;

// Ways to say which parts are large, as shares of the plate.
double Largeness(const TJobPart& Part, const TJobPlate& Plate, int Way) {
  const double side = std::sqrt(Plate.Width * Plate.Height);
  switch (Way) {
    case 0:
      return Part.Width * Part.Height / (side * side);
    case 1:
      return std::max(Part.Width, Part.Height) / side;
    case 2:
      return std::min(Part.Width, Part.Height) / side;
    default:
      return (Part.Width + Part.Height) / side / 2;
  }
}

}  // namespace

double DrawnUniform() {
  constexpr int kSteps = 1 << 30;
  return static_cast<double>(Random(kSteps)) / kSteps;
}

TSkyTrials::TSkyTrials(const TJobSizes& Sizes) : FSizes(Sizes), FSkyline(Sizes), FKeys(Sizes.Parts.size()) {
  ResetWorths();
}

void TSkyTrials::ResetWorths() {
  FWorths.clear();
  for (const TJobPart& part : FSizes.Parts) FWorths.push_back(part.Area);
}

double TSkyTrials::AreaOf(const TSkyLayout& Layout) const {
  double area = 0;
  for (const TSkyPlaced& placed : Layout) area += FSizes.Parts[placed.Part].Area;
  return area;
}

void TSkyTrials::DrawKeys(int Plate, int Trial) {
  const double noise = Trial < kPlainTrials ? 0 : kMostNoise * DrawnUniform();
  for (const int i : FOrder) {
    const TJobPart& part = FSizes.Parts[i];
    const double large = Largeness(part, FSizes.Plates[Plate], Trial % 4);
    FKeys[i] = large * FWorths[i] / part.Area * (1 + noise * (2 * DrawnUniform() - 1));
  }
}

void TSkyTrials::ChangeKeys() {
  FKeys = FBestKeys;
  for (int i = Random(kMostChanges); i >= 0; --i) FKeys[FOrder[Random(Size(FOrder))]] = DrawnUniform();
}

TSkyLayout TSkyTrials::Fill(int Plate, std::vector<int>& Left, int Trials) {
  FOrder.clear();
  double all = 0;
  for (int i = 0; i < Size(Left); ++i) {
    if (Left[i] <= 0 || !FSkyline.Holds(Plate, i)) continue;
    FOrder.push_back(i);
    all += FWorths[i] * Left[i];
  }
  if (FOrder.empty()) return {};
  const double room = FSizes.Plates[Plate].Area * (1 - kAreaTol);
  TSkyLayout best;
  std::vector<int> bestLeft;
  double bestWorth = -1;
  for (int trial = 0; trial < Trials && (trial == 0 || !RectNestStopped()); ++trial) {
    if (trial >= kDrawnTrials && DrawnUniform() < kChangeShare)
      ChangeKeys();
    else
      DrawKeys(Plate, trial);
    SortBy(FOrder, [&](int a, int b) { return Sign(FKeys[b], FKeys[a]); });
    const int bonus = trial < Size(kFitBonuses) ? trial : Random(Size(kFitBonuses));
    std::vector<int> left = Left;
    TSkyLayout layout;
    FSkyline.Fill(Plate, {FOrder, FKeys, kFitBonuses[bonus], Random(2) == 1}, left, layout);
    double worth = 0;
    for (const TSkyPlaced& placed : layout) worth += FWorths[placed.Part];
    if (worth > bestWorth) {
      bestWorth = worth;
      best = std::move(layout);
      bestLeft = std::move(left);
      FBestKeys = FKeys;
    }
    if (bestWorth >= all * (1 - kAreaTol) || AreaOf(best) >= room) break;
  }
  Left = std::move(bestLeft);
  return best;
}

TPlateNest TSkyTrials::Nest(int Trials) {
  return [this, Trials](int plate, std::span<const int> left) {
    std::vector<int> copy(left.begin(), left.end());
    return LayoutOf(Fill(plate, copy, Trials));
  };
}

}  // namespace platenest::detail
