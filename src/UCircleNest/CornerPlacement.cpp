#include "CornerPlacement.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "CornerSearch.h"
#include "platenest/foundation/Compare.h"

namespace platenest {

namespace {

thread_local detail::TStepCount* innermostCount = nullptr;

TPosibleCP AsCP(const detail::TCandidate& Candidate) {
  return {{Candidate.Idx, Candidate.Center}, Candidate.Value};
}

// The sizes with circles left.
std::vector<int> LeftOf(const std::vector<int>& Idx, const std::vector<int>& Remaining) {
  std::vector<int> left;
  std::copy_if(Idx.begin(), Idx.end(), std::back_inserter(left), [&](int I) { return Remaining[I] != 0; });
  return left;
}

// Hands back what a search has placed.
void TakeOver(const detail::TCornerSearch& Search, std::vector<int>& Remaining, TCircleNestRst& Rst) {
  for (int i = Size(Rst); i < Search.Field().Count(); ++i) {
    Rst.push_back(Search.Field().At(i));
    --Remaining[Rst.back().CircleIdx];
  }
}

}  // namespace

namespace detail {

TStepCount* CurrentStepCount() noexcept {
  return innermostCount;
}

TStepScope::TStepScope(Int64 Limit) noexcept : FCount(Limit), FFormer(innermostCount) {
  innermostCount = &FCount;
}

TStepScope::~TStepScope() {
  innermostCount = FFormer;
}

TOffsetLines::TOffsetLines(const TVRect2D& Rect, double Radius) {
  const double left = Rect.Left + Radius;
  const double right = Rect.Right - Radius;
  const double bottom = Rect.Bottom + Radius;
  const double top = Rect.Top - Radius;
  const int alongX = Sign(right, left);
  const int alongY = Sign(top, bottom);
  Lines[0] = {bottom, alongX, true};
  Lines[1] = {left, alongY, false};
  Lines[2] = {right, alongY, false};
  Lines[3] = {top, alongX, true};
}

TCenters CentersOnLine(const TOffsetLine& Line, const TPoint2D& Center, double Reach) {
  if (Line.Forward == 0) return {};
  const double distance = std::fabs((Line.Horizontal ? Center.Y : Center.X) - Line.Level);
  if (!(distance <= Reach + kDefaultTol)) return {};
  const double half = std::sqrt(std::max(0.0, (Reach - distance) * (Reach + distance)));
  const double along = Line.Horizontal ? Center.X : Center.Y;
  const auto at = [&Line](double Place) {
    return Line.Horizontal ? TPoint2D{Place, Line.Level} : TPoint2D{Line.Level, Place};
  };
  if (half <= kDefaultTol) return {1, {at(along), {}}};
  return {2, {at(along - Line.Forward * half), at(along + Line.Forward * half)}};
}

}  // namespace detail

int TCirclePacking::GetCircleCenter(double R, double R1, double R2, const TPoint2D& P1, const TPoint2D& P2,
                                    TPoint2D& I1, TPoint2D& I2) {
  const detail::TCenters centers = detail::TCirclePair(R1, R2, P1, P2).Centers(R);
  if (centers.Count > 0) I1 = centers.Points[0];
  if (centers.Count > 1) I2 = centers.Points[1];
  return centers.Count;
}

TPosibleCPList TCirclePacking::GeneratePosibleCP(const std::vector<int>& Idx, const std::vector<int>& Remaining,
                                                 const TCircleNestRst& Rst, bool WithCorners) const {
  if (Stopped()) return {};
  detail::TCornerField field(FRect, FCircleRadiusList, Rst);
  const std::vector<int> sizes = LeftOf(Idx, Remaining);
  std::vector<std::vector<detail::TCandidate>> found(sizes.size());
  for (int k = 0; k < Size(sizes) && WithCorners; ++k) {
    const double r = FCircleRadiusList[sizes[k]];
    field.TryAt(sizes[k], {FRect.Left + r, FRect.Top - r}, found[k]);
    field.TryAt(sizes[k], {FRect.Right - r, FRect.Top - r}, found[k]);
  }
  for (int c = 0; c < field.Count() && !sizes.empty(); ++c) {
    field.Look(c, WidestOf(sizes));
    for (int k = 0; k < Size(sizes); ++k) field.TryAbout(sizes[k], c, found[k]);
  }
  TPosibleCPList all;
  for (const auto& ofSize : found)
    for (const detail::TCandidate& candidate : ofSize) all.push_back(AsCP(candidate));
  return all;
}

void TCirclePacking::UpdatePosibleCP(const std::vector<int>& Idx, const std::vector<int>& Remaining,
                                     const TCircleNestRst& Rst, TPosibleCPList& CPs) const {
  if (Rst.empty()) return;
  const TCornerPlacement& last = Rst.back();
  const double lastRadius = FCircleRadiusList[last.CircleIdx];
  std::erase_if(CPs, [&](TPosibleCP& Candidate) {
    if (Remaining[Candidate.CP.CircleIdx] == 0) return true;
    const double r = FCircleRadiusList[Candidate.CP.CircleIdx];
    const double distance = Candidate.CP.Center.DistanceTo(last.Center) - r - lastRadius;
    if (fSmall(distance, 0)) return true;
    if (fGreat(distance, 0)) Candidate.Value = std::max(Candidate.Value, 1 - distance / r);
    return false;
  });
  const std::vector<int> sizes = LeftOf(Idx, Remaining);
  if (sizes.empty()) return;
  detail::TCornerField field(FRect, FCircleRadiusList, Rst);
  std::vector<detail::TCandidate> found;
  field.Look(field.Count() - 1, WidestOf(sizes));
  for (const int idx : sizes) field.TryAbout(idx, field.Count() - 1, found);
  for (const detail::TCandidate& candidate : found) CPs.push_back(AsCP(candidate));
}

double TCirclePacking::GreedyPacking(const std::vector<int>& Idx, std::vector<int>& Remaining, TCircleNestRst& Rst,
                                     double Occu, TPosibleCPList& CPs) const {
  detail::TCornerSearch search(FRect, FCircleRadiusList, FCircleAreaList, Idx, Remaining, Rst);
  search.Load(CPs);
  Occu = search.Greedy(Occu);
  TakeOver(search, Remaining, Rst);
  CPs.clear();
  return Occu;
}

double TCirclePacking::GreedyPackingEx(const std::vector<int>& Idx, std::vector<int>& Remaining, TCircleNestRst& Rst,
                                       double Occu, double Threshold, TPosibleCPList& CPs) const {
  detail::TCornerSearch search(FRect, FCircleRadiusList, FCircleAreaList, Idx, Remaining, Rst);
  search.Load(CPs);
  Occu = search.GreedyEx(Occu, Threshold, FCircleAmount, [this] { return Stopped(); });
  TakeOver(search, Remaining, Rst);
  CPs.clear();
  return Occu;
}

}  // namespace platenest
