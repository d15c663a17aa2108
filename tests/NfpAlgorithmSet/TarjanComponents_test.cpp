#include "platenest/NfpAlgorithmSet/TarjanComponents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "GraphFixtures.h"

namespace platenest {
namespace {

using testing::ElementsAre;

// What can be reached from a vertex, itself included.
void Reach(const TIdGraph& Graph, int Id, std::set<int>& Reached) {
  if (Id < Graph.LowestId() || !Reached.insert(Id).second) return;
  for (const int next : Graph.Successors(Id)) Reach(Graph, next, Reached);
}

TEST(TarjanComponents, AgreeWithReachabilityOnRandomGraphs) {
  std::mt19937 random(11);
  for (int round = 0; round < 300; ++round) {
    const int count = 1 + static_cast<int>(random() % 14);
    TIdGraph graph = RandomGraph(count, static_cast<int>(random() % 30), false, random);
    graph.SetLowestId(static_cast<int>(random() % 3) % count);
    const int minSize = static_cast<int>(random() % 4);
    std::vector<std::set<int>> reach(count);
    for (int id = 0; id < count; ++id) Reach(graph, id, reach[id]);
    TLists expected;
    for (int a = graph.LowestId(); a < count; ++a) {
      std::vector<int> component;
      for (const int b : reach[a])
        if (reach[b].count(a)) component.push_back(b);
      if (component.front() == a && Size(component) >= minSize) expected.push_back(component);
    }

    TTarjanComponents search(graph, minSize);
    auto found = Lists(search.GetStrongConnectedCompnents());
    for (auto& component : found) std::ranges::sort(component);
    std::ranges::sort(found);
    ASSERT_EQ(found, expected) << "round " << round;
    TVertexIdList lowest{-5};
    const int lowestId = search.GetLowestIdComponent(lowest);
    ASSERT_EQ(lowestId, expected.empty() ? -1 : expected.front().front());
    std::ranges::sort(lowest);
    ASSERT_EQ(Ids(lowest), expected.empty() ? std::vector<int>{} : expected.front());
  }
}

TEST(TarjanComponents, ListARingAlongItsEdgesAndTheFirstOfTheLongest) {
  TIdGraph graph(12);
  AddRing(graph, 0, 2);
  AddRing(graph, 2, 4);
  AddRing(graph, 6, 4);
  graph.AddEdge(0, 6);
  TTarjanComponents search(graph, 2);
  const TVertexIdLists& components = search.GetStrongConnectedCompnents();
  EXPECT_THAT(Lists(components), ElementsAre(ElementsAre(6, 7, 8, 9), ElementsAre(0, 1), ElementsAre(2, 3, 4, 5)));
  EXPECT_EQ(TTarjanComponents::GetLongestComponent(components), 0);
  EXPECT_EQ(TTarjanComponents::GetLongestComponent({}), -1);
}

TEST(TarjanComponents, SoleCircuitAllowsNothingBesideIt) {
  // A ring from vertex 2 on, and more edges.
  const auto isSole = [](int ring, const std::vector<std::pair<int, int>>& more, int lowest = 0) {
    TIdGraph graph = GraphOf(9, more);
    AddRing(graph, 2, ring);
    graph.SetLowestId(lowest);
    return TTarjanComponents(graph, 2).IsSoleCircuit();
  };
  EXPECT_TRUE(isSole(5, {})) << "vertices without edges do not count";
  EXPECT_TRUE(isSole(5, {{0, 3}, {4, 1}}, 2)) << "nor do edges of dead vertices";
  EXPECT_FALSE(isSole(5, {{3, 8}})) << "a tail";
  EXPECT_FALSE(isSole(5, {{3, 5}})) << "a chord";
  EXPECT_FALSE(isSole(3, {{5, 6}, {6, 7}, {7, 5}})) << "two rings";
  EXPECT_FALSE(isSole(2, {})) << "two vertices bound nothing";
}

}  // namespace
}  // namespace platenest
