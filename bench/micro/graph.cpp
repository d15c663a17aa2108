#include <benchmark/benchmark.h>

#include <random>

#include "platenest/NfpAlgorithmSet/JhonsonCircuits.h"
#include "platenest/NfpAlgorithmSet/TarjanComponents.h"

namespace platenest {
namespace {

TDirectedGraph<int> SparseGraph(int Vertices, int Edges) {
  std::mt19937 random(1);
  TDirectedGraph<int> graph(Vertices);
  for (int i = 0; i < Edges; ++i)
    graph.AddEdgeNoErr(static_cast<int>(random() % static_cast<unsigned>(Vertices)),
                       static_cast<int>(random() % static_cast<unsigned>(Vertices)));
  return graph;
}

void ComponentsOfRandomGraph(benchmark::State& State) {
  const int edges = static_cast<int>(State.range(0));
  const TDirectedGraph<int> graph = SparseGraph(edges / 3, edges);
  int components = 0;
  for (auto _ : State) components = TTarjanComponents(graph, 0).GetStrongConnectedCompnents().Count();
  State.counters["edges"] = edges;
  State.counters["components"] = components;
}
BENCHMARK(ComponentsOfRandomGraph)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void ComponentsOfPath(benchmark::State& State) {
  const int vertices = static_cast<int>(State.range(0));
  TDirectedGraph<int> graph(vertices);
  for (int i = 0; i + 1 < vertices; ++i) graph.AddEdgeNoErr(i, i + 1);
  for (auto _ : State) benchmark::DoNotOptimize(TTarjanComponents(graph, 2).GetStrongConnectedCompnents().Count());
  State.counters["edges"] = vertices - 1;
}
BENCHMARK(ComponentsOfPath)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void CircuitsOfCompleteGraph(benchmark::State& State) {
  const int vertices = static_cast<int>(State.range(0));
  TDirectedGraph<int> graph(vertices);
  for (int a = 0; a < vertices; ++a)
    for (int b = 0; b < vertices; ++b) graph.AddEdge(a, b);
  int circuits = 0;
  for (auto _ : State) {
    TJhonsonCircuits<int> search(graph, 2);
    search.FindCircuits();
    circuits = search.CircuitCount();
  }
  State.counters["circuits"] = circuits;
}
BENCHMARK(CircuitsOfCompleteGraph)->Arg(5)->Arg(9)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace platenest
