#include "CornerPlacement.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <random>

#include "AllocationCounter.h"
#include "CornerSearch.h"
#include "ForEachSeed.h"
#include "platenest/foundation/Line2D.h"
#include "platenest/layoutcheck/CircleCheck.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr double kNoLookAhead = -4294967295.0;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct TProbe : TCirclePacking {
  using TCirclePacking::GeneratePosibleCP, TCirclePacking::UpdatePosibleCP, TCirclePacking::GreedyPacking,
      TCirclePacking::GreedyPackingEx, TCirclePacking::GetCircleCenter, TCirclePacking::TailRePack,
      TCirclePacking::UpdateResult, TCirclePacking::FillRest, TCirclePacking::SortByY, TCirclePacking::SortCircles,
      TCirclePacking::TCirclePacking;
};

// A job in working coordinates: the plate is not turned back, and gaps are in the radii already.
struct TJob {
  double Width = 0;
  double Height = 0;
  double Gap = 0;
  std::vector<double> Radii;  // true ones
  std::vector<int> Counts;

  TProbe Packing() const { return TProbe(TVRect2D::FromSize(Height - Gap, Width - Gap), Gap, Radii, Counts); }
  TVRect2D Plate() const { return TVRect2D::FromSize(Height - Gap + Gap, Width - Gap + Gap); }
  std::vector<int> Idx() const {
    std::vector<int> idx;
    for (const int i : TProbe::SortCircles(Radii))
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

  explicit TLiteral(const TJob& Job)
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
      const int count = TProbe::GetCircleCenter(r, Radii[Rst[C].CircleIdx], Radii[Rst[e].CircleIdx], Rst[C].Center,
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

// Few or many sizes, equal radii under different numbers, radii on a raster (many ties and touching circles) or any;
// with and without gap.
TJob RandomJob(unsigned Seed, int MostCircles) {
  std::mt19937 random(Seed);
  const auto below = [&random](int N) { return static_cast<int>(random() % N); };
  TJob job;
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

void ExpectSame(const TCircleNestRst& Rst, const TCircleNestRst& Expected) {
  ASSERT_EQ(Rst.size(), Expected.size());
  for (int i = 0; i < Size(Rst); ++i) {
    ASSERT_EQ(Rst[i].CircleIdx, Expected[i].CircleIdx) << i;
    ASSERT_EQ(Rst[i].Center.X, Expected[i].Center.X) << i;
    ASSERT_EQ(Rst[i].Center.Y, Expected[i].Center.Y) << i;
  }
}

void ComparePacking(const TJob& Job, double Threshold) {
  const TProbe packing = Job.Packing();
  const TLiteral literal(Job);
  TCircleNestRst expected;
  std::vector<int> remaining = Job.Counts;
  const auto candidates = literal.Generate(Job.Idx(), remaining, expected, true);
  const double occu = literal.GreedyEx(Job.Idx(), remaining, expected, 0, Threshold, candidates);
  TCircleNestRst rst;
  auto own = packing.GeneratePosibleCP(Job.Idx(), remaining, rst, true);
  EXPECT_EQ(packing.GreedyPackingEx(Job.Idx(), remaining, rst, 0, Threshold, own), occu);
  ExpectSame(rst, expected);
}

TEST(CornerPlacement, GreedyChoosesWhatTheRulesChoose) {
  ForEachSeed(300, [](unsigned Seed) { ComparePacking(RandomJob(Seed, 60), kNoLookAhead); });
}

TEST(CornerPlacement, LookAheadChoosesWhatTheRulesChoose) {
  ForEachSeed(100, [](unsigned Seed) { ComparePacking(RandomJob(Seed, 12), 1.0); });
}

}  // namespace
}  // namespace platenest
