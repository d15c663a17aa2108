#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest {
namespace {

TEST(Rounding, NearestTakesTiesToEvenInEveryRoundingMode) {
  const double values[] = {0.5, 1.5, 2.5, -0.5, -1.5, -2.5, 0.49999999999999994, -0.50000000000000011};
  const Int64 nearest[] = {0, 2, 2, 0, -2, -2, 0, -1};
  for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    std::fesetround(mode);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(Round(values[i]), nearest[i]) << values[i] << " mode " << mode;
    EXPECT_EQ(Round<Int64>(4503599627370497.5), 4503599627370498);
  }
  std::fesetround(FE_TONEAREST);
}

TEST(Rounding, RaisesAtTheFirstValueThatDoesNotFit) {
  EXPECT_EQ(Trunc<int>(2147483647.9), 2147483647);
  EXPECT_THROW(Trunc<int>(2147483648.0), TRangeError);
  EXPECT_EQ(Trunc<int>(-2147483648.9), std::numeric_limits<int>::min());
  EXPECT_THROW(Floor(-2147483648.5), TRangeError);
  EXPECT_EQ(Round<Int64>(-9223372036854775808.0), std::numeric_limits<Int64>::min());
  EXPECT_THROW(Round<Int64>(9223372036854775808.0), TRangeError);
  EXPECT_THROW(Round<int>(std::nan("")), TRangeError);
  EXPECT_THROW(Ceil(std::numeric_limits<double>::infinity()), TRangeError);
}

TEST(Compare, EqualityIncludesTheToleranceAndOrdersAreStrictBeyondIt) {
  EXPECT_TRUE(fEqual(0, 1e-6, 1e-6));
  EXPECT_FALSE(fGreat(1e-6, 0, 1e-6));
  EXPECT_TRUE(fGreat(1.0000001e-6, 0, 1e-6));
  EXPECT_TRUE(fSmall(0, 1.0000001e-6, 1e-6));
  EXPECT_EQ(TMathUtils::CompareFloat(1, 1.1, 0.2), 0);
  EXPECT_FALSE(TMathUtils::IsInRange(1.0, 1.0, 2.0, false, true));
}

TEST(Sort, KeepsTheOrderOfEqualsForEveryLength) {
  for (int count = 0; count < 40; ++count) {
    std::vector<std::pair<int, int>> items;
    for (int i = 0; i < count; ++i) items.emplace_back((i * 7) % 5, i);
    SortBy(items, [](const auto& a, const auto& b) { return Sign(a.first, b.first); });
    for (int i = 1; i < count; ++i) EXPECT_LT(items[i - 1], items[i]) << count;
  }
}

// A tolerant comparer is no strict order; the outcome is still defined and the same everywhere.
TEST(Sort, IsDefinedForTolerantComparers) {
  std::vector<double> items{3.0, 2.5, 2.0, 1.5, 1.0};
  SortBy(items, [](double a, double b) { return TMathUtils::CompareFloat(a, b, 0.6); });
  EXPECT_EQ(items, (std::vector<double>{1.0, 2.0, 1.5, 3.0, 2.5}));
}

}  // namespace
}  // namespace platenest
