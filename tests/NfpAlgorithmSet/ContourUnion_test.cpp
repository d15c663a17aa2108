#include "ContourUnion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "ConvexPair.h"
#include "ForEachSeed.h"
#include "PathFixtures.h"
#include "Shapes.h"
#include "SimpleContour.h"
#include "platenest/foundation/ClipperAdapter.h"

namespace platenest {
namespace {

using detail::DropFlatVertices;
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

bool Unite(const TPaths& Contours, TPaths& Paths) {
  TContours contours;
  for (const TPath& contour : Contours) contours.Add(contour);
  return UniteContours(contours, Paths);
}

// The same for equal contours in any order, whatever their first points are.
std::multiset<std::vector<std::pair<Int64, Int64>>> Plain(const TPaths& Paths) {
  std::multiset<std::vector<std::pair<Int64, Int64>>> contours;
  for (const TPath& path : Paths) {
    std::vector<std::pair<Int64, Int64>> contour;
    for (const TIntPoint& point : path) contour.emplace_back(point.X, point.Y);
    std::ranges::rotate(contour, std::ranges::min_element(contour));
    contours.insert(std::move(contour));
  }
  return contours;
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
    EXPECT_EQ(Plain(paths), Plain(UnionOf(contours)));
  });
  EXPECT_GT(united, 2000);
}

// A convex contour with many axis-parallel and some parallel edges.
TVPolyline2D HullOnGrid(unsigned Seed) {
  std::mt19937 random(Seed);
  TVPolyline2D hull;
  TPathUtils::CreatePolyline(RandomContour(random, 12, 9, 10'000), kPathScale).ConvexHull(hull);
  hull.SetIsClockwise(false);
  return hull;
}

// The ring is what the graph of the chips and Clipper make of the pair.
TEST(ConvexPair, IsTheRingOfTheGraph) {
  int merged = 0;
  ForEachSeed(400, [&](unsigned seed) {
    const auto contour = [&](unsigned number) {
      const int edges = 3 + static_cast<int>(seed % 60);
      return seed % 2 == 0 ? HullOnGrid(number) : MakeShape(TShapeKind::Convex, edges, 50, number).front();
    };
    const TKMPLoop fixed = LoopOf(contour(2 * seed));
    const TKMPLoop moving = LoopOf(Mirrored(contour(2 * seed + 1)));
    TPath ring;
    if (!MergeConvexLoops(fixed, moving, ring)) return;
    ++merged;
    int level = 0;
    const TVectorGraph graph = TKineticConvolution(ntComplete, false).Convolve(fixed, moving, false, level);
    TKineticCircuits circuits(graph, 2);
    ASSERT_TRUE(circuits.DFSLoops(false, ntComplete, 0));
    ASSERT_EQ(circuits.CircuitCount(), 1);
    TPath path;
    circuits.TransCircuitToPath(0, path);
    EXPECT_EQ(Plain(UnionOf({path})), Plain({ring}));
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
