#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <list>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "AllocationCounter.h"
#include "ForEachSeed.h"

namespace platenest {
namespace {

std::vector<unsigned> SeedsOf(unsigned Count) {
  std::vector<unsigned> seeds;
  ForEachSeed(Count, [&](unsigned seed) { seeds.push_back(seed); });
  return seeds;
}

TEST(ForEachSeed, TakesItsFirstSeedAndItsRoundsFromTheEnvironmentAndNamesTheFailingOne) {
  const std::vector<unsigned> plain = SeedsOf(3);
  setenv("PLATENEST_SEED", "40", 1);
  setenv("PLATENEST_ROUNDS", "2", 1);
  const std::vector<unsigned> told = SeedsOf(2);
  testing::TestPartResultArray failures;
  {
    const testing::ScopedFakeTestPartResultReporter reporter(&failures);
    ForEachSeed(5, [&](unsigned s) { EXPECT_NE(s, 42u); });
  }
  unsetenv("PLATENEST_SEED");
  unsetenv("PLATENEST_ROUNDS");
  EXPECT_EQ(plain, (std::vector<unsigned>{0, 1, 2}));
  EXPECT_EQ(told, (std::vector<unsigned>{40, 41, 42, 43}));
  ASSERT_EQ(failures.size(), 1);
  EXPECT_NE(std::string(failures.GetTestPartResult(0).message()).find("PLATENEST_SEED=42"), std::string::npos);
}

TEST(AllocationCounter, CountsThisThreadOnly) {
  const TAllocationCounter counter;
  const auto one = std::make_unique<int>(1);
  const std::list<int> two(2);
  std::thread([] { const std::list<int> ten(10); }).join();
  EXPECT_GE(counter.Count(), 3);
  EXPECT_LT(counter.Count(), 10);
}

}  // namespace
}  // namespace platenest
