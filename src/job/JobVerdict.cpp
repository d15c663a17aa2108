#include "JobVerdict.h"

#include <algorithm>
#include <cmath>

#include "Assembly.h"
#include "JobBounds.h"
#include "JobSizes.h"
#include "Judgement.h"

namespace platenest::detail {

namespace {

// Bounds are stated to twelve digits.
constexpr double kSumTol = 1e-11;

// Above 0 where the result is better than the bound, 0 where it meets it.
int Against(const Bound& ABound, const Summary& Total) {
  const bool isLeast = ABound.What != "area";
  const double value = ABound.What == "area" ? Total.PartArea : (ABound.What == "cost" ? Total.Cost : Total.Plates);
  const double better = isLeast ? ABound.Value - value : value - ABound.Value;
  if (std::fabs(better) <= kSumTol * std::fabs(ABound.Value)) return 0;
  return better > 0 ? 1 : -1;
}

bool MeetsBound(const Result& AResult, std::string_view What) {
  return std::ranges::any_of(
      AResult.Bounds, [&](const Bound& bound) { return bound.What == What && Against(bound, AResult.Total) >= 0; });
}

bool IsProved(const TJobSizes& Sizes, const Result& AResult) {
  const bool isUnlimited = std::ranges::any_of(Sizes.Parts, &TJobPart::IsUnlimited);
  const bool placesAll = PlacesAll(Sizes, AResult);
  if (placesAll && !isUnlimited) {
    if (MeetsBound(AResult, HasOneCost(Sizes) ? "plates" : "cost")) return true;
  }
  // With parts without limit the bound weighs all alike, though the others come first.
  if ((isUnlimited && !placesAll) || !MeetsBound(AResult, "area")) return false;
  std::vector<Int64> placed;
  for (const TJobPart& part : Sizes.Parts) placed.push_back(AResult.Parts[part.Position].Placed);
  return FillsStock(Sizes, placed);
}

bool FitsFreeBox(const Part& APart, const Layout& ALayout) {
  const double width = ALayout.FreeBox[2] - ALayout.FreeBox[0];
  const double height = ALayout.FreeBox[3] - ALayout.FreeBox[1];
  const bool fitsTurned = APart.Turn == Rotate::Any && APart.Height <= width && APart.Width <= height;
  return fitsTurned || (APart.Width <= width && APart.Height <= height);
}

std::string LayoutFault(const Job& AJob, const TPartIds& Ids, const Layout& ALayout) {
  std::string fault = PlateFault(AJob, ALayout);
  if (fault.empty()) fault = CheckLayout(Ids, ALayout, AJob.Gap, AJob.Margin);
  if (!fault.empty()) return fault;
  const auto isWrong = [&](const Placement& place) {
    return place.Rotated && AJob.Parts[Ids.PositionOf(place.Part)].Turn == Rotate::None;
  };
  return std::ranges::any_of(ALayout.Placements, isWrong) ? "a part is turned that may not be" : "";
}

}  // namespace

std::vector<Bound> JobBoundsOf(const Job& AJob) {
  return BoundsOfSizes(JobSizesOf(AJob));
}

const Bound* BeatenBound(const Job& AJob, const Result& AResult, std::span<const Bound> Bounds) {
  const bool placesAll = PlacesAll(JobSizesOf(AJob), AResult);
  for (const Bound& bound : Bounds)
    if ((placesAll || bound.What == "area") && Against(bound, AResult.Total) > 0) return &bound;
  return nullptr;
}

std::string JobFault(const Job& AJob, const std::vector<Layout>& Layouts, const std::vector<Bound>& Bounds) {
  const TPartIds ids(AJob);
  for (const Layout& layout : Layouts) {
    std::string fault = LayoutFault(AJob, ids, layout);
    if (!fault.empty()) return fault;
  }
  return SumFault(AJob, Layouts, [&](const Result& sums) { return BeatenBound(AJob, sums, Bounds); });
}

std::string SumFault(const Job& AJob, const std::vector<Layout>& Layouts,
                     const std::function<const Bound*(const Result&)>& Beaten) {
  Result sums;
  Account(AJob, Layouts, sums);
  std::string fault = CountFault(sums);
  if (!fault.empty()) return fault;
  const Bound* const beaten = Beaten(sums);
  return beaten == nullptr ? "" : "the answer is better than the bound " + beaten->What + ", " + beaten->Kind;
}

std::string PlateFault(const Job& AJob, const Layout& ALayout) {
  const auto plate = std::ranges::find(AJob.Plates, ALayout.Plate, &Plate::Id);
  if (plate == AJob.Plates.end()) return "a layout is on no plate of the job";
  if (ALayout.Width != plate->Width || ALayout.Height != plate->Height) return "a layout has not the size of its plate";
  if (ALayout.Copies < 1 || (ALayout.Placements.empty() && ALayout.Circles.empty())) return "a layout is empty";
  return "";
}

std::string CountFault(const Result& AResult) {
  for (const PartUse& part : AResult.Parts)
    if (part.Amount && part.Placed > *part.Amount) return "there are more copies than asked for";
  for (const PlateUse& plate : AResult.Plates)
    if (plate.Count && plate.Used > *plate.Count) return "there are more plates than in stock";
  return "";
}

void JudgeJob(const Job& AJob, Result& AResult) {
  const TJobSizes sizes = JobSizesOf(AJob);
  AResult.Proved = IsProved(sizes, AResult);
  JudgeParts(sizes, AResult, [&](const TJobPart& part) {
    return std::ranges::any_of(AResult.Layouts,
                               [&](const Layout& layout) { return FitsFreeBox(AJob.Parts[part.Position], layout); });
  });
}

}  // namespace platenest::detail
