#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "CornerPlacement.h"
#include "platenest/UCircleNest/CirclePacking.h"
#include "platenest/layoutcheck/CircleCheck.h"

namespace platenest {

inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct TRuleProbe : TCirclePacking {
  using TCirclePacking::BinaryPacking, TCirclePacking::EstimateCount, TCirclePacking::FillRest,
      TCirclePacking::GenerateInitConfig, TCirclePacking::GeneratePosibleCP, TCirclePacking::GetCircleCenter,
      TCirclePacking::GreedyPacking, TCirclePacking::GreedyPackingEx, TCirclePacking::Occupancy,
      TCirclePacking::PackingMultiThread, TCirclePacking::PackingWithY, TCirclePacking::SortByY,
      TCirclePacking::TailRePack, TCirclePacking::TakeShortest, TCirclePacking::TCirclePacking,
      TCirclePacking::TMyPackingThread, TCirclePacking::UpdatePosibleCP, TCirclePacking::UpdateResult;
};

// A job by its plate in working coordinates, grown by the gap and with the caller's X upwards.
struct TRuleJob {
  double Width = 0;
  double Height = 0;
  double Gap = 0;
  std::vector<double> Radii;  // true ones
  std::vector<int> Counts;

  // Far from the origin, which changes nothing.
  TVRect2D Plate() const { return {{128, -64}, {128 + Height - Gap, Width - Gap - 64}}; }
  TRuleProbe Packing() const { return TRuleProbe(Plate(), Gap, Radii, Counts); }
  std::vector<int> Idx() const {
    std::vector<int> idx;
    for (int i = 0; i < Size(Radii); ++i)
      if (Counts[i] > 0 && !fGreat(2 * Radii[i] + Gap, std::min(Width, Height))) idx.push_back(i);
    std::ranges::stable_sort(idx, std::greater(), [this](int I) { return Radii[I]; });
    return idx;
  }
  // The first thing wrong with circles in the caller's frame, or nothing.
  std::string Fault(const TCircleNestRst& Rst) const {
    std::vector<TPlacedCircle> placed;
    std::vector<TCircleDemand> demand;
    for (const TCornerPlacement& c : Rst) placed.push_back({c.Center, Radii[c.CircleIdx], c.CircleIdx});
    for (int i = 0; i < Size(Radii); ++i) demand.push_back({Radii[i], Counts[i]});
    return CheckCircles(placed, {0, 0, Height - Gap, Width - Gap}, Gap, demand);
  }
};

// The rules word by word, on one thread: every position against every circle, every candidate in every step.
struct TLiteral {
  // A packing under construction.
  struct TState {
    TCircleNestRst Rst;
    std::vector<int> Left;
    TPosibleCPList CPs;
    double Occu = 0;
  };
  TVRect2D Rect;
  std::vector<int> Idx;
  std::vector<int> Counts;
  std::vector<double> Radii;
  std::vector<double> Areas;
  int Amount = 0;
  std::vector<TCircleNestRst> Pairs;  // that a run starts with
  int Workers;
  TCircleNestRst Result;
  double Occu = 0;

  explicit TLiteral(const TRuleJob& Job, int MostWorkers = 4)
      : Rect(TVRect2D::FromSize(Job.Plate().Height() + Job.Gap, Job.Plate().Width() + Job.Gap)),
        Idx(Job.Idx()),
        Counts(Job.Counts) {
    for (const double r : Job.Radii) {
      Areas.push_back(std::numbers::pi * r * r);
      Radii.push_back(r + Job.Gap / 2);
    }
    for (int i = 0; i < Size(Idx); ++i) {
      Amount += Counts[Idx[i]];
      for (int j = Counts[Idx[i]] < 2 ? i + 1 : i; j < Size(Idx); ++j) AddPair(Idx[i], Idx[j]);
    }
    Workers = std::min(Size(Pairs), MostWorkers);
  }
  void AddPair(int I, int J) {
    const double w = Rect.Width();
    const double both = Radii[I] + Radii[J];
    if (both > 0.65 * w) return;
    if (fSmall(std::pow(w - both, 2) + std::pow(Rect.Height() - both, 2), both * both)) return;
    const bool beside = !fSmall(std::pow(w - both, 2), 4 * Radii[I] * Radii[J]);
    const double y = beside ? Radii[I] : Radii[J] + std::sqrt(2 * w * both - w * w);
    Pairs.push_back({{I, Radii[I], y}, {J, w - Radii[J], Radii[J]}});
  }

