#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "CuttingStock1D.h"
#include "platenest/colgen/BCPRectNest.h"
#include "platenest/uBCPBase/BCPTree.h"

namespace platenest {
namespace {

// Patterns of 50 rows with about 6 entries each; one in ten stands twice.
std::vector<TBarPattern> Patterns(int Count) {
  std::mt19937 random(1);
  std::vector<TBarPattern> patterns;
  while (Size(patterns) < Count) {
    TIntegerDynArray counts(50);
    for (int k = 0; k < 6; ++k) counts[random() % 50] = 1 + static_cast<int>(random() % 4);
    patterns.emplace_back(counts, 0.9);
    if (random() % 10 == 0) patterns.push_back(patterns[random() % patterns.size()]);
  }
  return patterns;
}

// Looks known columns up in a pool of 20000.
void BM_PoolKnownColumn(benchmark::State& State) {
  const std::vector<TBarPattern> patterns = Patterns(static_cast<int>(State.range(0)));
  TVarPool<TBarPattern> pool(TDoubleDynArray(50, 9), TIntegerDynArray(50, 1));
  bool exists = false;
  for (const TBarPattern& pattern : patterns) pool.AddVar(pattern, exists);
  std::size_t next = 0;
  for (auto _ : State) benchmark::DoNotOptimize(pool.AddVar(patterns[next = (next + 7919) % patterns.size()], exists));
  State.counters["columns"] = pool.Count();
}
BENCHMARK(BM_PoolKnownColumn)->Arg(500)->Arg(20000);

// Fills a pool; the time is that of all columns.
void BM_PoolFill(benchmark::State& State) {
  const std::vector<TBarPattern> patterns = Patterns(static_cast<int>(State.range(0)));
  for (auto _ : State) {
    TVarPool<TBarPattern> pool(TDoubleDynArray(50, 9), TIntegerDynArray(50, 1));
    bool exists = false;
    for (const TBarPattern& pattern : patterns) benchmark::DoNotOptimize(pool.AddVar(pattern, exists));
  }
  State.SetItemsProcessed(State.iterations() * State.range(0));
}
BENCHMARK(BM_PoolFill)->Arg(20000)->Unit(benchmark::kMillisecond);

// The LP of a node from the pool: half of the rows are closed.
void BM_ConstructLP(benchmark::State& State) {
  TVarPool<TBarPattern> pool(TDoubleDynArray(50, 9), TIntegerDynArray(50, 1));
  bool exists = false;
  for (const TBarPattern& pattern : Patterns(20000)) pool.AddVar(pattern, exists);
  TIntegerDynArray rows, colDict, senses;
  for (int row = 0; row < State.range(0); ++row) rows.push_back(row);
  TDoubleDynArray bounds, costs;
  TSparseColumns matrix;
  for (auto _ : State)
    benchmark::DoNotOptimize(
        pool.ConstructLP(rows, colDict, bounds, TDoubleDynArray(rows.size(), 9), senses, matrix, costs));
  State.counters["columns"] = matrix.Count();
}
BENCHMARK(BM_ConstructLP)->Arg(25)->Arg(50)->Unit(benchmark::kMicrosecond);

template <BCPVariable T>
void Report(benchmark::State& State, const TBCPTree<T>& Tree) {
  const TBCPCounts counts = Tree.Counts();
  State.counters["lp_rounds"] = counts.LPRounds;
  State.counters["nodes"] = counts.Nodes;
  State.counters["pricings"] = counts.Pricings;
  State.counters["columns"] = counts.Columns;
  State.counters["cost"] = Tree.GUB();
  State.counters["bound"] = Tree.GLB();
  State.counters["status"] = Tree.Status();
}

// A whole search: range(0) sizes on bars of 1000, without residual heuristics when range(1) is 0, so that it branches.
void BM_Search(benchmark::State& State) {
  std::mt19937 random(static_cast<unsigned>(State.range(0)));
  TIntegerDynArray lengths, demand;
  for (int i = 0; i < State.range(0); ++i) {
    lengths.push_back(100 + static_cast<int>(random() % 500));
    demand.push_back(1 + static_cast<int>(random() % 40));
  }
  const TBarProblem problem(1000, lengths, demand);
  TBCPSolverManager<TBarPattern> manager(&problem);
  manager.AddSubProblemSolver(PriceBar);
  manager.AddGreedySolver(CutGreedily);
  if (State.range(1) != 0) manager.AddResidualSolver(CutResidual);
  for (auto _ : State) {
    TBCPTree<TBarPattern> tree(&manager, nullptr, true, 0);
    tree.Solve([] { return false; });
    Report(State, tree);
  }
}
BENCHMARK(BM_Search)
    ->ArgNames({"sizes", "residual"})
    ->ArgsProduct({{10, 20, 50}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

// A job of rectangles: range(0) sizes, 10 to 100 copies each, on plates of 3000 by 1500. The root ends when it has
// branched, unless its bounds meet before.
void BM_RectJob(benchmark::State& State) {
  std::mt19937 random(static_cast<unsigned>(State.range(1)));
  std::uniform_int_distribution<int> width(200, 1000), height(100, 500), amount(10, 100);
  TNestRectList parts;
  for (int i = 0; i < State.range(0); ++i) {
    const double w = width(random);
    const double h = height(random);
    parts.emplace_back(amount(random), i, TVRect2D::FromSize(w, h));
  }
  const TNestSpace plate(TVRect2D::FromSize(3000, 1500), 1, false);
  const bool rootOnly = State.range(2) == 0;
  for (auto _ : State) {
    TBCPRectNest nest(parts, plate, 0, nullptr);
    nest.SetWatch([&](const TBCPRectNest::TTree& Tree) { return rootOnly && !Tree.Root().ChildNodes.empty(); });
    TRectSolution solution;
    nest.Solve(solution, 0);
    Report(State, nest.Tree());
  }
}
BENCHMARK(BM_RectJob)
    ->ArgNames({"sizes", "seed", "whole"})
    ->ArgsProduct({{20}, {1, 4, 5}, {0, 1}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest
