#include "CornerPlacement.h"

#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "AllocationCounter.h"
#include "CornerSearch.h"
#include "ForEachSeed.h"
#include "LiteralPacking.h"
#include "platenest/foundation/Line2D.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

void ComparePacking(const TRuleJob& Job, bool LookAhead) {
  TLiteral literal(Job);
  literal.Fill({}, true, LookAhead);
  const TRuleProbe packing = Job.Packing();
  TCircleNestRst rst;
  std::vector<int> remaining = Job.Counts;
  auto cps = packing.GeneratePosibleCP(Job.Idx(), remaining, rst, true);
  EXPECT_EQ(packing.GreedyPackingEx(Job.Idx(), remaining, rst, 0, LookAhead ? 1 : -1e9, cps), literal.Occu);
  ExpectSame(rst, literal.Result);
}

TEST(CornerPlacement, GreedyWithAndWithoutLookAheadChoosesWhatTheRulesChoose) {
  ForEachSeed(300, [](unsigned Seed) { ComparePacking(RandomJob(Seed, 60), false); });
  ForEachSeed(100, [](unsigned Seed) { ComparePacking(RandomJob(Seed, 12), true); });
}

// Lists that are updated step by step, as the bottom-left fill does, against those of the rules.
TEST(CornerPlacement, UpdatedCandidatesAreThoseOfTheRules) {
  const auto valuesOf = [](const TPosibleCPList& CPs) {
    std::vector<double> values;
    for (const TPosibleCP& cp : CPs) values.push_back(cp.Value);
    return values;
  };
  ForEachSeed(60, [&valuesOf](unsigned Seed) {
    const TRuleJob job = RandomJob(Seed, 40);
    const TRuleProbe packing = job.Packing();
    const TLiteral literal(job);
    auto state = literal.Begin({}, true);
    TPosibleCPList own = state.CPs;
    while (!state.CPs.empty()) {
      literal.Place(state.CPs[state.CPs.size() / 2].CP, state);
      packing.UpdatePosibleCP(job.Idx(), state.Left, state.Rst, own);
      ASSERT_EQ(valuesOf(own), valuesOf(state.CPs));
    }
    const auto half = literal.Begin({state.Rst.begin(), state.Rst.begin() + Size(state.Rst) / 2}, false);
    ASSERT_EQ(valuesOf(packing.GeneratePosibleCP(job.Idx(), half.Left, half.Rst, false)), valuesOf(half.CPs));
  });
}

TEST(CornerPlacement, CentersTouchBothCircles) {
  const auto centersOf = [](double R1, double Distance) {
    TPoint2D points[2];
    const int count = TRuleProbe::GetCircleCenter(1, R1, 1, {0, 0}, {Distance, 0}, points[0], points[1]);
    return std::vector<TPoint2D>{points, points + count};
  };
  EXPECT_THAT(centersOf(1, 4.00001), IsEmpty());
  EXPECT_THAT(centersOf(1, 4), ElementsAre(TPoint2D{2, 0}));
  EXPECT_THAT(centersOf(1, 2), ElementsAre(TPoint2D{1, std::sqrt(3)}, TPoint2D{1, -std::sqrt(3)}));
  EXPECT_THAT(centersOf(2, 3), ElementsAre(TPoint2D{7.0 / 3, 1.885618}, TPoint2D{7.0 / 3, -1.885618}));
}

