#include "TrailUnion.h"

#include <gtest/gtest.h>

#include "ChipCollector.h"
#include "ForEachSeed.h"
#include "NfpSampling.h"
#include "PathFixtures.h"

namespace platenest {
namespace {

using detail::CollectConvolution;
using detail::UnionOfTrails;

TChipList ChipsOf(const TPath& Static, const TPath& Dynamic) {
  const auto contour = [](const TPath& path) { return TPathUtils::CreatePolyline(path, kPathScale); };
  TChipList chips;
  CollectConvolution(LoopOf(contour(Static)), LoopOf(Mirrored(contour(Dynamic))), chips);
  return chips;
}

// Chips along a closed polyline.
void AddRing(TChipList& Chips, const std::vector<TPoint2D>& Points) {
  for (std::size_t i = 0; i < Points.size(); ++i) Chips.push_back({Points[i], Points[(i + 1) % Points.size()]});
}

void AddSquare(TChipList& Chips, double Low, double High) {
  AddRing(Chips, {{Low, Low}, {High, Low}, {High, High}, {Low, High}});
}

TPaths United(const TChipList& Chips, bool AgainstEdges) {
  TPaths paths{{{1, 2}}};
  EXPECT_TRUE(UnionOfTrails(Chips, AgainstEdges, paths));
  return paths;
}

TEST(TrailUnion, IsTheForbiddenRegion) {
  ForEachSeed(400, [](unsigned seed) {
    const TShapePair pair = MakePair(40, seed);
    const TPath fixed = OuterOf(pair.Static), moving = OuterOf(pair.Dynamic);
    const TPaths paths = United(ChipsOf(fixed, moving), true);
    const TRegionDifference difference = CompareRegions(paths, ForbiddenRegion({fixed}, {moving}));
    EXPECT_LE(difference.Relative(), 2e-5);
    EXPECT_NEAR(TPathUtils::Area(paths) / 1e10, difference.Exact, 2e-5 * difference.Exact);
  });
}

TEST(TrailUnion, CountsEqualChipsAsOftenAsTheyAreThere) {
  TChipList chips;
  const std::vector<TPoint2D> hole{{2, 4}, {4, 4}, {4, 2}, {2, 2}};
  for (int i = 0; i < 2; ++i) AddSquare(chips, 0, 6);
  AddRing(chips, hole);
  EXPECT_EQ(TPathUtils::Area(United(chips, false)), 36e10);
  AddRing(chips, hole);
  EXPECT_EQ(TPathUtils::Area(United(chips, false)), 32e10);
  EXPECT_TRUE(United(chips, true).empty()) << "nothing is turned because of its area";
}

TEST(TrailUnion, LeavesOutWhatCancelsAndWhatIsStraight) {
  TChipList chips;
  AddRing(chips, {{0, 0}, {1, 0}, {3, 0}, {5, 0}, {5, 2}, {7, 2}, {5, 2}, {5, 4}, {9, 4}, {0, 4}});
  const TPaths paths = United(chips, false);
  ASSERT_EQ(paths.size(), 1u);
  EXPECT_EQ(paths[0].size(), 4u);
  EXPECT_EQ(TPathUtils::Area(paths), 20e10);
}

TEST(TrailUnion, JoinsAFewLooseEndsAndIsUsableAfterAFailure) {
  TChipList whole;
  AddSquare(whole, 0, 6);
  AddSquare(whole, 3, 8);
  TChipList gaps = whole;
  gaps.erase(gaps.begin() + 5);
  gaps.erase(gaps.begin() + 1);
  EXPECT_EQ(United(gaps, false), United(whole, false));

  TPaths paths{{{1, 2}}};
  TChipList scattered;
  for (int i = 0; i < 5; ++i) scattered.push_back({{1.0 * i, 0}, {1.0 * i, 1}});
  EXPECT_FALSE(UnionOfTrails(scattered, false, paths));
  EXPECT_TRUE(paths.empty());
  EXPECT_EQ(TPathUtils::Area(United(whole, false)), 52e10);
  EXPECT_FALSE(UnionOfTrails({}, false, paths));
}

}  // namespace
}  // namespace platenest
