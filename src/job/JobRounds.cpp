#include "JobRounds.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "JobExchange.h"

namespace platenest::detail {

namespace {

constexpr char kMethod[] = "rounds";
constexpr int kTrials = 20;
constexpr int kRoundsPerCycle = 50;
// Copies in the layouts of all answers that are kept.
constexpr Int64 kMostKept = 200000;
// Exchanges that bring nothing end a cycle: so many, and so many for each plate.
constexpr int kIdleExchanges = 2000;
constexpr int kIdleExchangesAPlate = 40;
constexpr int kMostIdleTimes = 10;
// Other kinds of plates are tried that often where there are some, and so many of them where a plate is chosen.
constexpr double kOtherKindShare = 0.3;
constexpr int kMostKindsTried = 4;
// Worths: areas to a power a little above 1, moved by chance, and half way to what a round says.
constexpr double kMoreForLarge = 0.02;
constexpr double kStartNoise = 0.3;
constexpr double kRoundNoise = 0.1;
constexpr double kRateNoise = 0.3;
constexpr double kStep = 0.5;
constexpr double kTol = 1e-9;

struct TFilled {
  int Plate = 0;
  int Copies = 0;
  double Area = 0;
  TSkyLayout Layout;
};

// Whole answers by filling plate after plate, with worths that learn from the answer before.
class TValueRounds {
 public:
  TValueRounds(const TJobSizes& Sizes, TSkyTrials& Trials)
      : FSizes(Sizes), FTrials(Trials), FOrder(PlateOrder(Sizes)) {}

  void Restart() {
    FTrials.ResetWorths();
    for (double& worth : FTrials.Worths()) worth *= 1 + kStartNoise * (DrawnUniform() - 0.5);
  }

  TJobLayouts Build() {
    FLeft = AskedCopies(FSizes);
    FStock = StockLeft(FSizes, {});
    const bool isByChance = FOrder.size() > 1 && DrawnUniform() < kOtherKindShare;
    std::vector<TFilled> plates;
    while (!IsAllPlaced(FLeft) && !RectNestStopped()) {
      std::optional<TFilled> filled = NextPlate(isByChance);
      if (!filled) break;
      plates.push_back(std::move(*filled));
    }
    Learn(plates);
    TJobLayouts layouts;
    for (const TFilled& plate : plates) layouts.push_back({plate.Plate, plate.Copies, FTrials.LayoutOf(plate.Layout)});
    return layouts;
  }

 private:
  // The first remnant that takes something, else of a few kinds the one that takes most for its cost, by chance also
  // one that takes somewhat less.
  std::optional<TFilled> NextPlate(bool IsByChance) {
    std::optional<TFilled> best;
    double bestRate = 0;
    int tried = 0;
    for (const int kind : FOrder) {
      if (FStock[kind] <= 0) continue;
      if (tried >= kMostKindsTried || (best && FSizes.Plates[best->Plate].Remnant)) break;
      std::vector<int> left = FLeft;
      TFilled filled{kind, 1, 0, FTrials.Fill(kind, left, kTrials)};
      if (filled.Layout.empty()) continue;
      ++tried;
      filled.Area = FTrials.AreaOf(filled.Layout);
      const TJobPlate& plate = FSizes.Plates[kind];
      const double rate = filled.Area / std::max(plate.Cost, kTol * plate.Area);
      const double chance = IsByChance ? 1 + kRateNoise * (2 * DrawnUniform() - 1) : 1;
      if (best && rate <= bestRate * chance) continue;
      best = std::move(filled);
      bestRate = rate;
    }
    if (best) Repeat(*best);
    return best;
  }

  void Repeat(TFilled& Filled) {
    std::vector<int> used(FLeft.size());
    for (const TSkyPlaced& placed : Filled.Layout) ++used[placed.Part];
    Filled.Copies = FStock[Filled.Plate];
    for (const TSkyPlaced& placed : Filled.Layout)
      Filled.Copies = std::min(Filled.Copies, FLeft[placed.Part] / used[placed.Part]);
    for (int i = 0; i < Size(used); ++i) FLeft[i] -= Filled.Copies * used[i];
    FStock[Filled.Plate] -= Filled.Copies;
  }

