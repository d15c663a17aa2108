#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "GraphFixtures.h"
#include "platenest/NfpAlgorithmSet/VectorGraph.h"
#include "platenest/foundation/Host.h"

namespace platenest {
namespace {

struct TWalkResult {
  bool Found = false;
  std::vector<int> Cycle;
  std::vector<std::string> Warnings;
};

TWalkResult Walk(TVectorGraph& Graph) {
  TWalkResult result;
  const TWarningScope scope([&](std::string_view line) { result.Warnings.emplace_back(line); });
  TVertexIdList cycle{99};
  result.Found = Graph.TryGetCcwCycle(cycle);
  result.Cycle = Ids(cycle);
  return result;
}

TVectorGraph VectorGraphOf(const std::vector<TPoint2D>& Points, const std::vector<std::pair<int, int>>& Edges) {
  TVectorGraph graph(Size(Points));
  for (const TPoint2D& point : Points) graph.AddVertex(point);
  for (const auto& [start, dest] : Edges) graph.AddEdgeNoErr(start, dest);
  return graph;
}

//     6---7
//  1--8-2 |     two clockwise squares, cut at their crossings
//  |  5-9-4     (5 is the lower left corner of the upper one)
//  0----3
const std::vector<TPoint2D> kSquares{{0, 0}, {0, 4}, {4, 4}, {4, 0}, {6, 2}, {2, 2}, {2, 6}, {6, 6}, {2, 4}, {4, 2}};
const std::vector<TPoint2D> kOverlap{{0, 10}, {5, 5}, {10, 0}, {0, 0}};  // 0 -> 1 lies on 0 -> 2
// 2 is reached a second time; the last three are only to let the walk be longer.
const std::vector<TPoint2D> kTwice{{2, 8}, {5, 0}, {0, 0},   {0, -4},   {8, -4},
                                   {3, 3}, {0, 5}, {-9, -9}, {-10, -9}, {-11, -9}};

TEST(OutlineWalk, GoesRoundTheOutsideOrTellsWhyNot) {
  using TEdges = std::vector<std::pair<int, int>>;
  const auto walk = [](const std::vector<TPoint2D>& points, const TEdges& edges, const std::string& warning = {}) {
    TVectorGraph graph = VectorGraphOf(points, edges);
    const TWalkResult result = Walk(graph);
    EXPECT_EQ(result.Warnings, std::vector<std::string>(warning.empty() ? 0 : 1, warning));
    return std::pair(result.Found, result.Cycle);
  };
  const auto found = [](const std::vector<int>& cycle) { return std::pair(true, cycle); };
  const auto lost = [](const std::vector<int>& cycle) { return std::pair(false, cycle); };
  const TEdges squares = {{0, 1}, {1, 8}, {8, 2}, {2, 9}, {9, 3}, {3, 0},
                          {5, 8}, {8, 6}, {6, 7}, {7, 4}, {4, 9}, {9, 5}};
  EXPECT_EQ(walk(kSquares, squares), found({7, 4, 9, 3, 0, 1, 8, 6})) << "from the top, the right one of equals";
  EXPECT_FALSE(walk({{0, 0}, {0, 4}}, {{0, 1}, {1, 0}}).first) << "two vertices bound nothing";
  EXPECT_EQ(walk({{0, 5}, {1, 0}, {2, 0}}, {{0, 1}, {1, 2}}, "Fatal Error in [TryCalcOutline]"), lost({0, 1, 2}))
      << "dead end, as far as it came";
  const auto sideLoop = walk({{0, 5}, {1, 0}, {2, 0}, {3, 1}}, {{0, 1}, {1, 2}, {2, 3}, {3, 1}});
  EXPECT_TRUE(!sideLoop.first && sideLoop.second.size() == 4) << "silently";
  for (const int next : {3, 6}) {
    const TEdges twice = {{0, 1}, {1, 2}, {2, next}, {2, 9 - next}, {3, 4}, {4, 5}, {5, 2}, {6, 0}};
    EXPECT_EQ(walk(kTwice, twice), found({0, 1, 2, 3, 4, 5, 2, 6})) << "no vertex again where there is a choice";
  }
  for (const int next : {1, 2})
    EXPECT_EQ(walk(kOverlap, {{0, next}, {0, 3 - next}, {1, 3}, {2, 3}, {3, 0}}), found({0, 1, 2, 3}))
        << "over the shorter edge to the longer one's end";
  const TEdges twins = {{0, 2}, {0, 1}, {2, 3}, {1, 4}, {3, 4}, {4, 0}};
  EXPECT_EQ(
      walk({{0, 10}, {5, 5 + 5e-7}, {5, 5}, {10, 0}, {0, 0}}, twins, "Same Edge(2-1) Overlap in [TryCalcOutline]"),
      found({0, 1, 3, 4}))
      << "of two equal edges the outer one takes over the other's way";
}

// Far ends 8e-5 apart make one direction, 1.8e-4 make two.
TEST(OutlineWalk, TellsLongEdgesApartByTheDistanceOfTheirEnds) {
  for (const double turn : {4e-8, 9e-8}) {
    const auto at = [](double Angle, double Length) {
      return TPoint2D{Length * std::cos(Angle), Length * std::sin(Angle)};
    };
    TVectorGraph graph = VectorGraphOf({{0, 0}, at(-0.3, 3000), at(-0.3 + turn, 2000), {0, -2000}},
                                       {{0, 1}, {0, 2}, {2, 3}, {1, 3}, {3, 0}});
    const TWalkResult result = Walk(graph);
    EXPECT_TRUE(result.Found);
    EXPECT_EQ(graph.HasEdge(2, 1), turn == 4e-8);
    EXPECT_EQ(result.Cycle.size(), turn == 4e-8 ? 4u : 3u);
  }
}

// From the top to far ends on one line, then all of them home over the last vertex.
TEST(OutlineWalk, GivesUpOnTheFourthOverlapAtOneVertex) {
  for (const int along : {4, 5}) {
    TVectorGraph graph(0);
    for (int i = 0; i <= along; ++i) graph.AddVertex({1.0 * i, 10.0 - i});
    graph.AddVertex({0, 0});
    for (int i = 1; i <= along; ++i) graph.AddEdge(0, i), graph.AddEdge(i, along + 1);
    graph.AddEdge(along + 1, 0);
    const TWalkResult result = Walk(graph);
    EXPECT_EQ(result.Found, along == 4);
    EXPECT_EQ(result.Warnings.empty() ? "" : result.Warnings.back(),
              along == 4 ? "" : "Something wrong in [TryCalcOutline]");
  }
}

// A convex way down the right side, each step with a double edge.
TEST(OutlineWalk, GivesUpAtTheSixthPairOfEqualEdges) {
  for (const int doubles : {5, 6}) {
    TVectorGraph graph(0);
    graph.AddVertex({0, 10});
    for (int i = 1; i <= doubles; ++i)
      for (const double lowered : {0.0, 5e-8}) graph.AddVertex({1.0 * i, 10 - 0.1 * i * i - lowered});
    graph.AddVertex({0, 0});
    const int last = graph.MaxVertexId();
    for (int from = 0, i = 1; i <= doubles; from = 2 * i - 1, ++i)
      for (const int end : {2 * i - 1, 2 * i}) graph.AddEdge(from, end);
    for (const int end : {last - 2, last - 1}) graph.AddEdge(end, last);
    graph.AddEdge(last, 0);
    const TWalkResult result = Walk(graph);
    EXPECT_EQ(result.Found, doubles == 5);
    EXPECT_EQ(Size(result.Warnings), doubles == 5 ? 5 : 7);
    EXPECT_EQ(result.Warnings.back() == "Something Error in [TryCalcOutline]", doubles == 6);
  }
}

}  // namespace
}  // namespace platenest
