#include "CircleRun.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "Assembly.h"
#include "CircleFill.h"
#include "CircleImprove.h"
#include "CircleMix.h"
#include "CircleOffcut.h"
#include "CirclePack.h"
#include "CirclePattern.h"
#include "CirclePlates.h"
#include "CircleSearch.h"
#include "CircleVerdict.h"
#include "Texts.h"
#include "platenest/foundation/Random.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/job/JobErrors.h"

namespace platenest::detail {

namespace {

constexpr char kPattern[] = "pattern";
constexpr char kPack[] = "pack";

// Up to so many copies times sizes the first answer takes a moment, and comes whatever the time limit is.
constexpr double kQuickWork = 2e5;
// What checking, measuring and writing down a great answer takes for each copy, and the most of the limit kept for it.
constexpr double kWritingSeconds = 1.2e-6;
constexpr double kMostWriting = 0.6;
// Copies of a size on a plate, on average, from which blocks of patterns are tried.
constexpr double kCopiesForBlocks = 12;
// Where no clock ends the search: tried positions of a worker on each plate, four times as many in each round.
constexpr Int64 kFirstSteps = 500'000;
constexpr Int64 kStepsGrow = 4;
constexpr int kCountedRounds = 4;
constexpr double kStepsAMs = 2e3;
// Of the time that is left when a variant begins; the local search has the last of it.
constexpr double kVariantShare = 0.4;
constexpr double kMixShare = 0.3;
constexpr int kMixesTried = 8;
constexpr int kFirstTurns = 2000;
constexpr double kTurnsAMs = 8;
constexpr Int64 kTurnsACircle = 2000;
constexpr Int64 kTurnCirclesMore = 20;

double CopiesOf(const TCircleSizes& Sizes) {
  double copies = 0;
  for (const TCirclePart& part : Sizes.Parts) copies += part.Amount;
  return copies;
}

// For the first answers; a great one leaves time to be written down.
std::optional<double> QuickSeconds(const TCircleSearch& Search) {
  std::optional<double> seconds = Search.SecondsLeft();
  if (seconds) *seconds -= std::min(kMostWriting * *seconds, kWritingSeconds * CopiesOf(Search.Sizes()));
  return seconds;
}

void LayPatterns(TCircleSearch& Search) {
  const TCircleSizes& sizes = Search.Sizes();
  if (!sizes.HasOneSize()) return;
  for (const std::vector<int>& order : PlateOrders(sizes)) {
    if (Search.HasAnswer() && Search.IsOver()) return;
    Search.Try([&] {
      Search.Offer(kPattern, FillPlates(sizes, order, [&](int plate, std::span<const int> left) {
                     return NestPattern(sizes, plate, left);
                   }));
    });
  }
}

void FillQuickly(TCircleSearch& Search, TFillSide Side) {
  const TCircleSizes& sizes = Search.Sizes();
  for (const std::vector<int>& order : PlateOrders(sizes)) {
    if (Search.HasAnswer() && Search.IsOver()) return;
    Search.Try([&] {
      Search.Offer(kPack, FillPlates(sizes, order, [&](int plate, std::span<const int> left) {
                     TCircleSpots spots;
                     FillPlate(sizes, plate, left, Side, spots);
                     return spots;
                   }));
    });
  }
}

void LayBlocks(TCircleSearch& Search) {
  const TCircleSizes& sizes = Search.Sizes();
  double least = 0;
  for (const TCirclePart& part : sizes.Parts)
    least += std::min<double>(part.Amount, MostOnPlate(sizes, sizes.Plates.front(), part.Radius));
  if (least < kCopiesForBlocks * Size(sizes.Parts) || Search.IsOver()) return;
  Search.Try([&] {
    Search.Offer(kPack, FillPlates(sizes, PlateOrders(sizes).front(), [&](int plate, std::span<const int> left) {
                   TCircleSpots spots = NestBlocks(sizes, plate, left);
                   std::vector<int> rest(left.begin(), left.end());
                   for (const TCornerPlacement& spot : spots) --rest[spot.CircleIdx];
                   FillPlate(sizes, plate, rest, TFillSide::Left, spots);
                   return spots;
                 }));
  });
}

// The first answers. A small job is answered whatever the time limit is.
void AnswerQuickly(TCircleSearch& Search, const std::string& Method) {
  const bool isSmall = CopiesOf(Search.Sizes()) * Size(Search.Sizes().Parts) <= kQuickWork;
  const TTimeShare share(QuickSeconds(Search));
  const TStopTokenScope scope(isSmall ? Search.Control().CallersToken() : CurrentStopToken());
  if (Method != kPack) LayPatterns(Search);
  if (Method != kPack && Search.Sizes().HasOneSize()) MixPatterns(Search);
  if (Method == kPattern) {
    if (!isSmall) Search.EndWith(share);
    return;
  }
  FillQuickly(Search, TFillSide::Left);
  LayBlocks(Search);
  FillQuickly(Search, TFillSide::Bottom);
  Search.Control().Affords(1);
}

// One way to fill all plates with the nester.
struct TVariant {
  bool ExchangesSides = false;
  bool SharesDemand = false;  // each plate is shown its share of what is left, and topped up with anything
};

class TPackRound {
 public:
  TPackRound(TCircleSearch& Search, const TVariant& Variant, std::optional<double> Seconds, Int64 Steps)
      : FSearch(Search), FVariant(Variant), FSeconds(Seconds), FSteps(Steps) {
    for (const TCircleLayout& layout : Search.Best())
      FAreaLeft += Search.Sizes().Plates[layout.Plate].Area * layout.Copies;
    FFillsLeft = std::max(1, Size(Search.Best()));
    FStart = Search.Control().Seconds();
  }