  // From the last circle to the first, then the edges; what is touched does not count.
  void Try(int T, const TPoint2D& P, TState& S) const {
    const double r = Radii[T];
    std::vector<double> distances;
    for (auto c = S.Rst.rbegin(); c != S.Rst.rend(); ++c)
      distances.push_back(P.DistanceTo(c->Center) - Radii[c->CircleIdx] - r);
    for (const double d : {P.Y - Rect.Bottom - r, P.X - Rect.Left - r, Rect.Right - P.X - r, Rect.Top - P.Y - r})
      distances.push_back(d);
    double best = kInfinity;
    for (const double d : distances) {
      if (fSmall(d, 0)) return;
      if (fGreat(d, 0) && fSmall(d, best)) best = d;
    }
    S.CPs.push_back({{T, P}, 1 - best / r});
  }
  // Positions that touch circle C, and an edge or an earlier circle.
  void TryAbout(int C, int T, TState& S) const {
    const double r = Radii[T];
    const TCornerPlacement& c = S.Rst[C];
    for (const detail::TOffsetLine& line : detail::TOffsetLines(Rect, r).Lines) {
      const auto hits = detail::CentersOnLine(line, c.Center, Radii[c.CircleIdx] + r);
      for (int i = 0; i < hits.Count; ++i) Try(T, hits.Points[i], S);
    }
    for (int e = 0; e < C; ++e) {
      TPoint2D points[2];
      const int count = TRuleProbe::GetCircleCenter(r, Radii[c.CircleIdx], Radii[S.Rst[e].CircleIdx], c.Center,
                                                    S.Rst[e].Center, points[0], points[1]);
      for (int i = 0; i < count; ++i) Try(T, points[i], S);
    }
  }
  // With all candidates, or those of one size.
  TState Begin(const TCircleNestRst& Rst, bool WithCorners, int Only = -1) const {
    TState s{Rst, Counts, {}, 0};
    for (const TCornerPlacement& c : Rst) {
      --s.Left[c.CircleIdx];
      s.Occu += Areas[c.CircleIdx];
    }
    s.Occu /= Rect.Area();
    for (const int t : Idx) {
      if (Only >= 0 && t != Only) s.Left[t] = 0;
      if (s.Left[t] == 0) continue;
      if (WithCorners) Try(t, {Rect.Left + Radii[t], Rect.Top - Radii[t]}, s);
      if (WithCorners) Try(t, {Rect.Right - Radii[t], Rect.Top - Radii[t]}, s);
      for (int c = 0; c < Size(Rst); ++c) TryAbout(c, t, s);
    }
    return s;
  }
  // Positions in the way of the new circle and of used up sizes go, values rise, positions about it are appended.
  void Place(const TCornerPlacement& New, TState& S) const {
    S.Rst.push_back(New);
    --S.Left[New.CircleIdx];
    S.Occu += Areas[New.CircleIdx] / Rect.Area();
    const TPosibleCPList before = std::exchange(S.CPs, {});
    for (TPosibleCP cp : before) {
      const double r = Radii[cp.CP.CircleIdx];
      const double d = cp.CP.Center.DistanceTo(New.Center) - r - Radii[New.CircleIdx];
      if (S.Left[cp.CP.CircleIdx] == 0 || fSmall(d, 0)) continue;
      if (fGreat(d, 0)) cp.Value = std::max(cp.Value, 1 - d / r);
      S.CPs.push_back(cp);
    }
    for (const int t : Idx)
      if (S.Left[t] != 0) TryAbout(Size(S.Rst) - 1, t, S);
  }
  static TPosibleCP Best(const TPosibleCPList& CPs) {
    const auto fromOrigin = [](const TPosibleCP& C) { return C.CP.Center.DotMul(C.CP.Center); };
    return *std::ranges::max_element(CPs, [&](const TPosibleCP& A, const TPosibleCP& B) {
      return A.Value < B.Value || (A.Value == B.Value && fromOrigin(A) > fromOrigin(B));
    });
  }
  void Greedy(TState& S, bool LookAhead) const {
    while (!S.CPs.empty()) {
      TPosibleCP choice = Best(S.CPs);
      double most = -kInfinity;
      for (const TPosibleCP& c : LookAhead ? S.CPs : TPosibleCPList()) {
        TState trial = S;
        Place(c.CP, trial);
        Greedy(trial, false);
        if (Size(trial.Rst) == Amount) {
          S = trial;
          return;
        }
        if (trial.Occu < most || (trial.Occu == most && c.Value <= choice.Value)) continue;
        most = trial.Occu;
        choice = c;
      }
      Place(choice.CP, S);
    }
  }

