#include "CornerPlacement.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>
#include <random>

#include "AllocationCounter.h"
#include "CornerSearch.h"
#include "ForEachSeed.h"
#include "LiteralPacking.h"
#include "platenest/foundation/Line2D.h"
#include "platenest/layoutcheck/CircleCheck.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using TProbe = TRuleProbe;
using TJob = TRuleJob;

constexpr double kNoLookAhead = -4294967295.0;

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

// Top corners on an empty plate, what is left alone below them, and a start pair of which one rides on the other.
TEST(CirclePacking, RefillsTheTopAndKnowsStartPairsAndEstimates) {
  const auto plate = TVRect2D::FromSize(10, 10);
  for (const double y : {6.99, 7.0}) {
    TProbe packing(plate, 0, {1}, {30});
    packing.UpdateResult(0.01, {{0, 1, y}});
    packing.TailRePack();
    EXPECT_THAT(packing.PackingResult(), SizeIs(testing::Gt(15)));
    EXPECT_NEAR(packing.PackingResult()[0].Center.Y, y < 7 ? y : 9, 1e-9);
  }
  TCircleNestRst rst = {{0, 1, 3}, {1, 2, 1}, {2, 0, 3}, {3, 5, 0}};
  TProbe::SortByY(rst);
  ExpectSame(rst, {{3, 5, 0}, {1, 2, 1}, {0, 1, 3}, {2, 0, 3}});

  EXPECT_EQ(TProbe(TVRect2D::FromSize(100, 100), 0, {5}, {1000}).EstimateCount(), 101);
  EXPECT_EQ(TProbe(TVRect2D::FromSize(100, 100), 0, {5, 10}, {200, 20}).EstimateCount(), 71);

  TProbe narrow(TVRect2D::FromSize(5, 4), 0, {1.3}, {3});
  narrow.Packing(0, 999);
  ASSERT_THAT(narrow.PackingResult(), SizeIs(2));
  EXPECT_NEAR(narrow.PackingResult()[0].Center.Y, 3.49089, 1e-5);
  EXPECT_NEAR(narrow.PackingResult()[1].Center.X, 2.7, 1e-9);
  TProbe tooLow(TVRect2D::FromSize(4.78, 4), 0, {1.3}, {3});
  tooLow.Packing(0, 60'000);
  EXPECT_THAT(tooLow.PackingResult(), IsEmpty());
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
