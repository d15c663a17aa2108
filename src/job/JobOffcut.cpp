#include "JobOffcut.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "Assembly.h"
#include "JobTrials.h"
#include "Offcut.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

constexpr int kTrials = 12;
constexpr int kHalvings = 8;
constexpr int kMostWork = 20000;  // sizes times copies

// The layout as a demand of its own, on one plate.
struct TOneLayout {
  TOneLayout(const TJobSizes& Sizes, const TJobLayout& Layout) {
    Demand.Gap = Sizes.Gap;
    Demand.Decimals = Sizes.Decimals;
    Demand.Plates = {Sizes.Plates[Layout.Plate]};
    std::vector<int> index(Sizes.Parts.size(), -1);
    for (const TNestedRect& placed : Layout.Nested) {
      int& at = index[placed.Part.Idx];
      if (at < 0) {
        at = Size(Positions);
        Positions.push_back(placed.Part.Idx);
        Demand.Parts.push_back(Sizes.Parts[placed.Part.Idx]);
        Demand.Parts.back().Amount = 0;
      }
      ++Demand.Parts[at].Amount;
    }
  }

  TJobSizes Demand;
  std::vector<int> Positions;  // of its parts in the sizes of the whole job
};

std::optional<TNestedRects> FilledWith(const TJobSizes& Demand) {
  TSkyTrials trials(Demand);
  std::vector<int> left = AskedCopies(Demand);
  const TSkyLayout layout = trials.Fill(0, left, kTrials);
  if (!IsAllPlaced(left)) return std::nullopt;
  return trials.LayoutOf(layout);
}

// On the least width, or height, that a fill has been found for.
std::optional<TNestedRects> Shrunk(const TOneLayout& One, bool IsUpright) {
  TJobSizes demand = One.Demand;
  double& side = IsUpright ? demand.Plates[0].Height : demand.Plates[0].Width;
  const double other = IsUpright ? demand.Plates[0].Width : demand.Plates[0].Height;
  double low = 0;
  for (const TJobPart& part : demand.Parts) low += part.Width * part.Height * part.Amount / other;
  double high = side;
  const double steps = demand.Decimals ? std::pow(10.0, *demand.Decimals) : 0;
  std::optional<TNestedRects> best;
  for (int i = 0; i < kHalvings; ++i) {
    side = low + (high - low) / 2;
    if (steps > 0) side = RoundHalfEven(side * steps) / steps;
    if (side <= low || side >= high) break;
    std::optional<TNestedRects> nested = FilledWith(demand);
    (nested ? high : low) = side;
    if (nested) best = std::move(nested);
  }
  if (best)
    for (TNestedRect& placed : *best) placed.Part.Idx = One.Positions[placed.Part.Idx];
  return best;
}

void Widen(const Job& AJob, const TJobSizes& Sizes, const TJobLayout& Found, Layout& ALayout) {
  const TOneLayout one(Sizes, Found);
  if (one.Demand.Parts.size() * Found.Nested.size() > kMostWork) return;
  for (const bool isUpright : {false, true}) {
    std::optional<TNestedRects> nested = Shrunk(one, isUpright);
    if (!nested) continue;
    Layout widened = AssembleLayouts(AJob, Sizes, {{Found.Plate, Found.Copies, std::move(*nested)}}).at(0);
    if (!CheckLayout(TPartIds(AJob), widened, AJob.Gap, AJob.Margin).empty()) continue;
    MeasureInto(widened, AJob.Gap, AJob.Margin);
    TakeWider(std::move(widened), ALayout);
  }
}

}  // namespace

void WidenOffcuts(const Job& AJob, const TJobSizes& Sizes, const TJobLayouts& Found, std::vector<Layout>& Layouts) {
  if (std::ranges::any_of(Sizes.Parts, &TJobPart::IsUnlimited)) return;
  for (const int i : EmptiestLayouts(Layouts)) Widen(AJob, Sizes, Found.at(i), Layouts[i]);
}

}  // namespace platenest::detail
