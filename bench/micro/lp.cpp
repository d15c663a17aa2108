#include <benchmark/benchmark.h>

#include <random>

#include "platenest/foundation/Knapsack.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/uBCPBase/CbcLPSolver.h"

namespace platenest {
namespace {

constexpr int kRows = 50;
constexpr int kBar = 1000;

// Cutting stock: lengths between a twentieth and a half of the bar, as few bars as can be.
class TBars {
 public:
  TBars() {
    for (int row = 0; row < kRows; ++row) FLengths.push_back(Number(kBar / 20, kBar / 2));
  }

  // One pattern for each length alone, so that every demand can be met, and others filled by chance.
  TCbcLPSolver Master(int Cols) {
    TDoubleMatrix matrix(kRows);
    TDoubleDynArray demand;
    for (int col = 0; col < Cols; ++col) {
      const TDoubleDynArray pattern = col < kRows ? Repeated(col) : Mixed();
      for (int row = 0; row < kRows; ++row) matrix[row].push_back(pattern[row]);
    }
    for (int row = 0; row < kRows; ++row) demand.push_back(Number(1, 200));
    return {matrix, TDoubleDynArray(static_cast<std::size_t>(Cols), 1), false, demand,
            TDoubleDynArray(kRows, kBCPInfinity)};
  }

  // The pattern worth most by Prices; empty when none is worth more than the bar.
  TDoubleDynArray Priced(const TDoubleDynArray& Prices) const {
    constexpr double kUnits = 1e9;  // of worth, to a bar
    std::vector<Int64> values;
    for (const double price : Prices) values.push_back(Round(price * kUnits));
    std::vector<int> counts;
    const Int64 worth = TKnapsackSolver::SolveInfiniteKnapsack(FLengths, values, kBar, counts);
    if (worth <= Round(kUnits * (1 + 1e-6))) return {};
    return {counts.begin(), counts.end()};
  }

  int Number(int From, int To) { return std::uniform_int_distribution(From, To)(FRandom); }

 private:
  TDoubleDynArray Repeated(int Row) const {
    TDoubleDynArray pattern(kRows);
    pattern[Row] = kBar / FLengths[Row];
    return pattern;
  }
  TDoubleDynArray Mixed() {
    TDoubleDynArray pattern(kRows);
    int space = kBar;
    for (int row = Number(0, kRows - 1); FLengths[row] <= space; row = Number(0, kRows - 1)) {
      ++pattern[row];
      space -= FLengths[row];
    }
    return pattern;
  }

  std::mt19937 FRandom{1};
  std::vector<int> FLengths;
};

void BM_FirstSolve(benchmark::State& State) {
  bool optimal = false;
  double objective = 0;
  for (auto _ : State) {
    State.PauseTiming();
    TBars bars;
    State.ResumeTiming();
    TCbcLPSolver solver = bars.Master(static_cast<int>(State.range(0)));
    objective = solver.Solve(optimal);
  }
  State.counters["objective"] = objective;
}
BENCHMARK(BM_FirstSolve)->ArgName("columns")->Arg(500)->Arg(2000)->Unit(benchmark::kMicrosecond);

// One round of column generation without its pricing: the new column comes in and the program is solved again.
void BM_ResolveAfterColumn(benchmark::State& State) {
  const int cols = static_cast<int>(State.range(0));
  TBars bars;
  TCbcLPSolver solver = bars.Master(cols);
  bool optimal = false;
  solver.Solve(optimal);
  double last = 0;
  for (auto _ : State) {
    State.PauseTiming();
    TDoubleDynArray column = bars.Priced(solver.GetRowPrice());
    if (column.empty()) {
      last = solver.Solve(optimal);
      solver = TBars().Master(cols);
      solver.Solve(optimal);
      column = bars.Priced(solver.GetRowPrice());
    }
    State.ResumeTiming();
    solver.AddColumn(column, 1, 0, kBCPInfinity);
    benchmark::DoNotOptimize(solver.Solve(optimal));
  }
  State.counters["objective"] = last;
}
BENCHMARK(BM_ResolveAfterColumn)->ArgName("columns")->Arg(300)->Arg(500)->Arg(2000)->Unit(benchmark::kMicrosecond);

// The trial solves of a branching: a bound is set and taken back.
void BM_ResolveAfterBound(benchmark::State& State) {
  TBars bars;
  TCbcLPSolver solver = bars.Master(static_cast<int>(State.range(0)));
  bool optimal = false;
  solver.Solve(optimal);
  for (auto _ : State) {
    const int col = bars.Number(0, solver.ColCount() - 1);
    solver.SetColLB(col, 3);
    benchmark::DoNotOptimize(solver.Solve(optimal));
    solver.SetColLB(col, 0);
    benchmark::DoNotOptimize(solver.Solve(optimal));
  }
}
BENCHMARK(BM_ResolveAfterBound)->ArgName("columns")->Arg(500)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace platenest
