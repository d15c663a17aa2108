#include "FillVerdict.h"

#include <algorithm>
#include <cmath>

#include "Assembly.h"
#include "FillBounds.h"
#include "FillSizes.h"
#include "Scale.h"

namespace platenest::detail {

namespace {

// Bounds are stated to twelve digits.
constexpr double kWorthTol = 1e-11;

Bound DemandBound(const Job& AJob, const TFillSizes& Sizes) {
  long double worth = 0;
  for (const TFillPart& part : Sizes.Parts)
    worth += static_cast<long double>(part.Worth) * *AJob.Parts[part.Position].Amount;
  return {"value", "demand", RoundToTwelveDigits(static_cast<double>(worth))};
}

bool HoldsNoOther(const Part& APart, const Box& Free) {
  const double width = Free[2] - Free[0];
  const double height = Free[3] - Free[1];
  const bool fits = APart.Width <= width && APart.Height <= height;
  const bool fitsTurned = APart.Turn == Rotate::Any && APart.Height <= width && APart.Width <= height;
  return !fits && !fitsTurned;
}

// For a part without limit; a plate without parts is full when the part cannot lie on it.
bool IsFullFor(const Part& APart, bool FitsPlate, const Result& AResult) {
  if (!FitsPlate) return true;
  return !AResult.Layouts.empty() && HoldsNoOther(APart, AResult.Layouts[0].FreeBox);
}

}  // namespace

std::vector<Bound> FillBoundsOf(const Job& AJob) {
  const TFillSizes sizes = FillSizesOf(AJob);
  std::vector<Bound> bounds{{"value", "area", RoundToTwelveDigits(BoundFillByArea(sizes))}};
  const auto isLimited = [&](const TFillPart& part) { return AJob.Parts[part.Position].Amount.has_value(); };
  if (std::ranges::all_of(sizes.Parts, isLimited)) bounds.push_back(DemandBound(AJob, sizes));
  return bounds;
}

bool MeetsBound(double Worth, const Bound& ABound) {
  return Worth >= ABound.Value - kWorthTol * std::fabs(ABound.Value);
}

bool BeatsBound(double Worth, const Bound& ABound) {
  return Worth > ABound.Value + kWorthTol * std::fabs(ABound.Value);
}

std::string FillFault(const Job& AJob, const Layout& ALayout, const std::vector<Bound>& Bounds) {
  const TPartIds ids(AJob);
  std::string verdict = CheckLayout(ids, ALayout, AJob.Gap, AJob.Margin);
  if (!verdict.empty()) return verdict;
  const TNestedRects records = ToRecords(ids, ALayout);
  for (const TNestedRect& placed : records)
    if (placed.IsRotate && AJob.Parts[placed.Part.Idx].Turn == Rotate::None) return "a part is turned that may not be";
  const std::vector<Int64> counts = CountCopies(ids, ALayout);
  for (int i = 0; i < Size(counts); ++i)
    if (counts[i] > AJob.Parts[i].Amount.value_or(limits::kCopies)) return "there are more copies than asked for";
  const double worth = WorthOfCopies(AJob, counts);
  const bool isAbove = std::ranges::any_of(Bounds, [worth](const Bound& bound) { return BeatsBound(worth, bound); });
  return isAbove ? "the layout is worth more than a bound allows" : "";
}

void JudgeFill(const Job& AJob, Result& AResult) {
  const double worth = AResult.Total.Value.value_or(0);
  AResult.Proved = std::ranges::any_of(AResult.Bounds, [&](const Bound& bound) { return MeetsBound(worth, bound); });
  std::vector<bool> fits(AJob.Parts.size());
  for (const TFillPart& part : FillSizesOf(AJob).Parts) fits[part.Position] = true;
  bool isComplete = true;
  for (int i = 0; i < Size(AJob.Parts); ++i) {
    PartUse& use = AResult.Parts.at(i);
    use.Reason.clear();
    if (!use.Amount) isComplete &= IsFullFor(AJob.Parts[i], fits[i], AResult);
    if (use.Unplaced == 0) continue;
    isComplete = false;
    use.Reason = !fits[i] ? "too_large" : (AResult.Proved ? "no_stock" : "left_by_method");
  }
  AResult.Status = isComplete ? ResultStatus::Complete : ResultStatus::Partial;
}

}  // namespace platenest::detail
