#include <algorithm>
#include <utility>
#include <vector>

#include "RskfDrivers.h"
#include "RskfStair.h"
#include "platenest/URectNest/RSKF.h"
#include "platenest/URectNest/RectNestSmart.h"

namespace platenest {

using detail::PlacedArea;

namespace {

// The usage from which the greedy is content with a free area.
constexpr double kFillingUsage = 0.9;

// The sizes with copies left, each with its position among Rects as Idx.
TNestRectList RemainsOf(const TNestRectList& Rects, const TNestedRects& List) {
  std::vector<int> placed(Rects.size());
  for (const TNestedRect& item : List) ++placed[item.Part.Idx];
  TNestRectList remains;
  for (int i = 0; i < Size(Rects); ++i) {
    const bool isProper = Rects[i].BoundBox.Width() > 0 && Rects[i].BoundBox.Height() > 0;
    if (!isProper || Rects[i].Amount <= placed[i]) continue;
    TNestRect& rest = remains.emplace_back(Rects[i]);
    rest.Amount -= placed[i];
    rest.Idx = i;
  }
  return remains;
}

TNestedRects FillingOf(const TVRect2D& Area, double Gap, const TNestRectList& Remains, const TNestRectList& Rects) {
  const TPoint2D corner = Area.GetBottomLeft();
  TNestedRects filling;
  bool isGood = false;
  TRectNestSmart(Area.Translate(-corner), Remains, Gap, kFillingUsage).OutNest(filling, isGood);
  for (TNestedRect& item : filling) {
    item.Trans = item.Trans + corner;
    item.Part = Rects[Remains[item.Part.Idx].Idx];
  }
  return filling;
}

}  // namespace

void TRSKF::TryFilling(TNestedRects& List) {
  const TNestRectList remains = RemainsOf(FRects, List);
  if (remains.empty()) return;
  TNestedRects best;
  double bestArea = 0;
  for (const TVRect2D& area : TLStair(FPlate, List, FGap).FindCandidateArea(FRects)) {
    if (IsStopped()) break;
    if (area.Area() <= bestArea) continue;
    TNestedRects filling = FillingOf(area, FGap, remains, FRects);
    const double filled = PlacedArea(filling);
    if (filled <= bestArea) continue;
    best = std::move(filling);
    bestArea = filled;
  }
  List.AddRange(best);
}

}  // namespace platenest
