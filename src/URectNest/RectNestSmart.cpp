#include "platenest/URectNest/RectNestSmart.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "SmartPass.h"
#include "platenest/foundation/Clock.h"
#include "platenest/foundation/Compare.h"

namespace platenest {

namespace {

// A part is tiny when its larger side is below this share of the plate's smaller side; so many of them are left out.
constexpr double kTinyShare = 20;
constexpr int kMostTiny = 100;

// Forms up to kAlwaysRun are tried however good the layout is, later ones up to kGoodEnough.
constexpr int kAlwaysRun = 2;
constexpr double kGoodEnough = 0.985;
// Milliseconds of search: per missing usage to the power 1.5 before kLateForm, per missing usage from it on.
constexpr int kLateForm = 12;
constexpr double kEarlyMs = 50000;
constexpr double kEarlyPower = 1.5;
constexpr double kLateMs = 7500;
// Missing usage is counted from here, and is never less than kLeastMissing.
constexpr double kFullUsage = 1.0001;
constexpr double kLeastMissing = 0.0001;

bool IsPositive(double Length) {
  return std::isfinite(Length) && Length > 0;
}

bool HasPositiveSides(const TVRect2D& Box) {
  return IsPositive(Box.Width()) && IsPositive(Box.Height());
}

double BoxArea(const TNestedRects& Layout) {
  TVRect2D box = TVRect2D::InvalidRect;
  for (const TNestedRect& item : Layout) box.ExpandInPlace(detail::SmartPlaced(item));
  return box.Area();
}

bool IsWorthAnother(int Form, double Best, const TStopwatch& Watch) {
  if (Form > kAlwaysRun && Best > kGoodEnough) return false;
  const double missing = std::max(kFullUsage - Best, kLeastMissing);
  const double elapsed = Watch.ElapsedMs();
  if (Form < kLateForm) return !(elapsed / std::pow(missing, kEarlyPower) > kEarlyMs);
  return !(elapsed / missing > kLateMs);
}

}  // namespace

TRectNestSmart::TRectNestSmart(const TVRect2D& Plate, const TNestRectList& PartRects, double Gap, double MinURate)
    : FInitPart(PartRects), FPlate(detail::SmartGrown(Plate, Gap)), FGap(Gap), FRate(MinURate) {
  FUsable = std::isfinite(Gap) && HasPositiveSides(Plate) && HasPositiveSides(FPlate) && std::isfinite(FPlate.Area());
  const double tiny = std::min(Plate.Width(), Plate.Height()) / kTinyShare;
  for (int i = 0; i < Size(FInitPart); ++i) {
    TNestRect& part = FInitPart[i];
    part.Idx = i;
    const TVRect2D& box = part.BoundBox;
    const TVRect2D grown = detail::SmartGrown(box, Gap);
    if (part.Amount > kMostTiny && std::max(box.Width(), box.Height()) < tiny) part.Amount = 0;
    if (HasPositiveSides(box) && HasPositiveSides(grown))
      FMin = std::min({FMin, grown.Width(), grown.Height()});
    else
      part.Amount = 0;
  }
}

double TRectNestSmart::OutNest(TNestedRects& ResultList, bool& Success) {
  ResultList.clear();
  Success = false;
  if (!FUsable) return 0;
  const TStopwatch watch = TStopwatch::StartNew();
  detail::TSmartPass pass(FInitPart, FLocked, FPlate, FGap, FMin);
  double best = pass.Nest(0, ResultList);
  Success = best >= FRate;
  TNestedRects candidate;
  for (int form = 1; form < detail::kSmartForms; ++form) {
    if (RectNestStopped() || !IsWorthAnother(form, best, watch)) break;
    const double usage = pass.Nest(form, candidate);
    const bool isEqual = std::fabs(usage - best) < kDefaultTol;
    if (isEqual ? BoxArea(ResultList) <= BoxArea(candidate) : usage < best) continue;
    std::swap(ResultList, candidate);
    best = usage;
    Success = best >= FRate;
  }
  for (TNestedRect& item : ResultList)
    if (item.IsRotate) item.Trans.X += item.Part.BoundBox.Height();
  return best;
}

}  // namespace platenest
