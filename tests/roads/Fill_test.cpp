#include <gtest/gtest.h>

#include <random>

#include "FillJob.h"
#include "ForEachSeed.h"
#include "platenest/foundation/Errors.h"

namespace platenest::test {
namespace {

TFillCase CaseOf(unsigned Seed) {
  std::mt19937 engine(Seed);
  return MakeFillCase([&engine](int Count) { return static_cast<int>(engine() % static_cast<unsigned>(Count)); });
}

// The widest campaign so far: PLATENEST_ROUNDS=100, which is 3000 jobs.
constexpr unsigned kSeeds = 30;

TEST(Fill, EveryNesterKeepsPlateGapAndAmounts) {
  ForEachSeed(kSeeds, [](unsigned seed) {
    const TFillCase job = CaseOf(seed);
    for (const TFillMethod method : kFillMethods) {
      TNestedRects layout;
      ASSERT_NO_THROW(layout = RunFillSmall(method, job)) << NameOf(method) << ": " << TextOf(job);
      EXPECT_EQ(FillFault(method, layout, job), "") << NameOf(method) << ": " << TextOf(job);
    }
  });
}

TEST(Fill, TheFacadesAnswerIsValidAndWithinItsBounds) {
  ForEachSeed(kSeeds, [](unsigned seed) {
    TFillCase job = CaseOf(seed);
    for (TNestRect& part : job.Parts)
      if (part.Area == 0) part.Area = 0.01;  // a worth of 0 is refused
    const Job asked = FillJobOf(job, 0.05);
    Result result;
    ASSERT_NO_THROW(result = run(asked)) << TextOf(job);
    const TNestedRects layout = LayoutOf(result, job);
    EXPECT_EQ(FillFault(layout, job), "") << TextOf(job);
    EXPECT_EQ(FirstFault(asked, result), "") << TextOf(job);
    const double worth = WorthOf(layout, job);
    for (const Bound& bound : result.Bounds) {
      if (bound.What != "value") continue;
      EXPECT_LE(worth, bound.Value * (1 + 1e-9)) << TextOf(job);
    }
    EXPECT_TRUE(worth > 0 || WorthBound(job) == 0) << TextOf(job);
  });
}

}  // namespace
}  // namespace platenest::test
