#include "CircleOffcut.h"

#include <algorithm>
#include <utility>

#include "CircleFill.h"
#include "CircleVerdict.h"
#include "Offcut.h"

namespace platenest::detail {

namespace {

constexpr int kMostWork = 20000;  // sizes times circles

void Widen(const Job& AJob, const TCircleSizes& Sizes, const TCircleLayout& Found, Layout& ALayout) {
  if (Sizes.Parts.size() * Found.Spots.size() > kMostWork) return;
  std::vector<int> counts(Sizes.Parts.size());
  for (const TCornerPlacement& spot : Found.Spots) ++counts[spot.CircleIdx];
  for (const TFillSide side : {TFillSide::Left, TFillSide::Bottom}) {
    TCircleLayout filled{Found.Plate, Found.Copies, {}};
    FillPlate(Sizes, Found.Plate, counts, side, filled.Spots);
    if (filled.Spots.size() < Found.Spots.size()) continue;
    std::vector<Layout> widened = AssembleCircles(AJob, Sizes, {filled});
    if (!CircleFault(AJob, widened, {}).empty()) continue;
    MeasureCirclesInto(widened.front(), AJob.Gap, AJob.Margin);
    TakeWider(std::move(widened.front()), ALayout);
  }
}

}  // namespace

void WidenCircleOffcuts(const Job& AJob, const TCircleSizes& Sizes, const TCircleLayouts& Found,
                        std::vector<Layout>& Layouts) {
  if (std::ranges::any_of(Sizes.Parts, &TCirclePart::IsUnlimited)) return;
  for (const int i : EmptiestLayouts(Layouts)) Widen(AJob, Sizes, Found.at(i), Layouts[i]);
}

}  // namespace platenest::detail
