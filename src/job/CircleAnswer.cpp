#include "CircleAnswer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Assembly.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

// In the nesters' units: farther out a centre is no noise.
constexpr double kNoise = 1e-5;
// Up to this length twelve digits are finer than what the layout check forgives, and give whole centres where sizes are
// whole.
constexpr double kLongestRounded = 1e6;

double UsageOf(const TCircleSizes& Sizes, const TCircleLayout& Layout) {
  double area = 0;
  for (const TCornerPlacement& spot : Layout.Spots) area += Sizes.Parts[spot.CircleIdx].Area;
  return area / Sizes.Plates[Layout.Plate].Area;
}

double BroughtBack(double Center, double Radius, double Length) {
  const double inside = std::clamp(Center, std::min(Radius, Length / 2), std::max(Length - Radius, Length / 2));
  return std::fabs(inside - Center) <= kNoise ? inside : Center;
}

Layout AssembleOne(const Job& AJob, const TCircleSizes& Sizes, const TScale& Scale, const TCircleLayout& ALayout) {
  const TCirclePlate& room = Sizes.Plates[ALayout.Plate];
  const Plate& plate = AJob.Plates[room.Position];
  const TScaledPlate scaled(AJob, plate, Scale);
  const bool isRounded = Scale.Up(std::max(plate.Width, plate.Height)) < kLongestRounded;
  const auto down = [&](double V) { return isRounded ? Scale.DownRounded(V) : Scale.Down(V); };
  Layout layout;
  layout.Plate = plate.Id;
  layout.Width = plate.Width;
  layout.Height = plate.Height;
  layout.Copies = ALayout.Copies;
  layout.Circles.reserve(ALayout.Spots.size());
  for (const TCornerPlacement& spot : ALayout.Spots) {
    const TCirclePart& part = Sizes.Parts[spot.CircleIdx];
    const Part& demand = AJob.Parts[part.Position];
    const double x = BroughtBack(spot.Center.X, part.Radius, room.Width) + scaled.MarginLeft;
    const double y = BroughtBack(spot.Center.Y, part.Radius, room.Height) + scaled.MarginBottom;
    layout.Circles.push_back({demand.Id, {down(x), down(y)}, demand.Radius});
  }
  return layout;
}

}  // namespace

TJobMerit MeritOf(const TCircleSizes& Sizes, const TCircleLayouts& Layouts) {
  TJobMerit merit;
  const std::vector<Int64> placed = PlacedCopies(Sizes, Layouts);
  for (int i = 0; i < Size(placed); ++i) {
    const TCirclePart& part = Sizes.Parts[i];
    if (part.IsUnlimited)
      merit.UnlimitedArea += part.Area * static_cast<double>(placed[i]);
    else
      merit.UnplacedArea += part.Area * static_cast<double>(std::max<Int64>(0, part.Amount - placed[i]));
  }
  constexpr double kNone = 2;
  double last = kNone;
  double lastRemnant = kNone;
  for (const TCircleLayout& layout : Layouts) {
    const TCirclePlate& plate = Sizes.Plates[layout.Plate];
    double& emptiest = plate.Remnant ? lastRemnant : last;
    emptiest = std::min(emptiest, UsageOf(Sizes, layout));
    merit.Plates += layout.Copies;
    merit.Cost += plate.Cost * layout.Copies;
  }
  merit.LastUsage = last < kNone ? last : (lastRemnant < kNone ? lastRemnant : 0);
  for (double* sum : {&merit.UnplacedArea, &merit.UnlimitedArea, &merit.Cost, &merit.LastUsage})
    *sum = RoundToTwelveDigits(*sum);
  return merit;
}

std::vector<Int64> PlacedCopies(const TCircleSizes& Sizes, const TCircleLayouts& Layouts) {
  std::vector<Int64> placed(Sizes.Parts.size());
  for (const TCircleLayout& layout : Layouts)
    for (const TCornerPlacement& spot : layout.Spots) placed.at(spot.CircleIdx) += layout.Copies;
  return placed;
}

Int64 CopiesIn(const TCircleLayouts& Layouts) {
  Int64 copies = 0;
  for (const TCircleLayout& layout : Layouts) copies += std::ssize(layout.Spots);
  return copies;
}

void SortLayouts(const TCircleSizes& Sizes, TCircleLayouts& Layouts) {
  std::vector<std::pair<double, int>> order;
  for (int i = 0; i < Size(Layouts); ++i) order.emplace_back(UsageOf(Sizes, Layouts[i]), i);
  SortBy(order, [&](const auto& a, const auto& b) {
    const int byPlate = Sign(Layouts[a.second].Plate, Layouts[b.second].Plate);
    return byPlate != 0 ? byPlate : Sign(b.first, a.first);
  });
  TCircleLayouts sorted;
  for (const auto& [usage, index] : order) sorted.push_back(std::move(Layouts[index]));
  Layouts = std::move(sorted);
}

std::vector<Layout> AssembleCircles(const Job& AJob, const TCircleSizes& Sizes, const TCircleLayouts& Layouts) {
  const TScale scale = CircleScaleOf(AJob);
  std::vector<Layout> assembled;
  for (const TCircleLayout& layout : Layouts) assembled.push_back(AssembleOne(AJob, Sizes, scale, layout));
  return assembled;
}

}  // namespace platenest::detail
