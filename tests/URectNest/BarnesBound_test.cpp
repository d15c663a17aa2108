#include "platenest/URectNest/BarnesBound.h"

#include <gtest/gtest.h>

#include <limits>

#include "platenest/foundation/Errors.h"

namespace platenest {
namespace {

TEST(BarnesBound, KnownPlates) {
  EXPECT_EQ(BarnesBound(10, 10, 3, 3), 11) << "9 fit, the bound does not know it";
  EXPECT_EQ(BarnesBound(5, 5, 3, 2), 4) << "strips of three and of two each waste one unit";
  EXPECT_EQ(BarnesBound(6, 6, 4, 1), 8) << "four units are lost though the area takes nine copies";
  EXPECT_EQ(BarnesBound(0, 10, 3, 2), 0);
  constexpr Int64 huge = 4'000'000'000'000;
  EXPECT_EQ(BarnesBound(huge, huge, huge / 2, huge / 4), 8) << "the area is beyond 64 bits";
  EXPECT_THROW(BarnesBound(huge, huge, 1, 1), TRangeError);
}

TEST(BarnesBound, HundredthsRoundThePlateDownAndTheRectangleToNearest) {
  EXPECT_EQ(BarnesUpbound(9.999, 5.009, 2.504, 3.336), BarnesBound(999, 500, 250, 334));
  EXPECT_THROW(BarnesUpbound(10, 10, 0.001, 3), TArgumentError) << "a side of no hundredths";
  EXPECT_THROW(BarnesUpbound(std::numeric_limits<double>::quiet_NaN(), 10, 3, 3), TArgumentError);
}

}  // namespace
}  // namespace platenest
