#include "JobSearch.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "JobBounds.h"
#include "JobFill.h"
#include "JobVerdict.h"
#include "Judgement.h"

namespace platenest::detail {

namespace {

// Bounds are stated to twelve digits.
constexpr double kBoundTol = 1e-11;
constexpr double kSecondsBetweenReports = 0.2;
// Between two answers of a search that goes on, in units of what writing one takes.
constexpr double kLeastPause = 4;

}  // namespace

TJobSearch::TJobSearch(const Job& AJob, TRunControl& Control, const std::vector<Bound>& Bounds)
    : TStockSearch(AJob, Control, Bounds, JobSizesOf(AJob)) {}

std::optional<double> TJobSearch::SecondsOf(double Share) const {
  if (!IsTimed()) return std::nullopt;
  return std::max(0.0, Share * SecondsLeft());
}

bool TJobSearch::IsOver() {
  if (IsTimed() && HasAnswer() && SecondsOf(1) <= 0.0) FControl.EndForTime();
  return (FIsBest && !FSeeksFewer) || FControl.IsOver();
}

bool TJobSearch::Meets(std::string_view What, double Reached) const {
  return std::ranges::any_of(FBounds, [&](const Bound& bound) {
    const double slack = kBoundTol * std::fabs(bound.Value);
    return bound.What == What && (What == "area" ? Reached >= bound.Value - slack : Reached <= bound.Value + slack);
  });
}

bool TJobSearch::IsBest(const TJobMerit& Merit) const {
  const bool isUnlimited = std::ranges::any_of(FSizes.Parts, &TJobPart::IsUnlimited);
  const bool placesAll = Merit.UnplacedArea <= 0;
  if (placesAll || !isUnlimited) {
    const std::vector<Int64> placed = PlacedCopies(FSizes, FBest);
    double area = 0;
    for (int i = 0; i < Size(placed); ++i) area += FSizes.Parts[i].Area * static_cast<double>(placed[i]);
    if (Meets("area", area) && FillsStock(FSizes, placed)) return true;
  }
  if (isUnlimited || !placesAll) return false;
  return HasOneCost(FSizes) ? HasFewestPlates(Merit) : Meets("cost", Merit.Cost);
}

bool TJobSearch::HasFewestPlates(const TJobMerit& Merit) const {
  return Merit.Plates <= 1 || Meets("plates", static_cast<double>(Merit.Plates));
}

namespace {

void RequireFewCopies(const TJobLayouts& Layouts) {
  if (std::ranges::all_of(Layouts, [](const TJobLayout& each) { return each.Nested.Count() <= limits::kCopies; }))
    return;
  throw LimitError({"limit", "/parts",
                    "more than " + std::to_string(limits::kCopies) + " copies fit, which is the limit; ask for amounts",
                    ""});
}

}  // namespace

bool TJobSearch::IsDue() const {
  return !IsTimed() || FControl.Seconds() >= FWrittenAt + kLeastPause * FCheckSeconds;
}

bool TJobSearch::Offer(std::string_view Method, TJobLayouts Layouts) {
  // What takes no time to write down may come a little late: nesters that were stopped at the limit hand over what they
  // have.
  if (IsTooLate(kLateSeconds)) return false;
  TidyAnswer(FSizes, Layouts);
  if (Layouts.empty()) return false;
  const TJobMerit merit = MeritOf(FSizes, Layouts);
  if (!WouldStand(merit)) return false;
  RequireFewCopies(Layouts);
  const bool isTaken = Take(Method, std::move(Layouts), merit, AssembleLayouts, JobFault);
  FWrittenAt = FControl.Seconds();
  if (!isTaken) return false;
  FIsBest = IsBest(merit);
  Report(Method, std::nullopt);
  return true;
}

void TJobSearch::Tell(std::string_view Phase, std::optional<double> LpValue) {
  if (!HasAnswer() || FControl.Seconds() < FToldAt + kSecondsBetweenReports) return;
  Report(Phase, LpValue);
}

void TJobSearch::Report(std::string_view Phase, std::optional<double> LpValue) {
  Progress now = ProgressIn(Phase);
  now.LpValue = LpValue;
  now.Estimate = FEstimate;
  FToldAt = FControl.Seconds();
  FControl.Report(now);
}

}  // namespace platenest::detail
