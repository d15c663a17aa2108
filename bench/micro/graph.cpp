#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "platenest/NfpAlgorithmSet/JhonsonCircuits.h"
#include "platenest/NfpAlgorithmSet/TarjanComponents.h"
#include "platenest/NfpAlgorithmSet/VectorGraph.h"

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

std::vector<TPoint2D> Star(int Count, double Radius, double Turn) {
  std::vector<TPoint2D> points;
  for (int i = 0; i < Count; ++i) {
    const double angle = Turn + 2 * 3.14159265358979 * i / Count;
    const double radius = i % 2 == 0 ? Radius : 0.7 * Radius;
    points.push_back({radius * std::cos(angle), radius * std::sin(angle)});
  }
  return points;
}

// Every edge of one star at every vertex of the other: as many vertices as chips, in the order of a convolution.
TChipList StarChips(int VertexCount, int EdgeCount) {
  const std::vector<TPoint2D> places = Star(VertexCount, 300, 0.1);
  const std::vector<TPoint2D> edges = Star(EdgeCount, 200, 0.2);
  TChipList chips;
  for (const TPoint2D& place : places)
    for (int i = 0; i < EdgeCount; ++i) chips.push_back({place + edges[i], place + edges[(i + 1) % EdgeCount]});
  return chips;
}

// Combs of unit teeth: most chips run along others, many of them in the opposite direction.
TChipList GridChips(int Side) {
  TChipList chips;
  for (int x = 0; x < Side; ++x)
    for (int y = 0; y < Side; ++y) {
      const TPoint2D corners[] = {{1.0 * x, 1.0 * y}, {x + 2.0, 1.0 * y}, {x + 2.0, y + 2.0}, {1.0 * x, y + 2.0}};
      for (int i = 0; i < 4; ++i) chips.push_back({corners[i], corners[(i + 1) % 4]});
    }
  return chips;
}

void ReportGraph(benchmark::State& State, const TChipList& Chips, const TVectorGraph& Graph) {
  int edges = 0;
  for (int id = 0; id <= Graph.MaxVertexId(); ++id) edges += Size(Graph.Successors(id));
  State.counters["chips"] = static_cast<double>(Chips.size());
  State.counters["vertices"] = Graph.VertexCount();
  State.counters["edges"] = edges;
}

void ChipsIntoGraph(benchmark::State& State) {
  const TChipList chips = StarChips(static_cast<int>(State.range(0)), static_cast<int>(State.range(1)));
  for (auto _ : State) benchmark::DoNotOptimize(TVectorGraph(chips, false).MaxVertexId());
  ReportGraph(State, chips, TVectorGraph(chips, false));
}
BENCHMARK(ChipsIntoGraph)->Args({100, 150})->Args({500, 600})->Unit(benchmark::kMillisecond);

void SharedChipsIntoGraph(benchmark::State& State) {
  const TChipList chips = GridChips(static_cast<int>(State.range(0)));
  for (auto _ : State) benchmark::DoNotOptimize(TVectorGraph(chips, true).MaxVertexId());
  ReportGraph(State, chips, TVectorGraph(chips, true));
}
BENCHMARK(SharedChipsIntoGraph)->Arg(274)->Unit(benchmark::kMillisecond);

void Elimination(benchmark::State& State) {
  const bool all = State.range(0) != 0;
  const TChipList chips = all ? GridChips(static_cast<int>(State.range(1)))
                              : StarChips(static_cast<int>(State.range(1)), static_cast<int>(State.range(1)));
  const TVectorGraph graph(chips, false);
  TVectorGraph cleaned(0);
  for (auto _ : State) {
    State.PauseTiming();
    cleaned = graph;
    State.ResumeTiming();
    cleaned.EliminateEdges(all);
  }
  ReportGraph(State, chips, cleaned);
}
BENCHMARK(Elimination)->Args({0, 550})->Args({1, 70})->Args({1, 140})->Args({1, 280})->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest
