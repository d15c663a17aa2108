#include "OneSizeVerdict.h"

#include <algorithm>

#include "Assembly.h"

namespace platenest::detail {

TOneSize SizesOf(const Job& AJob) {
  const TScaledPlate scaled(AJob, AJob.Plates.at(0));
  const Part& part = AJob.Parts.at(0);
  return {scaled.Width, scaled.Height, scaled.Scale.Up(part.Width), scaled.Scale.Up(part.Height), scaled.Gap};
}

std::vector<Bound> BoundsOf(const Job& AJob) {
  const TOneSizeBounds bounds = BoundOneSize(SizesOf(AJob));
  std::vector<Bound> stated{{"count", "area", static_cast<double>(bounds.Area)},
                            {"count", "barnes", static_cast<double>(bounds.Barnes)}};
  if (AJob.Parts[0].Amount) stated.push_back({"count", "demand", static_cast<double>(*AJob.Parts[0].Amount)});
  return stated;
}

bool IsPlateFull(const Job& AJob, const Layout& ALayout) {
  const Part& part = AJob.Parts.at(0);
  const double width = ALayout.FreeBox[2] - ALayout.FreeBox[0];
  const double height = ALayout.FreeBox[3] - ALayout.FreeBox[1];
  return !(part.Width <= width && part.Height <= height) && !(part.Height <= width && part.Width <= height);
}

void Judge(const Job& AJob, Result& AResult) {
  PartUse& part = AResult.Parts.at(0);
  const auto meets = [&part](const Bound& bound) { return part.Placed >= bound.Value; };
  AResult.Proved = std::ranges::any_of(AResult.Bounds, meets);
  const bool isAllPlaced = part.Amount && part.Unplaced == 0;
  const bool isFull = !AResult.Layouts.empty() && IsPlateFull(AJob, AResult.Layouts[0]);
  AResult.Status = isAllPlaced || isFull ? ResultStatus::Complete : ResultStatus::Partial;
  part.Reason.clear();
  if (part.Unplaced == 0) return;
  if (AResult.Bounds.at(0).Value == 0)
    part.Reason = "too_large";
  else
    part.Reason = AResult.Proved ? "no_stock" : "left_by_method";
}

}  // namespace platenest::detail
