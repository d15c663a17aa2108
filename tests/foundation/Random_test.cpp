#include "platenest/foundation/Random.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
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
  EXPECT_THAT(Draw(3, 1000), ::testing::ElementsAre(391, 697, 143));
}

TEST(Random, IsUniformAlsoWhereTheRangeDoesNotDivideTheSource) {
  const TRandomScope seed(7);
  for (const int count : {3, 20, 3 << 29}) {
    const int classes = count == 20 ? 20 : 3;
    std::vector<int> hits(classes, 0);
    for (const int number : Draw(30000, count)) {
      ASSERT_TRUE(number >= 0 && number < count);
      ++hits[number % classes];
    }
    const double expected = 30000.0 / classes;
    for (const int hit : hits) EXPECT_NEAR(hit, expected, 5 * std::sqrt(expected)) << count;
  }
}

TEST(Random, ScopesPutTheSequenceBack) {
  SetSeed(9);
  const std::vector<int> whole = Draw(5, 1 << 30);
  SetSeed(9);
  {
    const TRandomScope seeded(123);
    Randomize();
    const std::vector<int> first = Draw(4, 1 << 30);
    Randomize();
    EXPECT_NE(Draw(4, 1 << 30), first) << "never repeats itself";
  }
  EXPECT_EQ(Draw(5, 1 << 30), whole);
}

}  // namespace
}  // namespace platenest
