#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "CornerPlacement.h"
#include "platenest/UCircleNest/CirclePacking.h"

namespace platenest {

inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct TRuleProbe : TCirclePacking {
  using TCirclePacking::EstimateCount, TCirclePacking::FillRest, TCirclePacking::GenerateInitConfig,
      TCirclePacking::GeneratePosibleCP, TCirclePacking::GetCircleCenter, TCirclePacking::GreedyPackingEx,
      TCirclePacking::SortByY, TCirclePacking::SortCircles, TCirclePacking::TailRePack, TCirclePacking::TakeShortest,
      TCirclePacking::TCirclePacking, TCirclePacking::UpdatePosibleCP, TCirclePacking::UpdateResult;
};

// A job in working coordinates: the plate is not turned back, and gaps are in the radii already.
struct TRuleJob {
  double Width = 0;
  double Height = 0;
  double Gap = 0;
  std::vector<double> Radii;  // true ones
  std::vector<int> Counts;

  TRuleProbe Packing() const { return TRuleProbe(TVRect2D::FromSize(Height - Gap, Width - Gap), Gap, Radii, Counts); }
  std::vector<int> Idx() const {
    std::vector<int> idx;
    for (const int i : TRuleProbe::SortCircles(Radii))
      if (Counts[i] > 0 && !fGreat(2 * (Radii[i] + Gap / 2), std::min(Width, Height))) idx.push_back(i);
    return idx;
  }
  int Amount() const {
    int amount = 0;
    for (const int i : Idx()) amount += Counts[i];
    return amount;
  }
};

// The rules word by word: every position against every circle, every candidate in every step.
struct TLiteral {
  TVRect2D Rect;
  std::vector<double> Radii;
  std::vector<double> Areas;
  int Amount = 0;

  explicit TLiteral(const TRuleJob& Job)
      : Rect(TVRect2D::FromSize(Job.Width - Job.Gap + Job.Gap, Job.Height - Job.Gap + Job.Gap)), Amount(Job.Amount()) {
    for (const double r : Job.Radii) {
      Areas.push_back(std::numbers::pi * r * r);
      Radii.push_back(r + Job.Gap / 2);
    }
  }

