#include "platenest/layoutcheck/CircleCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "ForEachSeed.h"
#include "platenest/foundation/Errors.h"

namespace platenest {
namespace {

using ::testing::HasSubstr;

using TCircles = std::vector<TPlacedCircle>;

constexpr double kGap = 2;
constexpr TPlacedBox kPlate{5, 5, 27, 17};
const std::vector<TCircleDemand> kDemand = {{5, 2}, {1, 3}};

// Two circles of radius 5 side by side, the gap between them, that touch the plate on three sides; a small one in the
// hollow above, a gap away from both.
TCircles FullPlate() {
  return {{{10, 10}, 5, 0}, {{22, 10}, 5, 0}, {{16, 10 + std::sqrt(28)}, 1, 1}};
}

TEST(CheckCircles, TellsEachFaultFromAValidLayout) {
  ASSERT_EQ(CheckCircles(FullPlate(), kPlate, kGap, kDemand), "");
  const struct {
    int Index;
    TPlacedCircle Instead;
    const char* Text;
  } cases[] = {
      {1, {{22 - 2e-6, 10}, 5, 0}, "circles 0 and 1 are 1.99999"},
      {2, {{16, 10 + std::sqrt(28) - 4e-6}, 1, 1}, "circles 0 and 2 are 1.99999"},
      {1, {{19, 10}, 5, 0}, "circles 0 and 1 overlap by 1, the gap is 2"},
      {2, {{10, 9}, 1, 1}, "circles 0 and 2 overlap by 5"},
      {0, {{10 - 2e-6, 10}, 5, 0}, "circle 0 of part 0 at (9.99999"},
      {2, {{16, 16.5}, 1, 1}, "reaches 0.5 beyond the top of the plate"},
      {2, {{16, 10 + std::sqrt(28)}, 0.9, 1}, "has radius 0.9, but the demand says 1"},
      {2, {{16, 16}, 5, 0}, "circle 2 of part 0 is copy 3 of 2 wanted"},
      {2, {{16, 16}, 1, 2}, "circle 2 of part 2 is no part of the demand"},
      {2, {{16, 16}, 1, -1}, "circle 2 of part -1 is no part of the demand"},
      {1, {{22, std::nan("")}, 5, 0}, "circle 1 of part 0 has a radius or position"},
  };
  for (const auto& [index, instead, text] : cases) {
    TCircles layout = FullPlate();
    layout[index] = instead;
    EXPECT_THAT(CheckCircles(layout, kPlate, kGap, kDemand), HasSubstr(text));
  }
}

TEST(CheckCircles, AllowsOneMillionthAndWhatTheOptionsSay) {
  TCircles layout = {{{10 - 0.4e-6, 10}, 5, 0}, {{22 - 0.9e-6, 10}, 5, 0}};
  EXPECT_EQ(CheckCircles(layout, kPlate, kGap, kDemand), "");
  EXPECT_NE(CheckCircles(layout, kPlate, kGap, kDemand, {.Tol = 1e-7}), "");
  const std::vector<TCircleDemand> open = {{5, -1}};
  EXPECT_NE(CheckCircles(layout, kPlate, kGap, open), "");
  EXPECT_EQ(CheckCircles(layout, kPlate, kGap, open, {.NegativeAmountIsNoLimit = true}), "");
  layout[1].Center.X = 18;
  EXPECT_EQ(CheckCircles(layout, kPlate, -3, kDemand), "");
  EXPECT_NE(CheckCircles(layout, kPlate, -1, kDemand), "");
  EXPECT_NE(CheckCircles(layout, kPlate, std::numeric_limits<double>::infinity(), kDemand), "");
  EXPECT_EQ(CheckCircles({}, {0, 0, -1, 0}, std::numeric_limits<double>::infinity(), kDemand), "");
}

// Random circles from one to a thousand in size; each grows until it keeps the gap to the plate and those before it.
TCircles Scattered(std::mt19937_64& Random, double Gap) {
  std::uniform_real_distribution<double> place(0, 1000);
  TCircles circles;
  for (int i = 0; i < 200; ++i) {
    const TPoint2D center{place(Random), place(Random)};
    double r = std::min({center.X, center.Y, 1000 - center.X, 1000 - center.Y, std::pow(1000, place(Random) / 1000)});
    for (const TPlacedCircle& other : circles)
      r = std::min(r, std::hypot(center.X - other.Center.X, center.Y - other.Center.Y) - other.Radius - Gap);
    if (r > 0.1) circles.push_back({center, r, static_cast<int>(circles.size())});
  }
  return circles;
}

// Against all pairs: valid as they are made, and after one circle was moved and blown up as all pairs say.
TEST(CheckCircles, AgreesWithAllPairs) {
  ForEachSeed(60, [](unsigned Seed) {
    std::mt19937_64 random(Seed);
    const double gap = Seed % 3 == 0 ? 0 : static_cast<double>(Seed % 7);
    const TCircles made = Scattered(random, gap);
    for (int i = 0; i <= 20; ++i) {
      TCircles circles = made;
      TPlacedCircle& moved = circles[random() % circles.size()];
      const double step = i == 0 ? 0 : std::pow(10, -static_cast<double>(random() % 8));
      moved.Radius = std::min(moved.Radius * (1 + step), 500.0);
      moved.Center = {std::clamp(moved.Center.X - step, moved.Radius, 1000 - moved.Radius),
                      std::clamp(moved.Center.Y + step, moved.Radius, 1000 - moved.Radius)};
      std::vector<TCircleDemand> demand;
      double least = std::numeric_limits<double>::infinity();
      for (const TPlacedCircle& circle : circles) {
        demand.push_back({circle.Radius, 1});
        for (int j = 0; j < circle.Idx; ++j) least = std::min(least, Clearance(circle, circles[j]));
      }
      EXPECT_EQ(CheckCircles(circles, {0, 0, 1000, 1000}, gap, demand).empty(), i == 0 || least >= gap - kDefaultTol);
      EXPECT_DOUBLE_EQ(LeastClearance(circles).value(), least);
    }
  });
}

TEST(LeastClearance, OfFewAndOfNoCircles) {
  EXPECT_FALSE(LeastClearance(TCircles{{{1, 1}, 1, 0}}));
  EXPECT_EQ(LeastClearance(TCircles{{{0, 0}, 5, 0}, {{3, 4}, 1, 0}}), -1);
  EXPECT_THROW(LeastClearance(TCircles{{{0, 0}, -1, 0}}), TArgumentError);
}

}  // namespace
}  // namespace platenest
