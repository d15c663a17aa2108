#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "GraphFixtures.h"
#include "platenest/NfpAlgorithmSet/VectorGraph.h"
#include "platenest/foundation/Host.h"

namespace platenest {
namespace {

struct TWalkResult {
  bool Found = false;
  std::vector<int> Cycle;
  std::string Warning;  // the last one
};

TWalkResult Walk(TVectorGraph Graph) {
  TWalkResult result;
  const TWarningScope scope([&](std::string_view line) { result.Warning = line; });
  TVertexIdList cycle{99};
  result.Found = Graph.TryGetCcwCycle(cycle);
  result.Cycle = Ids(cycle);
  return result;
}

//     6---7
//  1--8-2 |     two clockwise squares, cut at their crossings
//  |  5-9-4     (5 is the lower left corner of the upper one)
//  0----3
const std::vector<TPoint2D> kSquares{{0, 0}, {0, 4}, {4, 4}, {4, 0}, {6, 2}, {2, 2}, {2, 6}, {6, 6}, {2, 4}, {4, 2}};
const std::vector<TPoint2D> kTwice{{2, 8}, {5, 0}, {0, 0},   {0, -4},  {8, -4},
                                   {3, 3}, {0, 5}, {-9, -9}, {-8, -9}, {-7, -9}};

void ExpectWalk(const std::vector<TPoint2D>& Points, const std::vector<std::pair<int, int>>& Edges, bool Found,
                const std::vector<int>& Cycle, const std::string& Warning = "") {
  const TWalkResult result = Walk(VectorGraphOf(Points, Edges));
  EXPECT_EQ(result.Found, Found);
  EXPECT_TRUE(Cycle.empty() || result.Cycle == Cycle);
  EXPECT_EQ(result.Warning, Warning);
}

TEST(OutlineWalk, KeepsToTheOutside) {
  // From the top, the right one of equals.
  ExpectWalk(kSquares, {{0, 1}, {1, 8}, {8, 2}, {2, 9}, {9, 3}, {3, 0}, {5, 8}, {8, 6}, {6, 7}, {7, 4}, {4, 9}, {9, 5}},
             true, {7, 4, 9, 3, 0, 1, 8, 6});
  // Two vertices bound nothing; a dead end is told, and a side loop is not.
  ExpectWalk({{0, 0}, {0, 4}}, {{0, 1}, {1, 0}}, false, {});
  ExpectWalk({{0, 5}, {1, 0}, {2, 0}}, {{0, 1}, {1, 2}}, false, {0, 1, 2}, "Fatal Error in [TryCalcOutline]");
  ExpectWalk({{0, 5}, {1, 0}, {2, 0}, {3, 1}}, {{0, 1}, {1, 2}, {2, 3}, {3, 1}}, false, {0, 1, 2, 3});
  for (const int first : {3, 6}) {
    // The way comes to 2 a second time from the side, where the vertex that it took before would be the outer one.
    ExpectWalk(kTwice, {{0, 1}, {1, 2}, {2, first}, {2, 9 - first}, {3, 4}, {4, 5}, {5, 2}, {6, 0}}, true,
               {0, 1, 2, 3, 4, 5, 2, 6});
  }
  for (const int first : {1, 2}) {
    // 0 -> 1 lies on 0 -> 2: the walk goes over 1 and on to 2, where the longer edge ends.
    ExpectWalk({{0, 10}, {5, 5}, {10, 0}, {0, 0}}, {{0, first}, {0, 3 - first}, {1, 3}, {2, 3}, {3, 0}}, true,
               {0, 1, 2, 3});
  }
  // The far ends 1 and 2 are 5e-7 apart across the edge: the outer one, 1, takes over the way from 2 to 3.
  ExpectWalk({{0, 10}, {5, 5 + 5e-7}, {5, 5}, {10, 0}, {0, 0}}, {{0, 2}, {0, 1}, {2, 3}, {1, 4}, {3, 4}, {4, 0}}, true,
             {0, 1, 3, 4}, "Same Edge(2-1) Overlap in [TryCalcOutline]");
}

// From the top to far ends on one line, then all of them home over the last vertex.
TEST(OutlineWalk, GivesUpOnTheFourthOverlapAtOneVertex) {
  for (const int along : {4, 5}) {
    std::vector<TPoint2D> points;
    std::vector<std::pair<int, int>> edges{{along + 1, 0}};
    for (int i = 0; i <= along; ++i) points.push_back({1.0 * i, 10.0 - i});
    points.push_back({0, 0});
    for (int i = 1; i <= along; ++i) edges.insert(edges.end(), {{0, i}, {i, along + 1}});
    const TWalkResult result = Walk(VectorGraphOf(points, edges));
    EXPECT_EQ(result.Found, along == 4);
    EXPECT_EQ(result.Warning, along == 4 ? "" : "Something wrong in [TryCalcOutline]");
  }
}

// A convex way down the right side, each step with a double edge.
TEST(OutlineWalk, GivesUpAtTheSixthPairOfEqualEdges) {
  for (const int doubles : {5, 6}) {
    const int last = 2 * doubles + 1;
    std::vector<TPoint2D> points{{0, 10}};
    std::vector<std::pair<int, int>> edges;
    for (int i = 1; i <= doubles; ++i) {
      for (const double lowered : {0.0, 5e-8}) points.push_back({1.0 * i, 10 - 0.1 * i * i - lowered});
      for (const int end : {2 * i - 1, 2 * i}) edges.emplace_back(i == 1 ? 0 : 2 * i - 3, end);
    }
    points.push_back({0, 0});
    edges.insert(edges.end(), {{last - 2, last}, {last - 1, last}, {last, 0}});
    const TWalkResult result = Walk(VectorGraphOf(points, edges));
    EXPECT_EQ(result.Found, doubles == 5);
    EXPECT_EQ(result.Warning == "Something Error in [TryCalcOutline]", doubles == 6);
  }
}

}  // namespace
}  // namespace platenest
