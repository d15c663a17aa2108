// One pricing call of each nester, by the duals that a search has after some rounds. Counters: worth of the pattern in
// plates (above 1 the column helps), its usage and its number of parts.
#include <benchmark/benchmark.h>

#include <random>

#include "platenest/colgen/RectNestSolver.h"
#include "platenest/uBCPBase/BCPTree.h"

namespace platenest {
namespace {

using TPricing = std::unique_ptr<TRectPattern> (*)(const TRectNestSolver::TProblem&, bool&, double&);

constexpr double kAmp = 10000;

// Sides in tenths, between these hundredths of those of the plate.
struct TShares {
  int Least, Most;
};
constexpr TShares kLarge = {7, 40};
constexpr TShares kSmall = {3, 20};

TNestRectList Parts(const TVRect2D& Plate, int Sizes, int Amount, const TShares& Shares) {
  std::mt19937 random(7);
  const auto side = [&](double plate) {
    const auto tenths = [plate](int share) { return static_cast<int>(plate * share / 10); };
    return std::uniform_int_distribution<int>(tenths(Shares.Least), tenths(Shares.Most))(random) / 10.0;
  };
  TNestRectList parts;
  for (int k = 0; k < Sizes; ++k) {
    const double width = side(Plate.Width());
    parts.emplace_back(Amount, k, TVRect2D::FromSize(width, side(Plate.Height())));
  }
  return parts;
}

// The problem with the prices of pricing call Round.
TRectNestProblem Priced(const TRectNestProblem& Problem, int Round) {
  TRectNestProblem last = Problem;
  int calls = 0;
  TBCPSolverManager<TRectPattern> manager(&Problem);
  manager.AddSubProblemSolver([&](const TRectNestSolver::TProblem& Sub, bool& Status, double& CostValue) {
    last = dynamic_cast<const TRectNestProblem&>(Sub);
    ++calls;
    return TRectNestSolver::SolveByMultiRectNest(Sub, Status, CostValue);
  });
  manager.AddGreedySolver(TRectNestSolver::GreedyNest);
  TBCPTree<TRectPattern> tree(&manager, nullptr, true, 0);
  tree.Solve([&] { return calls >= Round; });
  return last;
}

void Measure(benchmark::State& State, TPricing Pricing) {
  const auto arg = [&State](int i) { return static_cast<int>(State.range(i)); };
  const TVRect2D plate = TVRect2D::FromSize(arg(0), arg(1));
  const TRectNestProblem problem =
      Priced(TRectNestProblem(Parts(plate, 20, arg(2), arg(4) != 0 ? kSmall : kLarge), plate, arg(3)), 25);
  bool status = false;
  double worth = 0, usage = 0, items = 0;
  for (auto _ : State) {
    const auto pattern = Pricing(problem, status, worth);
    usage = pattern->Usage();
    items = Size(pattern->NestedRects());
  }
  State.counters["usable"] = status ? 1 : 0;
  State.counters["worth"] = worth / kAmp;
  State.counters["usage"] = usage;
  State.counters["items"] = items;
}

void Jobs(benchmark::internal::Benchmark* Bench) {
  Bench->ArgNames({"length", "width", "amount", "gap", "small"})->Unit(benchmark::kMillisecond);
  for (const int amount : {10, 100})
    for (const int small : {0, 1}) Bench->Args({3000, 1500, amount, 5, small})->Args({250, 250, amount, 0, small});
}

BENCHMARK_CAPTURE(Measure, MultiRect, TRectNestSolver::SolveByMultiRectNest)->Apply(Jobs);
BENCHMARK_CAPTURE(Measure, RSKF, TRectNestSolver::SolveByRSKF)->Apply(Jobs);
BENCHMARK_CAPTURE(Measure, BPRG, TRectNestSolver::SolverByBPRG)->Apply(Jobs);
BENCHMARK_CAPTURE(Measure, NestSmart, TRectNestSolver::SolveByNestSmart)->Apply(Jobs);

}  // namespace
}  // namespace platenest
