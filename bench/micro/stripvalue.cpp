#include <benchmark/benchmark.h>

#include <random>

#include "platenest/colgen/SVCBPRGNest.h"
#include "platenest/colgen/SVCBPRGNestSingle.h"

namespace platenest {
namespace {

// Whole units; at 100 percent between a fifteenth and a third of the plate of 3000 by 1500.
TNestRectList Parts(int Sizes, int Amount, int Percent = 100) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> width(2 * Percent, 10 * Percent);
  std::uniform_int_distribution<int> height(Percent, 5 * Percent);
  TNestRectList parts;
  for (int k = 0; k < Sizes; ++k) {
    const double w = width(random);
    parts.emplace_back(Amount, k, TVRect2D::FromSize(w, height(random)));
  }
  return parts;
}

const TVRect2D kPlate = TVRect2D::FromSize(3000, 1500);

void BM_StripValuePlate(benchmark::State& State) {
  const auto argument = [&State](int i) { return static_cast<int>(State.range(i)); };
  TSVCBPRGNestSingle nest(kPlate, Parts(argument(0), argument(1), argument(3)), argument(2), false);
  TNestedRects layout;
  for (auto _ : State) {
    layout.clear();
    nest.NestSinglePlate(layout);
  }
  double area = 0;
  for (const TNestedRect& item : layout) area += item.Part.BoundBox.Area();
  State.counters["passes"] = static_cast<double>(nest.Counts().Passes);
  State.counters["states"] = static_cast<double>(nest.Counts().States);
  State.counters["strips"] = static_cast<double>(nest.Counts().Strips);
  State.counters["knapsacks"] = static_cast<double>(nest.Counts().Knapsacks);
  State.counters["usage"] = area / kPlate.Area();
}
BENCHMARK(BM_StripValuePlate)
    ->ArgNames({"sizes", "amount", "gap", "percent"})
    ->Args({20, 1, 0, 100})
    ->Args({20, 10, 0, 100})
    ->Args({20, 100, 5, 100})
    ->Args({20, 200, 0, 30})
    ->Args({100, 2, 0, 100})
    ->Unit(benchmark::kMillisecond);

// A whole job: 20 sizes, 10 copies each.
void BM_StripValueJob(benchmark::State& State) {
  const TSVCBPRGNest nest({TNestSpace(kPlate, 1000, false)}, Parts(20, 10), 0, 0, false,
                          static_cast<int>(State.range(0)));
  TRectSolution solution;
  for (auto _ : State) {
    solution.Clear();
    nest.Nest(solution);
  }
  State.counters["patterns"] = solution.Count();
  State.counters["cost"] = solution.GetCSPCost();
}
BENCHMARK(BM_StripValueJob)->ArgName("runs")->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace platenest
