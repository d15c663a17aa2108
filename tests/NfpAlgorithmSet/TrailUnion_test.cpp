#include "TrailUnion.h"

#include <gtest/gtest.h>

#include <limits>

#include "AllocationCounter.h"
#include "ConvolutionFixtures.h"
#include "ForEachSeed.h"
#include "InnerFit.h"
#include "NfpSampling.h"

namespace platenest {
namespace {

using detail::UnionOfTrails;

TChipList ChipsOf(const TVHPolygon& Static, const TVHPolygon& Dynamic) {
  return TPlainConvolution(OuterOf(Static), Negated({OuterOf(Dynamic)}).front()).Chips;
}

// Chips along a closed polyline.
void AddRing(TChipList& Chips, const std::vector<TPoint2D>& Points) {
  for (std::size_t i = 0; i < Points.size(); ++i) Chips.push_back({Points[i], Points[(i + 1) % Points.size()]});
}

std::vector<TPoint2D> Square(double Low, double High) {
  return {{Low, Low}, {High, Low}, {High, High}, {Low, High}};
}

TPaths United(const TChipList& Chips, bool AgainstEdges) {
  TPaths paths{{{1, 2}}};
  EXPECT_TRUE(UnionOfTrails(Chips, AgainstEdges, paths));
  return paths;
}

void ExpectRegion(const TPaths& Paths, const TPaths& Exact, double MostArea) {
  EXPECT_NEAR(TPathUtils::Area(Paths) / (kPathScale * kPathScale), RegionArea(Exact), MostArea);
  const TRegionDifference difference = CompareRegions(Paths, Exact);
  EXPECT_LE(std::max(difference.Lost, difference.Surplus), MostArea);
}

TEST(TrailUnion, IsTheForbiddenRegion) {
  ForEachSeed(400, [](unsigned seed) {
    const TShapePair pair = MakePair(40, seed);
    SCOPED_TRACE(std::string(NameOf(pair.StaticKind)) + " " + NameOf(pair.DynamicKind));
    const TPaths exact = ForbiddenRegion(TPaths{OuterOf(pair.Static)}, TPaths{OuterOf(pair.Dynamic)});
    ExpectRegion(United(ChipsOf(pair.Static, pair.Dynamic), true), exact, 5e-6 * RegionArea(exact));
  });
}

// Most chips lie on others there.
TEST(TrailUnion, IsTheForbiddenRegionOnTheUnitGrid) {
  constexpr TShapeKind kinds[] = {TShapeKind::Comb, TShapeKind::Staircase, TShapeKind::LShape, TShapeKind::UShape};
  ForEachSeed(200, [&](unsigned seed) {
    const TVHPolygon fixed = MakeShape(kinds[seed % 4], 20, 12, seed);
    const TVHPolygon moving = MakeShape(kinds[seed / 4 % 4], 16, 8, seed + 1);
    const TPaths polygonOfFixed{OuterOf(fixed)};
    const TPaths polygonOfMoving{OuterOf(moving)};
    const TPaths paths = United(ChipsOf(fixed, moving), true);
    ExpectRegion(paths, ForbiddenRegion(polygonOfFixed, polygonOfMoving), 0);
    EXPECT_EQ(TPathUtils::Area(paths), 1e10 * static_cast<double>(CellForbiddenArea(polygonOfFixed, polygonOfMoving)));
  });
}

TEST(TrailUnion, IsWhereAPartFitsIntoACavity) {
  int fitting = 0;
  ForEachSeed(200, [&](unsigned seed) {
    const TShapePair pair = MakePair(24, seed);
    TPath cavity = OuterOf(pair.Static);
    const TPaths plate{cavity};
    TPath part = OuterOf(pair.Dynamic);
    for (TIntPoint& point : part) point = {point.X / 4, point.Y / 4};
    if (!IsSimple(TPaths{part}) || RegionArea({part}) >= RegionArea(plate)) return;
    ClipperLib::ReversePath(cavity);
    const TPaths paths = United(TPlainConvolution(cavity, Negated({part}).front()).Chips, false);
    const TPaths exact = InnerFitRegion(plate, {part});
    if (!exact.empty()) ++fitting;
    ExpectRegion(paths, exact, 1e-5 * TPathUtils::TotalLength(exact) / kPathScale);
  });
  EXPECT_GT(fitting, 60);
}

TEST(TrailUnion, CountsEqualChipsAsOftenAsTheyAreThere) {
  TChipList chips;
  AddRing(chips, Square(0, 6));
  AddRing(chips, Square(0, 6));
  std::vector<TPoint2D> hole = Square(2, 4);
  std::ranges::reverse(hole);
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

TEST(TrailUnion, JoinsAFewLooseEndsOnly) {
  TChipList whole;
  AddRing(whole, Square(0, 6));
  AddRing(whole, Square(3, 8));
  TChipList gaps = whole;
  gaps.erase(gaps.begin() + 5);
  gaps.erase(gaps.begin() + 1);
  EXPECT_EQ(United(gaps, false), United(whole, false));

  TPaths paths{{{1, 2}}};
  TChipList scattered;
  for (int i = 0; i < 5; ++i) scattered.push_back({{1.0 * i, 0}, {1.0 * i, 1}});
  EXPECT_FALSE(UnionOfTrails(scattered, false, paths));
  EXPECT_TRUE(paths.empty());
  EXPECT_FALSE(UnionOfTrails({}, false, paths));
}

TEST(TrailUnion, IsUsableAfterAFailure) {
  TChipList chips;
  AddRing(chips, Square(0, 6));
  AddRing(chips, Square(3, 8));
  const TPaths before = United(chips, false);
  TPaths paths;
  TChipList bad = chips;
  bad[6].FEndPoint.X = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(UnionOfTrails(bad, false, paths), TRangeError);
  TChipList far = chips;
  AddRing(far, Square(1e13, 6e13));
  EXPECT_THROW(UnionOfTrails(far, false, paths), ClipperLib::clipperException);
  EXPECT_EQ(United(chips, false), before);
}

TEST(TrailUnion, AllocatesNothingButItsResultForConvexShapes) {
  const TChipList large = ChipsOf(MakeShape(TShapeKind::Convex, 60, 10, 1), MakeShape(TShapeKind::Convex, 60, 10, 2));
  const TChipList chips = ChipsOf(MakeShape(TShapeKind::Convex, 30, 10, 1), MakeShape(TShapeKind::Convex, 30, 10, 2));
  TPaths paths;
  ASSERT_TRUE(UnionOfTrails(large, true, paths));
  const TAllocationCounter counter;
  ASSERT_TRUE(UnionOfTrails(chips, true, paths));
  EXPECT_LE(counter.Count(), 1);
  EXPECT_EQ(paths.size(), 1u);
}

}  // namespace
}  // namespace platenest
