#include "platenest/uBCPBase/BCPBase.h"

#include <gmock/gmock.h>

#include <string>
#include <tuple>
#include <vector>

#include "CuttingStock1D.h"
#include "FakeClock.h"

namespace platenest {
namespace {

using testing::ElementsAre, testing::Property;

// "count x times" in order.
std::vector<std::string> Listed(const TBarSolution& Solution) {
  std::vector<std::string> list;
  for (const auto& pair : Solution)
    list.push_back(std::to_string(pair.Key->Counts[0]) + "x" + std::to_string(pair.Value));
  return list;
}

TEST(BCPSolution, MergesNeighboursAfterSortingOnly) {
  TBarSolution separated =
      BarSolution({{{1}, 0.9, 1}, {{2}, 0.9, 2}, {{1}, 0.9, 3}, {{1}, 0.9, 5}, {{3}, 0.9, 1}, {{3}, 0.9, 1}});
  separated.MergeSameSolution();
  EXPECT_THAT(Listed(separated), ElementsAre("1x1", "2x2", "1x8", "3x2"));
}

TEST(BCPSolution, CostCountsTheEmptiestColumnByItsUsageAndLeavesTheSolutionMerged) {
  TBarSolution solution = BarSolution({{{2}, 0.5, 2}, {{1}, 0.9, 1}, {{1}, 0.9, 3}});
  EXPECT_DOUBLE_EQ(solution.GetCSPCost(), 5.5);
  EXPECT_THAT(Listed(solution), ElementsAre("1x4", "2x2"));
  EXPECT_DOUBLE_EQ(BarSolution({{{1}, 0.25, 3}}).GetCSPCost(), 2.25);
  EXPECT_EQ(TBarSolution().GetCSPCost(), 0.0);
}

TEST(BCPSolution, AddingASolutionMergesEvenWhenItIsEmptyOrTheSame) {
  TBarSolution origin = BarSolution({{{1}, 0.9, 1}, {{7}, 0.95, 1}, {{1}, 0.9, 2}});
  TBarSolution clone = origin.Clone(), receiver;
  receiver.AddBCPSolution(origin);
  origin.Delete(1);
  EXPECT_THAT(Listed(origin), ElementsAre("1x1", "1x2"));
  EXPECT_THAT(Listed(receiver), ElementsAre("7x1", "1x3"));
  EXPECT_THAT(Listed(clone), ElementsAre("1x1", "7x1", "1x2")) << "a clone is not merged";
  origin.AddBCPSolution(TBarSolution());
  EXPECT_THAT(Listed(origin), ElementsAre("1x3"));
  origin.AddBCPSolution(origin);
  EXPECT_THAT(Listed(origin), ElementsAre("1x6"));
}

TEST(BCPSolution, RefusesIndicesBehindTheLastPair) {
  TBarSolution solution = BarSolution({{{1}, 0.9, 1}});
  EXPECT_THAT([&] { solution.GetSubSolution(1); },
              testing::Throws<TNestError>(Property(&TNestError::Text, "Out of Range in getting SubBCPSoution")));
  for (const int idx : {-1, 1}) EXPECT_THROW(solution.Delete(idx), TAssertionError) << idx;
  EXPECT_EQ(solution.Count(), 1);
}

TEST(BCPProblem, ChecksEachRowInItsSense) {
  const TBarSolution three = BarSolution({{{1}, 0.1, 1}, {{2}, 0.2, 1}});
  using TCase = std::tuple<double, int, bool>;
  for (const auto& [demand, sense, isMet] : {TCase{3, 0, true},
                                             {2, 0, false},
                                             {4, 0, false},
                                             {3 + 5e-9, 0, true},
                                             {3 - 5e-9, 0, true},
                                             {3 + 2e-8, 0, false},
                                             {2, 1, true},
                                             {3 + 5e-9, 1, true},
                                             {3 + 2e-8, 1, false},
                                             {4, 1, false},
                                             {4, -1, true},
                                             {3, -1, true},
                                             {3 - 2e-8, -1, false},
                                             {2, 7, true}})
    EXPECT_EQ(TSenseProblem({demand}, {sense}).CheckSolution(three), isMet) << demand << " in sense " << sense;

  const TBarSolution twoRows = BarSolution({{{1, 2}, 0.3, 2}});
  EXPECT_TRUE(TSenseProblem({2, 4}, {0, 0}).CheckSolution(twoRows));
  EXPECT_FALSE(TSenseProblem({2, 5}, {0, 1}).CheckSolution(twoRows));
  EXPECT_FALSE(TSenseProblem({0}, {1}).CheckSolution(TBarSolution())) << "an empty solution answers nothing";
}

TEST(BCPProblem, ARealResidualBecomesAWholeDemandByRaisingAndTruncating) {
  const TBarProblem main(10, {5, 4, 3, 2, 1}, {9, 9, 9, 9, 9});
  const auto sub = main.GetSubBCPProblem({0, 2, 3, 4}, TDoubleDynArray{1.9995, 1.998, 2.9999999, 0.9985});
  EXPECT_THAT(sub->BVec(), ElementsAre(2, 1, 3));
  EXPECT_THAT(sub->RowDict(), ElementsAre(0, 2, 3));
  EXPECT_THAT(main.RowDict(), ElementsAre(0, 1, 2, 3, 4));
  EXPECT_THROW(main.GetSubBCPProblem({0}, TDoubleDynArray{3e9}), TRangeError);
}

TEST(BCPStopWatch, IsOverOnlyWhileItRunsPastALimit) {
  TFakeClock clock;
  TBCPStopWatch watch(1.5), unlimited(0);
  unlimited.Start();
  const auto isOverAfter = [&](double ms) {
    clock.AdvanceMs(ms);
    EXPECT_FALSE(unlimited.TimeOver());
    return watch.TimeOver();
  };
  EXPECT_FALSE(isOverAfter(2000)) << "never started";
  watch.Start();
  EXPECT_FALSE(isOverAfter(1500)) << "exactly at the limit";
  EXPECT_TRUE(isOverAfter(1));
  watch.Stop();
  EXPECT_FALSE(isOverAfter(0));
  watch.StartNew();
  EXPECT_FALSE(isOverAfter(1500));
  EXPECT_TRUE(isOverAfter(1)) << "a new start keeps the limit";
}

}  // namespace
}  // namespace platenest
