#include "CornerField.h"

#include <algorithm>
#include <cmath>

#include "platenest/foundation/Compare.h"

namespace platenest::detail {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kRounding = 1e-12;  // of the plate's extent
// Up to this extent squares tell a distance within a fraction of the tolerance.
constexpr double kSquaresTellUpTo = 1e8;
constexpr double kTouchBySquares = kDefaultTol;
constexpr double kOverlapBySquares = 4 * kDefaultTol;
// Of the widest radius: how far the list of near circles reaches beyond what can be touched.
constexpr double kNearReserve = 2.0;
// Distances that lie in a chain of steps of the tolerance may displace each other; one more than the items is enough.
constexpr double kChainStep = 1.01 * kDefaultTol;
constexpr int kChainReserve = 8;

}  // namespace

TCornerField::TCornerField(const TVRect2D& Rect, const std::vector<double>& Radii, const TCircleNestRst& Rst)
    : FRect(Rect), FRadii(Radii), FSteps(CurrentStepCount()) {
  const double extent = Rect.Width() + Rect.Height();
  FRounding = kRounding * extent;
  const bool squaresTell = extent < kSquaresTellUpTo;
  FTouch = squaresTell ? kTouchBySquares : -1;
  FOverlap = squaresTell ? kOverlapBySquares : kInfinity;
  for (const TCornerPlacement& placed : Rst) Push(placed.CircleIdx, placed.Center);
}

void TCornerField::Push(int Idx, const TPoint2D& Center) {
  FX.push_back(Center.X);
  FY.push_back(Center.Y);
  FR.push_back(FRadii[Idx]);
  FIdx.push_back(Idx);
}

void TCornerField::CutBack(int Count) {
  FX.resize(Count);
  FY.resize(Count);
  FR.resize(Count);
  FIdx.resize(Count);
}

void TCornerField::ListNear(int I, double Widest) {
  FKeys.clear();
  const double reach = FRadius + 2 * Widest + kNearReserve * Widest;
  for (int e = 0; e < Count(); ++e) {
    const double dx = FX[e] - FCenter.X;
    const double dy = FY[e] - FCenter.Y;
    const double bound = FR[e] + reach;
    const double square = dx * dx + dy * dy;
    if (square <= bound * bound && e != I) FKeys.push_back({std::sqrt(square) - FR[e] - FRadius, e});
  }
  FNearKey = Size(FKeys) + 1 == Count() ? kInfinity : reach - FRadius - FRounding;
  // The order of the list decides nothing, and equal gaps go by number.
  std::sort(FKeys.begin(), FKeys.end(),
            [](const TKey& A, const TKey& B) { return A.Key < B.Key || (A.Key == B.Key && A.I < B.I); });
}

void TCornerField::Look(int I, double Widest) {
  FCenter = {FX[I], FY[I]};
  FRadius = FR[I];
  ListNear(I, Widest);
  FNear.clear();
  FNear.push_back({FCenter, FRadius, -kInfinity, I, {}, {0, 0}});
  const double touchable = 2 * Widest + 2 * kDefaultTol + FRounding;
  for (const TKey& key : FKeys) {
    const TPoint2D center{FX[key.I], FY[key.I]};
    FNear.push_back({center, FR[key.I], key.Key, key.I, {}, {0, 0}});
    if (key.Key <= touchable) FNear.back().Pair = TCirclePair(FRadius, FR[key.I], FCenter, center);
  }
  FEdgeKeys[0] = FCenter.Y - FRect.Bottom - FRadius;
  FEdgeKeys[1] = FCenter.X - FRect.Left - FRadius;
  FEdgeKeys[2] = FRect.Right - FCenter.X - FRadius;
  FEdgeKeys[3] = FRect.Top - FCenter.Y - FRadius;
  FEdgeKey = *std::min_element(FEdgeKeys, FEdgeKeys + 4);
  FSlack = kChainStep * (Size(FNear) + kChainReserve) + FRounding;
}

void TCornerField::TryAbout(int Idx, int Before, std::vector<TCandidate>& Out) {
  const double r = FRadii[Idx];
  const double touchable = 2 * r + 2 * kDefaultTol + FRounding;
  if (FEdgeKey <= touchable) {
    const TOffsetLines lines(FRect, r);
    for (int k = 0; k < 4; ++k) {
      if (FEdgeKeys[k] > touchable) continue;
      const TCenters centers = CentersOnLine(lines.Lines[k], FCenter, FRadius + r);
      for (int i = 0; i < centers.Count; ++i) Try(Idx, r, centers.Points[i], FNear[0].InTheWay[i], -1, Out);
    }
  }
  const auto sorted = Out.size();
  for (auto near = FNear.begin() + 1; near != FNear.end() && near->Key <= touchable; ++near) {
    if (near->I >= Before) continue;
    const TCenters centers = near->Pair.Centers(r);
    for (int i = 0; i < centers.Count; ++i) Try(Idx, r, centers.Points[i], near->InTheWay[i], near->I, Out);
  }
  for (auto i = sorted; i < Out.size(); ++i)
    for (auto k = i; k > sorted && Out[k].From < Out[k - 1].From; --k) std::swap(Out[k], Out[k - 1]);
  ReportTried();
}