  // Parts are worth more the worse the plates are used that they lie on.
  void Learn(const std::vector<TFilled>& Plates) {
    std::vector<double> waste(FSizes.Parts.size());
    std::vector<double> copies(FSizes.Parts.size());
    for (const TFilled& plate : Plates) {
      const double rate = FSizes.Plates[plate.Plate].Area / plate.Area;
      for (const TSkyPlaced& placed : plate.Layout) {
        waste[placed.Part] += rate * plate.Copies;
        copies[placed.Part] += plate.Copies;
      }
    }
    for (int i = 0; i < Size(waste); ++i) {
      if (copies[i] == 0) continue;
      const double noise = 1 + kRoundNoise * (DrawnUniform() - 0.5);
      const double area = FSizes.Parts[i].Area;
      const double now = area * std::pow(area / FSizes.Plates[0].Area, kMoreForLarge) * waste[i] / copies[i] * noise;
      FTrials.Worths()[i] += kStep * (now - FTrials.Worths()[i]);
    }
  }

  const TJobSizes& FSizes;
  TSkyTrials& FTrials;
  std::vector<int> FOrder;
  std::vector<int> FLeft;
  std::vector<int> FStock;
};

// Cut by the clock, or where it is counted by the work that was done.
bool GoesOn(TJobSearch& Search, TSkyTrials& Trials) {
  const bool affords = Search.Control().Affords(Trials.TakeWork() / kTrialWorkPerMs);
  return affords && !Search.IsOver() && !RectNestStopped();
}

// The best of some rounds.
TJobLayouts BestOfRounds(TJobSearch& Search, TSkyTrials& Trials, std::vector<TJobLayouts>* Built) {
  TValueRounds rounds(Search.Sizes(), Trials);
  rounds.Restart();
  TJobLayouts best;
  TJobMerit bestMerit;
  Int64 kept = 0;
  for (int round = 0; round < kRoundsPerCycle && GoesOn(Search, Trials); ++round) {
    TJobLayouts layouts = rounds.Build();
    if (RectNestStopped()) break;
    PlaceLeftOver(Search.Sizes(), layouts, Trials.Nest(kTrials));
    const TJobMerit merit = MeritOf(Search.Sizes(), layouts);
    if (Built != nullptr && (kept += CopiesIn(layouts)) <= kMostKept) Built->push_back(layouts);
    if (!best.empty() && !IsBetter(merit, bestMerit)) continue;
    bestMerit = merit;
    best = std::move(layouts);
    if (Search.WouldStand(merit)) Search.Offer(kMethod, best);
  }
  return best;
}

void ExchangePlates(TJobSearch& Search, TSkyTrials& Trials, TJobLayouts Layouts) {
  TExchange exchange(Search.Sizes(), Trials, std::move(Layouts));
  const Int64 mostIdle = kIdleExchanges + kIdleExchangesAPlate * exchange.Plates();
  Int64 idle = 0;
  for (Int64 step = 0; idle < mostIdle && step < kMostIdleTimes * mostIdle && GoesOn(Search, Trials); ++step) {
    const TExchange::Outcome outcome = exchange.Step();
    idle = outcome == TExchange::Outcome::Nothing ? idle + 1 : 0;
    if (outcome == TExchange::Outcome::Better && Search.IsDue()) Search.Offer(kMethod, exchange.Layouts());
    Search.Tell(kMethod, {});
  }
  Search.Offer(kMethod, exchange.Layouts());
}

}  // namespace

void ImproveInCycles(TJobSearch& Search, TSkyTrials& Trials, int Cycles, std::vector<TJobLayouts>* Built) {
  for (int cycle = 0; cycle < Cycles && GoesOn(Search, Trials); ++cycle) {
    TJobLayouts fresh = BestOfRounds(Search, Trials, Built);
    // In turn the best answer of all and the best of this cycle.
    const bool isFresh = cycle % 2 == 1 && !fresh.empty();
    TJobLayouts start = isFresh ? std::move(fresh) : Search.Best();
    ExchangePlates(Search, Trials, std::move(start));
  }
}

}  // namespace platenest::detail
