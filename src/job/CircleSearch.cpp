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
// How far beyond the limit writing an answer may reach.
constexpr double kLateSeconds = 0.05;
// How much longer measuring an answer takes than checking it.
constexpr double kWritingRate = 2;
constexpr double kMsACopy = 1e-3;
constexpr int kMostThreads = 4;

Int64 CopiesIn(const TCircleLayouts& Layouts) {
  Int64 copies = 0;
  for (const TCircleLayout& layout : Layouts) copies += std::ssize(layout.Spots);
  return copies;
}

}  // namespace

TCircleSearch::TCircleSearch(const Job& AJob, TRunControl& Control, const std::vector<Bound>& Bounds)
    : FJob(AJob), FControl(Control), FBounds(Bounds), FSizes(CircleSizesOf(AJob)) {}

int TCircleSearch::Threads() const {
  const int asked = FJob.Run.Threads > 0 ? FJob.Run.Threads : static_cast<int>(std::thread::hardware_concurrency());
  return std::clamp(asked, 1, kMostThreads);
}

std::optional<double> TCircleSearch::SecondsLeft() const {
  if (!IsTimed()) return std::nullopt;
  return std::max(0.0, FJob.Run.TimeLimit - FControl.Seconds() - (1 + kWritingRate) * FWritingSeconds);
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
  if (HasAnswer() && FJob.Run.Deterministic && FControl.OutOfTime()) return false;
  const double pause = (1 + kWritingRate) * FWritingSeconds;
  if (HasAnswer() && IsTimed() && pause > kLateSeconds && SecondsLeft() <= 0.0) return false;
  if (Layouts.empty()) return false;
  SortLayouts(FSizes, Layouts);
  const TJobMerit merit = MeritOf(FSizes, Layouts);
  if (HasAnswer() && !IsBetter(merit, FMerit)) return false;
  RequireFewCopies(Layouts);
  const double start = FControl.Seconds();
  std::vector<Layout> assembled = AssembleCircles(FJob, FSizes, Layouts);
  std::string fault = CircleFault(FJob, assembled, FBounds);
  FWritingSeconds = FControl.Seconds() - start;
  FControl.Affords(kMsACopy * static_cast<double>(CopiesIn(Layouts)));
  if (!fault.empty()) {
    FTrouble.Note(std::move(fault));
    return false;
  }
  FBest = std::move(Layouts);
  FLayouts = std::move(assembled);
  FMerit = merit;
  FMethod = Method;
  FIsBest = IsBest();
  Report();
  return true;
}

void TCircleSearch::Report() {
  Progress now = ProgressOf(FJob, FSizes, FBest, FMerit, FBounds);
  now.Phase = FMethod;
  FControl.Report(now);
}

}  // namespace platenest::detail
