#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "Contours.h"
#include "PathFixtures.h"

namespace platenest {
namespace {

// How many paths are left of those given; -1 if they are refused. A clockwise fixed shape is a cavity.
int Left(const TVPolyline2D& Static, const TVPolyline2D& Dynamic, TPaths& Paths, int Similar = 0) {
  TConvolutionProbe convolution(Static, Dynamic);
  convolution._selfNfp = Similar;
  return convolution.NormorlizePaths(Paths, Static.IsClockwise()) ? Size(Paths) : -1;
}

TPath BoxPath(double Left, double Bottom, double Width, double Height) {
  return PathOf(Rect(Left, Bottom, Width, Height));
}

TPath HolePath(double Left, double Bottom, double Width, double Height) {
  return PathOf(Clockwise(Rect(Left, Bottom, Width, Height)));
}

// Of this area in path units; far from everything else unless told otherwise.
TPath Sliver(Int64 Area, Int64 Left = 100'000'000) {
  return {{Left, 0}, {Left + 2 * Area, 0}, {Left, 1}};
}

// A box with a notch in its upper right corner that leaves it the area given.
TPath Notched(double Width, double Height, double Area) {
  const double notch = std::sqrt(Width * Height - Area), x = Width - 2, y = Height - 2;
  return PathOf({{-2, -2}, {x, -2}, {x, y - notch}, {x - notch, y - notch}, {x - notch, y}, {-2, y}});
}

// Together 104, no-fit polygon 12 by 12, room for holes 40.
const TVPolyline2D kTen = Rect(0, 0, 10, 10), kTwo = Rect(0, 0, 2, 2), kUnit = Rect(0, 0, 1, 1);
const TPath kOutline = BoxPath(-2, -2, 12, 12);

TEST(PathNormalisation, TellsNoiseFromPathsThatMeanSomething) {
  const auto isOutline = [](TPaths paths) {
    const int left = Left(kTen, kTwo, paths);
    EXPECT_TRUE(left == -1 || (left == 1 && std::fabs(ClipperLib::Area(paths[0]) - 144e10) < 2e8));
    return left == 1;
  };
  const auto withSlivers = [&](int count, Int64 area) {
    TPaths paths(count, Sliver(area));
    paths.push_back(kOutline);
    return isOutline(std::move(paths));
  };
  EXPECT_TRUE(withSlivers(40, 10'999)) << "any number of noise";
  EXPECT_TRUE(withSlivers(19, 11'000));
  EXPECT_FALSE(withSlivers(20, 11'000));
  EXPECT_TRUE(withSlivers(1, 39'899)) << "an unused one apart";
  EXPECT_FALSE(withSlivers(1, 39'900)) << "an outer one apart";
  EXPECT_TRUE(isOutline({kOutline, Sliver(39'900, 0)})) << "an outer one inside";
  EXPECT_FALSE(isOutline({20, kOutline}));
  EXPECT_TRUE(isOutline({BoxPath(-2, -2, 7, 12), BoxPath(5.00008, -2, 4.99992, 12)})) << "two that nearly touch";
  EXPECT_FALSE(isOutline({BoxPath(-2, -2, 7, 12), BoxPath(5.0001, -2, 4.9999, 12)})) << "two with a gap";
  EXPECT_FALSE(isOutline({HolePath(-2, -2, 12, 12)})) << "holes alone";
}

TEST(PathNormalisation, AHoleNeedsRoomForTheShape) {
  // Alone, large and with loops without parallel edges a hole is believed without a trial: here it lies in the middle
  // of the material. So an artefact of that kind would stay.
  const auto holesLeft = [](TPaths paths, int similar = 0) {
    paths.push_back(kOutline);
    return Left(kTen, kTwo, paths, similar) - 1;
  };
  EXPECT_EQ(holesLeft({HolePath(0, 0, 4, 10)}), 1);
  EXPECT_EQ(holesLeft({HolePath(0, 0, 4.00001, 10)}), 0);
  EXPECT_EQ(holesLeft({HolePath(1, 1, 0.01, 0.01)}), 1);
  EXPECT_EQ(holesLeft({HolePath(1, 1, 0.01, 0.00999)}), 0) << "small ones are tried";
  EXPECT_EQ(holesLeft({HolePath(1, 1, 2, 2), HolePath(4, 4, 2, 2)}), 0) << "so are several";
  EXPECT_EQ(holesLeft({HolePath(1, 1, 4, 4)}, 1), 0) << "and those of similar loops";
  EXPECT_EQ(holesLeft({HolePath(1, 1, 30, 0.00004)}), 0) << "cleaned to nothing";
}

// A box of 20 with a chamber of 10 behind a neck of width 1, and a box of 2 that fits in: in the no-fit polygon of 22 a
// hole of 8.
TEST(PathNormalisation, TriesHolesInTheirOrder) {
  const TVPolyline2D chamber{{0, 0},  {20, 0},  {20, 9.5},  {15, 9.5},  {15, 5},  {5, 5},
                             {5, 15}, {15, 15}, {15, 10.5}, {20, 10.5}, {20, 20}, {0, 20}};
  const TPath whole = HolePath(5, 5, 8, 8), small = HolePath(6, 6, 0.3, 0.3);
  const auto holesLeft = [&](int similar, TPaths paths) {
    paths.push_back(BoxPath(-2, -2, 22, 22));
    const int left = Left(chamber, kTwo, paths, similar);
    EXPECT_EQ(ClipperLib::Area(paths[0]), 484e10);
    return left - 1;
  };
  EXPECT_EQ(holesLeft(0, {whole}), 1);
  EXPECT_EQ(holesLeft(2, {whole}), 0) << "alike";
  EXPECT_EQ(holesLeft(2, {whole, Sliver(10'000)}), 1) << "alike with noise";
  EXPECT_EQ(holesLeft(1, {small, whole}), 0) << "ends with a small one";
  EXPECT_EQ(holesLeft(0, {small, whole}), 2) << "unlike loops go on";
  EXPECT_EQ(holesLeft(1, {HolePath(6, 6, 2.21, 2.21), whole}), 2) << "keeps one above";
  EXPECT_EQ(holesLeft(1, {HolePath(5, 5, 12.1, 12.1), whole}), 1) << "skips a large one";
  EXPECT_EQ(holesLeft(0, TPaths(12, whole)), 10) << "at most";
  EXPECT_EQ(holesLeft(0, {whole, Sliver(12'000), Sliver(12'000), Sliver(12'000)}), 0) << "three unused";
}

TEST(PathNormalisation, CleansOutlinesWithoutHoles) {
  const TVPolyline2D pentagon = test::Circle(5, 1);
  const TVPolyline2D comb2 = CombOf(2, 0.1), comb3 = CombOf(3, 0.1), comb4 = CombOf(4, 0.1);
  struct TRow {
    TVPolyline2D St, Dy;
    int Similar, Unused, Points, Bump;
    bool Removed;
  };
  const TRow rows[] = {{kUnit, kUnit, 2, 0, 36, 19, true},      {kUnit, kUnit, 2, 0, 36, 21, false},
                       {kUnit, kUnit, 2, 0, 35, 14, false},     {kUnit, kUnit, 2, 1, 16, 19, true},
                       {pentagon, pentagon, 2, 0, 9, 14, true}, {pentagon, pentagon, 2, 0, 9, 16, false},
                       {pentagon, kUnit, 2, 0, 9, 14, false},   {comb3, comb2, 4, 0, 8, 14, true},
                       {comb3, comb2, 3, 0, 8, 14, false},      {comb3, comb4, 3, 0, 8, 14, true}};
  for (const TRow& row : rows) {
    TVPolyline2D outline = test::Circle(row.Points - 1, 7);
    const TPoint2D middle = (outline[0] + outline[1]) * 0.5;
    outline.insert(outline.begin() + 1, middle * (1 + row.Bump / kPathScale / middle.Mag()));
    TPaths paths(row.Unused, Sliver(12'000));
    paths.push_back(PathOf(outline));
    EXPECT_EQ(Left(row.St, row.Dy, paths, row.Similar), 1);
    EXPECT_EQ(Size(paths[0]) < row.Points, row.Removed) << row.Points << " points, bump " << row.Bump;
  }
}

TEST(PathNormalisation, RefusesOutlinesThatAreTooSmall) {
  const auto taken = [](const TVPolyline2D& st, const TVPolyline2D& dy, int similar, const TPath& path) {
    TPaths paths{path};
    return Left(st, dy, paths, similar) == 1;
  };
  EXPECT_FALSE(taken(kTen, kTwo, 0, Notched(12, 12, 104.05))) << "less than both";
  EXPECT_TRUE(taken(kTen, kTwo, 0, Notched(12, 12, 104.15))) << "both and a little";
  EXPECT_FALSE(taken(kTen, kTwo, 0, Notched(11.89, 12, 140))) << "narrow";
  EXPECT_FALSE(taken(kTen, kTwo, 0, Notched(12, 11.89, 140))) << "low";
  EXPECT_FALSE(taken(kTen, kTen, 0, Notched(19.89, 20, 349.9))) << "equal boxes, narrow";
  EXPECT_FALSE(taken(CombOf(6), CombOf(6), 3, Notched(21.89, 4, 66))) << "alike combs of 24 edges, narrow";
  EXPECT_TRUE(taken(CombOf(6), CombOf(6), 3, Notched(21.91, 4, 66)));
  EXPECT_TRUE(taken(CombOf(5), CombOf(5), 3, Notched(17.89, 4, 54))) << "alike, few edges";
}

// ---- Inner paths ----

const TVPolyline2D kCavity = Clockwise(Rect(0, 0, 20, 20));

TPath PolygonPath(double X, double Y, int Points, double Area) {
  TVPolyline2D polygon = test::Circle(Points, std::sqrt(Area / test::Circle(Points, 1).Area()));
  polygon.Translate({X, Y});
  return PathOf(polygon);
}

TEST(PathNormalisation, EmptiesASoleInnerPathThatIsNoRegion) {
  const auto left = [](const TPath& path) {
    TPaths paths{path};
    return Left(kCavity, kUnit, paths);
  };
  const auto slot = [](int points, Int64 height) {
    TPath path{{90'000, height}, {0, height}};
    for (int i = 0; i < points - 2; ++i) path.push_back({90'000 * i / (points - 3), 0});
    return path;
  };
  EXPECT_EQ(left(PathOf(Clockwise(test::Circle(6, 1)))), 0);
  EXPECT_EQ(left(PolygonPath(2, 2, 3, 3.9e-6)), 0);
  EXPECT_EQ(left(PolygonPath(2, 2, 3, 4.1e-6)), 1);
  EXPECT_EQ(left(PolygonPath(2, 2, 4, 0.9e-6)), 0);
  EXPECT_EQ(left(PolygonPath(2, 2, 4, 1.1e-6)), 1);
  EXPECT_EQ(left(PolygonPath(2, 2, 6, 0.9e-6)), 1);
  EXPECT_EQ(left(slot(4, 14)), 0) << "cleaned away";
  EXPECT_EQ(left(slot(4, 16)), 1);
  EXPECT_EQ(left(slot(9, 24)), 0) << "up to a larger width with nine points";
  EXPECT_EQ(left(slot(9, 26)), 1);
  EXPECT_EQ(left({{0, 0}, {9, 9}}), 0);
}

TEST(PathNormalisation, TriesASoleInnerPathOfRichLoops) {
  const auto isTried = [](const TVPolyline2D& cavity, const TVPolyline2D& shape, double area, int points) {
    // Far outside of the cavity, so that a trial fails; and where the shape fits.
    TPaths paths{PolygonPath(500, 500, points, area)}, fits{PolygonPath(9, 4, points, area)};
    const bool tried = Left(Clockwise(cavity), shape, paths) == -1;
    EXPECT_EQ(paths.empty(), tried);
    EXPECT_EQ(Left(Clockwise(cavity), shape, fits), 1);
    return tried;
  };
  EXPECT_TRUE(isTried(test::Circle(351, 50), kUnit, 9.9, 8)) << "many edges";
  EXPECT_FALSE(isTried(test::Circle(351, 50), kUnit, 10.1, 8)) << "large region";
  EXPECT_FALSE(isTried(test::Circle(350, 50), kUnit, 9.9, 8)) << "fewer edges";
  EXPECT_TRUE(isTried(test::Circle(351, 50), kUnit, 9.9, 54)) << "long path";
  EXPECT_TRUE(isTried(CombOf(9, 9), kUnit, 20, 8)) << "dense";
  EXPECT_TRUE(isTried(CombOf(8, 9), CombOf(2, 0.5), 20, 8)) << "parallel in both";
}

TEST(PathNormalisation, SuspectsBoxesThatStickOutOfATightCavity) {
  const TVPolyline2D comb = CombOf(2), cavity = CombOf(2, 1.05);  // leaves a tenth of the shape
  const TConvolutionProbe tight(Clockwise(cavity), comb);
  const TPath inside{{1000, 1000}, {2000, 1000}, {2000, 2000}};
  const TPath outside{{16'000, 1000}, {2000, 1000}, {2000, 2000}};
  EXPECT_FALSE(tight.InnerPathSuspect(inside) || tight.InnerPathSuspect({}));
  EXPECT_TRUE(tight.InnerPathSuspect(outside));
  EXPECT_FALSE(TConvolutionProbe(cavity, comb).InnerPathSuspect(outside)) << "no cavity";
  EXPECT_FALSE(TConvolutionProbe(Clockwise(CombOf(2, 1.10)), comb).InnerPathSuspect({{31'000, 1000}})) << "a fifth";
  for (const std::size_t points : {10u, 11u}) {
    TPath path(points, inside[0]);
    path[points / 2] = outside[0];
    EXPECT_EQ(tight.InnerPathSuspect(path), points > 10) << "middle point of " << points;
  }
  TPaths paths{outside};
  EXPECT_EQ(Left(Clockwise(cavity), comb, paths), -1);
  EXPECT_TRUE(paths.empty());
}

TEST(PathNormalisation, SortsOutSeveralRegions) {
  const auto left = [](const TVPolyline2D& cavity, const TVPolyline2D& shape, TPaths paths) {
    return Left(Clockwise(cavity), shape, paths);
  };
  const TPath region = BoxPath(2, 2, 3, 3), outside = BoxPath(50, 50, 3, 3);
  EXPECT_EQ(left(kCavity, kUnit, {region, PolygonPath(9, 9, 7, 0.9e-5)}), 1);
  EXPECT_EQ(left(kCavity, kUnit, {region, PolygonPath(9, 9, 7, 1.1e-5)}), 2);
  EXPECT_EQ(left(kCavity, kUnit, {region, PolygonPath(9, 9, 5, 8e-5)}), 1) << "small beside the largest";
  EXPECT_EQ(left(kCavity, kUnit, {region, PolygonPath(9, 9, 5, 10e-5)}), 2);
  EXPECT_EQ(left(kCavity, kUnit, {region, PolygonPath(9, 9, 6, 8e-5)}), 2);
  EXPECT_EQ(left(kCavity, kUnit, {region, HolePath(3, 3, 1, 1)}), 1);
  EXPECT_EQ(left(kCavity, kUnit, {region, region, region, region, region, outside}), 5);

  // The bars of the combs are 9 high and hold the region.
  const TPath inMaterial = BoxPath(500, 2, 3, 3);
  EXPECT_EQ(left(CombOf(9, 9), kUnit, {region, region, inMaterial}), 2);
  EXPECT_EQ(left(CombOf(10, 9), kUnit, {region, inMaterial}), 1);
  EXPECT_EQ(left(CombOf(3, 9), CombOf(2), {region, inMaterial}), 1) << "parallel edges in both";
  EXPECT_EQ(left(CombOf(10, 9), kUnit, {region, BoxPath(2, 7, 9, 0.0006)}), 1) << "nothing left to try";
  EXPECT_EQ(left(CombOf(10, 9), kUnit, {region, BoxPath(2, 7, 9, 0.0008)}), 2);

  EXPECT_EQ(left(CombOf(8, 9), test::Circle(6, 0.5), TPaths(25, region)), 25);
  EXPECT_EQ(left(CombOf(8, 9), test::Circle(6, 0.5), TPaths(26, region)), -1);
  EXPECT_EQ(left(kCavity, kUnit, TPaths(26, region)), 26);
}

// ---- Trial placement ----

TEST(TrialPlacement, LooksAtTheFirstPointOrAtAll) {
  const TKMPLoop st = LoopOf(kTen);
  const TKMPLoop dy = LoopOf(Mirrored({{0, 0}, {3, 0}, {0, 3}}));  // differs from its mirror image
  const auto first = [&](const TPath& path, int offset) {
    return TConvolutionProbe::PathInvalid(st, dy, path, offset);
  };
  const auto whole = [&](const TPath& path, int offset) {
    return TKineticConvolution::WholePathInvalid(st, dy, path, offset);
  };
  EXPECT_TRUE(first({{999'990, 500'000}, {1'000'000, 900'000}, {1'200'000, 500'000}}, 0));
  const TPath lateOverlap{{1'000'000, 500'000}, {1'200'000, 500'000}, {999'990, 900'000}};
  EXPECT_FALSE(first(lateOverlap, 0)) << "touching";
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
