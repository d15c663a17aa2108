#include "CircleVerdict.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "CircleBounds.h"
#include "CircleSizes.h"
#include "JobVerdict.h"
#include "Judgement.h"
#include "platenest/layoutcheck/CircleCheck.h"
#include "platenest/layoutcheck/Measures.h"

namespace platenest::detail {

namespace {

// Bounds are stated to twelve digits.
constexpr double kSumTol = 1e-11;

Int64 PlacedOf(const Result& AResult) {
  Int64 placed = 0;
  for (const PartUse& part : AResult.Parts) placed += part.Placed;
  return placed;
}

double ValueOf(const Result& AResult, const std::string& What) {
  if (What == "count") return static_cast<double>(PlacedOf(AResult));
  if (What == "area") return AResult.Total.PartArea;
  return What == "cost" ? AResult.Total.Cost : AResult.Total.Plates;
}

bool IsLeast(const Bound& ABound) {
  return ABound.What == "plates" || ABound.What == "cost";
}

// Above 0 where the result is better than the bound, 0 where it meets it.
int Against(const Bound& ABound, const Result& AResult) {
  const double more = ValueOf(AResult, ABound.What) - ABound.Value;
  if (std::fabs(more) <= kSumTol * std::fabs(ABound.Value)) return 0;
  return (more > 0) != IsLeast(ABound) ? 1 : -1;
}

bool MeetsBound(const Result& AResult, std::string_view What, std::string_view Kind = {}) {
  return std::ranges::any_of(AResult.Bounds, [&](const Bound& bound) {
    return bound.What == What && (Kind.empty() || bound.Kind == Kind) && Against(bound, AResult) >= 0;
  });
}

bool IsProved(const TCircleSizes& Sizes, const Result& AResult) {
  const bool isUnlimited = std::ranges::any_of(Sizes.Parts, &TCirclePart::IsUnlimited);
  const bool placesAll = PlacesAll(Sizes, AResult);
  if (placesAll && !isUnlimited && MeetsBound(AResult, HasOneCost(Sizes) ? "plates" : "cost")) return true;
  // Copies asked for by number come before others.
  return (placesAll || !isUnlimited) && MeetsBound(AResult, "count", "oler");
}

bool FitsFreeBox(const Part& APart, const Layout& ALayout) {
  return std::min(ALayout.FreeBox[2] - ALayout.FreeBox[0], ALayout.FreeBox[3] - ALayout.FreeBox[1]) >= 2 * APart.Radius;
}

std::vector<TPlacedCircle> CirclesOf(const Layout& ALayout) {
  std::vector<TPlacedCircle> circles;
  circles.reserve(ALayout.Circles.size());
  for (const CirclePlacement& circle : ALayout.Circles)
    circles.push_back({TPoint2D{circle.Center[0], circle.Center[1]}, circle.Radius, -1});
  return circles;
}

TPlacedBox RoomOf(const Layout& ALayout, const std::array<double, 4>& Margin) {
  return {Margin[0], Margin[1], ALayout.Width - Margin[2], ALayout.Height - Margin[3]};
}

Box ToBox(const TPlacedBox& B) {
  return {B.Left, B.Bottom, B.Right, B.Top};
}

}  // namespace

std::vector<Bound> CircleBoundsOf(const Job& AJob) {
  return BoundsOfCircles(AJob, CircleSizesOf(AJob));
}

const Bound* BeatenCircleBound(const Job& AJob, const Result& AResult, std::span<const Bound> Bounds) {
  const bool placesAll = PlacesAll(CircleSizesOf(AJob), AResult);
  for (const Bound& bound : Bounds)
    if ((placesAll || !IsLeast(bound)) && Against(bound, AResult) > 0) return &bound;
  return nullptr;
}

std::string CheckCircleLayout(const TPartIds& Ids, const Layout& ALayout, double Gap,
                              const std::array<double, 4>& Margin) {
  std::vector<TPlacedCircle> circles = CirclesOf(ALayout);
  std::vector<int> entryOf(Ids.Subject().Parts.size(), -1);
  std::vector<TCircleDemand> demand;
  int position = -1;
  for (int i = 0; i < Size(circles); ++i) {
    position = Ids.PositionOf(ALayout.Circles[i].Part, position);
    if (position < 0) continue;
    if (entryOf[position] < 0) {
      entryOf[position] = Size(demand);
      // Amounts belong to the whole job and are counted over all layouts.
      demand.push_back({Ids.Subject().Parts[position].Radius, -1});
    }
    circles[i].Idx = entryOf[position];
  }
  return CheckCircles(circles, RoomOf(ALayout, Margin), Gap, demand, {.NegativeAmountIsNoLimit = true});
}

std::string CircleFault(const Job& AJob, const std::vector<Layout>& Layouts, const std::vector<Bound>& Bounds) {
  const TPartIds ids(AJob);
  for (const Layout& layout : Layouts) {
    std::string fault = PlateFault(AJob, layout);
    if (fault.empty() && !layout.Placements.empty()) fault = "a layout of circles holds rectangles";
    if (fault.empty()) fault = CheckCircleLayout(ids, layout, AJob.Gap, AJob.Margin);
    if (!fault.empty()) return fault;
  }
  return SumFault(AJob, Layouts, [&](const Result& sums) { return BeatenCircleBound(AJob, sums, Bounds); });
}

std::vector<TPlacedBox> CircleBoxesOf(const Layout& ALayout) {
  return PlacedBoxesOf(CirclesOf(ALayout));
}

void MeasureCirclesInto(Layout& ALayout, double Gap, const std::array<double, 4>& Margin) {
  const std::vector<TPlacedCircle> circles = CirclesOf(ALayout);
  const std::vector<TPlacedBox> boxes = PlacedBoxesOf(circles);
  double area = 0;
  for (const TPlacedCircle& circle : circles) area += std::numbers::pi * circle.Radius * circle.Radius;
  ALayout.Usage = area / (ALayout.Width * ALayout.Height);
  const std::optional<TPlacedBox> used = UsedBox(boxes);
  const std::optional<TPlacedBox> free = LargestFreeBox(boxes, RoomOf(ALayout, Margin), Gap);
  ALayout.UsedBox = used ? ToBox(*used) : Box{0, 0, 0, 0};
  ALayout.MinClearance = LeastClearance(circles);
  ALayout.EdgeToEdge = IsEdgeToEdge(boxes);
  ALayout.FreeBox = free ? ToBox(*free) : Box{0, 0, 0, 0};
}

void JudgeCircles(const Job& AJob, Result& AResult) {
  const TCircleSizes sizes = CircleSizesOf(AJob);
  AResult.Proved = IsProved(sizes, AResult);
  JudgeParts(sizes, AResult, [&](const TCirclePart& part) {
    return std::ranges::any_of(AResult.Layouts,
                               [&](const Layout& layout) { return FitsFreeBox(AJob.Parts[part.Position], layout); });
  });
}

}  // namespace platenest::detail
