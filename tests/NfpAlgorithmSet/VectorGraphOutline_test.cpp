#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "GraphFixtures.h"
#include "platenest/NfpAlgorithmSet/VectorGraph.h"
#include "platenest/foundation/Host.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

std::string Last(const std::vector<std::string>& Lines) {
  return Lines.empty() ? "" : Lines.back();
}

//     6---7
//  1--8-2 |     two clockwise squares, cut at their crossings
//  |  5-9-4     (5 is the lower left corner of the upper one)
//  0----3
TEST(OutlineWalk, KeepsToTheOutsideAtCrossings) {
  TVectorGraph graph =
      VectorGraphOf({{0, 0}, {0, 4}, {4, 4}, {4, 0}, {6, 2}, {2, 2}, {2, 6}, {6, 6}, {2, 4}, {4, 2}},
                    {{0, 1}, {1, 8}, {8, 2}, {2, 9}, {9, 3}, {3, 0}, {5, 8}, {8, 6}, {6, 7}, {7, 4}, {4, 9}, {9, 5}});
  const TWalkResult result = Walk(graph);
  EXPECT_TRUE(result.Found);
  EXPECT_THAT(result.Cycle, ElementsAre(7, 4, 9, 3, 0, 1, 8, 6)) << "from the top, the right one of equals";
  EXPECT_THAT(result.Warnings, IsEmpty());
}

TEST(OutlineWalk, TakesARingThatIsTheWholeGraph) {
  TVectorGraph ring = VectorGraphOf({{0, 0}, {0, 4}, {4, 4}, {4, 0}}, {{0, 1}, {1, 2}, {2, 3}, {3, 0}});
  EXPECT_TRUE(Walk(ring).Found);
  TVectorGraph pair = VectorGraphOf({{0, 0}, {0, 4}}, {{0, 1}, {1, 0}});
  EXPECT_FALSE(Walk(pair).Found) << "two vertices bound nothing";
  TVectorGraph empty(0);
  EXPECT_FALSE(Walk(empty).Found);
}

TEST(OutlineWalk, FailsAtDeadEndsAloudAndInSideLoopsSilently) {
  TVectorGraph deadEnd = VectorGraphOf({{0, 5}, {1, 0}, {2, 0}}, {{0, 1}, {1, 2}});
  const TWalkResult dead = Walk(deadEnd);
  EXPECT_FALSE(dead.Found);
  EXPECT_THAT(dead.Cycle, ElementsAre(0, 1, 2)) << "as far as it came";
  EXPECT_THAT(dead.Warnings, ElementsAre("Fatal Error in [TryCalcOutline]"));
  TVectorGraph sideLoop = VectorGraphOf({{0, 5}, {1, 0}, {2, 0}, {3, 1}}, {{0, 1}, {1, 2}, {2, 3}, {3, 1}});
  const TWalkResult lost = Walk(sideLoop);
  EXPECT_FALSE(lost.Found);
  EXPECT_EQ(lost.Cycle.size(), 4u);
  EXPECT_THAT(lost.Warnings, IsEmpty());
}

// The way 0 1 2 3 4 5 2 6 comes to 2 a second time from the side, where the vertex that it took before would be the
// outer one again.
TEST(OutlineWalk, DoesNotTakeAVertexAgainWhereItHasAChoice) {
  for (const bool takenFirst : {false, true}) {
    std::vector<TPoint2D> points{{2, 8}, {5, 0}, {0, 0}, {0, -4}, {8, -4}, {3, 3}, {0, 5}};
    for (int i = 0; i < 3; ++i) points.push_back({-9.0 - i, -9});  // only to let the walk be longer
    TVectorGraph graph = VectorGraphOf(
        points, {{0, 1}, {1, 2}, {2, takenFirst ? 3 : 6}, {2, takenFirst ? 6 : 3}, {3, 4}, {4, 5}, {5, 2}, {6, 0}});
    const TWalkResult result = Walk(graph);
    EXPECT_TRUE(result.Found);
    EXPECT_THAT(result.Cycle, ElementsAre(0, 1, 2, 3, 4, 5, 2, 6));
  }
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

// 0 -> 1 lies on 0 -> 2: the walk goes over 1 and on to 2, where the longer edge ends.
TEST(OutlineWalk, ContinuesTheShorterOfTwoOverlappingEdgesToTheLongersEnd) {
  for (const bool longFirst : {false, true}) {
    TVectorGraph graph = VectorGraphOf({{0, 10}, {5, 5}, {10, 0}, {0, 0}},
                                       {{0, longFirst ? 2 : 1}, {0, longFirst ? 1 : 2}, {1, 3}, {2, 3}, {3, 0}});
    const TWalkResult result = Walk(graph);
    EXPECT_TRUE(result.Found);
    EXPECT_THAT(result.Cycle, ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(result.Warnings, IsEmpty());
  }
}

// The two far ends 1 and 2 are 5e-7 apart across the edge: the outer one, 1, takes over the way from 2 to 3.
TEST(OutlineWalk, JoinsTheWaysFromTwoEqualEdges) {
  TVectorGraph graph = VectorGraphOf({{0, 10}, {5, 5 + 5e-7}, {5, 5}, {10, 0}, {0, 0}},
                                     {{0, 2}, {0, 1}, {2, 3}, {1, 4}, {3, 4}, {4, 0}});
  const TWalkResult result = Walk(graph);
  EXPECT_TRUE(result.Found);
  EXPECT_THAT(result.Cycle, ElementsAre(0, 1, 3, 4));
  EXPECT_THAT(result.Warnings, ElementsAre("Same Edge(2-1) Overlap in [TryCalcOutline]"));
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
    EXPECT_EQ(Last(result.Warnings), along == 4 ? "" : "Something wrong in [TryCalcOutline]");
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
    EXPECT_EQ(Last(result.Warnings) == "Something Error in [TryCalcOutline]", doubles == 6);
  }
}

}  // namespace
}  // namespace platenest
