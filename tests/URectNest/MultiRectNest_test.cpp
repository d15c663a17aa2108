#include "platenest/URectNest/MultiRectNest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "BlockValues.h"
#include "ForEachSeed.h"
#include "Rects.h"
#include "ThreeBlockLayout.h"
#include "ThreeBlockScan.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

using namespace detail;
using testing::ElementsAre;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct TJob {
  double Width, Height;
  TNestRectList Parts;
  double Gap = 0;
  double MinURate = 0.5;
  bool ConstArea = false;
};

struct TAnswer {
  TNestedRects List = {TNestedRect()};  // runs replace it
  int Status = -1;
  double Usage = -1;
  double Worth = 0;  // of what was placed
};

TAnswer Nested(const TJob& Job, bool IsLimited = true) {
  const TVRect2D plate = TVRect2D::FromSize(Job.Width, Job.Height);
  TMultiRectNest nest(plate, Job.Parts, Job.Gap, Job.MinURate, Job.ConstArea);
  TAnswer answer;
  bool success = false;
  answer.Usage =
      IsLimited ? nest.ShapeRectNestWithAmt(answer.List, answer.Status) : nest.ShapeRectNest(answer.List, success);
  EXPECT_EQ(success, !IsLimited && answer.Usage >= 0.88);
  TNestRectList demand = Numbered(Job.Parts);
  for (TNestRect& part : demand) part.Amount = IsLimited ? part.Amount : std::numeric_limits<int>::max();
  EXPECT_EQ(CheckRectLayout(answer.List, plate, Job.Gap, demand), "");
  for (const TNestedRect& item : answer.List) {
    const TVRect2D& box = item.Part.BoundBox;
    answer.Worth += Job.ConstArea ? item.Part.Area : (box.Width() + Job.Gap) * (box.Height() + Job.Gap);
  }
  return answer;
}

