// Knapsacks at the sizes of strip nesting and of row stacks. One problem is solved per iteration, from a fixed list of
// them; median_ms and worst_ms are over single problems.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <random>
#include <vector>

#include "platenest/foundation/Knapsack.h"
#include "platenest/foundation/Rounding.h"

namespace {

using namespace platenest;

constexpr int kProblems = 101;

struct TProblem {
  std::vector<int> Weights;
  std::vector<Int64> Values;
  std::vector<int> Limits;  // empty: unbounded
  Int64 Capacity = 0;
};

class TDice {
 public:
  explicit TDice(unsigned Seed) : FRandom(Seed) {}
  int From(int Low, int High) { return std::uniform_int_distribution(Low, High)(FRandom); }
  double From(double Low, double High) { return std::uniform_real_distribution(Low, High)(FRandom); }

 private:
  std::mt19937 FRandom;
};

using TMaker = std::function<void(TDice& Dice, TProblem& Problem)>;

// 88 items of up to 20 pieces in a strip of 3005 units, in hundredths; Add makes one item.
TProblem Bounded(unsigned Seed, const TMaker& Add) {
  TDice dice(Seed);
  TProblem p;
  p.Capacity = 300'500;
  for (int i = 0; i < 88; ++i) {
    Add(dice, p);
    if (p.Limits.size() < p.Weights.size()) p.Limits.push_back(20);
  }
  return p;
}

// Rectangles of 100 to 1500 units, whose other sides are within 5 % of one length.
void AddStripPart(TDice& Dice, TProblem& P) {
  P.Weights.push_back(Dice.From(10'000, 150'000));
  P.Values.push_back(Round(P.Weights.back() * Dice.From(0.95, 1.0)));
  P.Limits.push_back(Dice.From(1, 20));
}

// The same in whole units, with areas in hundredths as values and a little noise on them.
void AddPricedStripPart(TDice& Dice, TProblem& P) {
  P.Weights.push_back(100 * Dice.From(100, 1500));
  P.Values.push_back(Int64{P.Weights.back()} * Dice.From(570, 600) + Dice.From(0, 5000));
  P.Limits.push_back(Dice.From(1, 20));
}

// One length for all: only the strip's fill counts.
void AddEqualHeightPart(TDice& Dice, TProblem& P) {
  P.Weights.push_back(Dice.From(10'000, 150'000));
  P.Values.push_back(P.Weights.back());
  P.Limits.push_back(Dice.From(1, 20));
}

void AddSmallPart(TDice& Dice, TProblem& P) {
  P.Weights.push_back(Dice.From(100, 3000));
  P.Values.push_back(Int64{P.Weights.back()} * 1000 + Dice.From(0, 1000));
}

// Values close to the weights, with a small surplus per piece.
void AddCloseValuedPart(TDice& Dice, TProblem& P) {
  P.Weights.push_back(Dice.From(5000, 60'000));
  P.Values.push_back(P.Weights.back() + Dice.From(1, 100));
}

// Multiples of 3 cannot fill the strip, and one other item keeps it from being seen: no bound holds, and every cell of
// the table is visited for every power of two of pieces.
void AddHopelessPart(TDice& Dice, TProblem& P) {
  P.Weights.push_back(P.Weights.empty() ? 200'002 : 3 * Dice.From(100, 800));
  if (P.Weights.size() == 1) P.Limits.push_back(1);
  P.Values.push_back(P.Weights.back());
}

// The same with values that need wide cells.
void AddHopelessWidePart(TDice& Dice, TProblem& P) {
  AddHopelessPart(Dice, P);
  P.Values.back() *= 100'000;
}

// Three kinds of rows of circles, in thousandths of a diameter.
TProblem Rows(unsigned Seed) {
  TDice dice(Seed);
  const int perRow = dice.From(2, 1000);
  return {{1733, dice.From(3465, 4000), dice.From(1733, 2000)},
          {2 * perRow - 1, 4 * perRow - 1, 2 * perRow},
          {},
          1'000'000};
}

// Three items of nearly equal value per weight, so that the whole table is needed.
TProblem CloseRows(unsigned Seed) {
  TDice dice(Seed);
  TProblem p;
  p.Capacity = 1'000'000;
  for (int i = 0; i < 3; ++i) {
    p.Weights.push_back(dice.From(1700, 4000));
    p.Values.push_back(100 * p.Weights.back() + dice.From(-400, 400));
  }
  return p;
}

double SolveMs(const TProblem& P, std::vector<int>& Counts) {
  const auto start = std::chrono::steady_clock::now();
  const Int64 value = P.Limits.empty() ? TKnapsackSolver::SolveInfiniteKnapsack(P.Weights, P.Values, P.Capacity, Counts)
                                       : TKnapsackSolver::SolveMultiKnapsack(P.Weights, P.Values, TItemLimits(P.Limits),
                                                                             P.Capacity, Counts);
  benchmark::DoNotOptimize(value);
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void Run(benchmark::State& State, const std::function<TProblem(unsigned Seed)>& Make) {
  std::vector<TProblem> problems;
  for (unsigned seed = 0; seed < kProblems; ++seed) problems.push_back(Make(seed));
  std::vector<int> counts;
  std::vector<double> times;
  for (auto _ : State) times.push_back(SolveMs(problems[times.size() % kProblems], counts));
  std::ranges::sort(times);
  State.counters["median_ms"] = times[times.size() / 2];
  State.counters["worst_ms"] = times.back();
}

void RunBounded(benchmark::State& State, const TMaker& Add) {
  Run(State, [&](unsigned seed) { return Bounded(seed, Add); });
}

BENCHMARK_CAPTURE(RunBounded, strip, AddStripPart)->Iterations(kProblems)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RunBounded, priced_strip, AddPricedStripPart)->Iterations(kProblems)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RunBounded, equal_heights, AddEqualHeightPart)->Iterations(kProblems)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RunBounded, close_values, AddCloseValuedPart)->Iterations(kProblems)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RunBounded, small_parts, AddSmallPart)->Iterations(kProblems)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RunBounded, hopeless, AddHopelessPart)->Iterations(kProblems)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RunBounded, hopeless_wide, AddHopelessWidePart)->Iterations(kProblems)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Run, rows_unbounded, Rows)->Iterations(10 * kProblems)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Run, close_rows_unbounded, CloseRows)->Iterations(10 * kProblems)->Unit(benchmark::kMicrosecond);

}  // namespace
