#include <benchmark/benchmark.h>

#include <random>

#include "SmartPass.h"
#include "platenest/URectNest/RectNestSmart.h"

namespace platenest {
namespace {

TNestRectList Sizes(int Count, int Copies, double Least, double Most) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> side(Least, Most);
  TNestRectList list;
  for (int i = 0; i < Count; ++i) list.emplace_back(Copies, i, TVRect2D::FromSize(side(random), side(random)));
  return list;
}

// Smallest side of all grown boxes.
double LeastSide(const TNestRectList& List, double Gap) {
  double least = 999999;
  for (const TNestRect& part : List)
    least = std::min({least, part.BoundBox.Width() + Gap, part.BoundBox.Height() + Gap});
  return least;
}

void RunForms(benchmark::State& State, const TNestRectList& List, const TVRect2D& Plate, double Gap, int Forms) {
  const std::vector<bool> locked;
  detail::TSmartPass pass(List, locked, detail::SmartGrown(Plate, Gap), Gap, LeastSide(List, Gap));
  TNestedRects layout;
  double placed = 0;
  double best = 0;
  for (auto _ : State) {
    for (int form = 0; form < Forms; ++form) {
      best = std::max(best, pass.Nest(form, layout));
      placed += layout.Count();
    }
  }
  const double runs = static_cast<double>(State.iterations());
  State.counters["passes"] = Forms;
  State.counters["placed"] = placed / runs;
  State.counters["free_per_placement"] = static_cast<double>(pass.FreeSeen()) / placed;
  State.counters["usage"] = best;
}

// All thirty forms, about 300 placements each.
void BM_SmartForms(benchmark::State& State) {
  RunForms(State, Sizes(static_cast<int>(State.range(0)), 300, 60, 180), TVRect2D::FromSize(2250, 2000),
           static_cast<double>(State.range(1)), detail::kSmartForms);
}
BENCHMARK(BM_SmartForms)
    ->ArgNames({"sizes", "gap"})
    ->Args({10, 0})
    ->Args({20, 0})
    ->Args({20, 5})
    ->Args({60, 0})
    ->Unit(benchmark::kMillisecond);

// One pass of a large job: range(0) sizes of ten copies each, form range(1), on a plate with room for all of them.
void BM_SmartLarge(benchmark::State& State) {
  const int sizes = static_cast<int>(State.range(0));
  RunForms(State, Sizes(sizes, 10, 20, 180), TVRect2D::FromSize(12000, sizes * 9.5), 0, 1);
}
BENCHMARK(BM_SmartLarge)->ArgName("sizes")->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest
