#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

#include "Contours.h"
#include "PathFixtures.h"

namespace platenest {
namespace {

// A box of 10 and one of 2: together 104, no-fit polygon 12 by 12, room for holes 40.
TConvolutionProbe Boxes() {
  return {Rect(0, 0, 10, 10), Rect(0, 0, 2, 2)};
}

TPath BoxPath(double Left, double Bottom, double Width, double Height) {
  return PathOf(Rect(Left, Bottom, Width, Height));
}

TPath HolePath(double Left, double Bottom, double Width, double Height) {
  return PathOf(Clockwise(Rect(Left, Bottom, Width, Height)));
}

// Of this area in path units; far from everything else unless told otherwise.
TPath Sliver(Int64 Area, Int64 Left = 100'000'000) {
  TPath path;
  for (const auto& [x, y] : {std::pair<Int64, Int64>{0, 0}, {2 * Area, 0}, {0, 1}})
    path.push_back(TPathUtils::CreateIntPoint(Left + x, y));
  return path;
}

// A box with a notch in its upper right corner that leaves it the area given.
TPath Notched(double Width, double Height, double Area) {
  const double notch = std::sqrt(Width * Height - Area);
  return PathOf({{-2, -2},
                 {Width - 2, -2},
                 {Width - 2, Height - 2 - notch},
                 {Width - 2 - notch, Height - 2 - notch},
                 {Width - 2 - notch, Height - 2},
                 {-2, Height - 2}});
}

TEST(PathNormalisation, TellsNoiseFromPathsThatMeanSomething) {
  const TPath outline = BoxPath(-2, -2, 12, 12);
  const auto withSlivers = [&outline](int count, Int64 area) {
    TPaths paths(count, Sliver(area));
    paths.push_back(outline);
    return paths;
  };
  struct TRow {
    const char* What;
    TPaths Paths;
    bool Expected;
  };
  TRow rows[] = {
      {"any number of noise", withSlivers(40, 10'999), true},
      {"19 unused", withSlivers(19, 11'000), true},
      {"20 unused", withSlivers(20, 11'000), false},
      {"an unused one apart", withSlivers(1, 39'899), true},
      {"an outer one apart", withSlivers(1, 39'900), false},
      {"an outer one inside", {outline, Sliver(39'900, 0)}, true},
      {"20 outer ones", {20, outline}, false},
      {"two that overlap", {BoxPath(-2, -2, 7, 12), BoxPath(4, -2, 6, 12)}, true},
      {"two that nearly touch", {BoxPath(-2, -2, 7, 12), BoxPath(5.00008, -2, 4.99992, 12)}, true},
      {"two with a gap", {BoxPath(-2, -2, 7, 12), BoxPath(5.0001, -2, 4.9999, 12)}, false},
      {"holes alone", {HolePath(-2, -2, 12, 12)}, false},
  };
  for (TRow& row : rows) {
    EXPECT_EQ(Boxes().NormorlizePaths(row.Paths, false), row.Expected) << row.What;
    if (!row.Expected) continue;
    EXPECT_EQ(row.Paths.size(), 1u) << row.What;
    EXPECT_NEAR(ClipperLib::Area(row.Paths[0]), 144e10, 2e8) << row.What;
  }
}

TEST(PathNormalisation, AHoleNeedsRoomForTheShape) {
  // Alone, large and with loops without parallel edges a hole is believed without a trial: here it lies in the middle
  // of the material. So an artefact of that kind would stay.
  const auto holesLeft = [](TPaths paths, int similar = 0) {
    TConvolutionProbe boxes = Boxes();
    boxes._selfNfp = similar;
    EXPECT_TRUE(boxes.NormorlizePaths(paths, false));
    return Size(paths) - 1;
  };
  const TPath outline = BoxPath(-2, -2, 12, 12);
  EXPECT_EQ(holesLeft({outline, HolePath(0, 0, 4, 10)}), 1);
  EXPECT_EQ(holesLeft({outline, HolePath(0, 0, 4.00001, 10)}), 0);
  EXPECT_EQ(holesLeft({outline, HolePath(1, 1, 0.01, 0.01)}), 1);
  EXPECT_EQ(holesLeft({outline, HolePath(1, 1, 0.01, 0.00999)}), 0) << "small ones are tried";
  EXPECT_EQ(holesLeft({outline, HolePath(1, 1, 2, 2), HolePath(4, 4, 2, 2)}), 0) << "so are several";
  EXPECT_EQ(holesLeft({outline, HolePath(1, 1, 4, 4)}, 1), 0) << "and those of similar loops";
  EXPECT_EQ(holesLeft({outline, HolePath(1, 1, 30, 0.00004)}), 0) << "cleaned to nothing";
}

// A box of 20 with a chamber of 10 behind a neck of width 1, and a box of 2 that fits in: in the no-fit polygon of 22 a
// hole of 8.
TEST(PathNormalisation, TriesHolesInTheirOrder) {
  const TVPolyline2D chamber{{0, 0},  {20, 0},  {20, 9.5},  {15, 9.5},  {15, 5},  {5, 5},
                             {5, 15}, {15, 15}, {15, 10.5}, {20, 10.5}, {20, 20}, {0, 20}};
  const TPath outline = BoxPath(-2, -2, 22, 22);
  const TPath whole = HolePath(5, 5, 8, 8);
  const auto square = [](double side) { return HolePath(6, 6, side, side); };
  struct TRow {
    const char* What;
    int Similar;
    TPaths Holes;
    std::size_t Kept;
  };
  const TRow rows[] = {
      {"true one", 0, {whole}, 1},
      {"alike", 2, {whole}, 0},
      {"alike with noise", 2, {whole, Sliver(10'000)}, 1},
      {"ends with a small one", 1, {square(0.3), whole}, 0},
      {"unlike loops go on", 0, {square(0.3), whole}, 2},
      {"keeps one above", 1, {square(2.21), whole}, 2},
      {"skips a large one", 1, {HolePath(5, 5, 12.1, 12.1), whole}, 1},
      {"ten at most", 0, TPaths(12, whole), 10},
      {"three unused", 0, {whole, Sliver(12'000), Sliver(12'000), Sliver(12'000)}, 0},
  };
  for (const TRow& row : rows) {
    TConvolutionProbe convolution(chamber, Rect(0, 0, 2, 2));
    convolution._selfNfp = row.Similar;
    TPaths paths = row.Holes;
    paths.push_back(outline);
    EXPECT_TRUE(convolution.NormorlizePaths(paths, false)) << row.What;
    EXPECT_EQ(paths.size(), row.Kept + 1) << row.What;
    EXPECT_EQ(ClipperLib::Area(paths[0]), 484e10) << row.What;
  }
}

TEST(PathNormalisation, CleansOutlinesWithoutHoles) {
  const TVPolyline2D box = Rect(0, 0, 1, 1), pentagon = test::Circle(5, 1);
  const TVPolyline2D comb2 = CombOf(2, 0.1), comb3 = CombOf(3, 0.1), comb4 = CombOf(4, 0.1);
  struct TRow {
    TVPolyline2D St, Dy;
    int Similar, Unused, Points, Bump;
    bool Removed;
  };
  const TRow rows[] = {{box, box, 2, 0, 36, 19, true},          {box, box, 2, 0, 36, 21, false},
                       {box, box, 2, 0, 35, 14, false},         {box, box, 2, 1, 16, 19, true},
                       {pentagon, pentagon, 2, 0, 9, 14, true}, {pentagon, pentagon, 2, 0, 9, 16, false},
                       {pentagon, box, 2, 0, 9, 14, false},     {comb3, comb2, 4, 0, 8, 14, true},
                       {comb3, comb2, 3, 0, 8, 14, false},      {comb3, comb4, 3, 0, 8, 14, true}};
  for (const TRow& row : rows) {
    TConvolutionProbe convolution(row.St, row.Dy);
    convolution._selfNfp = row.Similar;
    TVPolyline2D outline = test::Circle(row.Points - 1, 7);
    const TPoint2D middle = (outline[0] + outline[1]) * 0.5;
    outline.insert(outline.begin() + 1, middle * (1 + row.Bump / kPathScale / middle.Mag()));
    TPaths paths(row.Unused, Sliver(12'000));
    paths.push_back(PathOf(outline));
    EXPECT_TRUE(convolution.NormorlizePaths(paths, false));
    EXPECT_EQ(Size(paths[0]) < row.Points, row.Removed) << row.Points << " points, bump " << row.Bump;
  }
}

TEST(PathNormalisation, RefusesOutlinesThatAreTooSmall) {
  const TVPolyline2D small = Rect(0, 0, 2, 2), large = Rect(0, 0, 10, 10), comb = CombOf(6);  // comb: 24 edges, 17
  const TVPolyline2D shortComb = CombOf(5);
  struct TRow {
    const char* What;
    TVPolyline2D St, Dy;
    int Similar;
    TPath Path;
    bool Expected;
  };
  const TRow rows[] = {
      {"less than both", large, small, 0, Notched(12, 12, 104.05), false},
      {"both and a little", large, small, 0, Notched(12, 12, 104.15), true},
      {"narrow", large, small, 0, Notched(11.89, 12, 140), false},
      {"low", large, small, 0, Notched(12, 11.89, 140), false},
      {"equal boxes, narrow", large, large, 0, Notched(19.89, 20, 349.9), false},
      {"alike combs, narrow", comb, comb, 3, Notched(21.89, 4, 66), false},
      {"alike combs", comb, comb, 3, Notched(21.91, 4, 66), true},
      {"alike, few edges", shortComb, shortComb, 3, Notched(17.89, 4, 54), true},
  };
  for (const TRow& row : rows) {
    TConvolutionProbe convolution(row.St, row.Dy);
    convolution._selfNfp = row.Similar;
    TPaths paths{row.Path};
    EXPECT_EQ(convolution.NormorlizePaths(paths, false), row.Expected) << row.What;
  }
}

// ---- Inner paths ----

// A box of 20 as a cavity for what is given.
TConvolutionProbe Cavity(TVPolyline2D Cavity, TVPolyline2D Shape) {
  return {Clockwise(std::move(Cavity)), std::move(Shape)};
}

TPath PolygonPath(double X, double Y, int Points, double Area) {
  TVPolyline2D polygon = test::Circle(Points, std::sqrt(Area / test::Circle(Points, 1).Area()));
  polygon.Translate({X, Y});
  return PathOf(polygon);
}

TEST(PathNormalisation, EmptiesASoleInnerPathThatIsNoRegion) {
  const auto slot = [](int points, Int64 height) {
    TPath path{{90'000, height}, {0, height}};
    for (int i = 0; i < points - 2; ++i) path.push_back({90'000 * i / (points - 3), 0});
    return path;
  };
  struct TRow {
    const char* What;
    TPath Path;
    std::size_t Left;
  };
  TRow rows[] = {
      {"clockwise", PathOf(Clockwise(test::Circle(6, 1))), 0},
      {"triangle below 4e-6", PolygonPath(2, 2, 3, 3.9e-6), 0},
      {"triangle above", PolygonPath(2, 2, 3, 4.1e-6), 1},
      {"box below 1e-6", PolygonPath(2, 2, 4, 0.9e-6), 0},
      {"box above", PolygonPath(2, 2, 4, 1.1e-6), 1},
      {"hexagon", PolygonPath(2, 2, 6, 0.9e-6), 1},
      {"a slot is cleaned away", slot(4, 14), 0},
      {"a wider one is not", slot(4, 16), 1},
      {"with nine points it is", slot(9, 24), 0},
      {"up to its width", slot(9, 26), 1},
      {"two points", {{0, 0}, {9, 9}}, 0},
  };
  for (TRow& row : rows) {
    TPaths paths{row.Path};
    EXPECT_TRUE(Cavity(Rect(0, 0, 20, 20), Rect(0, 0, 1, 1)).NormorlizePaths(paths, true)) << row.What;
    EXPECT_EQ(paths.size(), row.Left) << row.What;
  }
}

TEST(PathNormalisation, TriesASoleInnerPathOfRichLoops) {
  const TVPolyline2D unit = Rect(0, 0, 1, 1);
  struct TRow {
    const char* What;
    TVPolyline2D Cavity, Shape;
    double Area;
    int Points;
    bool Tried;
  };
  const TRow rows[] = {
      {"many edges", test::Circle(351, 50), unit, 9.9, 8, true},
      {"large region", test::Circle(351, 50), unit, 10.1, 8, false},
      {"fewer edges", test::Circle(350, 50), unit, 9.9, 8, false},
      {"long path", test::Circle(351, 50), unit, 9.9, 54, true},
      {"dense", CombOf(9, 9), unit, 20, 8, true},
      {"parallel in both", CombOf(8, 9), CombOf(2, 0.5), 20, 8, true},
  };
  for (const TRow& row : rows) {
    // Far outside of the cavity, so that a trial fails.
    TPaths paths{PolygonPath(500, 500, row.Points, row.Area)};
    EXPECT_EQ(Cavity(row.Cavity, row.Shape).NormorlizePaths(paths, true), !row.Tried) << row.What;
    EXPECT_EQ(paths.size(), row.Tried ? 0u : 1u) << row.What;
    TPaths fits{PolygonPath(9, 4, row.Points, row.Area)};
    EXPECT_TRUE(Cavity(row.Cavity, row.Shape).NormorlizePaths(fits, true)) << row.What;
  }
}

TEST(PathNormalisation, SuspectsBoxesThatStickOutOfATightCavity) {
  TConvolutionProbe tight = Cavity(CombOf(2, 1.05), CombOf(2));  // leaves a tenth of the shape
  TConvolutionProbe wide = Cavity(CombOf(2, 1.10), CombOf(2));   // a fifth
  TConvolutionProbe outer(CombOf(2, 1.05), CombOf(2));
  const TPath inside{{1000, 1000}, {2000, 1000}, {2000, 2000}};
  const TPath outside{{16'000, 1000}, {2000, 1000}, {2000, 2000}};
  EXPECT_FALSE(tight.InnerPathSuspect(inside));
  EXPECT_TRUE(tight.InnerPathSuspect(outside));
  EXPECT_FALSE(wide.InnerPathSuspect({{31'000, 1000}, {2000, 1000}, {2000, 2000}}));
  EXPECT_FALSE(outer.InnerPathSuspect(outside));
  EXPECT_FALSE(tight.InnerPathSuspect({}));
  for (const std::size_t points : {10u, 11u}) {
    TPath path(points, inside[0]);
    path[points / 2] = outside[0];
    EXPECT_EQ(tight.InnerPathSuspect(path), points > 10) << "middle point of " << points;
  }
  TPaths paths{outside};
  EXPECT_FALSE(tight.NormorlizePaths(paths, true));
  EXPECT_TRUE(paths.empty());
}

TEST(PathNormalisation, SortsOutSeveralRegions) {
  const auto left = [](TConvolutionProbe convolution, TPaths paths) {
    EXPECT_TRUE(convolution.NormorlizePaths(paths, true));
    return Size(paths);
  };
  const TVPolyline2D box = Rect(0, 0, 20, 20), unit = Rect(0, 0, 1, 1);
  const TPath region = BoxPath(2, 2, 3, 3), outside = BoxPath(50, 50, 3, 3);
  EXPECT_EQ(left(Cavity(box, unit), {region, PolygonPath(9, 9, 7, 0.9e-5)}), 1);
  EXPECT_EQ(left(Cavity(box, unit), {region, PolygonPath(9, 9, 7, 1.1e-5)}), 2);
  EXPECT_EQ(left(Cavity(box, unit), {region, PolygonPath(9, 9, 5, 8e-5)}), 1) << "small beside the largest";
  EXPECT_EQ(left(Cavity(box, unit), {region, PolygonPath(9, 9, 5, 10e-5)}), 2);
  EXPECT_EQ(left(Cavity(box, unit), {region, PolygonPath(9, 9, 6, 8e-5)}), 2);
  EXPECT_EQ(left(Cavity(box, unit), {region, HolePath(3, 3, 1, 1)}), 1);

  EXPECT_EQ(left(Cavity(box, unit), {region, region, region, region, region, outside}), 5);
  const TVPolyline2D comb = CombOf(8, 9), comb9 = CombOf(9, 9), comb10 = CombOf(10, 9);  // bar 9 high, parallel edges
  const TPath inBar = BoxPath(2, 2, 3, 3), inMaterial = BoxPath(500, 2, 3, 3);
  EXPECT_EQ(left(Cavity(comb9, unit), {inBar, inBar, inMaterial}), 2);
  EXPECT_EQ(left(Cavity(comb10, unit), {inBar, inMaterial}), 1);
  EXPECT_EQ(left(Cavity(CombOf(3, 9), CombOf(2)), {inBar, inMaterial}), 1) << "parallel edges in both";
  EXPECT_EQ(left(Cavity(comb10, unit), {inBar, BoxPath(2, 7, 9, 0.0006)}), 1) << "nothing left to try";
  EXPECT_EQ(left(Cavity(comb10, unit), {inBar, BoxPath(2, 7, 9, 0.0008)}), 2);

  for (const std::size_t count : {25u, 26u}) {
    TPaths regions(count, inBar);
    EXPECT_EQ(Cavity(comb, test::Circle(6, 0.5)).NormorlizePaths(regions, true), count == 25);
    regions.assign(count, region);
    EXPECT_TRUE(Cavity(box, unit).NormorlizePaths(regions, true));
  }
}

// ---- Trial placement ----

TEST(TrialPlacement, LooksAtTheFirstPointOrAtAll) {
  const TKMPLoop st = LoopOf(Rect(0, 0, 10, 10));
  const TKMPLoop dy = LoopOf(Mirrored({{0, 0}, {3, 0}, {0, 3}}));  // differs from its mirror image
  const auto first = [&](const TPath& path, int offset) {
    return TConvolutionProbe::PathInvalid(st, dy, path, offset);
  };
  const auto whole = [&](const TPath& path, int offset) {
    return TKineticConvolution::WholePathInvalid(st, dy, path, offset);
  };
  const TPath apart{{1'000'000, 500'000}, {1'000'000, 900'000}, {1'200'000, 500'000}};
  EXPECT_FALSE(first(apart, 0)) << "touching";
  EXPECT_TRUE(first({{999'990, 500'000}, {1'000'000, 900'000}, {1'200'000, 500'000}}, 0));
  const TPath lateOverlap{{1'000'000, 500'000}, {1'200'000, 500'000}, {999'990, 900'000}};
  EXPECT_FALSE(first(lateOverlap, 0));
  EXPECT_TRUE(whole(lateOverlap, 0));
  EXPECT_FALSE(whole(lateOverlap, -1)) << "shrunk by 15";
  EXPECT_TRUE(whole(lateOverlap, 1)) << "grown";
  EXPECT_TRUE(first(BoxPath(20, 20, 1, 0.0003), -1)) << "nothing left";
  EXPECT_TRUE(whole(BoxPath(20, 20, 1, 0.0003), -1));
  EXPECT_FALSE(first(BoxPath(20, 20, 1, 0.0004), -1));
  EXPECT_TRUE(first({}, 0));
}

}  // namespace
}  // namespace platenest
