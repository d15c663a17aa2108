#include "JobStripValue.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "JobUnits.h"
#include "platenest/colgen/SVCBPRGNest.h"
#include "platenest/foundation/Host.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

constexpr char kMethod[] = "svc";
constexpr int kTrials = 20;
constexpr double kUnitSteps[] = {20000, 10000, 5000, 2000, 1000, 500};
constexpr double kMostStates = 60e6;
constexpr double kBytesAState = 16;
// What a millisecond does of states times widths.
constexpr double kWorkPerMs = 1e5;
// Runs: as many as the time allows, though no more than these.
constexpr int kMostRuns = 200;
constexpr int kRuns = 6;  // where no clock ends them
constexpr double kMsWithoutClock = 2000;
// More make the choice of units itself too long.
constexpr int kMostSizes = 400;
constexpr int kMostKinds = 30;
// A run fills about as many different layouts as there are sizes, and no more than plates.
constexpr double kLayoutsASize = 1.2;

struct TChoice {
  TJobUnits Units;
  double RunMs = 0;
};

// Of one run, on the kind of plate that takes longest.
double RunMsOf(const TJobSizes& Sizes, const TJobUnits& Units, std::span<const int> Copies) {
  double worst = 0;
  for (int kind = 0; kind < Size(Sizes.Plates); ++kind) {
    double area = 0;
    int sizes = 0;
    for (const TNestRect& rect : Units.Rects(Copies)) {
      area += rect.Area * rect.Amount;
      sizes += rect.Amount > 0 ? 1 : 0;
    }
    const double layouts = std::min(kLayoutsASize * sizes, area / Units.Plate(kind).Area() + 1);
    worst = std::max(worst, Units.RasterStates(kind, Copies) * 2 * sizes / kWorkPerMs * layouts);
  }
  return worst;
}

// The finest units that one run can be done in.
std::optional<TChoice> ChooseUnits(const TJobSizes& Sizes, std::span<const int> Copies, double MostMs, bool Must) {
  const double states =
      std::min(kMostStates, static_cast<double>(std::max<Int64>(FreePhysicalMemory(), 0)) / (2 * kBytesAState));
  for (const double steps : kUnitSteps) {
    const TJobUnits units(Sizes, steps);
    double most = 0;
    for (int kind = 0; kind < Size(Sizes.Plates); ++kind) most = std::max(most, units.RasterStates(kind, Copies));
    const double ms = RunMsOf(Sizes, units, Copies);
    const bool isLast = steps == kUnitSteps[std::size(kUnitSteps) - 1];
    if (most <= states && (ms <= MostMs || (isLast && Must))) return TChoice{units, ms};
  }
  return std::nullopt;
}

TNestSpaceList StockOf(const TJobSizes& Sizes, const TJobUnits& Units) {
  TNestSpaceList stock;
  for (const int kind : PlateOrder(Sizes))
    stock.emplace_back(Units.Plate(kind), Sizes.Plates[kind].Count, Sizes.Plates[kind].Remnant);
  return stock;
}

// The nest joins kinds of one size; their plates go to those kinds in turn.
TJobLayouts LayoutsOf(const TJobSizes& Sizes, const TJobUnits& Units, const TRectSolution& Solution) {
  const std::vector<int> order = PlateOrder(Sizes);
  std::vector<int> stock = StockLeft(Sizes, {});
  TJobLayouts layouts;
  for (const auto& pair : Solution) {
    int left = pair.Value;
    for (const int kind : order) {
      if (left <= 0) break;
      if (!pair.Key->Plate().SizeEquals(Units.Plate(kind), kDefaultTol)) continue;
      const int copies = std::min(left, stock[kind]);
      if (copies <= 0) continue;
      layouts.push_back({kind, copies, Units.LayoutOf(*pair.Key)});
      stock[kind] -= copies;
      left -= copies;
    }
  }
  return layouts;
}

}  // namespace

void NestByStripValues(TJobSearch& Search, TSkyTrials& Trials, double Share, bool Must,
                       std::vector<TJobLayouts>& Found) {
  const TJobSizes& sizes = Search.Sizes();
  const std::vector<int> asked = AskedCopies(sizes);
  if (Search.IsOver() || Size(sizes.Parts) > kMostSizes || Size(sizes.Plates) > kMostKinds || IsAllPlaced(asked))
    return;
  const std::optional<double> seconds = Search.SecondsOf(Share);
  const double mostMs = seconds ? *seconds * 1000 : kMsWithoutClock / kRuns;
  Search.Try([&] {
    const std::optional<TChoice> choice = ChooseUnits(sizes, asked, mostMs, Must);
    if (!choice || !Search.Control().Affords(kRuns * choice->RunMs)) return;
    const TJobUnits& units = choice->Units;
    std::vector<TRectSolution> solutions;
    {
      const TTimeShare share(seconds);
      const TSVCBPRGNest nest(StockOf(sizes, units), units.Rects(asked), units.Gap(), seconds.value_or(0),
                              /*SpecificValue=*/false, seconds ? kMostRuns : kRuns);
      nest.NestAllRes(solutions);
      if (Share >= 1) Search.EndWith(share);
    }
    for (const TRectSolution& solution : solutions) {
      TJobLayouts layouts = LayoutsOf(sizes, units, solution);
      PlaceLeftOver(sizes, layouts, Trials.Nest(kTrials));
      Search.Offer(kMethod, layouts);
      Found.push_back(std::move(layouts));
    }
  });
}

}  // namespace platenest::detail
