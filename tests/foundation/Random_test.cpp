#include "platenest/foundation/Random.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

namespace platenest {
namespace {

std::vector<int> Draw(int Amount, int Count) {
  std::vector<int> numbers;
  for (int i = 0; i < Amount; ++i) numbers.push_back(Random(Count));
  return numbers;
}

// Saved answers and reproducible jobs rest on this very sequence.
TEST(Random, SequenceOfASeedIsFixed) {
  const TRandomScope seed(1);
  EXPECT_THAT(Draw(3, 1000), ::testing::ElementsAre(702, 520, 574));
  for (const int count : {1, 0, -5, std::numeric_limits<int>::min()}) EXPECT_EQ(Random(count), 0) << "draws nothing";
  {
    const TRandomScope inner;
    Randomize();
    const std::vector<int> first = Draw(4, 1 << 30);
    Randomize();
    EXPECT_NE(Draw(4, 1 << 30), first) << "never repeats itself";
  }
  std::thread([] { EXPECT_GE(Random(9), 0); }).join();
  EXPECT_THAT(Draw(3, 1000), ::testing::ElementsAre(391, 697, 143)) << "scopes and threads leave the sequence alone";
}

TEST(Random, IsUniformAlsoWhereTheRangeDoesNotDivideTheSource) {
  const TRandomScope seed(7);
  for (const int count : {3, 3 << 29}) {
    int hits[3] = {};
    for (const int number : Draw(30000, count)) {
      ASSERT_TRUE(number >= 0 && number < count);
      ++hits[number % 3];
    }
    EXPECT_THAT(hits, ::testing::Each(::testing::AllOf(::testing::Ge(9500), ::testing::Le(10500)))) << count;
  }
}

}  // namespace
}  // namespace platenest
