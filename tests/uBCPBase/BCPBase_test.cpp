#include "platenest/uBCPBase/BCPBase.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "CuttingStock1D.h"
#include "FakeClock.h"

namespace platenest {
namespace {

using testing::ElementsAre;

// Patterns of one row: the count names the pattern.
std::unique_ptr<TBarPattern> Pattern(int Name, double Usage) {
  return std::make_unique<TBarPattern>(TIntegerDynArray{Name}, Usage);
}

struct TEntry {
  int Name;
  double Usage;
  int Times;
};

TBarSolution Solution(const std::vector<TEntry>& Entries) {
  TBarSolution solution;
  for (const TEntry& entry : Entries) solution.AddSubSolution(Pattern(entry.Name, entry.Usage), entry.Times);
  return solution;
}

// "name x times" in order.
std::vector<std::string> Listed(const TBarSolution& Solution) {
  std::vector<std::string> list;
  for (const auto& pair : Solution)
    list.push_back(std::to_string(pair.Key->Counts[0]) + "x" + std::to_string(pair.Value));
  return list;
}

TEST(BCPSolution, MergesNeighboursAfterSortingOnly) {
  TBarSolution mixed = Solution({{1, 0.9, 1}, {2, 0.5, 2}, {1, 0.9, 3}});
  mixed.MergeSameSolution();
  EXPECT_THAT(Listed(mixed), ElementsAre("1x4", "2x2"));

  TBarSolution separated = Solution({{1, 0.9, 1}, {2, 0.9, 2}, {1, 0.9, 3}, {1, 0.9, 5}, {3, 0.9, 1}, {3, 0.9, 1}});
  separated.MergeSameSolution();
  EXPECT_THAT(Listed(separated), ElementsAre("1x1", "2x2", "1x8", "3x2"));
}

TEST(BCPSolution, CostCountsTheEmptiestColumnByItsUsageAndLeavesTheSolutionMerged) {
  TBarSolution solution = Solution({{2, 0.5, 2}, {1, 0.9, 1}, {1, 0.9, 3}});
  EXPECT_DOUBLE_EQ(solution.GetCSPCost(), 5.5);
  EXPECT_THAT(Listed(solution), ElementsAre("1x4", "2x2"));
  EXPECT_DOUBLE_EQ(Solution({{1, 0.25, 3}}).GetCSPCost(), 2.25);
  EXPECT_EQ(TBarSolution().GetCSPCost(), 0.0);
}

TEST(BCPSolution, CopiesAreDeepAndAddingASolutionMergesEvenWhenItIsEmpty) {
  TBarSolution origin = Solution({{1, 0.9, 1}, {1, 0.9, 2}});
  TBarSolution clone = origin.Clone();
  const TBarPattern outside({7}, 0.95);
  origin.AddSubSolution(outside, 1);
  EXPECT_NE(origin.GetSubSolution(2).Key.get(), &outside);
  TBarSolution receiver;
  receiver.AddBCPSolution(origin);
  origin.GetSubSolution(0).Key->Counts[0] = 5;
  origin.Delete(1);
  EXPECT_THAT(Listed(origin), ElementsAre("5x1", "7x1"));
  EXPECT_THAT(Listed(receiver), ElementsAre("7x1", "1x3"));
  EXPECT_THAT(Listed(clone), ElementsAre("1x1", "1x2")) << "a clone is not merged";
  clone.AddBCPSolution(TBarSolution());
  EXPECT_THAT(Listed(clone), ElementsAre("1x3"));
  clone.AddBCPSolution(clone);
  EXPECT_THAT(Listed(clone), ElementsAre("1x6"));
}

TEST(BCPSolution, RefusesIndicesBehindTheLastPair) {
  TBarSolution solution = Solution({{1, 0.9, 1}});
  try {
    solution.GetSubSolution(1);
    FAIL();
  } catch (const TNestError& error) {
    EXPECT_EQ(error.Text(), "Out of Range in getting SubBCPSoution");
  }
  for (const int idx : {-1, 1}) EXPECT_THROW(solution.Delete(idx), TAssertionError) << idx;
  EXPECT_EQ(solution.Count(), 1);
}

// A problem with any senses and any demand.
class TSenseProblem : public TBarProblem {
 public:
  TSenseProblem(const TDoubleDynArray& Demand, const TIntegerDynArray& Senses)
      : TBarProblem(10, TIntegerDynArray(Demand.size(), 1), TIntegerDynArray(Demand.size())) {
    FBVec = Demand;
    FIneqVec = Senses;
  }
};

TEST(BCPProblem, ChecksEachRowInItsSense) {
  struct {
    double Demand;
    int Sense;
    bool Met;  // by 3
  } const cases[] = {{3, 0, true},          {2, 0, false},        {4, 0, false}, {3 + 5e-9, 0, true},
                     {3 - 5e-9, 0, true},   {3 + 2e-8, 0, false}, {2, 1, true},  {3 + 5e-9, 1, true},
                     {3 + 2e-8, 1, false},  {4, 1, false},        {4, -1, true}, {3, -1, true},
                     {3 - 2e-8, -1, false}, {2, 7, true}};
  const TBarSolution three = Solution({{1, 0.1, 1}, {2, 0.2, 1}});
  for (const auto& c : cases)
    EXPECT_EQ(TSenseProblem({c.Demand}, {c.Sense}).CheckSolution(three), c.Met) << c.Demand << " in sense " << c.Sense;

  TBarSolution twoRows;
  twoRows.AddSubSolution(std::make_unique<TBarPattern>(TIntegerDynArray{1, 2}, 0.3), 2);
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
  TBCPStopWatch watch(1.5);
  TBCPStopWatch unlimited(0);
  unlimited.Start();
  clock.AdvanceMs(2000);
  EXPECT_FALSE(watch.TimeOver()) << "never started";
  watch.Start();
  clock.AdvanceMs(1500);
  EXPECT_FALSE(watch.TimeOver()) << "exactly at the limit";
  clock.AdvanceMs(1);
  EXPECT_TRUE(watch.TimeOver());
  watch.Stop();
  EXPECT_FALSE(watch.TimeOver());
  watch.StartNew();
  EXPECT_FALSE(watch.TimeOver());
  clock.AdvanceMs(1501);
  EXPECT_TRUE(watch.TimeOver()) << "a new start keeps the limit";
  clock.AdvanceMs(1e12);
  EXPECT_FALSE(unlimited.TimeOver());
}

}  // namespace
}  // namespace platenest
