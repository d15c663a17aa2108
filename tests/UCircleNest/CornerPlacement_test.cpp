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
  using TCirclePacking::GeneratePosibleCP, TCirclePacking::UpdatePosibleCP, TCirclePacking::GreedyPackingEx,
      TCirclePacking::GetCircleCenter, TCirclePacking::SortCircles, TCirclePacking::TCirclePacking;
};

// A job in working coordinates: the plate is not turned back, and gaps are in the radii already.
struct TJob {
  double Width = 0;
  double Height = 0;
  double Gap = 0;
  std::vector<double> Radii;  // true ones
  std::vector<int> Counts;

  TProbe Packing() const { return TProbe(TVRect2D::FromSize(Height - Gap, Width - Gap), Gap, Radii, Counts); }
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

// Lists that are updated step by step, as the bottom-left fill does, against those of the rules.
TEST(CornerPlacement, UpdatedCandidatesAreThoseOfTheRules) {
  ForEachSeed(60, [](unsigned Seed) {
    const TJob job = RandomJob(Seed, 40);
    const TProbe packing = job.Packing();
    const TLiteral literal(job);
    std::vector<int> remaining = job.Counts;
    TCircleNestRst rst;
    TPosibleCPList expected = literal.Generate(job.Idx(), remaining, rst, true);
    TPosibleCPList own = expected;
    while (!expected.empty()) {
      literal.Place(expected[expected.size() / 2], remaining, rst, 0);
      literal.Update(job.Idx(), remaining, rst, expected);
      packing.UpdatePosibleCP(job.Idx(), remaining, rst, own);
      ASSERT_EQ(own.size(), expected.size());
      for (int i = 0; i < Size(own); ++i) ASSERT_EQ(own[i].Value, expected[i].Value);
    }
    const auto all = literal.Generate(job.Idx(), job.Counts, rst, false);
    const auto found = packing.GeneratePosibleCP(job.Idx(), job.Counts, rst, false);
    ASSERT_EQ(found.size(), all.size());
    for (int i = 0; i < Size(all); ++i) ASSERT_EQ(found[i].Value, all[i].Value);
  });
}

std::vector<TPoint2D> CentersOf(double R, double R1, double R2, double Distance) {
  TPoint2D points[2];
  const int count = TProbe::GetCircleCenter(R, R1, R2, {0, 0}, {Distance, 0}, points[0], points[1]);
  return {points, points + count};
}

TEST(CornerPlacement, CentersTouchBothCircles) {
  EXPECT_THAT(CentersOf(1, 1, 1, 4.00001), IsEmpty());
  EXPECT_THAT(CentersOf(1, 1, 1, 4), ElementsAre(TPoint2D{2, 0}));
  EXPECT_THAT(CentersOf(1, 1, 1, 2), ElementsAre(TPoint2D{1, std::sqrt(3)}, TPoint2D{1, -std::sqrt(3)}));
  EXPECT_THAT(CentersOf(1, 2, 1, 3), ElementsAre(TPoint2D{7.0 / 3, 1.885618}, TPoint2D{7.0 / 3, -1.885618}));
}

TEST(CornerPlacement, CentersOnAnEdgeAreThoseOfTheLine) {
  ForEachSeed(200, [](unsigned Seed) {
    std::mt19937 random(Seed);
    const auto any = [&random](double Most) { return static_cast<double>(random() % 1000 + 1) * 1e-3 * Most; };
    const TVRect2D plate = TVRect2D::FromSize(any(10), any(10));
    const double r = any(6);
    const TPoint2D center{any(10), any(10)};
    const double reach = Seed % 4 == 0 ? std::fabs(center.Y - (plate.Top - r)) : any(8);
    const TPoint2D low{plate.Left + r, plate.Bottom + r};
    const TPoint2D high{plate.Right - r, plate.Top - r};
    const TLine2D lines[] = {
        {low, {high.X, low.Y}}, {low, {low.X, high.Y}}, {{high.X, low.Y}, high}, {{low.X, high.Y}, high}};
    for (int k = 0; k < 4; ++k) {
      const auto expected = TCircle2D{center, reach}.Intersect(lines[k]);
      const auto found = detail::CentersOnLine(detail::TOffsetLines(plate, r).Lines[k], center, reach);
      ASSERT_EQ(found.Count, expected.Count) << k;
      for (int i = 0; i < found.Count; ++i) ASSERT_LT(found.Points[i].DistanceTo(expected.Points[i]), 1e-9) << k;
    }
  });
}

// A lone circle in the corner, and what stands beside it or across: the gaps to what is not touched tell.
TEST(CornerPlacement, HoleDegreeIsTheGapToTheNearestThingNotTouched) {
  const TProbe packing(TVRect2D::FromSize(10, 10), 0, {1}, {9});
  const TCircleNestRst rst = {{0, 1, 1}};
  const auto cps = packing.GeneratePosibleCP({0}, {8}, rst, true);
  const auto valueAt = [&cps](const TPoint2D& P) {
    for (const TPosibleCP& cp : cps)
      if (cp.CP.Center == P) return cp.Value;
    return kInfinity;
  };
  EXPECT_THAT(cps, SizeIs(4));
  EXPECT_DOUBLE_EQ(valueAt({3, 1}), -1);
  EXPECT_DOUBLE_EQ(valueAt({1, 9}), -5);
  EXPECT_DOUBLE_EQ(valueAt({9, 9}), -7);
}

// The only position touches all four edges and has no hole degree at all.
TEST(CornerPlacement, APositionThatTouchesEverythingIsChosenIfItIsTheOnlyOne) {
  const TProbe packing(TVRect2D::FromSize(2, 2), 0, {1}, {1});
  TCircleNestRst rst;
  std::vector<int> remaining = {1};
  auto cps = packing.GeneratePosibleCP({0}, remaining, rst, true);
  ASSERT_FALSE(cps.empty());
  EXPECT_EQ(cps[0].Value, -kInfinity);
  packing.GreedyPackingEx({0}, remaining, rst, 0, 1.0, cps);
  EXPECT_THAT(rst, SizeIs(1));
}

detail::TCornerSearch SearchOf(const TLiteral& Literal, const TJob& Job, const std::vector<int>& Idx) {
  detail::TCornerSearch search(Literal.Rect, Literal.Radii, Literal.Areas, Idx, Job.Counts, {});
  search.Load(Literal.Generate(Idx, Job.Counts, {}, true));
  return search;
}

// Asked to stop after so many candidates, the look-ahead places one of them, and nothing after it.
TEST(CornerPlacement, AStopDuringLookAheadTakesTheBestSoFar) {
  const TJob job{20, 30, 0, {1, 2, 2.5, 3}, {5, 5, 5, 5}};
  const TLiteral literal(job);
  for (const int polls : {0, 1, 3}) {
    auto search = SearchOf(literal, job, job.Idx());
    int polled = 0;
    search.GreedyEx(0, 1.0, 1000, [&] { return ++polled > polls; });
    EXPECT_EQ(search.Field().Count(), 1);
    EXPECT_EQ(polled, polls + 2);  // the refusal, and the check after the placement
  }
}

TEST(CornerPlacement, TriesPositionsWithoutAllocatingOnceWarm) {
  const TJob job = RandomJob(11, 60);
  const TLiteral literal(job);
  TCircleNestRst rst;
  literal.GreedyEx(job.Idx(), job.Counts, rst, 0, kNoLookAhead, literal.Generate(job.Idx(), job.Counts, rst, true));
  detail::TCornerField field(literal.Rect, literal.Radii, rst);
  std::vector<detail::TCandidate> found;
  const std::vector<int> sizes = job.Idx();
  const auto tryAll = [&] {
    found.clear();
    for (int c = 0; c < field.Count(); ++c) {
      field.Look(c, 5);
      for (const int idx : sizes) field.TryAbout(idx, c, found);
    }
  };
  tryAll();
  const TAllocationCounter counter;
  tryAll();
  EXPECT_EQ(counter.Count(), 0);
}

std::string Fault(const TJob& Job, const TCircleNestRst& Rst) {
  std::vector<TPlacedCircle> placed;
  std::vector<TCircleDemand> demand;
  for (const TCornerPlacement& p : Rst) placed.push_back({p.Center, Job.Radii[p.CircleIdx], p.CircleIdx});
  for (int i = 0; i < Size(Job.Radii); ++i) demand.push_back({Job.Radii[i], Job.Counts[i]});
  TPlacedBox plate{0, 0, Job.Width, Job.Height};
  return CheckCircles(placed, plate, Job.Gap, demand);
}

// Few positions are allowed, so that equal jobs end at the same place whatever the machine does.
TEST(CirclePacking, ResultsStandInTheCallersFrame) {
  ForEachSeed(80, [](unsigned Seed) {
    TJob job = RandomJob(Seed, 40);
    const TPoint2D away{100, -50};
    TCirclePacking packing(TVRect2D(away, away + TPoint2D{job.Width, job.Height}), job.Gap, job.Radii, job.Counts);
    packing.SetStepLimit(3000);
    packing.Packing(0, 60'000);
    double area = 0;
    for (const TCornerPlacement& p : packing.PackingResult())
      area += std::numbers::pi * std::pow(job.Radii[p.CircleIdx], 2);
    EXPECT_NEAR(packing.OccuRate() * (job.Width + job.Gap) * (job.Height + job.Gap), area, 1e-9 * (1 + area));
    const TCircleNestRst once = packing.ResultTranslation();
    ExpectSame(packing.ResultTranslation(), once);
    EXPECT_EQ(Fault(job, once), "");
  });
}

TEST(CirclePacking, SizesThatCannotStandAreLeftOut) {
  const double nan = std::nan("");
  const auto placedOf = [](double Width, double Gap, std::vector<double> Radii, std::vector<int> Counts) {
    TCirclePacking packing(TVRect2D::FromSize(Width, 10), Gap, std::move(Radii), std::move(Counts));
    packing.SetStepLimit(2000);
    packing.Packing(0, 60'000);
    std::vector<int> placed;
    for (const TCornerPlacement& p : packing.ResultTranslation()) placed.push_back(p.CircleIdx);
    std::sort(placed.begin(), placed.end());
    return placed;
  };
  EXPECT_THAT(placedOf(20, 0, {5, 5.1, nan, -1, 0, 1}, {1, 1, 1, 1, 1, 1}), ElementsAre(0, 5));
  EXPECT_THAT(placedOf(20, 0, {2, 1, 1}, {2, -3}), ElementsAre(0, 0));
  EXPECT_THAT(placedOf(20, 0, {2, 1}, {0, 0}), IsEmpty());
  EXPECT_THAT(placedOf(20, 0, {2}, {1}), IsEmpty());    // no start pair
  EXPECT_THAT(placedOf(20, 0, {3.3}, {9}), IsEmpty());  // two are wider than 0.65 of the working width
  EXPECT_THAT(placedOf(20, nan, {2}, {9}), IsEmpty());
  EXPECT_THAT(placedOf(nan, 0, {2}, {9}), IsEmpty());
  EXPECT_THAT(placedOf(-20, 0, {2}, {9}), IsEmpty());
}

}  // namespace
}  // namespace platenest