TEST(CornerPlacement, CentersOnAnEdgeAreThoseOfTheLine) {
  ForEachSeed(200, [](unsigned Seed) {
    std::mt19937 random(Seed);
    const auto any = [&random](double Most) { return static_cast<double>(random() % 1000 + 1) * 1e-3 * Most; };
    const TVRect2D plate = TVRect2D::FromSize(any(10), any(10));
    const double r = any(6);
    const TPoint2D center{any(10), any(10)};
    const double reach = Seed % 4 == 0 ? std::fabs(center.Y - (plate.Top - r)) : any(8);
    const TPoint2D low{r, r};
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

// A lone circle in the corner, and what stands beside it or across: the gaps to what is not touched tell. A position
// that touches everything has no hole degree at all, but is chosen if it is the only one.
TEST(CornerPlacement, HoleDegreeIsTheGapToTheNearestThingNotTouched) {
  using TFound = std::pair<TPoint2D, double>;
  std::vector<TFound> found;
  for (const TPosibleCP& cp : TRuleJob{10, 10, 0, {1}, {9}}.Packing().GeneratePosibleCP({0}, {8}, {{0, 1, 1}}, true))
    found.emplace_back(cp.CP.Center, cp.Value);
  EXPECT_THAT(found, testing::UnorderedElementsAre(TFound({3, 1}, -1), TFound({1, 3}, -1), TFound({1, 9}, -5),
                                                   TFound({9, 9}, -7)));
  TRuleProbe packing = TRuleJob{2, 2, 0, {1}, {1}}.Packing();
  EXPECT_EQ(packing.GeneratePosibleCP({0}, {1}, {}, true)[0].Value, -kInfinity);
  packing.TailRePack();
  EXPECT_THAT(packing.PackingResult(), SizeIs(1));
}

// Asked to stop after so many candidates, the look-ahead places one of them, and nothing after it.
TEST(CornerPlacement, AStopDuringLookAheadTakesTheBestSoFar) {
  const TRuleJob job{20, 30, 0, {1, 2, 2.5, 3}, {5, 5, 5, 5}};
  const TLiteral literal(job);
  for (const int polls : {0, 1, 3}) {
    detail::TCornerSearch search(literal.Rect, literal.Radii, literal.Areas, literal.Idx, job.Counts, {});
    search.Load(literal.Begin({}, true).CPs);
    int polled = 0;
    search.GreedyEx(0, 1.0, 1000, [&] { return ++polled > polls; });
    EXPECT_EQ(search.Field().Count(), 1);
    EXPECT_EQ(polled, polls + 2);  // the refusal, and the check after the placement
  }
}

TEST(CornerPlacement, TriesPositionsWithoutAllocatingOnceWarm) {
  TLiteral literal(RandomJob(11, 60));
  literal.Fill({}, true, false);
  detail::TCornerField field(literal.Rect, literal.Radii, literal.Result);
  std::vector<detail::TCandidate> found;
  const auto tryAll = [&] {
    found.clear();
    for (int c = 0; c < field.Count(); ++c) {
      field.Look(c, 60);
      for (const int idx : literal.Idx) field.TryAbout(idx, c, found);
    }
  };
  tryAll();
  EXPECT_GT(field.Count(), 10);
  const TAllocationCounter counter;
  tryAll();
  EXPECT_EQ(counter.Count(), 0);
}

// Top corners on an empty plate, what is left alone below them, and a start pair of which one rides on the other.
TEST(CirclePacking, RefillsTheTopAndKnowsStartPairsAndEstimates) {
  for (const double y : {6.99, 7.0}) {
    TRuleProbe packing = TRuleJob{10, 10, 0, {1}, {30}}.Packing();
    packing.UpdateResult(0.01, {{0, 1, y}});
    packing.TailRePack();
    EXPECT_THAT(packing.PackingResult(), SizeIs(testing::Gt(15)));
    EXPECT_NEAR(packing.PackingResult()[0].Center.Y, y < 7 ? y : 9, 1e-9);
  }
  TCircleNestRst rst = {{0, 1, 3}, {1, 2, 1}, {2, 0, 3}, {3, 5, 0}};
  TRuleProbe::SortByY(rst);
  ExpectSame(rst, {{3, 5, 0}, {1, 2, 1}, {0, 1, 3}, {2, 0, 3}});

  EXPECT_EQ((TRuleJob{100, 100, 0, {5}, {1000}}.Packing().EstimateCount()), 101);
  EXPECT_EQ((TRuleJob{100, 100, 0, {5, 10}, {200, 20}}.Packing().EstimateCount()), 71);

  TRuleProbe narrow = TRuleJob{4, 5, 0, {1.3}, {3}}.Packing();
  narrow.Packing(0, 999);
  ASSERT_THAT(narrow.PackingResult(), SizeIs(2));
  EXPECT_NEAR(narrow.PackingResult()[0].Center.Y, 3.49089, 1e-5);
  EXPECT_NEAR(narrow.PackingResult()[1].Center.X, 2.7, 1e-9);
  TRuleProbe tooLow = TRuleJob{4, 4.78, 0, {1.3}, {3}}.Packing();
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
    return placed;
  };
  EXPECT_THAT(placedOf(20, 0, {5, 5.1, nan, -1, 0, 1}, {1, 1, 1, 1, 1, 1}), testing::UnorderedElementsAre(0, 5));
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
