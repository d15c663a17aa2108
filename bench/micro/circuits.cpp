#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "platenest/NfpAlgorithmSet/KineticCircuits.h"

namespace platenest {
namespace {

TVectorGraph Scattered(int Vertices) {
  std::mt19937 random(1);
  TVectorGraph graph(Vertices);
  for (int i = 0; i < Vertices; ++i)
    graph.AddVertex({static_cast<double>(random() % 100'000) / 100, static_cast<double>(random() % 100'000) / 100});
  return graph;
}

void Search(benchmark::State& State, const TVectorGraph& Graph, bool Inside, int Similar) {
  bool usable = false;
  int circuits = 0;
  Int64 points = 0;
  int outline = 0;
  for (auto _ : State) {
    TKineticCircuits search(Graph, 2);
    usable = search.DFSLoops(Inside, ntComplete, Similar);
    circuits = search.CircuitCount();
    points = search.TotalOuterCyclePoints();
    outline = search.SccOutline().Count();
  }
  int edges = 0;
  for (int id = 0; id <= Graph.MaxVertexId(); ++id) edges += Size(Graph.Successors(id));
  State.counters["edges"] = edges;
  State.counters["usable"] = usable;
  State.counters["circuits"] = circuits;
  State.counters["points"] = static_cast<double>(points);
  State.counters["outline"] = outline;
}

// Six edges per vertex to anywhere. Arguments: vertices, inside, how similar.
void DenseRandomGraph(benchmark::State& State) {
  const int vertices = static_cast<int>(State.range(0));
  std::mt19937 random(2);
  TVectorGraph graph = Scattered(vertices);
  for (int i = 0; i < 6 * vertices; ++i)
    graph.AddEdge(i % vertices, static_cast<int>(random() % static_cast<unsigned>(vertices)));
  Search(State, graph, State.range(1) != 0, static_cast<int>(State.range(2)));
}
BENCHMARK(DenseRandomGraph)->Args({350, 0, 0})->Args({5000, 0, 0})->Args({5000, 1, 0})->Unit(benchmark::kMillisecond);

// Six edges per vertex to vertices near by, as in a tangle of short chips. Arguments as above.
void DenseLocalGraph(benchmark::State& State) {
  const int side = static_cast<int>(std::sqrt(State.range(0)));
  std::mt19937 random(3);
  TVectorGraph graph(side * side);
  for (int i = 0; i < side * side; ++i)
    graph.AddVertex(
        {i % side + static_cast<double>(random() % 90) / 100, i / side + static_cast<double>(random() % 90) / 100});
  const auto near = [&](int at) { return std::clamp(at + static_cast<int>(random() % 5) - 2, 0, side - 1); };
  for (int i = 0; i < 6 * side * side; ++i) {
    const int start = i % (side * side);
    graph.AddEdge(start, near(start % side) + side * near(start / side));
  }
  Search(State, graph, State.range(1) != 0, static_cast<int>(State.range(2)));
}
BENCHMARK(DenseLocalGraph)
    ->Args({5000, 0, 0})
    ->Args({5000, 0, 4})
    ->Args({5000, 1, 0})
    ->Args({50'000, 0, 0})
    ->Unit(benchmark::kMillisecond);

// Rings of five that have nothing to do with each other.
void ManyRings(benchmark::State& State) {
  const int rings = static_cast<int>(State.range(0));
  TVectorGraph graph = Scattered(5 * rings);
  for (int i = 0; i < 5 * rings; ++i) graph.AddEdgeNoErr(i, i % 5 == 4 ? i - 4 : i + 1);
  Search(State, graph, false, 0);
}
BENCHMARK(ManyRings)->Arg(20'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest
