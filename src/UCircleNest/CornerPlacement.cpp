#include "CornerPlacement.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "platenest/foundation/Compare.h"

namespace platenest {

namespace {

thread_local detail::TStepCount* innermostCount = nullptr;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

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

namespace {

// The hole degree of a circle of radius R at P, nothing if it overlaps. A distance becomes the nearest only if it is
// less by more than the tolerance, so the order of the trial tells between distances closer than that.
std::optional<double> HoleDegree(const TVRect2D& Rect, const std::vector<double>& Radii, const TCircleNestRst& Rst,
                                 double R, const TPoint2D& P) {
  if (TStepCount* count = CurrentStepCount()) count->Add(1);
  double best = kInfinity;
  const auto overlaps = [&best](double Distance) {
    if (fSmall(Distance, 0)) return true;
    if (fGreat(Distance, 0) && fSmall(Distance, best)) best = Distance;
    return false;
  };
  for (auto placed = Rst.rbegin(); placed != Rst.rend(); ++placed)
    if (overlaps(P.DistanceTo(placed->Center) - Radii[placed->CircleIdx] - R)) return std::nullopt;
  for (const double distance : {P.Y - Rect.Bottom - R, P.X - Rect.Left - R, Rect.Right - P.X - R, Rect.Top - P.Y - R})
    if (overlaps(distance)) return std::nullopt;
  return 1 - best / R;
}

}  // namespace

}  // namespace detail

int TCirclePacking::GetCircleCenter(double R, double R1, double R2, const TPoint2D& P1, const TPoint2D& P2,
                                    TPoint2D& I1, TPoint2D& I2) {
  const TPoint2D between = P2 - P1;
  const double distance = between.Mag();
  const double span = 2 * R + R1 + R2;
  if (fGreat(distance, span) || !(distance > 0)) return 0;
  if (fEqual(distance, span)) {
    I1 = P1 + between * ((R + R1) / distance);
    return 1;
  }
  // The foot of both centres on the line of the two circles and their half chord, in units of the distance.
  const double reach = (R + R1) / distance;
  const double foot = 0.5 + (R1 - R2) * span / (2 * distance * distance);
  const double half = std::sqrt(std::max(0.0, (reach - foot) * (reach + foot)));
  const TPoint2D middle = P1 + between * foot;
  const TPoint2D left = between.RotateCcw90() * half;
  I1 = middle + left;
  I2 = middle - left;
  return 2;
}

namespace {

// Tries positions for one size and keeps those that stand.
struct TTrial {
  const TVRect2D& Rect;
  const std::vector<double>& Radii;
  const TCircleNestRst& Rst;
  int Idx;
  TPosibleCPList& Found;

  double R() const { return Radii[Idx]; }
  void Try(const TPoint2D& P) {
    if (const auto value = detail::HoleDegree(Rect, Radii, Rst, R(), P)) Found.push_back({{Idx, P}, *value});
  }
  void TryLines(const TCornerPlacement& At) {
    const detail::TOffsetLines lines(Rect, R());
    for (const detail::TOffsetLine& line : lines.Lines) {
      const detail::TCenters centers = detail::CentersOnLine(line, At.Center, Radii[At.CircleIdx] + R());
      for (int i = 0; i < centers.Count; ++i) Try(centers.Points[i]);
    }
  }
};

}  // namespace

TPosibleCPList TCirclePacking::GeneratePosibleCP(const std::vector<int>& Idx, const std::vector<int>& Remaining,
                                                 const TCircleNestRst& Rst, bool WithCorners) const {
  TPosibleCPList found;
  if (Stopped()) return found;
  for (const int t : Idx) {
    if (Remaining[t] == 0) continue;
    TTrial trial{FRect, FCircleRadiusList, Rst, t, found};
    const double r = trial.R();
    if (WithCorners) {
      trial.Try({FRect.Left + r, FRect.Top - r});
      trial.Try({FRect.Right - r, FRect.Top - r});
    }
    for (int c = 0; c < Size(Rst); ++c) {
      trial.TryLines(Rst[c]);
      for (int e = 0; e < c; ++e) TryBetween(trial.Idx, Rst[c], Rst[e], Rst, found);
    }
  }
  return found;
}

void TCirclePacking::TryBetween(int Idx, const TCornerPlacement& C, const TCornerPlacement& E,
                                const TCircleNestRst& Rst, TPosibleCPList& Found) const {
  TPoint2D centers[2];
  const int count = GetCircleCenter(FCircleRadiusList[Idx], FCircleRadiusList[C.CircleIdx],
                                    FCircleRadiusList[E.CircleIdx], C.Center, E.Center, centers[0], centers[1]);
  TTrial trial{FRect, FCircleRadiusList, Rst, Idx, Found};
  for (int i = 0; i < count; ++i) trial.Try(centers[i]);
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
  for (const int t : Idx) {
    if (Remaining[t] == 0) continue;
    TTrial{FRect, FCircleRadiusList, Rst, t, CPs}.TryLines(last);
    for (int e = 0; e + 1 < Size(Rst); ++e) TryBetween(t, last, Rst[e], Rst, CPs);
  }
}

namespace {

// The candidate of the largest value, of equal values the one nearest to the origin, of those the first. A value of
// minus infinity counts like any other.
const TPosibleCP& BestOf(const TPosibleCPList& CPs) {
  const TPosibleCP* best = nullptr;
  const auto squareOf = [](const TPosibleCP& C) { return C.CP.Center.DotMul(C.CP.Center); };
  for (const TPosibleCP& candidate : CPs)
    if (best == nullptr || candidate.Value > best->Value ||
        (candidate.Value == best->Value && squareOf(candidate) < squareOf(*best)))
      best = &candidate;
  return *best;
}

}  // namespace

double TCirclePacking::GreedyPacking(const std::vector<int>& Idx, std::vector<int>& Remaining, TCircleNestRst& Rst,
                                     double Occu, TPosibleCPList& CPs) const {
  while (!CPs.empty()) {
    const TCornerPlacement chosen = BestOf(CPs).CP;
    Rst.push_back(chosen);
    --Remaining[chosen.CircleIdx];
    Occu += FCircleAreaList[chosen.CircleIdx] / FRect.Area();
    UpdatePosibleCP(Idx, Remaining, Rst, CPs);
  }
  return Occu;
}

double TCirclePacking::GreedyPackingEx(const std::vector<int>& Idx, std::vector<int>& Remaining, TCircleNestRst& Rst,
                                       double Occu, double Threshold, TPosibleCPList& CPs) const {
  while (!CPs.empty()) {
    TPosibleCP choice = BestOf(CPs);
    if (choice.Value < Threshold) {
      double bestOccu = -kInfinity;
      const int placed = Size(Rst);
      for (const TPosibleCP& candidate : CPs) {
        if (bestOccu > -kInfinity && Stopped()) break;
        Rst.push_back(candidate.CP);
        std::vector<int> remaining = Remaining;
        --remaining[candidate.CP.CircleIdx];
        TPosibleCPList copy = CPs;
        double occu = Occu + FCircleAreaList[candidate.CP.CircleIdx] / FRect.Area();
        UpdatePosibleCP(Idx, remaining, Rst, copy);
        occu = GreedyPacking(Idx, remaining, Rst, occu, copy);
        if (Size(Rst) == FCircleAmount) return occu;
        if (occu > bestOccu || (occu == bestOccu && candidate.Value > choice.Value)) {
          bestOccu = occu;
          choice = candidate;
        }
        Rst.resize(placed);
      }
    }
    const int idx = choice.CP.CircleIdx;
    Rst.push_back(choice.CP);
    Occu += FCircleAreaList[idx] / FRect.Area();
    --Remaining[idx];
    if (Stopped()) return Occu;
    UpdatePosibleCP(Idx, Remaining, Rst, CPs);
  }
  return Occu;
}

}  // namespace platenest
