#include "platenest/layoutcheck/LayoutCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platenest/foundation/Errors.h"

namespace platenest {
namespace {

using ::testing::HasSubstr;

constexpr double kGap = 2;
const TVRect2D kPlate = TVRect2D::FromSize(22, 12);
const TNestRectList kDemand = {{3, 7, TVRect2D::FromSize(10, 5)}, {1, 4, TVRect2D::FromSize(5, 4)}};

//   +--------------------+
//   |  1: 7      3: 7    |     gap 2 everywhere; the outer parts touch the plate's edges, 2 has room to its right
//   |  0: 7      2: 4    |     and is turned
//   +--------------------+
TNestedRects FullPlate() {
  return {{kDemand[0], false, {0, 0}},
          {kDemand[0], false, {0, 7}},
          {kDemand[1], true, {16, 0}},
          {kDemand[0], false, {12, 7}}};
}

TEST(CheckRectLayout, TellsEachFaultFromAValidLayout) {
  ASSERT_EQ(CheckRectLayout(FullPlate(), kPlate, kGap, kDemand), "");
  const struct {
    int Index;  // 4: one more
    TNestedRect Instead;
    const char* Text;
  } cases[] = {
      {1, {kDemand[0], false, {0, 7 - 2e-6}}, "placements 0 and 1 are 1.999997"},
      {1, {kDemand[0], false, {0, 4}}, "placements 0 and 1 overlap by 1, the gap is 2"},
      {0, {kDemand[0], false, {-2e-6, 0}}, "placement 0 of part 7 box [-0.000002, 0, 9.999998, 5]"},
      {3, {kDemand[0], false, {12, 8.5}}, "reaches 1.5 beyond the top of [0, 0, 22, 12]"},
      {2, {kDemand[1], false, {22, 0}}, "5 beyond the right of"},
      {4, {kDemand[1], true, {16, 0}}, "placement 4 of part 4 is copy 2 of 1 wanted"},
      {2, {{1, 1, kDemand[1].BoundBox}, true, {16, 0}}, "placement 2 of part 1 is no part of the demand"},
      {1, {kDemand[0], false, {0, std::nan("")}}, "placement 1 of part 7 has a size or position"},
  };
  for (const auto& [index, instead, text] : cases) {
    TNestedRects layout = FullPlate();
    layout.resize(index == 4 ? 5 : 4);
    layout[index] = instead;
    EXPECT_THAT(CheckRectLayout(layout, kPlate, kGap, kDemand), HasSubstr(text));
  }
}

TEST(CheckRectLayout, AllowsOneMillionthAndNoMore) {
  TNestedRects layout = FullPlate();
  layout[1].Trans.Y += 0.9e-6;  // out of the plate
  layout[2].Trans.X -= 0.9e-6;  // into the gap
  EXPECT_EQ(CheckRectLayout(layout, kPlate, kGap, kDemand), "");
  EXPECT_NE(CheckRectLayout(layout, kPlate, kGap, kDemand, {.Tol = 1e-7}), "");
  EXPECT_NE(CheckRectLayout(FullPlate(), kPlate, std::nan(""), kDemand), "");
  EXPECT_GT(CheckTolerance({-1e12, 0, 1, 1}), 1e-4) << "doubles are coarser there";
}

TEST(CheckRectLayout, ReadsAmounts) {
  const TVRect2D size = TVRect2D::FromSize(1, 1);
  const TNestedRects two = {{{0, 5, size}, false, {0, 0}}, {{0, 5, size}, false, {2, 0}}};
  const TVRect2D plate = TVRect2D::FromSize(3, 1);
  EXPECT_EQ(CheckRectLayout(two, plate, 1, {{1, 5, size}, {9, 6, size}, {1, 5, size}}), "") << "entries add up";
  EXPECT_NE(CheckRectLayout(two, plate, 1, {{1, 5, size}, {-9, 5, size}}), "");
  EXPECT_EQ(CheckRectLayout(two, plate, 1, {{2, 5, size}, {-9, 5, size}}), "") << "below 0 counts as none";
  EXPECT_EQ(CheckRectLayout(two, plate, 1, {{-1, 5, size}}, {.NegativeAmountIsNoLimit = true}), "");
}

TEST(FirstOutside, CountsEverythingThatIsNoBoxWithinThePlate) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const TPlacedBox plate{0, 0, 9, 9};
  EXPECT_EQ(FirstOutside(std::vector<TPlacedBox>{{0, 0, 9, 9}, {2, 2, 1, 3}}, plate), 1) << "turned inside out";
  EXPECT_EQ(FirstOutside(std::vector<TPlacedBox>{{0, 0, 1, nan}}, plate), 0);
  EXPECT_EQ(FirstOutside(std::vector<TPlacedBox>{{0, 0, 1, 1}}, {0, 0, nan, 9}), 0);
  EXPECT_EQ(FirstOutside(std::vector<TPlacedBox>{{-1e-6, 0, 1, 9 + 1e-6}}, plate), std::nullopt);
  EXPECT_THROW(FirstTooClose(std::vector<TPlacedBox>{{0, 0, 1, nan}}, 0), TArgumentError);
}

}  // namespace
}  // namespace platenest
