#include "CircleSearch.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numeric>
#include <thread>
#include <utility>

#include "CircleBounds.h"
#include "CircleVerdict.h"
#include "platenest/job/JobErrors.h"

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
    return bound.What == What && (What == "count" ? Reached >= bound.Value - slack : Reached <= bound.Value + slack);
  });
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
  const double start = FControl.Seconds();
  std::vector<Layout> assembled = AssembleCircles(FJob, FSizes, Layouts);
  std::string fault = CircleFault(FJob, assembled, FBounds);
  FWritingSeconds = FControl.Seconds() - start;
  FControl.Affords(kMsACopy * static_cast<double>(CopiesIn(Layouts)));
  if (!fault.empty()) {
    FTrouble = std::move(fault);
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

void TCircleSearch::Try(const std::function<void()>& Step) {
  try {
    Step();
  } catch (const JobError&) {
    throw;
  } catch (const TNestError& error) {
    FTrouble = error.Text();
  } catch (const std::bad_alloc&) {
    FLacksMemory = true;
  }
}

void TCircleSearch::Report() {
  Progress now;
  now.Phase = FMethod;
  now.Plates = static_cast<int>(FMerit.Plates);
  double parts = 0;
  double plates = 0;
  const std::vector<Int64> placed = PlacedCopies(FSizes, FBest);
  for (const TCircleLayout& layout : FBest) plates += FSizes.Plates[layout.Plate].Area * layout.Copies;
  for (const Part& part : FJob.Parts) now.Unplaced += part.Amount.value_or(0);
  for (int i = 0; i < Size(placed); ++i) {
    parts += FSizes.Parts[i].Area * static_cast<double>(placed[i]);
    if (!FSizes.Parts[i].IsUnlimited) now.Unplaced -= placed[i];
  }
  if (plates > 0) now.Usage = parts / plates;
  for (const Bound& bound : FBounds)
    if (bound.What == "plates") now.BoundValue = std::max(now.BoundValue.value_or(0), bound.Value);
  FControl.Report(now);
}

void TCircleSearch::RaiseTrouble() const {
  if (FLacksMemory) throw std::bad_alloc();
  if (!FTrouble.empty()) throw CheckError({"check", "", "no answer passed the layout check", FTrouble});
}

}  // namespace platenest::detail
