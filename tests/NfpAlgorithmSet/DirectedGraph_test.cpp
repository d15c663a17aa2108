#include "platenest/NfpAlgorithmSet/DirectedGraph.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "GraphFixtures.h"
#include "platenest/NfpAlgorithmSet/BoolArray.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::ThrowsMessage;

TEST(DirectedGraph, CheckedEdgesAreSimpleAndUncheckedOnesAreNot) {
  TIdGraph graph(3);
  graph.AddEdge(1, 1);
  graph.AddEdge(1, 2);
  graph.AddEdge(1, 0);
  graph.AddEdge(1, 2);
  EXPECT_THAT(graph.Successors(1), ElementsAre(2, 0));
  graph.AddEdgeNoErr(1, 1);
  graph.AddEdgeNoErr(1, 2);
  EXPECT_THAT(graph.Successors(1), ElementsAre(2, 0, 1, 2));
  EXPECT_THAT(graph.InDegrees(), ElementsAre(1, 1, 2));
  EXPECT_EQ(graph.DegreeMoreThan(1), 2);
  EXPECT_EQ(graph.DegreeMoreThan(2), 1);
  const auto raises = [](const char* text) { return ThrowsMessage<TRangeError>(testing::HasSubstr(text)); };
  for (const auto& [start, dest] : {std::pair{0, 3}, {3, 0}, {-1, 0}})
    EXPECT_THAT([&] { graph.AddEdge(start, dest); }, raises("Add Edge out of range"));
  EXPECT_THAT([&] { graph.GetVertex(0); }, raises("Index out of range in GetVertex")) << "no payloads";
}

TEST(DirectedGraph, LowIdsDieByThePartTakenAboveThem) {
  TIdGraph graph = GraphOf(5, {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 2}, {4, 0}});
  graph.SubGraphFrom(3);
  EXPECT_EQ(graph.VertexCount(), 2);
  EXPECT_EQ(graph.MaxVertexId(), 4) << "dead ids keep their place";
  const TIdGraph clone = graph.CloneAdjcent();
  EXPECT_EQ(clone.MaxVertexId(), 1);
  EXPECT_THAT(clone.Successors(0), ElementsAre(1)) << "3 -> 4, counted from 3";
  EXPECT_THAT(clone.Successors(1), IsEmpty()) << "4 -> 2 and 4 -> 0 lead to dead vertices";
}

TEST(BoolArray, StaysClearedWhenTheEpochsRunOut) {
  TBoolArray marks(2);
  for (int i = 0; i < 1000; ++i) {
    if (i % 300 == 0) marks.Set(0);
    ASSERT_EQ(marks[0], i % 300 == 0);
    marks.Clear();
    ASSERT_FALSE(marks[0] || marks[1]) << i;
  }
  marks.Set(1);
  marks.Set(1, false);
  EXPECT_FALSE(marks[1]);
}

}  // namespace
}  // namespace platenest
