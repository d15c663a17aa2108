#include "platenest/foundation/Random.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
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
  EXPECT_THAT(Draw(6, 1000), ::testing::ElementsAre(702, 520, 574, 391, 697, 143));
}

TEST(Random, IsUniformAlsoWhereTheRangeDoesNotDivideTheSource) {
  const TRandomScope seed(7);
  for (const int count : {3, 20, 3 << 29}) {
    const int classes = std::min(count, 20) == 20 && count > 20 ? 3 : count;
    std::vector<int> hits(classes, 0);
    const int amount = 30000;
    for (int i = 0; i < amount; ++i) {
      const int number = Random(count);
      ASSERT_TRUE(number >= 0 && number < count);
      ++hits[number % classes];
    }
    const double expected = static_cast<double>(amount) / classes;
    for (const int hit : hits) EXPECT_NEAR(hit, expected, 5 * std::sqrt(expected)) << count;
  }
}

TEST(Random, RangesWithoutChoiceGiveZeroAndDrawNothing) {
  SetSeed(4);
  const int first = Random(1000000);
  SetSeed(4);
  for (const int count : {1, 0, -5, std::numeric_limits<int>::min()}) EXPECT_EQ(Random(count), 0);
  EXPECT_EQ(Random(1000000), first);
}

TEST(Random, ScopesPutTheSequenceBack) {
  SetSeed(9);
  const std::vector<int> whole = Draw(10, 1 << 30);
  SetSeed(9);
  std::vector<int> parts = Draw(5, 1 << 30);
  {
    const TRandomScope seeded(123);
    Draw(7, 10);
    const TRandomScope inner;
    Randomize();
    Draw(3, 10);
  }
  for (const int number : Draw(5, 1 << 30)) parts.push_back(number);
  EXPECT_EQ(parts, whole);
}

TEST(Random, RandomizeNeverRepeatsItself) {
  const TRandomScope former;
  Randomize();
  const std::vector<int> first = Draw(4, 1 << 30);
  Randomize();
  EXPECT_NE(Draw(4, 1 << 30), first);
}

}  // namespace
}  // namespace platenest