  TCircleSpots operator()(int Plate, std::span<const int> Left) {
    // Preparing a plate takes time even where the nester is stopped at once.
    if (FSearch.IsOver()) return {};
    const TCircleSizes& sizes = FSearch.Sizes();
    const TPackEffort effort = NextEffort();
    if (!FSearch.Control().Affords(static_cast<double>(effort.Steps) / kStepsAMs)) return {};
    const std::vector<int> shown = ShareOf(Plate, Left);
    TCircleSpots spots = PackPlate(sizes, Plate, shown, effort);
    std::vector<int> rest(Left.begin(), Left.end());
    for (const TCornerPlacement& spot : spots) --rest[spot.CircleIdx];
    FillPlate(sizes, Plate, rest, TFillSide::Left, spots);
    FAreaLeft -= sizes.Plates[Plate].Area * TimesOf(spots, Left);
    return spots;
  }

 private:
  TPackEffort NextEffort() {
    TPackEffort effort{std::nullopt, FSteps, FSearch.Threads(), FVariant.ExchangesSides};
    if (FSeconds) effort.Seconds = std::max(0.0, (FStart + *FSeconds - FSearch.Control().Seconds()) / FFillsLeft);
    FFillsLeft = std::max(1, FFillsLeft - 1);
    return effort;
  }

  std::vector<int> ShareOf(int Plate, std::span<const int> Left) const {
    std::vector<int> shown(Left.begin(), Left.end());
    const double share = FSearch.Sizes().Plates[Plate].Area / FAreaLeft;
    if (!FVariant.SharesDemand || !(share < 1 && share > 0)) return shown;
    for (int& copies : shown) copies = static_cast<int>(std::ceil(copies * share));
    return shown;
  }

  static int TimesOf(const TCircleSpots& Spots, std::span<const int> Left) {
    std::vector<int> counts(Left.size());
    for (const TCornerPlacement& spot : Spots) ++counts[spot.CircleIdx];
    int times = 0;
    for (int i = 0; i < Size(counts); ++i)
      if (counts[i] > 0) times = times == 0 ? Left[i] / counts[i] : std::min(times, Left[i] / counts[i]);
    return times;
  }