  std::optional<double> HoleDegree(const TCircleNestRst& Rst, double R, const TPoint2D& P) const {
    std::vector<double> distances;
    for (auto c = Rst.rbegin(); c != Rst.rend(); ++c)
      distances.push_back(P.DistanceTo(c->Center) - Radii[c->CircleIdx] - R);
    for (const double d : {P.Y - Rect.Bottom - R, P.X - Rect.Left - R, Rect.Right - P.X - R, Rect.Top - P.Y - R})
      distances.push_back(d);
    double best = kInfinity;
    for (const double d : distances) {
      if (fSmall(d, 0)) return std::nullopt;
      if (fGreat(d, 0) && fSmall(d, best)) best = d;
    }
    return 1 - best / R;
  }
  void Try(int Idx, const TPoint2D& P, const TCircleNestRst& Rst, TPosibleCPList& CPs) const {
    if (const auto value = HoleDegree(Rst, Radii[Idx], P)) CPs.push_back({{Idx, P}, *value});
  }
  void TryAbout(int Idx, int C, int Before, const TCircleNestRst& Rst, TPosibleCPList& CPs) const {
    const double r = Radii[Idx];
    for (const detail::TOffsetLine& line : detail::TOffsetLines(Rect, r).Lines) {
      const auto hits = detail::CentersOnLine(line, Rst[C].Center, Radii[Rst[C].CircleIdx] + r);
      for (int i = 0; i < hits.Count; ++i) Try(Idx, hits.Points[i], Rst, CPs);
    }
    for (int e = 0; e < Before; ++e) {
      TPoint2D points[2];
      const int count = TRuleProbe::GetCircleCenter(r, Radii[Rst[C].CircleIdx], Radii[Rst[e].CircleIdx], Rst[C].Center,
                                                    Rst[e].Center, points[0], points[1]);
      for (int i = 0; i < count; ++i) Try(Idx, points[i], Rst, CPs);
    }
  }
  TPosibleCPList Generate(const std::vector<int>& Idx, const std::vector<int>& Remaining, const TCircleNestRst& Rst,
                          bool WithCorners) const {
    TPosibleCPList cps;
    for (const int t : Idx) {
      if (Remaining[t] == 0) continue;
      if (WithCorners) {
        Try(t, {Rect.Left + Radii[t], Rect.Top - Radii[t]}, Rst, cps);
        Try(t, {Rect.Right - Radii[t], Rect.Top - Radii[t]}, Rst, cps);
      }
      for (int c = 0; c < Size(Rst); ++c) TryAbout(t, c, c, Rst, cps);
    }
    return cps;
  }
  void Update(const std::vector<int>& Idx, const std::vector<int>& Remaining, const TCircleNestRst& Rst,
              TPosibleCPList& CPs) const {
    const TCornerPlacement last = Rst.back();
    TPosibleCPList kept;
    for (TPosibleCP cp : CPs) {
      if (Remaining[cp.CP.CircleIdx] == 0) continue;
      const double r = Radii[cp.CP.CircleIdx];
      const double d = cp.CP.Center.DistanceTo(last.Center) - r - Radii[last.CircleIdx];
      if (fSmall(d, 0)) continue;
      if (fGreat(d, 0) && 1 - d / r > cp.Value) cp.Value = 1 - d / r;
      kept.push_back(cp);
    }
    CPs = kept;
    for (const int t : Idx)
      if (Remaining[t] != 0) TryAbout(t, Size(Rst) - 1, Size(Rst) - 1, Rst, CPs);
  }
  static TPosibleCP Best(const TPosibleCPList& CPs) {
    TPosibleCP best = CPs[0];
    for (const TPosibleCP& c : CPs)
      if (c.Value > best.Value ||
          (c.Value == best.Value && c.CP.Center.DotMul(c.CP.Center) < best.CP.Center.DotMul(best.CP.Center)))
        best = c;
    return best;
  }
  double Place(const TPosibleCP& CP, std::vector<int>& Remaining, TCircleNestRst& Rst, double Occu) const {
    Rst.push_back(CP.CP);
    --Remaining[CP.CP.CircleIdx];
    return Occu + Areas[CP.CP.CircleIdx] / Rect.Area();
  }
  double Greedy(const std::vector<int>& Idx, std::vector<int> Remaining, TCircleNestRst& Rst, double Occu,
                TPosibleCPList CPs) const {
    while (!CPs.empty()) {
      Occu = Place(Best(CPs), Remaining, Rst, Occu);
      Update(Idx, Remaining, Rst, CPs);
    }
    return Occu;
  }
  double GreedyEx(const std::vector<int>& Idx, std::vector<int> Remaining, TCircleNestRst& Rst, double Occu,
                  double Threshold, TPosibleCPList CPs) const {
    while (!CPs.empty()) {
      TPosibleCP choice = Best(CPs);
      if (choice.Value < Threshold) {
        double bestOccu = -kInfinity;
        for (const TPosibleCP& c : CPs) {
          TCircleNestRst rst = Rst;
          std::vector<int> remaining = Remaining;
          TPosibleCPList copy = CPs;
          double occu = Place(c, remaining, rst, Occu);
          Update(Idx, remaining, rst, copy);
          occu = Greedy(Idx, remaining, rst, occu, copy);
          if (Size(rst) == Amount) {
            Rst = rst;
            return occu;
          }
          if (occu > bestOccu || (occu == bestOccu && c.Value > choice.Value)) {
            bestOccu = occu;
            choice = c;
          }
        }
      }
      Occu = Place(choice, Remaining, Rst, Occu);
      Update(Idx, Remaining, Rst, CPs);
    }
    return Occu;
  }
};

// Whole runs on one thread.
struct TLiteralRun : TLiteral {
  std::vector<int> Idx;
  std::vector<int> Counts;
  std::vector<TInitConfig> Configs;
  TCircleNestRst Result;
  double Occu = 0;

