#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <tuple>
#include <vector>

#include "Contours.h"
#include "ForEachSeed.h"
#include "GraphFixtures.h"
#include "NfpSampling.h"
#include "PathFixtures.h"

namespace platenest {
namespace {

// A search that has found the circuits given, all of one component unless told otherwise.
struct TFound : TKineticCircuits {
  using TKineticCircuits::FCircuits, TKineticCircuits::FOuterCycleCounter, TKineticCircuits::FSccOutline;
  using TKineticCircuits::SpecCycles;

  TFound(const TVectorGraph& Given, const TLists& Circuits) : TKineticCircuits(Given, 2) {
    DFSLoops(false, ntComplete, 0);
    FCircuits.clear();
    for (const auto& circuit : Circuits) FCircuits.push_back(circuit);
    FOuterCycleCounter = CircuitCount();
  }
};

// Vertices given, then a ring of three so that there is a component.
TVectorGraph GraphWith(std::vector<TPoint2D> Points) {
  const int first = Size(Points);
  for (const TPoint2D& point : {TPoint2D{-9, -9}, TPoint2D{-8, -9}, TPoint2D{-9, -8}}) Points.push_back(point);
  return VectorGraphOf(Points, {{first, first + 1}, {first + 1, first + 2}, {first + 2, first}});
}

// One circuit for each path, along it.
struct TPathsAsCircuits {
  std::vector<TPoint2D> Points;
  TLists Circuits;

