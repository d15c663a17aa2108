#include "platenest/NfpAlgorithmSet/JhonsonCircuits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "GraphFixtures.h"

namespace platenest {
namespace {

TLists CircuitsOf(const TIdGraph& Graph, int Filter) {
  TJhonsonCircuits<int> search(Graph, Filter);
  search.FindCircuits();
  return CircuitsOf(search);
}

// Every simple way from Path's first vertex back to it over higher ids, in the order of the successor lists.
void ExtendPath(const TIdGraph& Graph, std::vector<int>& Path, int Filter, TLists& Found) {
  for (const int next : Graph.Successors(Path.back())) {
    if (next == Path.front() && Size(Path) > Filter) Found.push_back(Path);
    if (next <= Path.front() || std::ranges::find(Path, next) != Path.end()) continue;
    Path.push_back(next);
    ExtendPath(Graph, Path, Filter, Found);
    Path.pop_back();
  }
}

TLists CircuitsByTrial(const TIdGraph& Graph, int Filter) {
  TLists found;
  for (int start = Graph.LowestId(); start <= Graph.MaxVertexId(); ++start) {
    std::vector<int> path{start};
    ExtendPath(Graph, path, Filter, found);
  }
  return found;
}

TEST(JhonsonCircuits, FindsEveryCircuitInDepthFirstOrder) {
  std::mt19937 random(5);
  // Self loops and parallel edges in every other round.
  for (int round = 0; round < 400; ++round) {
    const int count = 1 + static_cast<int>(random() % 8);
    TIdGraph graph = RandomGraph(count, static_cast<int>(random() % 24), round % 2 == 0, random);
    if (round % 4 == 0) graph.SetLowestId(static_cast<int>(random() % count));
    const int filter = static_cast<int>(random() % 4);
    ASSERT_EQ(CircuitsOf(graph, filter), CircuitsByTrial(graph, filter)) << "round " << round;
  }
}

// 0 -> 1 -> 2 -> ... -> n -> 1, and 1 -> n + 1 -> 0. Recursion would need a stack frame per vertex on the way along the
// ring, and again when the way home from 1 frees all of it from its far end.
TEST(JhonsonCircuits, WalksAndFreesARingOfAMillionVertices) {
  constexpr int n = 1'000'000;
  TIdGraph graph(n + 2);
  AddRing(graph, 1, n);
  for (const auto& [start, dest] : {std::pair{0, 1}, {1, n + 1}, {n + 1, 0}}) graph.AddEdgeNoErr(start, dest);
  TJhonsonCircuits<int> search(graph, 2);
  search.FindCircuits();
  ASSERT_EQ(search.CircuitCount(), 2);
  EXPECT_EQ(Ids(search.GetCircuit(0)), (std::vector<int>{0, 1, n + 1}));
  EXPECT_EQ(Size(search.GetCircuit(1)), n);
}

}  // namespace
}  // namespace platenest