  // Goes on from Rst; only what is denser becomes the result. True if all circles stand.
  bool Fill(const TCircleNestRst& Rst, bool WithCorners, bool LookAhead) {
    TState s = Begin(Rst, WithCorners);
    Greedy(s, LookAhead);
    if (s.Occu > Occu) Result = s.Rst;
    Occu = std::max(s.Occu, Occu);
    return Size(s.Rst) == Amount;
  }
  void RedoTop() {
    TCircleNestRst low;
    for (const TCornerPlacement& c : Result)
      if (c.Center.Y < 0.7 * Rect.Height()) low.push_back(c);
    Fill(low, true, true);
  }
  void Packing() {
    for (const bool lookAhead : {false, true})
      for (int k = 0; k < Workers; ++k)
        for (int i = k; i < Size(Pairs) && !Fill(Pairs[i], false, lookAhead);) i += Workers;
    if (!Pairs.empty()) RedoTop();
  }

  double Used(const TCircleNestRst& Rst) const {
    double used = 0;
    for (const TCornerPlacement& c : Rst) used = std::max(used, c.Center.Y + Radii[c.CircleIdx]);
    return used;
  }
  // Size by size, each circle as low and then as far left as it can be.
  TCircleNestRst FillByY(TCircleNestRst Rst) const {
    for (const int t : Idx) {
      TState s = Begin(Rst, false, t);
      while (!s.CPs.empty())
        Place(std::ranges::min_element(s.CPs, {},
                                       [](const TPosibleCP& C) { return std::pair(C.CP.Center.Y, C.CP.Center.X); })
                  ->CP,
              s);
      Rst = s.Rst;
    }
    return Rst;
  }
  TCircleNestRst Bisect(TCircleNestRst Rst, double High, double Low) {
    const TVRect2D whole = Rect;
    const TState start = Begin(Rst, false);
    while (High - Low > 1) {
      Rect.Top = (Low + High) / 2;
      TState trial = start;
      Greedy(trial, false);
      const bool complete = Size(trial.Rst) == Amount;
      if (complete) Rst = trial.Rst;
      (complete ? High : Low) = Rect.Top;
    }
    Rect = whole;
    return Rst;
  }
  // The shortest packing with all circles, in Result.
  double Strip(bool Bisection) {
    const double high = Used(FillByY(Pairs[0]));
    double area = 0;
    for (const int t : Idx) area += std::numbers::pi * Radii[t] * Radii[t] * Counts[t];
    double shortest = 4294967295.0;
    for (int k = 0; k < Workers; ++k)
      for (int i = k; i < Size(Pairs); i += Workers) {
        const TCircleNestRst rst = Bisection ? Bisect(Pairs[i], high, area / Rect.Width()) : FillByY(Pairs[i]);
        if (Used(rst) >= shortest || Size(rst) != Amount) continue;
        shortest = Used(rst);
        Result = rst;
      }
    return shortest;
  }
};
// Few or many sizes, equal radii under different numbers, radii on a raster (many ties and touching circles) or any;
// with and without gap. Some plates are so narrow that one circle of a start pair rides on the other, some twice as
// long as the job needs.
inline TRuleJob RandomJob(unsigned Seed, int MostCircles) {
  std::mt19937 random(Seed);
  const auto below = [&random](int N) { return static_cast<int>(random() % N); };
  TRuleJob job;
  const bool raster = below(2) == 0;
  const int sizes = 1 + below(below(3) == 0 ? MostCircles : 6);
  job.Gap = below(3) == 0 ? 5.0 * below(4) : 0;
  double area = 0;
  const int most = std::max(1, MostCircles / sizes);
  for (int i = 0; i < sizes; ++i) {
    job.Radii.push_back(raster ? 10.0 + 10 * below(4) : 10 + below(100'000) * 5e-4);
    job.Counts.push_back(1 + below(most));
    area += 4 * job.Radii.back() * job.Radii.back() * job.Counts.back();
  }
  const double widest = *std::ranges::max_element(job.Radii) + job.Gap / 2;
  job.Width = std::max(std::sqrt(area) * (0.5 + below(100) / 100.0), 40.0) + job.Gap;
  if (below(4) == 0) job.Width = widest * (3.05 + 0.15 * below(7));
  job.Height = std::max(area / job.Width * (0.6 + below(60) / 100.0), 40.0) + job.Gap;
  if (below(2) == 0) job.Height = 2 * job.Height + 5 * widest;
  for (double* side : {&job.Width, &job.Height})
    if (raster) *side = 20 * std::round(*side / 20);
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