void TCornerField::ReportTried() {
  if (FSteps != nullptr) FSteps->Add(FTried);
  FTried = 0;
}

void TCornerField::TryAt(int Idx, const TPoint2D& P, std::vector<TCandidate>& Out) {
  ++FTried;
  const double r = FRadii[Idx];
  if (const auto nearest = NearestOfAll(P, r)) Out.push_back({P, r, *nearest + r, 1 - *nearest / r, Idx, -1});
  ReportTried();
}

inline bool TCornerField::SurelyOverlaps(const TNear& Near, const TPoint2D& P, double R) const {
  const double both = Near.R + R;
  const double dx = Near.Center.X - P.X;
  const double dy = Near.Center.Y - P.Y;
  return dx * dx + dy * dy - both * both < -FOverlap * both;
}

inline void TCornerField::Try(int Idx, double R, const TPoint2D& P, int& InTheWay, int From,
                              std::vector<TCandidate>& Out) {
  ++FTried;
  if (SurelyOverlaps(FNear[InTheWay], P, R)) return;
  if (const auto nearest = Nearest(P, R, InTheWay)) Out.push_back({P, R, *nearest + R, 1 - *nearest / R, Idx, From});
}

std::optional<double> TCornerField::Nearest(const TPoint2D& P, double R, int& InTheWay) {
  double best = kInfinity;
  FSeen.clear();
  const bool edgesFirst = FEdgeKey <= 2 * R + FSlack;
  if (edgesFirst && !SeeEdges(P, R, best)) return std::nullopt;
  double bound = best + FSlack;
  for (const TNear& near : FNear) {
    if (near.Key - 2 * R > bound) break;
    const double both = near.R + R;
    const double dx = near.Center.X - P.X;
    const double dy = near.Center.Y - P.Y;
    const double square = dx * dx + dy * dy;
    const double excess = square - both * both;
    if (excess > bound * (bound + 2 * both) || std::fabs(excess) <= FTouch * both) continue;
    const double distance = std::sqrt(square) - near.R - R;
    if (fSmall(distance, 0)) {
      InTheWay = static_cast<int>(&near - FNear.data());
      return std::nullopt;
    }
    if (!fGreat(distance, 0)) continue;
    FSeen.push_back({distance, Count() - 1 - near.I});
    best = std::min(best, distance);
    bound = best + FSlack;
  }
  if (!(2 * R + bound < FNearKey) && FNearKey < kInfinity) return NearestOfAll(P, R);
  if (!edgesFirst && FEdgeKey - 2 * R <= bound && !SeeEdges(P, R, best)) return std::nullopt;
  return JudgeSeen(best);
}

// False if the circle reaches over an edge.
bool TCornerField::SeeEdges(const TPoint2D& P, double R, double& Best) {
  const double distances[] = {P.Y - FRect.Bottom - R, P.X - FRect.Left - R, FRect.Right - P.X - R, FRect.Top - P.Y - R};
  for (int k = 0; k < 4; ++k) {
    if (fSmall(distances[k], 0)) return false;
    if (!fGreat(distances[k], 0)) continue;
    FSeen.push_back({distances[k], Count() + k});
    Best = std::min(Best, distances[k]);
  }
  return true;
}

// The least distance, but for others so close to it that the order of trial tells.
double TCornerField::JudgeSeen(double Best) {
  const auto tells = [Best](const TSeen& S) { return S.Distance != Best && S.Distance - Best <= kChainStep; };
  if (std::none_of(FSeen.begin(), FSeen.end(), tells)) return Best;
  for (auto i = FSeen.begin(); i != FSeen.end(); ++i)
    for (auto k = i; k != FSeen.begin() && k->Order < (k - 1)->Order; --k) std::swap(*k, *(k - 1));
  double nearest = kInfinity;
  for (const TSeen& seen : FSeen)
    if (fSmall(seen.Distance, nearest)) nearest = seen.Distance;
  return nearest;
}

std::optional<double> TCornerField::NearestOfAll(const TPoint2D& P, double R) const {
  double best = kInfinity;
  const auto overlaps = [&best](double Distance) {
    if (fGreat(Distance, 0) && fSmall(Distance, best)) best = Distance;
    return fSmall(Distance, 0);
  };
  for (int i = Count() - 1; i >= 0; --i)
    if (overlaps(P.DistanceTo({FX[i], FY[i]}) - FR[i] - R)) return std::nullopt;
  for (const double distance :
       {P.Y - FRect.Bottom - R, P.X - FRect.Left - R, FRect.Right - P.X - R, FRect.Top - P.Y - R})
    if (overlaps(distance)) return std::nullopt;
  return best;
}

}  // namespace platenest::detail