  TCircleSearch& FSearch;
  TVariant FVariant;
  std::optional<double> FSeconds;
  Int64 FSteps;
  double FAreaLeft = 0;
  int FFillsLeft = 1;
  double FStart = 0;
};

void Pack(TCircleSearch& Search, const std::vector<TVariant>& Variants, Int64 Steps) {
  const TCircleSizes& sizes = Search.Sizes();
  const std::vector<std::vector<int>> orders = PlateOrders(sizes);
  const auto count = Variants.size() * orders.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (Search.IsOver()) return;
    const TVariant& variant = Variants[i % Variants.size()];
    std::optional<double> seconds = Search.SecondsLeft();
    if (seconds) *seconds *= kVariantShare;
    Search.Try([&] {
      Search.Offer(kPack, FillPlates(sizes, orders[i / Variants.size()], TPackRound(Search, variant, seconds, Steps)));
    });
  }
}

// After so many turns without a better answer a timed search ends by itself.
int TurnsFor(const TCircleSearch& Search) {
  Int64 circles = 0;
  for (const TCircleLayout& layout : Search.Best()) circles += std::ssize(layout.Spots) * layout.Copies;
  return static_cast<int>(kTurnsACircle * (circles + kTurnCirclesMore));
}

// Whether the circles of one of these mixes of plates find place: those that come nearest to it, the nearest of them
// with more effort.
bool CompleteOne(TCircleSearch& Search, const std::vector<TCircleLayouts>& Mixes, int Turns) {
  const auto complete = [&](int count, int turns) {
    return std::any_of(Mixes.begin(), Mixes.begin() + std::min(count, Size(Mixes)), [&](const TCircleLayouts& mix) {
      return Search.Control().Affords(turns / kTurnsAMs) && CompleteCircles(Search, mix, turns);
    });
  };
  return complete(kMixesTried, Turns / kMixesTried) || complete(1, Turns);
}

// Mixes of plates that cost less than the answer, as long as one takes all circles. Search adds little to circles of
// one size.
void ImproveMixes(TCircleSearch& Search, std::optional<double> Seconds, int Turns) {
  const TTimeShare share(Seconds);
  if (Search.Sizes().HasOneSize()) {
    MixFills(Search);
    return;
  }
  while (!Search.IsOver() && !share.IsOver() && CompleteOne(Search, MixFills(Search), Turns)) continue;
}

void PackInRounds(TCircleSearch& Search) {
  std::vector<TVariant> variants = {{false, false}, {true, false}};
  if (Search.Merit().Plates > 1) variants = {{false, false}, {false, true}, {true, false}, {true, true}};
  if (Search.IsTimed()) {
    ImproveMixes(Search, kMixShare * *Search.SecondsLeft(), TurnsFor(Search));
    Pack(Search, variants, 0);
    while (!Search.IsOver() && ImproveCircles(Search, TurnsFor(Search))) continue;
    return;
  }
  Int64 steps = kFirstSteps;
  int turns = kFirstTurns;
  for (int round = 0; round < kCountedRounds && !Search.IsOver(); ++round, steps *= kStepsGrow, turns *= 2) {
    ImproveMixes(Search, std::nullopt, turns);
    Pack(Search, variants, steps);
    if (!Search.IsOver() && Search.Control().Affords(turns / kTurnsAMs)) ImproveCircles(Search, turns);
  }
}

// Copies without limit are no demand, so that only words tell why there are none.
void WarnOfTooLarge(const Job& AJob, const TCircleSizes& Sizes, Result& AResult) {
  for (int i = 0; i < Size(AJob.Parts); ++i)
    if (!AJob.Parts[i].Amount && std::ranges::find(Sizes.Parts, i, &TCirclePart::Position) == Sizes.Parts.end())
      AResult.Warnings.push_back(Quoted(AJob.Parts[i].Id) + " fits no plate");
}

}  // namespace

void AnswerCircles(const Job& AJob, TRunControl& Control, Result& AResult) {
  AResult.Bounds = CircleBoundsOf(AJob);
  const TRandomScope random(AJob.Run.Seed);
  TCircleSearch search(AJob, Control, AResult.Bounds);
  WarnOfTooLarge(AJob, search.Sizes(), AResult);
  if (!search.Sizes().Parts.empty()) {
    AnswerQuickly(search, AJob.Run.Method);
    if (AJob.Run.Method != kPattern && !search.IsOver()) PackInRounds(search);
  }
  if (!search.HasAnswer()) {
    search.RaiseTrouble();
    if (Control.StoppedByCaller()) throw StoppedError({"stopped", "", "stopped before any result", ""});
  } else {
    AResult.Run.Method = search.Method();
    AResult.Layouts = search.TakeLayouts();
    for (Layout& layout : AResult.Layouts) MeasureCirclesInto(layout, AJob.Gap, AJob.Margin);
    const TStopTokenScope scope(Control.CallersToken());  // the time may be over, the caller's stop goes on
    WidenCircleOffcuts(AJob, search.Sizes(), search.Best(), AResult.Layouts);
  }
  Account(AJob, AResult);
  JudgeCircles(AJob, AResult);
  if (!AResult.Proved) NoteInterruption(Control, AResult);
}

}  // namespace platenest::detail