  explicit TLiteralRun(const TRuleJob& Job) : TLiteral(Job), Idx(Job.Idx()), Counts(Job.Counts) {
    for (int i = 0; i < Size(Idx); ++i)
      for (int j = Counts[Idx[i]] < 2 ? i + 1 : i; j < Size(Idx); ++j) AddConfig(Idx[i], Idx[j]);
  }
  void AddConfig(int I, int J) {
    const double w = Rect.Width();
    const double both = Radii[I] + Radii[J];
    if (both > 0.65 * w) return;
    if (fSmall(std::pow(w - both, 2) + std::pow(Rect.Height() - both, 2), both * both)) return;
    const bool beside = !fSmall(std::pow(w - both, 2), 4 * Radii[I] * Radii[J]);
    const double y = beside ? Radii[I] : Radii[J] + std::sqrt(2 * w * both - w * w);
    Configs.push_back({{I, Radii[I], y}, {J, w - Radii[J], Radii[J]}});
  }
  int Workers() const { return std::min(Size(Configs), 4); }
  TCircleNestRst Pair(int I) const { return {Configs[I].CP1, Configs[I].CP2}; }
  std::vector<int> Left(const TCircleNestRst& Rst) const {
    std::vector<int> left = Counts;
    for (const TCornerPlacement& c : Rst) --left[c.CircleIdx];
    return left;
  }
  double Fill(TCircleNestRst& Rst, double Threshold, bool WithCorners) const {
    double area = 0;
    for (const TCornerPlacement& c : Rst) area += Areas[c.CircleIdx];
    const auto cps = Generate(Idx, Left(Rst), Rst, WithCorners);
    return GreedyEx(Idx, Left(Rst), Rst, area / Rect.Area(), Threshold, cps);
  }
  void Offer(double O, const TCircleNestRst& Rst) {
    if (O > Occu) Result = Rst;
    Occu = std::max(O, Occu);
  }
  void FillAndOffer(TCircleNestRst Rst, bool WithCorners) {
    const double occu = Fill(Rst, 1.0, WithCorners);
    Offer(occu, Rst);
  }
  void RedoTop() {
    TCircleNestRst low;
    for (const TCornerPlacement& c : Result)
      if (c.Center.Y < 0.7 * Rect.Height()) low.push_back(c);
    FillAndOffer(low, true);
  }
  void Packing() {
    for (const double threshold : {-4294967295.0, 1.0})
      for (int k = 0; k < Workers(); ++k)
        for (int i = k; i < Size(Configs); i += Workers()) {
          TCircleNestRst rst = Pair(i);
          Offer(Fill(rst, threshold, false), rst);
          if (Size(rst) == Amount) break;
        }
    if (!Configs.empty()) RedoTop();
  }
  double Used(const TCircleNestRst& Rst) const {
    double used = 0;
    for (const TCornerPlacement& c : Rst) used = std::max(used, c.Center.Y + Radii[c.CircleIdx]);
    return used;
  }
  double FillByY(TCircleNestRst& Rst) const {
    const std::vector<int> left = Left(Rst);
    for (const int t : Idx) {
      std::vector<int> counts(left.size(), 0);
      counts[t] = left[t];
      TPosibleCPList cps = Generate({t}, counts, Rst, false);
      for (int n = 0; n < left[t]; ++n) {
        const auto lowest = std::min_element(cps.begin(), cps.end(), [](const TPosibleCP& A, const TPosibleCP& B) {
          return std::pair(A.CP.Center.Y, A.CP.Center.X) < std::pair(B.CP.Center.Y, B.CP.Center.X);
        });
        if (lowest != cps.end()) Rst.push_back(lowest->CP);
        Update({t}, counts, Rst, cps);
      }
    }
    return Used(Rst);
  }
  double Bisect(TCircleNestRst& Rst, double High, double Low) {
    const TVRect2D whole = Rect;
    const auto cps = Generate(Idx, Left(Rst), Rst, false);
    TCircleNestRst best = Rst;
    while (High - Low > std::max((High - Low) / 100, 1.0)) {
      Rect.Top = (Low + High) / 2;
      TCircleNestRst trial = Rst;
      Greedy(Idx, Left(Rst), trial, 0, cps);
      if (Size(trial) == Amount) best = trial;
      (Size(trial) == Amount ? High : Low) = Rect.Top;
    }
    Rect = whole;
    Rst = best;
    return Used(Rst);
  }
  // The shortest packing with all circles, in Result.
  double Strip(bool Bisection) {
    TCircleNestRst first = Pair(0);
    const double high = FillByY(first);
    double area = 0;
    for (const int t : Idx) area += std::numbers::pi * Radii[t] * Radii[t] * Counts[t];
    double shortest = 4294967295.0;
    for (int k = 0; k < Workers(); ++k)
      for (int i = k; i < Size(Configs); i += Workers()) {
        TCircleNestRst rst = Pair(i);
        const double used = Bisection ? Bisect(rst, high, area / Rect.Width()) : FillByY(rst);
        if (used >= shortest || Size(rst) != Amount) continue;
        shortest = used;
        Result = rst;
      }
    return shortest;
  }
};

// Few or many sizes, equal radii under different numbers, radii on a raster (many ties and touching circles) or any;
// with and without gap.
inline TRuleJob RandomJob(unsigned Seed, int MostCircles) {
  std::mt19937 random(Seed);
  const auto below = [&random](int N) { return static_cast<int>(random() % N); };
  TRuleJob job;
  const bool raster = below(2) == 0;
  const int sizes = 1 + below(below(3) == 0 ? MostCircles : 6);
  job.Gap = below(3) == 0 ? 0.5 * below(4) : 0;
  double area = 0;
  const int most = std::max(1, MostCircles / sizes);
  for (int i = 0; i < sizes; ++i) {
    job.Radii.push_back(raster ? 1.0 + below(4) : 1 + below(100'000) * 5e-5);
    job.Counts.push_back(1 + below(most));
    area += 4 * job.Radii.back() * job.Radii.back() * job.Counts.back();
  }
  job.Width = std::max(std::sqrt(area) * (0.5 + below(100) / 100.0), 4.0) + job.Gap;
  job.Height = std::max(area / job.Width * (0.6 + below(60) / 100.0), 4.0) + job.Gap;
  if (raster) job.Width = 2 * std::round(job.Width / 2);
  if (raster) job.Height = 2 * std::round(job.Height / 2);
  return job;
}

inline void ExpectSame(const TCircleNestRst& Rst, const TCircleNestRst& Expected) {
  ASSERT_EQ(Rst.size(), Expected.size());
  for (int i = 0; i < Size(Rst); ++i) {
    ASSERT_EQ(Rst[i].CircleIdx, Expected[i].CircleIdx) << i;
    ASSERT_EQ(Rst[i].Center.X, Expected[i].Center.X) << i;
    ASSERT_EQ(Rst[i].Center.Y, Expected[i].Center.Y) << i;
  }
}

}  // namespace platenest
