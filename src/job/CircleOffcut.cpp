#include "CircleOffcut.h"

#include <algorithm>
#include <utility>

#include "CircleFill.h"
#include "CircleVerdict.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

constexpr int kMostLayouts = 3;
constexpr int kMostWork = 20000;  // sizes times circles
constexpr double kTol = 1e-9;

double FreeArea(const Layout& ALayout) {
  return (ALayout.FreeBox[2] - ALayout.FreeBox[0]) * (ALayout.FreeBox[3] - ALayout.FreeBox[1]);
}

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
    if (FreeArea(widened.front()) > FreeArea(ALayout) * (1 + kTol)) ALayout = std::move(widened.front());
  }
}

}  // namespace

void WidenCircleOffcuts(const Job& AJob, const TCircleSizes& Sizes, const TCircleLayouts& Found,
                        std::vector<Layout>& Layouts) {
  if (std::ranges::any_of(Sizes.Parts, &TCirclePart::IsUnlimited)) return;
  std::vector<int> order;
  for (int i = 0; i < Size(Layouts); ++i) order.push_back(i);
  const auto unused = [&](int i) { return (1 - Layouts[i].Usage) * Layouts[i].Width * Layouts[i].Height; };
  SortBy(order, [&](int a, int b) { return Sign(unused(b), unused(a)); });
  for (int i = 0; i < std::min(kMostLayouts, Size(order)); ++i)
    Widen(AJob, Sizes, Found.at(order[i]), Layouts[order[i]]);
}

}  // namespace platenest::detail
