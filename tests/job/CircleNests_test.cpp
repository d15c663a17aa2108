#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <random>

#include "CircleCase.h"
#include "CircleFill.h"
#include "CircleMix.h"
#include "CirclePack.h"
#include "CirclePattern.h"
#include "CirclePlates.h"
#include "ForEachSeed.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/layoutcheck/CircleCheck.h"

namespace platenest::detail {
namespace {

// Sizes in the nesters' units, largest first, on one plate.
TCircleSizes SizesOf(double Width, double Height, double Gap, std::vector<std::pair<double, int>> Parts) {
  TCircleSizes sizes;
  sizes.Gap = Gap;
  sizes.Plates = {{.Width = Width, .Height = Height, .Count = 1000, .Cost = 1, .Area = Width * Height}};
  for (const auto& [radius, amount] : Parts)
    sizes.Parts.push_back({.Radius = radius, .Amount = amount, .Area = std::numbers::pi * radius * radius});
  return sizes;
}

// For random jobs of which some circle fits.
template <class Function>
void ForEachSizes(unsigned Count, Function Try) {
  ForEachSeed(Count, [&](unsigned seed) {
    const TCircleSizes sizes = CircleSizesOf(test::MakeCircleCase(seed).AJob);
    if (!sizes.Parts.empty()) Try(seed, sizes);
  });
}

std::vector<int> AmountsOf(const TCircleSizes& Sizes) {
  std::vector<int> amounts;
  for (const TCirclePart& part : Sizes.Parts) amounts.push_back(part.Amount);
  return amounts;
}

std::string FaultOf(const TCircleSizes& Sizes, int Plate, const TCircleSpots& Spots, std::span<const int> Left) {
  std::vector<TPlacedCircle> circles;
  std::vector<TCircleDemand> demand;
  for (const TCornerPlacement& spot : Spots)
    circles.push_back({spot.Center, Sizes.Parts[spot.CircleIdx].Radius, spot.CircleIdx});
  for (int i = 0; i < Size(Sizes.Parts); ++i) demand.push_back({Sizes.Parts[i].Radius, Left[i]});
  const TCirclePlate& plate = Sizes.Plates[Plate];
  return CheckCircles(circles, {0, 0, plate.Width, plate.Height}, Sizes.Gap, demand, {.Tol = 3e-6});
}

TEST(FillPlate, LeavesNoRoomAtACornerPosition) {
  ForEachSizes(40, [](unsigned Seed, const TCircleSizes& sizes) {
    const std::vector<int> left = AmountsOf(sizes);
    const TFillSide side = Seed % 3 == 0 ? TFillSide::Bottom : TFillSide::Left;
    TCircleSpots spots, none;
    FillPlate(sizes, 0, left, side, spots);
    std::vector<int> rest = left;
    for (const TCornerPlacement& spot : spots) --rest[spot.CircleIdx];
    const std::size_t placed = spots.size();
    FillPlate(sizes, 0, rest, side, spots);
    EXPECT_EQ(FaultOf(sizes, 0, spots, left), "");
    EXPECT_TRUE(spots.size() == placed || Size(sizes.Parts) > 40) << "beyond forty sizes it looks less often";
    TStopToken stopped;
    stopped.RequestStop();
    const TStopTokenScope scope(&stopped);
    FillPlate(sizes, 0, left, side, none);
    EXPECT_TRUE(none.empty());
  });
}

// In holes of three touching circles, of which each lattice triangle has one.
TEST(FillPlate, FindsHolesBetweenCirclesThatStand) {
  const TCircleSizes sizes = SizesOf(4000, 2000 + 2000 * std::sqrt(0.75), 0, {{1000, 4}, {154, 99}});
  TCircleSpots spots;
  for (const double x : {1000, 3000, 2000}) spots.emplace_back(0, x, x == 2000 ? 1000 + 2000 * std::sqrt(0.75) : 1000);
  FillPlate(sizes, 0, std::vector<int>{0, 99}, TFillSide::Left, spots);
  EXPECT_TRUE(std::ranges::any_of(spots, [](const TCornerPlacement& spot) {
    return std::fabs(spot.Center.X - 2000) < 10 && std::fabs(spot.Center.Y - 1000 - 1000 / std::sqrt(3)) < 10;
  }));
  EXPECT_EQ(FaultOf(sizes, 0, spots, std::vector<int>{3, 99}), "");
}

TEST(NestPattern, TakesAllThatAreLeftOnAShorterPiece) {
  const TCircleSizes sizes = SizesOf(100'000, 60'000, 300, {{4000, 50}, {4000, 50}});
  const std::vector<int> left = {7, 13};
  const TCircleSpots spots = NestPattern(sizes, 0, left);
  EXPECT_EQ(spots.size(), 20U);
  EXPECT_EQ(FaultOf(sizes, 0, spots, left), "");
  double right = 0;
  for (const TCornerPlacement& spot : spots) right = std::max(right, spot.Center.X + 4000);
  EXPECT_LE(right, 3 * 8300);  // three columns of seven
}

TEST(NestBlocksAndPackPlate, KeepGapAndAmounts) {
  ForEachSizes(20, [](unsigned Seed, TCircleSizes sizes) {
    const std::vector<int> left = AmountsOf(sizes);
    EXPECT_EQ(FaultOf(sizes, 0, PackPlate(sizes, 0, left, {0.05, 0, 2, Seed % 2 == 0}), left), "");
    if (Seed % 2 == 0) std::swap(sizes.Plates[0].Width, sizes.Plates[0].Height);
    for (TCirclePart& part : sizes.Parts) part.Amount *= 5;
    const std::vector<int> many = AmountsOf(sizes);
    EXPECT_EQ(FaultOf(sizes, 0, NestBlocks(sizes, 0, many), many), "");
  });
}

// Nine of ten lie on three plates alike, the last one on a cheaper plate that takes it.
TEST(FillPlates, RepeatsALayoutAndEndsOnTheCheapestPlate) {
  TCircleSizes sizes = SizesOf(6000, 2000, 0, {{1000, 10}});
  sizes.Plates.push_back({.Width = 2000, .Height = 2000, .Count = 1, .Cost = 0.5, .Area = 4e6});
  const TCircleNest nest = [&](int plate, std::span<const int> left) { return NestPattern(sizes, plate, left); };
  const TCircleLayouts layouts = FillPlates(sizes, std::vector<int>{0, 1}, nest);
  ASSERT_EQ(layouts.size(), 2U);
  EXPECT_EQ(layouts[0].Copies, 3);
  EXPECT_EQ(layouts[1].Plate, 1);
  sizes.Plates[0].Count = 2;
  sizes.Plates[1].Count = 2;
  EXPECT_EQ(PlacedCopies(sizes, FillPlates(sizes, std::vector<int>{0, 1}, nest)), std::vector<Int64>{8});
}

// Plates after the first one are not even begun, since preparing them would take its time.
TEST(FillPlates, KeepsWhatStandsOnceStopped) {
  TCircleSizes sizes = SizesOf(2000, 2000, 0, {{1000, 10}});
  sizes.Plates.front().Count = 1;
  sizes.Plates.resize(10, sizes.Plates.front());
  std::vector<int> order(sizes.Plates.size());
  std::iota(order.begin(), order.end(), 0);
  TStopToken token;
  const TStopTokenScope scope(&token);
  int nested = 0;
  const TCircleNest nest = [&](int plate, std::span<const int> left) {
    if (++nested == 3) token.RequestStop();
    return NestPattern(sizes, plate, left);
  };
  EXPECT_EQ(FillPlates(sizes, order, nest).size(), 3U);
  EXPECT_EQ(nested, 3);
}

// Against all mixes of three kinds, the first of them a remnant in half of the cases.
TEST(CheapestMix, CostsNoMoreThanAnyOther) {
  ForEachSeed(200, [](unsigned Seed) {
    std::mt19937_64 random(Seed);
    TCircleSizes sizes = SizesOf(1, 1, 0, {});
    sizes.Plates.resize(3);
    std::vector<int> each;
    for (TCirclePlate& plate : sizes.Plates) {
      plate.Count = static_cast<int>(random() % 6);
      plate.Cost = static_cast<double>(random() % 9);
      each.push_back(static_cast<int>(random() % 8));
    }
    sizes.Plates[0].Remnant = Seed % 2 == 0;
    const int need = 1 + static_cast<int>(random() % 40);
    const auto& [a, b, c] = std::tie(sizes.Plates[0], sizes.Plates[1], sizes.Plates[2]);
    std::pair<double, int> best{1e9, 0};
    for (int i = a.Remnant ? a.Count : 0; i <= a.Count; ++i)
      for (int j = 0; j <= b.Count; ++j)
        for (int k = 0; k <= c.Count; ++k)
          if (i * each[0] + j * each[1] + k * each[2] >= need)
            best = std::min(best, {i * a.Cost + j * b.Cost + k * c.Cost, i + j + k});
    const std::vector<int> mix = CheapestMix(sizes, each, need);
    const bool remnantsDo = a.Remnant && a.Count * each[0] >= need;
    ASSERT_EQ(mix.empty(), remnantsDo || best.first == 1e9);
    if (mix.empty()) return;
    EXPECT_GE(std::inner_product(mix.begin(), mix.end(), each.begin(), 0), need);
    EXPECT_EQ(best, std::pair(mix[0] * a.Cost + mix[1] * b.Cost + mix[2] * c.Cost, mix[0] + mix[1] + mix[2]));
  });
}

}  // namespace
}  // namespace platenest::detail