  void Add(const TPath& Path) {
    Circuits.emplace_back();
    for (const TIntPoint& point : Path) {
      Circuits.back().push_back(Size(Points));
      Points.push_back(TPathUtils::CreatePoint2D(point, kPathScale));
    }
  }
};

// Around all other circuits, so that their union is cheap.
const TVPolyline2D kHidesAll{{-1e6, -1e5}, {1e6, -1e5}, {0, 1e6}};

TPath CircleAt(double X, double Y, int Count, double Radius = 1000) {
  TVPolyline2D circle = test::Circle(Count, Radius);
  circle.Translate({X, Y});
  return PathOf(circle);
}

// A cavity, so that circuits keep their direction.
struct TCavityProbe : TConvolutionProbe {
  explicit TCavityProbe(TNFPType Required = ntComplete)
      : TConvolutionProbe(Clockwise(Rect(0, 0, 9, 9)), Rect(0, 0, 1, 1), Required) {}
};

// Compares with Clipper and tells how many points were taken.
Int64 ExpectUnionOf(const TPaths& Paths) {
  TPathsAsCircuits given;
  for (const TPath& path : Paths) given.Add(path);
  const TVectorGraph graph = GraphWith(given.Points);
  TCavityProbe convolution;
  TPaths united, expected;
  EXPECT_TRUE(convolution.UnionCircuits(TFound(graph, given.Circuits), united, true));
  TClipper clipper;
  clipper.AddPaths(Paths, ClipperLib::ptSubject, true);
  clipper.Execute(ClipperLib::ctUnion, expected, ClipperLib::pftPositive, ClipperLib::pftPositive);
  const TRegionDifference difference = CompareRegions(united, expected);
  EXPECT_LT(std::max(difference.Lost, difference.Surplus), 1e-7 * RegionArea(expected));
  return convolution._edgeCount;
}

TEST(CircuitUnion, RunsAgainstTheEdgesUnlessTheLoopsRunOppositeWays) {
  const TVPolyline2D square = Rect(0, 0, 1, 1);
  const TVectorGraph graph = GraphWith({{0, 0}, {0, 3}, {3, 3}, {3, 0}});
  for (const bool isCavity : {false, true}) {
    TConvolutionProbe convolution(isCavity ? Clockwise(square) : square, square);
    TPaths paths{{{7, 7}}};
    EXPECT_TRUE(convolution.UnionCircuits(TFound(graph, {{0, 1, 2, 3}}), paths, false));
    EXPECT_EQ(TPathUtils::Area(paths), isCavity ? 0 : 9e10) << "an artefact leaves nothing, which is a result";
    EXPECT_TRUE(convolution.UnionCircuits(TFound(graph, {{3, 2, 1, 0}}), paths, false));
    EXPECT_EQ(TPathUtils::Area(paths), isCavity ? 9e10 : 0);
  }
  TFound outlined(graph, TLists(90, {0, 1, 2}));
  outlined.FSccOutline = Rect(0, 0, 5, 5);
  TPaths paths;
  TConvolutionProbe(square, square).UnionCircuits(outlined, paths, false);
  EXPECT_EQ(TPathUtils::Area(paths), 25e10) << "the outline in place of the circuits";
}

TEST(CircuitUnion, StopsOnTooMuchWork) {
  const std::tuple<TNFPType, int, int, int, bool> rows[] = {
      {ntComplete, 16'600, 60, 0, true},    {ntComplete, 16'700, 60, 0, false},  // points times circuits
      {ntComplete, 18'000, 51, 0, true},    {ntComplete, 18'001, 51, 0, false},    {ntComplete, 18'001, 50, 0, true},
      {ntConcaveHull, 26'000, 30, 6, true}, {ntConcaveHull, 26'001, 30, 6, false}, {ntComplete, 26'001, 30, 6, true},
      {ntConcaveHull, 28'000, 2, 0, true},  {ntConcaveHull, 28'001, 2, 0, false},  {ntExact, 28'001, 4, 3, false},
      {ntExact, 28'000, 4, 3, true},        {ntComplete, 20'001, 31, 0, false},    {ntComplete, 20'001, 30, 0, true},
      {ntComplete, 40'001, 3, 0, false},    {ntComplete, 40'001, 2, 0, true},      {ntExact, 18'001, 81, 0, false},
      {ntExact, 18'001, 80, 0, true},       {ntComplete, 18'001, 1, 10, false},    {ntComplete, 18'000, 1, 10, true},
  };
  for (const auto& [required, points, outer, rest, expected] : rows) {
    const int fillers = outer + rest - 1;
    TPathsAsCircuits given;
    given.Add(PathOf(kHidesAll));
    for (int i = 0; i < fillers; ++i)
      given.Add(CircleAt(3000.0 * (i % 9), 3000.0 * (i / 9), (points - 3 + i) / fillers));
    const TVectorGraph graph = GraphWith(given.Points);
    TFound found(graph, given.Circuits);
    found.FOuterCycleCounter = outer;
    TCavityProbe convolution(required);
    TPaths paths;
    EXPECT_EQ(convolution.UnionCircuits(found, paths, false), expected)
        << points << " points, " << outer << " + " << rest << " circuits";
    EXPECT_TRUE(points > 17'000 || convolution.UnionCircuits(found, paths, true)) << "forced";
  }
}

// Many short circuits and one long one; then equal circuits that run along the long one but for some vertices of their
// own in its middle or outside of it.
TEST(CircuitUnion, LeavesOutLongCircuitsThatAddNextToNothing) {
  constexpr int kLongest = 9000;
  const std::tuple<int, int, bool, int, int, bool, bool> rows[] = {
      {3000, 0, false, 1, 80, false, false}, {3000, 0, false, 1, 80, true, true},
      {3000, 0, false, 1, 70, false, true},  {2499, 0, false, 7, 80, false, true},
      {2501, 1, false, 7, 80, false, false}, {2501, 1, false, 6, 80, false, true},
      {2501, 1, true, 7, 80, false, true},   {3200, 1, false, 7, 80, false, true},
      {4499, 2, false, 7, 80, false, false}, {4000, 3, false, 7, 80, false, true},
      {8599, 4, false, 7, 80, false, false}, {6000, 5, false, 7, 80, false, true},
  };
  for (const auto& [length, fresh, isOutside, copies, fillers, isSpecial, areTaken] : rows) {
    TPathsAsCircuits given;
    given.Add(CircleAt(0, 0, kLongest));
    given.Add(PathOf(kHidesAll));
    for (int i = 1; i < fillers; ++i) given.Add(CircleAt(3000, 10.0 * i, 3, 1));
    for (int i = 0; i < copies; ++i) {
      auto& circuit = given.Circuits.emplace_back();
      for (int k = 0; k < length - fresh; ++k) circuit.push_back(k);
      for (int k = length - fresh; k < length; ++k) {
        circuit.push_back(Size(given.Points));
        given.Points.push_back({(isOutside ? 1500.0 : 1.0) + i, 0.01 * k});
      }
    }
    const TVectorGraph graph = GraphWith(given.Points);
    TFound found(graph, given.Circuits);
    if (isSpecial) found.SpecCycles.push_back(fillers + 1);
    TCavityProbe convolution;
    TPaths paths;
    convolution.UnionCircuits(found, paths, false);
    EXPECT_EQ(convolution._edgeCount, kLongest + 3 * fillers + (areTaken ? copies * length : 0))
        << length << " vertices, " << fresh << " of its own" << (isOutside ? " outside" : "");
  }
}

// Circuits of either direction, in some seeds one in three crossing itself; enough for batches and groups of them.
TEST(CircuitUnion, BatchesChangeNothing) {
  ForEachSeed(8, [](unsigned seed) {
    std::mt19937 random(seed);
    const auto uniform = [&](double low, double high) { return std::uniform_real_distribution<>(low, high)(random); };
    const double spread = seed % 2 == 0 ? 60 : 400;  // crowded; or clear of each other in part
    TPaths circuits;
    for (int i = 0; i < 130; ++i) {
      const int turns = seed >= 4 && i % 3 == 0 ? 2 : 1;
      const double x = uniform(0, spread), y = uniform(0, spread), wave = uniform(1, 6);
      TVPolyline2D contour;
      for (int k = 0; k < 44; ++k) {
        const double angle = 2 * std::numbers::pi * turns * (k + uniform(0, 0.5)) / 44;
        const double radius = wave + uniform(0, 9);
        contour.push_back({x + radius * std::cos(angle), y + radius * std::sin(turns == 2 ? angle / 2 : angle)});
      }
      contour.SetIsClockwise(i % 7 == 0);
      circuits.push_back(PathOf(contour));
    }
    EXPECT_GT(ExpectUnionOf(circuits), 5000);
  });
}

// A path with a lobe that winds about the wrong way and takes from two circles of one batch: it is in no batch, as one
// of the last points or because it meets a path that takes from it.
TEST(CircuitUnion, BatchesMindWrongLobesOfPathsThatAreInNone) {
  const TPath bow = PathOf({{-400, 100}, {1600, -400}, {1600, 400}, {-400, -100}});
  for (const bool meetsHole : {false, true}) {
    TPaths circuits{CircleAt(0, 0, 150), CircleAt(1, 0, 150)};
    if (meetsHole) circuits.insert(circuits.begin(), {bow, PathOf(Clockwise(Rect(1500, -10, 20, 20)))});
    for (const double x : {5000, 8000, 11000}) circuits.push_back(CircleAt(x, 0, 300));
    if (!meetsHole) circuits.push_back(bow);
    ExpectUnionOf(circuits);
  }
}

}  // namespace
}  // namespace platenest
