#include "CircleSearch.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numeric>
#include <thread>
#include <utility>

#include "Assembly.h"
#include "CircleBounds.h"
#include "CircleVerdict.h"
#include "Judgement.h"

namespace platenest::detail {

namespace {

// Bounds are stated to twelve digits.
constexpr double kBoundTol = 1e-11;
constexpr int kMostThreads = 4;

}  // namespace

TCircleSearch::TCircleSearch(const Job& AJob, TRunControl& Control, const std::vector<Bound>& Bounds)
    : TStockSearch(AJob, Control, Bounds, CircleSizesOf(AJob)) {}

int TCircleSearch::Threads() const {
  const int asked = FJob.Run.Threads > 0 ? FJob.Run.Threads : static_cast<int>(std::thread::hardware_concurrency());
  return std::clamp(asked, 1, kMostThreads);
}

std::optional<double> TCircleSearch::SecondsLeft() const {
  if (!IsTimed()) return std::nullopt;
  return std::max(0.0, TStockSearch::SecondsLeft());
}

bool TCircleSearch::IsOver() {
  if (IsTimed() && HasAnswer() && SecondsLeft() <= 0.0) FControl.EndForTime();
  return FIsBest || FControl.IsOver();
}

bool TCircleSearch::IsMet(std::string_view What, double Reached) const {
  return std::ranges::any_of(FBounds, [&](const Bound& bound) {
    const double slack = kBoundTol * std::fabs(bound.Value);
    if (bound.What != What) return false;
    // All that is asked for may still go onto fewer plates.
    return What == "count" ? bound.Kind == "oler" && Reached >= bound.Value - slack : Reached <= bound.Value + slack;
  });
}

void TCircleSearch::RequireFewCopies(const TCircleLayouts& Layouts) const {
  const std::vector<Int64> placed = PlacedCopies(FSizes, Layouts);
  for (int i = 0; i < Size(placed); ++i)
    if (placed[i] > limits::kCopies) RaiseTooManyCopies(FSizes.Parts[i].Position);
}

// What proves an answer, see JudgeCircles.
bool TCircleSearch::IsBest() const {
  const bool isUnlimited = std::ranges::any_of(FSizes.Parts, &TCirclePart::IsUnlimited);
  const bool placesAll = FMerit.UnplacedArea <= 0;
  const bool isOneCost = HasOneCost(FSizes);
  if (placesAll && !isUnlimited &&
      IsMet(isOneCost ? "plates" : "cost", isOneCost ? static_cast<double>(FMerit.Plates) : FMerit.Cost))
    return true;
  const std::vector<Int64> placed = PlacedCopies(FSizes, FBest);
  const auto count = static_cast<double>(std::accumulate(placed.begin(), placed.end(), Int64{0}));
  return (placesAll || !isUnlimited) && IsMet("count", count);
}

bool TCircleSearch::Offer(std::string_view Method, TCircleLayouts Layouts) {
  if (IsTooLate(0)) return false;
  if (Layouts.empty()) return false;
  SortLayouts(FSizes, Layouts);
  const TJobMerit merit = MeritOf(FSizes, Layouts);
  if (HasAnswer() && !IsBetter(merit, FMerit)) return false;
  RequireFewCopies(Layouts);
  if (!Take(Method, std::move(Layouts), merit, AssembleCircles, CircleFault)) return false;
  FIsBest = IsBest();
  FControl.Report(ProgressIn(Method));
  return true;
}

}  // namespace platenest::detail
