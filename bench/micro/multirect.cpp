// The three-block nest. Counters: distinct blocks, knapsacks solved, block values remembered.
#include <benchmark/benchmark.h>

#include <random>

#include "BlockValues.h"
#include "platenest/URectNest/MultiRectNest.h"

namespace platenest {
namespace {

// Sizes from 100 to 900 units, in multiples of Step.
TNestRectList Parts(int Count, double Step, int Amount) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> side(static_cast<int>(100 / Step), static_cast<int>(900 / Step));
  TNestRectList parts;
  for (int k = 0; k < Count; ++k) {
    const double width = side(random) * Step;
    parts.emplace_back(Amount, k, TVRect2D::FromSize(width, side(random) * Step));
    parts.back().Area = parts.back().BoundBox.Area() * (0.8 + 0.01 * static_cast<double>(random() % 40));
  }
  return parts;
}

// One object per iteration, as the pricing of patterns makes them: raster, scan and trials.
void BM_ThreeBlocks(benchmark::State& State) {
  const double step = State.range(2) != 0 ? 0.1 : 1;
  const TNestRectList parts = Parts(static_cast<int>(State.range(0)), step, static_cast<int>(State.range(1)));
  const bool priced = State.range(3) != 0;
  detail::TBlockCounts counts;
  double usage = 0;
  for (auto _ : State) {
    TMultiRectNest nest(TVRect2D::FromSize(3000, 1500), parts, 5, 0.5, priced);
    TNestedRects list;
    int status = 0;
    usage = nest.ShapeRectNestWithAmt(list, status);
    counts = nest.Counts();
  }
  State.counters["usage"] = usage;
  State.counters["blocks"] = static_cast<double>(counts.Blocks);
  State.counters["knapsacks"] = static_cast<double>(counts.Knapsacks);
  State.counters["memo_hits"] = static_cast<double>(counts.MemoHits);
}
BENCHMARK(BM_ThreeBlocks)
    ->ArgNames({"sizes", "amount", "fractions", "priced"})
    ->Args({5, 20, 0, 0})
    ->Args({30, 3, 0, 0})
    ->Args({30, 20, 0, 0})
    ->Args({30, 20, 1, 0})
    ->Args({30, 20, 0, 1})
    ->Args({30, 1000, 0, 1})
    ->Args({200, 20, 1, 1})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest
