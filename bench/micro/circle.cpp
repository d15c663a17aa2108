#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "CornerPlacement.h"
#include "platenest/UCircleNest/CirclePacking.h"

// Corner placement: greedy passes and look-ahead. Counters: positions tried and circles placed in one pass.
namespace platenest {
namespace {

struct TPass : TCirclePacking {
  TPass(const TPass&) = default;
  TPass(double Side, std::vector<double> Radii, std::vector<int> Counts)
      : TCirclePacking(TVRect2D::FromSize(Side, Side), 0, Radii, Counts),
        Sizes(SortCircles(Radii)),
        Demand(std::move(Counts)) {}

  double Run(TCircleNestRst& Rst, double Threshold) {
    Rst.clear();
    std::vector<int> remaining = Demand;
    TPosibleCPList candidates = GeneratePosibleCP(Sizes, remaining, Rst, true);
    return GreedyPackingEx(Sizes, remaining, Rst, 0, Threshold, candidates);
  }

  std::vector<int> Sizes;
  std::vector<int> Demand;
};

// Count circles of Sizes radii between 1 and Spread, on a square that about nine tenths of them fill.
TPass PassOf(int Count, int Sizes, double Spread) {
  std::mt19937 random(7);
  std::vector<double> radii;
  std::vector<int> counts(Sizes, Count / Sizes);
  double area = 0;
  for (int i = 0; i < Sizes; ++i) {
    radii.push_back(1 + (Spread - 1) * static_cast<double>(random() % 1'000'000) * 1e-6);
    area += 3.14159 * radii.back() * radii.back() * counts[i];
  }
  return TPass(std::sqrt(area / 0.85), radii, counts);
}

void RunPasses(benchmark::State& State, TPass Pass, double Threshold) {
  TCircleNestRst rst;
  const detail::TStepScope steps(0);
  for (auto _ : State) benchmark::DoNotOptimize(Pass.Run(rst, Threshold));
  State.counters["tried"] = benchmark::Counter(static_cast<double>(steps.Done()), benchmark::Counter::kAvgIterations);
  State.counters["placed"] = Size(rst);
}

constexpr double kNoLookAhead = -4294967295.0;

// All sizes distinct.
void BM_GreedyDistinct(benchmark::State& State) {
  const int n = static_cast<int>(State.range(0));
  RunPasses(State, PassOf(n, n, 5), kNoLookAhead);
}
BENCHMARK(BM_GreedyDistinct)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond);

void BM_GreedyTwoSizes(benchmark::State& State) {
  RunPasses(State, PassOf(static_cast<int>(State.range(0)), 2, 3), kNoLookAhead);
}
BENCHMARK(BM_GreedyTwoSizes)->Arg(150)->Arg(1000)->Arg(4000)->Unit(benchmark::kMillisecond);

void BM_GreedySixSizes(benchmark::State& State) {
  RunPasses(State, PassOf(150, 6, 5), kNoLookAhead);
}
BENCHMARK(BM_GreedySixSizes)->Unit(benchmark::kMillisecond);

// Every step looks ahead.
void BM_LookAhead(benchmark::State& State) {
  const int n = static_cast<int>(State.range(0));
  RunPasses(State, PassOf(n, 6, 5), 1.0);
}
BENCHMARK(BM_LookAhead)->Arg(24)->Arg(48)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest

BENCHMARK_MAIN();
