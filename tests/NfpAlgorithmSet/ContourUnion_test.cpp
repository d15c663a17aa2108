#include "ContourUnion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "ConvexPair.h"
#include "ForEachSeed.h"
#include "PathFixtures.h"
#include "Shapes.h"
#include "SimpleContour.h"
#include "platenest/foundation/ClipperAdapter.h"

namespace platenest {
namespace {

using detail::DropFlatVertices;
using detail::IsConvexCounterClockwise;
using detail::MergeConvexLoops;
using detail::TContours;

TPaths UnionOf(const TPaths& Contours) {
  TClipper clipper;
  clipper.StrictlySimple(true);
  clipper.AddPaths(Contours, ClipperLib::ptSubject, true);
  TPaths paths;
  clipper.Execute(ClipperLib::ctUnion, paths, ClipperLib::pftPositive);
  return paths;
}

TPath FromLeast(TPath Path) {
  const auto before = [](const TIntPoint& a, const TIntPoint& b) { return a.X < b.X || (a.X == b.X && a.Y < b.Y); };
  std::ranges::rotate(Path, std::ranges::min_element(Path, before));
  return Path;
}

bool Unite(const TPaths& Contours, TPaths& Paths) {
  TContours contours;
  for (const TPath& contour : Contours) contours.Add(contour);
  return UniteContours(contours, Paths);
}

bool UniteContour(const TPath& Contour, TPaths& Paths) {
  return Unite({Contour}, Paths);
}

TPaths FromLeast(TPaths Paths) {
  for (TPath& path : Paths) path = FromLeast(std::move(path));
  const auto before = [](const TPath& a, const TPath& b) {
    return a[0].X != b[0].X ? a[0].X < b[0].X : a[0].Y != b[0].Y ? a[0].Y < b[0].Y : a.size() < b.size();
  };
  std::ranges::sort(Paths, before);
  return Paths;
}

TPath RandomContour(std::mt19937& Random, int Points, int Cells, int Cell) {
  const auto place = [&] { return static_cast<int>(Random() % static_cast<unsigned>(Cells)) * Cell; };
  TPath path;
  for (int i = 0; i < Points; ++i) {
    const int x = place();
    path.emplace_back(x, place());
  }
  DropFlatVertices(path, 0);
  return path;
}

TEST(SimpleContour, FlatVerticesGo) {
  TPath path{{7, 7}, {2, 0}, {4, 0}, {4, 4}, {4, 9}, {4, 4}, {0, 4}, {0, 4}, {0, 0}, {1, 0}};
  DropFlatVertices(path, 1);
  EXPECT_EQ(path, (TPath{{7, 7}, {4, 0}, {4, 4}, {0, 4}, {0, 0}})) << "what stands before stays";
  TPath needle{{0, 0}, {5, 5}, {9, 9}, {2, 2}};
  DropFlatVertices(needle, 0);
  EXPECT_TRUE(needle.empty());
}

TEST(SimpleContour, IsConvex) {
  const TPath box{{0, 0}, {9, 0}, {9, 4}, {0, 4}};
  EXPECT_TRUE(IsConvexCounterClockwise(box));
  EXPECT_FALSE(IsConvexCounterClockwise(TPath(box.rbegin(), box.rend()))) << "clockwise";
  EXPECT_FALSE(IsConvexCounterClockwise(TPath{{0, 0}, {9, 0}, {2, 2}, {0, 9}}));
  EXPECT_FALSE(IsConvexCounterClockwise(TPath{{9, 0}, {3, 9}, {0, 2}, {9, 5}, {1, 9}})) << "left turns, twice round";
  EXPECT_FALSE(IsConvexCounterClockwise(TPath{}));
}

TEST(ContourUnion, LeavesTouchesToClipper) {
  TPaths paths;
  EXPECT_TRUE(UniteContour(TPath{{0, 0}, {9, 0}, {9, 4}, {4, 4}, {4, 9}, {0, 9}}, paths));
  EXPECT_EQ(paths.size(), 1u);
  EXPECT_TRUE(UniteContour(TPath{{0, 9}, {4, 9}, {4, 4}, {9, 4}, {9, 0}, {0, 0}}, paths));
  EXPECT_TRUE(paths.empty()) << "clockwise";
  EXPECT_FALSE(UniteContour(TPath{{0, 0}, {9, 0}, {9, 9}, {5, 0}, {0, 9}}, paths)) << "a vertex on an edge";
  EXPECT_FALSE(UniteContour(TPath{{0, 0}, {5, 4}, {9, 0}, {9, 9}, {5, 4}, {0, 9}}, paths)) << "two vertices in one";
  EXPECT_FALSE(UniteContour(TPath{{0, 0}, {9, 0}, {9, 2}, {0, 1}, {9, 1}, {9, 9}}, paths))
      << "crosses at an end, rounded";
  EXPECT_TRUE(UniteContour(TPath{{0, 0}, {9, 9}}, paths));
  EXPECT_TRUE(paths.empty()) << "no area";
}

// Random contours cross themselves and each other in any way; on the coarse grid they touch as well.
TEST(ContourUnion, IsThatOfClipper) {
  int united = 0;
  ForEachSeed(4000, [&](unsigned seed) {
    std::mt19937 random(seed);
    const bool isCoarse = seed % 3 == 0;
    TPaths contours;
    for (unsigned i = 0; i <= seed / 3 % 4; ++i) {
      const int points = 3 + static_cast<int>(random() % 9);
      contours.push_back(isCoarse ? RandomContour(random, points, 7, 1000)
                                  : RandomContour(random, points, 1'000'000, 97));
    }
    TPaths paths;
    if (!Unite(contours, paths)) return;
    ++united;
    EXPECT_EQ(FromLeast(paths), FromLeast(UnionOf(contours)));
  });
  EXPECT_GT(united, 2000);
}

TEST(ContourUnion, CountsHowOftenContoursWind) {
  const TPath outer{{0, 0}, {900, 0}, {900, 900}, {0, 900}};
  const TPath inner{{300, 300}, {600, 300}, {600, 600}, {300, 600}};
  const TPath hole(inner.rbegin(), inner.rend());
  TPaths paths;
  ASSERT_TRUE(Unite({outer, hole}, paths));
  EXPECT_EQ(FromLeast(paths), FromLeast(TPaths{outer, hole}));
  ASSERT_TRUE(Unite({outer, inner}, paths));
  EXPECT_EQ(FromLeast(paths), FromLeast(TPaths{outer})) << "covered twice";
  ASSERT_TRUE(Unite({outer, inner, {{400, 500}, {500, 500}, {500, 400}, {400, 400}}}, paths));
  EXPECT_EQ(FromLeast(paths), FromLeast(TPaths{outer})) << "still covered once";
  ASSERT_TRUE(Unite({}, paths));
  EXPECT_TRUE(paths.empty());
}

// A convex contour with many axis-parallel and some parallel edges.
TVPolyline2D HullOnGrid(unsigned Seed) {
  std::mt19937 random(Seed);
  TVPolyline2D points;
  const auto place = [&] { return 0.1 * static_cast<double>(random() % 9); };
  for (int i = 0; i < 12; ++i) {
    const double x = place();
    points.push_back({x, place()});
  }
  TVPolyline2D hull;
  points.ConvexHull(hull);
  hull.SetIsClockwise(false);
  return hull;
}

// The ring is what the graph of the chips and Clipper make of the pair.
void ExpectRingOfGraph(const TKMPLoop& Static, const TKMPLoop& Dynamic, const TPath& Ring) {
  TKineticConvolution convolution(ntComplete, false);
  int level = 0;
  const TVectorGraph graph = convolution.Convolve(Static, Dynamic, false, level);
  TKineticCircuits circuits(graph, 2);
  ASSERT_TRUE(circuits.DFSLoops(false, ntComplete, 0));
  ASSERT_EQ(circuits.CircuitCount(), 1);
  TPath path;
  circuits.TransCircuitToPath(0, path);
  const TPaths united = UnionOf({path});
  ASSERT_EQ(united.size(), 1u);
  EXPECT_EQ(FromLeast(united.front()), FromLeast(Ring));
}

TEST(ConvexPair, IsTheRingOfTheGraph) {
  int merged = 0;
  ForEachSeed(400, [&](unsigned seed) {
    const bool onGrid = seed % 2 == 0;
    const int edges = 3 + static_cast<int>(seed % 60);
    const auto contour = [&](unsigned number) {
      return onGrid ? HullOnGrid(number)
                    : TPathUtils::CreatePolyline(PolygonOf(MakeShape(TShapeKind::Convex, edges, 50, number)).front(),
                                                 kPathScale);
    };
    const TKMPLoop fixed = LoopOf(contour(2 * seed));
    const TKMPLoop moving = LoopOf(Mirrored(contour(2 * seed + 1)));
    TPath ring;
    if (!MergeConvexLoops(fixed, moving, ring)) return;
    ++merged;
    ExpectRingOfGraph(fixed, moving, ring);
  });
  EXPECT_GT(merged, 200);
}

TEST(ConvexPair, LeavesTheOthersToTheGraph) {
  const TKMPLoop square = LoopOf(Rect(0, 0, 2, 2));
  TPath ring;
  EXPECT_TRUE(MergeConvexLoops(square, LoopOf({{0, 0}, {1, 0}, {0, 1}}), ring));
  EXPECT_FALSE(MergeConvexLoops(square, LoopOf({{0, 0}, {4, 0}, {1, 1}, {0, 4}}), ring)) << "concave";
  EXPECT_FALSE(MergeConvexLoops(square, LoopOf(Clockwise(Rect(0, 0, 1, 1))), ring));
  EXPECT_FALSE(MergeConvexLoops(square, LoopOf({{0, 0}, {1, 1e-6}, {0, 1}}), ring)) << "edges next to parallel";
  EXPECT_FALSE(MergeConvexLoops(square, LoopOf({{0, 0}, {1, -1e-6}, {0, 1}}), ring)) << "the same before a full turn";
  const TKMPLoop skew = LoopOf({{0, 0}, {3, 1}, {0, 1}});
  EXPECT_FALSE(MergeConvexLoops(skew, skew, ring)) << "rounding decides on the vertex between parallel edges";
}

}  // namespace
}  // namespace platenest