TEST(MultiRectNest, KeepsFewerRasterPointsForMoreSizesAndLargerPlates) {
  EXPECT_EQ(PointLimits(1000, 500, 1), (TPointLimits{40, 20}));
  EXPECT_EQ(PointLimits(1500, 3000, 10), (TPointLimits{11, 22}));
  EXPECT_EQ(PointLimits(3000, 100, 30), (TPointLimits{16, 1}));
  const std::vector<int> points{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_THAT(Thinned(points, 4), ElementsAre(0, 3, 5, 8));
  EXPECT_THAT(Thinned(points, 0), ElementsAre(0)) << "a plate many times longer than wide";
}

TEST(MultiRectNest, CandidatesWithinTheToleranceOfABeatenOneAreLost) {
  TCandidates best{};
  const auto valuesAfter = [&](std::initializer_list<double> values) {
    for (const double value : values) Updateinfo(best, {true, 0, 0, value}, 1);
    std::vector<double> kept;
    for (const TRectInfo& info : best) kept.push_back(info.Value);
    return kept;
  };
  EXPECT_THAT(valuesAfter({1, 50, 50.5, 51, 100, 20}), ElementsAre(100, 50, 20, 0, 0)) << "1 is as good as nothing";
  EXPECT_THAT(valuesAfter({99.5}), ElementsAre(100, 99.5, 50, 20, 0)) << "only the beaten neighbour is looked at";
  EXPECT_THAT(valuesAfter({200}), ElementsAre(200, 99.5, 99.5, 50, 20)) << "100 did not move over 99.5";
}

TEST(BlockValues, HoldWholeStacksAndRememberBlocksWithoutTakingDemandAgain) {
  TBlockValues blocks({{3, 4, 12}, {2, 9, 18}});
  std::vector<int> used(2);
  blocks.SetDemand({2, 0});
  EXPECT_EQ(blocks.G(8, 4, used), 24);
  EXPECT_FALSE(blocks.Find(8, 4)->Direct) << "columns win ties";
  EXPECT_EQ(blocks.G(8, 4, used), 24) << "remembered, though no demand is left";
  EXPECT_THAT(used, ElementsAre(2, 0));
  used = {0, 0};
  blocks.SetDemand({0, 1});
  EXPECT_EQ(blocks.G(18, 4, used), 0) << "rows and columns would be of two";
  blocks.SetDemand({0, 4});
  EXPECT_EQ(blocks.G(9, 5, used), 36) << "fits turned only";
  EXPECT_THAT(blocks.Find(9, 5)->Place, ElementsAre(-2));
  blocks.GiveBack(used);
  EXPECT_EQ(blocks.G(17, 9, used), 8 * 18) << "both ways, each within the demand: more than the demand allows";
  EXPECT_THAT(used, ElementsAre(0, 4));
}

// At x = 14 size 0 and size 1 are placed, at x = 10 all three.
TEST(ThreeBlockScan, GivesTheDemandBackBeforeTheNextCut) {
  TThreeBlockScan scan(24, 10, {14, 10}, {4}, 0.1, TBlockValues({{10, 10, 100}, {9, 6, 54}, {5, 5, 25}}));
  EXPECT_EQ(scan.Calc({1, 1, 1}), 100 + 54 + 25);
}

//     +---+-----+-----+
//     | 0 |     |     |
//     +---+  1  |  1  |     The first block ends at x = 5, a unit to the right of its column. The third one is
//     | 0 |     |     |     remembered from the second, whose size it has, and counts on two copies that are not there.
//     +---+-----+-----+
//     | 0 |     |     |
//     +---+  1  |  1  |
//     | 0 |     |     |
//     +---+-----+-----+
TEST(ThreeBlockLayout, ShortStacksLoseTheirWorthAndTheNextBlockMovesUp) {
  const TNestRectList parts{Part(0, 4, 3), Part(0, 7, 6)};
  TThreeBlockScan scan(19, 12, {5}, {6}, 0.1, TBlockValues({{4, 3, 12}, {7, 6, 30}}));
  EXPECT_EQ(scan.Calc({4, 2}), 168);
  const TRectInfo& best = scan.Candidates().front();
  const TThreeBlockLayout layout(scan, parts, 0);
  EXPECT_EQ(layout.LayOut(best).Count(), 4 + 2 + 2);
  EXPECT_EQ(layout.LayOut(best).BoundBox().Right, 5 + 14);
  EXPECT_EQ(layout.AddParts(best, {4, 2}).Dec, -2 * 30);
  const TTrial trial = layout.AddParts(best, {1, 3});
  EXPECT_EQ(trial.List.Count(), 1 + 2 + 1);
  EXPECT_EQ(trial.List.BoundBox().Right, 4 + 14);
  EXPECT_EQ(trial.Dec, -(3 * 12 + 30));
}

TEST(ThreeBlockLayout, AnotherBlockUnderTheSameCodeIsNotLaidOut) {
  TThreeBlockScan scan(3, 1'000'005, {1}, {5}, 0.1, TBlockValues({{1, 1000, 1}}));
  scan.Calc({9000});
  const TRectInfo info{true, 1, 5, 0};  // the second block is 2 by 5, the first one 1 by 1000005
  const TTrial trial = TThreeBlockLayout(scan, {Part(0, 1, 1000)}, 0).AddParts(info, {9000});
  EXPECT_EQ(trial.List.Count(), 1000 + 2 * 1000);
  EXPECT_EQ(trial.Dec, -1000);
}

// The most copies of A by B that three blocks of rows can hold, over every cut at every whole length.
int MostInThreeBlocks(int L, int W, int A, int B) {
  const auto inRows = [=](int x, int y) {
    int most = 0;
    for (int n = 0; n * B <= y; ++n) most = std::max(most, n * (x / A) + (y - n * B) / A * (x / B));
    return most;
  };
  const auto in = [&](int x, int y) { return std::max(inRows(x, y), inRows(y, x)); };
  int most = 0;
  for (int x = 0; x <= L; ++x)
    for (int y = 0; y <= W; ++y)
      most = std::max({most, in(x, W) + in(L - x, y) + in(L - x, W - y), in(L, y) + in(x, W - y) + in(L - x, W - y)});
  return most;
}

TEST(MultiRectNest, UnlimitedLayoutsOfOneSizeEqualEveryCutAtEveryLength) {
  EXPECT_NEAR(Nested({43, 26, {Part(1, 7, 3)}}, false).Usage, 1092.0 / (43 * 26), 1e-12);
  EXPECT_NEAR(Nested({14, 14, {Part(0, 7, 5)}}, false).Usage, 140.0 / (14 * 14), 1e-12);
  ForEachSeed(60, [](unsigned seed) {
    TDice from(seed);
    const int l = from(10, 34);
    const int w = from(5, l);
    const int a = from(2, 8);
    const int b = from(1, 5);
    EXPECT_EQ(Nested({1.0 * l, 1.0 * w, {Part(-5, a, b)}}, false).List.Count(), MostInThreeBlocks(l, w, a, b));
  });
}

TEST(MultiRectNest, RandomLayoutsAreValidAndWorthWhatTheUsageSays) {
  ForEachSeed(120, [](unsigned seed) {
    TDice from(seed);
    const int perUnit = seed % 2 == 0 ? 1 : 20;
    const auto side = [&](int low, int high) { return 1.0 / perUnit * from(low * perUnit, high * perUnit); };
    TJob job{side(60, 400), side(60, 400), {}, std::vector{0.0, 0.0, 1.0, 2.35}[seed / 2 % 4], 0, seed % 3 == 0};
    const double hair = job.Gap > 0 && seed % 5 == 0 ? 1.5e-6 : 0;  // the scan sees sizes that are 2e-6 too small
    for (int k = from(1, 9); k > 0; --k) {
      const double width = side(10, 80) + hair;
      job.Parts.push_back(Part(from(0, 40), width, from(0, 4) == 0 ? width : side(10, 80), from(0, 9000)));
    }
    const double area = (job.Width + job.Gap) * (job.Height + job.Gap);
    const bool isWhole = job.ConstArea || (perUnit == 1 && job.Gap == 0);
    const double roundedUp = isWhole ? 1e-6 : 1e-3 * area;
    const TAnswer limited = Nested(job);
    EXPECT_NEAR(limited.Usage * area, limited.Worth + roundedUp / 2, roundedUp);
    const TAnswer unlimited = Nested(job, false);
    EXPECT_NEAR(unlimited.Usage * area, unlimited.Worth, 1e-5 * area);
  });
}

// The scan counts on nine of each, three by three.
TEST(MultiRectNest, CopiesThatMissTheirRoomByMoreThanRoundingAreLeftOut) {
  const auto placed = [](double side) { return Nested({299, 299, {Part(10, side, side)}, 1}).List.Count(); };
  EXPECT_EQ(placed(99 + 0.5e-6), 9);
  EXPECT_EQ(placed(99 + 1.5e-6), 4);
}

// Under this demand the first and the last candidate are left with 28, one between them with 88.
TEST(MultiRectNest, KeepsTheBestOfTheTrialsThatLackDemand) {
  EXPECT_NEAR(Nested({12, 8, {Part(7, 2, 2), Part(9, 5, 3)}}).Usage, 88.0 / (12 * 8), 1e-12);
}

TEST(MultiRectNest, StatusTellsGoodFromPoorAndFromHopeless) {
  const auto statusOf = [](int amount, double minURate = 0.5, double side = 10) {
    return Nested({100, 100, {Part(amount, side, side)}, 0, minURate}).Status;
  };
  EXPECT_EQ(statusOf(89), 2);
  EXPECT_EQ(statusOf(100), 0);
  EXPECT_EQ(statusOf(100, kNaN), 0);
  EXPECT_EQ(statusOf(100, 1.01), 1) << "no limit above";
  EXPECT_EQ(statusOf(2, 0.5, 75), 1) << "0.5 acts as 0.88";
  const TJob cheap{1000, 1000, {Part(4, 500, 500, 1)}, 0, 0.5, true};
  EXPECT_TRUE(Nested(cheap).List.empty()) << "worth less than the tolerance";
  TStopToken token;
  const TStopTokenScope scope(&token);
  token.RequestStop();
  EXPECT_EQ(statusOf(100), 1) << "stopped before the first block";
}

TEST(MultiRectNest, UselessInputHoldsNothing) {
  const TNestRect good = Part(100, 10, 10);
  for (const TJob& job :
       {TJob{100, 100, {}}, TJob{0, 100, {good}}, TJob{kNaN, 100, {good}}, TJob{100, kInfinity, {good}},
        TJob{100, 100, {good}, kNaN}, TJob{100, 100, {good}, -100}, TJob{100, 100, {Part(1000, -10, -10)}}}) {
    EXPECT_EQ(Nested(job).Status, 2);
    EXPECT_TRUE(Nested(job).List.empty() && Nested(job, false).List.empty());
  }
  const TNestRectList mixed{Part(5, kInfinity, 1), Part(5, kNaN, 1), Part(9, 1e300, 1e-300), Part(-3, 10, 10), good};
  EXPECT_EQ(Nested({100, 100, mixed}).List.Count(), 100);
}

TEST(MultiRectNest, FailureOfATrialHasItsOwnTextAndKeepsTheArguments) {
  TAnswer answer;
  TMultiRectNest nest(TVRect2D::FromSize(3200, 3200), {Part(10'240'000, 1, 1)}, 0, 0, false);
  EXPECT_THAT([&] { nest.ShapeRectNestWithAmt(answer.List, answer.Status); },
              testing::ThrowsMessage<TNestError>("Error In FUNC[TMultiRectNest.ShapeRectNestWithAmt]"));
  EXPECT_EQ(answer.List.Count(), 1);
  EXPECT_EQ(answer.Status, -1);
}

}  // namespace
}  // namespace platenest
