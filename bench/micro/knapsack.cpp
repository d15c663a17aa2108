// The knapsack solvers at the sizes that the nesters ask for.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "platenest/foundation/Knapsack.h"

namespace platenest {
namespace {

struct TItems {
  std::vector<int> Weights;
  std::vector<Int64> Values;
  std::vector<int> Limits;
};

// Values follow the weights closely, the hardest kind: nothing is decided by density.
TItems HardItems(unsigned Seed, int Count, int Lightest, int Heaviest, int Limit) {
  std::mt19937 engine(Seed);
  TItems items;
  for (int i = 0; i < Count; ++i) {
    const int weight = std::uniform_int_distribution(Lightest, Heaviest)(engine);
    items.Weights.push_back(weight);
    items.Values.push_back(weight + std::uniform_int_distribution(1, 100)(engine));
    items.Limits.push_back(Limit);
  }
  return items;
}

// Parts in a strip 3000 long: the value of a part is its area in a strip as wide as its neighbours allow.
TItems StripItems(unsigned Seed) {
  std::mt19937 engine(Seed);
  std::uniform_int_distribution<int> side(100, 1500);
  TItems items;
  for (int i = 0; i < 20; ++i) {
    items.Weights.push_back(side(engine));
    items.Values.push_back(Int64{items.Weights.back()} * side(engine));
    items.Limits.push_back(10);
  }
  return items;
}

void Bounded(benchmark::State& State, const std::vector<TItems>& Jobs, Int64 Capacity) {
  std::vector<int> counts;
  std::size_t job = 0;
  for (auto _ : State) {
    const TItems& items = Jobs[job++ % Jobs.size()];
    benchmark::DoNotOptimize(TKnapsackSolver::SolveMultiKnapsack(items.Weights, std::span<const Int64>(items.Values),
                                                                 TItemLimits(items.Limits), Capacity, counts));
  }
}

void BoundedHard(benchmark::State& State) {
  Bounded(State, {HardItems(static_cast<unsigned>(State.range(0)), 88, 5000, 60000, 20)}, 300500);
}
BENCHMARK(BoundedHard)->DenseRange(1, 8)->Unit(benchmark::kMillisecond);

void BoundedStrip(benchmark::State& State) {
  std::vector<TItems> jobs;
  for (unsigned seed = 1; seed <= 64; ++seed) jobs.push_back(StripItems(seed));
  Bounded(State, jobs, 3000);
}
BENCHMARK(BoundedStrip)->Unit(benchmark::kMicrosecond);

// 88 sizes of up to 20 copies in a strip counted in hundredths: values are areas.
void BoundedStripLarge(benchmark::State& State) {
  std::vector<TItems> jobs;
  for (unsigned seed = 1; seed <= 16; ++seed) {
    std::mt19937 engine(seed);
    TItems items;
    for (int i = 0; i < 88; ++i) {
      items.Weights.push_back(std::uniform_int_distribution(10000, 150000)(engine));
      items.Values.push_back(Int64{items.Weights.back()} * std::uniform_int_distribution(9000, 10000)(engine) / 100);
      items.Limits.push_back(20);
    }
    jobs.push_back(items);
  }
  Bounded(State, jobs, 300500);
}
BENCHMARK(BoundedStripLarge)->Unit(benchmark::kMillisecond);

void Unbounded(benchmark::State& State) {
  const std::vector<int> weights{86603, 100000, 186603};
  const std::vector<Int64> values{7, 8, 15};
  std::vector<int> counts;
  for (auto _ : State)
    benchmark::DoNotOptimize(
        TKnapsackSolver::SolveInfiniteKnapsack(weights, std::span<const Int64>(values), State.range(0), counts));
}
BENCHMARK(Unbounded)->Arg(1000000)->Arg(1000000000)->Unit(benchmark::kMicrosecond);

void UnboundedLight(benchmark::State& State) {
  const std::vector<int> weights{3, 7, 11};
  const std::vector<Int64> values{4, 10, 15};
  std::vector<int> counts;
  for (auto _ : State)
    benchmark::DoNotOptimize(
        TKnapsackSolver::SolveInfiniteKnapsack(weights, std::span<const Int64>(values), State.range(0), counts));
}
BENCHMARK(UnboundedLight)->Arg(1000000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace platenest
