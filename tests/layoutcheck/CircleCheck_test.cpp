#include "platenest/layoutcheck/CircleCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
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
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* Name;
    std::function<void(TCircles&)> Spoil;
    const char* Text;
  } cases[] = {
      {"gap", [](TCircles& L) { L[1].Center.X -= 2e-6; }, "circles 0 and 1 are 1.99999"},
      {"gap aslant", [](TCircles& L) { L[2].Center.Y -= 4e-6; }, "circles 0 and 2 are 1.99999"},
      {"overlap", [](TCircles& L) { L[1].Center.X = 19; }, "circles 0 and 1 overlap by 1, the gap is 2"},
      {"one in another",
       [](TCircles& L) {
         L[2].Center = {10, 9};
       },
       "circles 0 and 2 overlap by 5"},
      {"left", [](TCircles& L) { L[0].Center.X -= 2e-6; }, "circle 0 of part 0 at (9.99999"},
      {"top", [](TCircles& L) { L[2].Center.Y = 16.5; }, "reaches 0.5 beyond the top of the plate"},
      {"radius", [](TCircles& L) { L[2].Radius = 0.9; }, "has radius 0.9, but the demand says 1"},
      {"too many",
       [](TCircles& L) {
         L[2] = {{16, 16}, 5, 0};
       },
       "circle 2 of part 0 is copy 3 of 2 wanted"},
      {"unknown part", [](TCircles& L) { L[2].Idx = 2; }, "circle 2 of part 2 is no part of the demand"},
      {"below the list", [](TCircles& L) { L[2].Idx = -1; }, "circle 2 of part -1 is no part of the demand"},
      {"no number", [nan](TCircles& L) { L[1].Center.Y = nan; }, "circle 1 of part 0 has a radius or position"},
  };
  for (const auto& spoiled : cases) {
    TCircles layout = FullPlate();
    spoiled.Spoil(layout);
    EXPECT_THAT(CheckCircles(layout, kPlate, kGap, kDemand), HasSubstr(spoiled.Text)) << spoiled.Name;
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

// Against all pairs: valid as they are made, and after one circle was moved or blown up as all pairs say.
TEST(CheckCircles, AgreesWithAllPairs) {
  ForEachSeed(60, [](unsigned Seed) {
    std::mt19937_64 random(Seed);
    const double gap = Seed % 3 == 0 ? 0 : static_cast<double>(Seed % 7);
    TCircles circles = Scattered(random, gap);
    std::vector<TCircleDemand> demand;
    for (const TPlacedCircle& circle : circles) demand.push_back({circle.Radius, 1});
    const TPlacedBox plate{0, 0, 1000, 1000};
    const auto least = [&] {
      double value = std::numeric_limits<double>::infinity();
      for (std::size_t i = 0; i < circles.size(); ++i)
        for (std::size_t j = 0; j < i; ++j) value = std::min(value, Clearance(circles[i], circles[j]));
      return value;
    };
    EXPECT_EQ(CheckCircles(circles, plate, gap, demand), "");
    EXPECT_DOUBLE_EQ(LeastClearance(circles).value(), least());
    for (int i = 0; i < 20; ++i) {
      TPlacedCircle& moved = circles[random() % circles.size()];
      const TPlacedCircle former = moved;
      const double step = std::pow(10, -static_cast<double>(random() % 8));
      moved.Radius *= 1 + step;
      moved.Center = {std::clamp(moved.Center.X - step, moved.Radius, 1000 - moved.Radius),
                      std::clamp(moved.Center.Y + step, moved.Radius, 1000 - moved.Radius)};
      demand[moved.Idx].Radius = moved.Radius;
      EXPECT_EQ(CheckCircles(circles, plate, gap, demand).empty(), least() >= gap - kDefaultTol);
      EXPECT_DOUBLE_EQ(LeastClearance(circles).value(), least());
      demand[moved.Idx].Radius = former.Radius;
      moved = former;
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
