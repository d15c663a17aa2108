#include "platenest/layoutcheck/LayoutCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

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
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* Name;
    std::function<void(TNestedRects&)> Spoil;
    const char* Text;
  } cases[] = {
      {"gap", [](TNestedRects& L) { L[1].Trans.Y -= 2e-6; }, "placements 0 and 1 are 1.999997"},
      {"overlap", [](TNestedRects& L) { L[1].Trans.Y = 4; }, "placements 0 and 1 overlap by 1, the gap is 2"},
      {"left", [](TNestedRects& L) { L[0].Trans.X = -2e-6; }, "placement 0 of part 7 box [-0.000002, 0, 9.999998, 5]"},
      {"top", [](TNestedRects& L) { L[3].Trans.Y = 8.5; }, "reaches 1.5 beyond the top of [0, 0, 22, 12]"},
      {"turned, not told", [](TNestedRects& L) { L[2].IsRotate = false, L[2].Trans.X = 22; }, "5 beyond the right of"},
      {"too many", [](TNestedRects& L) { L.push_back(L[2]); }, "placement 4 of part 4 is copy 2 of 1 wanted"},
      {"unknown part", [](TNestedRects& L) { L[2].Part.Idx = 1; }, "placement 2 of part 1 is no part of the demand"},
      {"no number", [nan](TNestedRects& L) { L[1].Trans.Y = nan; }, "placement 1 of part 7 has a size or position"},
  };
  for (const auto& spoiled : cases) {
    TNestedRects layout = FullPlate();
    spoiled.Spoil(layout);
    EXPECT_THAT(CheckRectLayout(layout, kPlate, kGap, kDemand), HasSubstr(spoiled.Text)) << spoiled.Name;
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

std::vector<TPlacedBox> RandomBoxes(std::mt19937_64& Random, int Count) {
  const auto upTo = [&](int Most) { return static_cast<double>(Random() % (Most + 1)); };
  std::vector<TPlacedBox> boxes;
  for (int i = 0; i < Count; ++i) {
    const double x = upTo(14), y = upTo(14);
    boxes.push_back({x, y, x + upTo(3), y + upTo(3)});
  }
  return boxes;
}

TEST(FirstTooClose, FindsAPairWheneverThereIsOne) {
  for (int seed = 1; seed <= 2000; ++seed) {
    std::mt19937_64 random(seed);
    const std::vector<TPlacedBox> boxes = RandomBoxes(random, 2 + seed % 12);
    for (const double gap : {-1.5, 0.0, 1.0, 3.3}) {
      bool exists = false;
      for (std::size_t i = 0; i < boxes.size(); ++i)
        for (std::size_t j = 0; j < i; ++j) exists |= Clearance(boxes[i], boxes[j]) < gap - 1e-6;
      const std::optional<TBoxPair> pair = FirstTooClose(boxes, gap);
      ASSERT_EQ(pair.has_value(), exists) << "seed " << seed << " gap " << gap;
      if (!pair) continue;
      EXPECT_LT(pair->First, pair->Second);
      EXPECT_EQ(pair->Clearance, Clearance(boxes[pair->First], boxes[pair->Second]));
      EXPECT_LT(pair->Clearance, gap - 1e-6);
    }
  }
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
