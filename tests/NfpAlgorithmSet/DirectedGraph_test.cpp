#include "platenest/NfpAlgorithmSet/DirectedGraph.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "GraphFixtures.h"
#include "platenest/NfpAlgorithmSet/BoolArray.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class Action>
std::string RaisedText(Action Run) {
  try {
    Run();
  } catch (const TRangeError& error) {
    return error.Text();
  }
  return "nothing raised";
}

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
  for (const auto& [start, dest] : {std::pair{0, 3}, {3, 0}, {-1, 0}})
    EXPECT_EQ(RaisedText([&] { graph.AddEdge(start, dest); }), "Add Edge out of range");
  EXPECT_EQ(RaisedText([&] { graph.GetVertex(0); }), "Index out of range in GetVertex") << "no payloads";
}

TEST(DirectedGraph, DegreesOfAStar) {
  const TIdGraph star = GraphOf(5, {{1, 0}, {2, 0}, {3, 0}, {4, 0}, {0, 4}});
  EXPECT_THAT(star.InDegrees(), ElementsAre(4, 0, 0, 0, 1));
  EXPECT_EQ(star.DegreeMoreThan(0), 5);
  EXPECT_EQ(star.DegreeMoreThan(1), 2);
  EXPECT_EQ(star.DegreeMoreThan(4), 1);
  EXPECT_EQ(star.DegreeMoreThan(5), 0);
}

// 0 -> 1 -> 2 -> 3 -> 4 -> 2, 4 -> 0
TEST(DirectedGraph, TakingTheUpperPartKillsTheLowerIdsOfTheSource) {
  TIdGraph graph = GraphOf(5, {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 2}, {4, 0}});
  const TIdGraph sub = graph.SubGraphFrom(2);
  EXPECT_EQ(graph.VertexCount(), 3);
  EXPECT_EQ(graph.MaxVertexId(), 4) << "dead ids keep their place";
  EXPECT_EQ(sub.MaxVertexId(), 4);
  EXPECT_THAT(sub.Successors(1), IsEmpty());
  EXPECT_THAT(sub.Successors(4), ElementsAre(2));
  graph.SubGraphFrom(3);
  EXPECT_EQ(graph.VertexCount(), 2);

  const TIdGraph clone = graph.CloneAdjcent();
  EXPECT_EQ(clone.MaxVertexId(), 1);
  EXPECT_EQ(clone.VertexCount(), 2);
  EXPECT_THAT(clone.Successors(0), ElementsAre(1)) << "3 -> 4, counted from 3";
  EXPECT_THAT(clone.Successors(1), IsEmpty()) << "4 -> 2 and 4 -> 0 lead to dead vertices";
}

TEST(BoolArray, StaysClearedWhenTheEpochsRunOut) {
  TBoolArray marks(2);
  marks.Set(0);
  for (int i = 0; i < 1000; ++i) {
    marks.Clear();
    ASSERT_FALSE(marks[0] || marks[1]) << i;
    if (i % 100 == 0) marks.Set(i % 2);
    ASSERT_EQ(marks[i % 2], i % 100 == 0);
  }
  marks.Set(1);
  marks.Set(1, false);
  EXPECT_FALSE(marks[1]);
}

}  // namespace
}  // namespace platenest
