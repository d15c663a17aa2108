#include <benchmark/benchmark.h>

#include <random>

#include "RskfTables.h"
#include "platenest/URectNest/RSKF.h"

namespace platenest {
namespace {

struct TProbe : TRSKF {
  TProbe(double Length, double Width, const TNestRectList& Parts)
      : TRSKF(TVRect2D::FromSize(Length, Width), Parts, 0, 0, 0, false) {}
  using TRSKF::GenerateRectInfowithRaster, TRSKF::GetNestResult, TRSKF::PrepareRaster, TRSKF::RSkfCoreAlg,
      TRSKF::URSKFCoreAlg;
};

using TPass = bool (TProbe::*)(const TRaster&, int&, int&, detail::TRskfTables&);

// One pass without building the raster and drawing the layout.
void MeasurePass(benchmark::State& State, TProbe& Nester, bool CanRotate, TPass Pass) {
  TRaster raster;
  if (!Nester.PrepareRaster(raster, CanRotate, false)) return State.SkipWithError("no raster");
  int column = 0;
  int row = 0;
  Int64 value = 0;
  int words = 0;
  for (auto _ : State) {
    detail::TRskfTables tables;
    benchmark::DoNotOptimize((Nester.*Pass)(raster, column, row, tables));
    value = tables.F.At(row, column);
    words = tables.Packing.Words();
  }
  State.counters["points_l"] = raster.SizeL;
  State.counters["points_w"] = raster.SizeW;
  State.counters["cells"] = 1.0 * raster.SizeL * raster.SizeW;
  State.counters["bytes_per_cell"] = static_cast<double>(12 + sizeof(detail::TWord) * words);
  State.counters["value"] = static_cast<double>(value);
}

// 20 sizes with sides from the given ones on, over the given spans.
TNestRectList TwentySizes(int Amount, unsigned Seed, unsigned Width, unsigned WidthSpan, unsigned Height,
                          unsigned HeightSpan) {
  std::mt19937 random(Seed);
  TNestRectList parts;
  for (int k = 0; k < 20; ++k) {
    const double width = static_cast<double>(Width + random() % WidthSpan);
    parts.emplace_back(Amount, k, TVRect2D::FromSize(width, static_cast<double>(Height + random() % HeightSpan)));
  }
  return parts;
}

// Sides between two shares of the plate in twenty-fourths, any number of copies.
TNestRectList FreeSizes(int Side, int Count, int Least, int Most) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> side(Side * Least / 24, Side * Most / 24);
  TNestRectList parts;
  for (int k = 0; k < Count; ++k) {
    const double width = side(random);
    parts.emplace_back(9999, k, TVRect2D::FromSize(width, side(random)));
  }
  return parts;
}

// 1227 by 477 points, of large sizes of which few fit, or of sizes of which dozens fit.
void BM_BoundedPass(benchmark::State& State) {
  const bool isSmall = State.range(0) != 0;
  TProbe nester = isSmall ? TProbe(1468, 718, TwentySizes(4, 3, 90, 200, 60, 120))
                          : TProbe(1780, 1030, TwentySizes(2, 1, 200, 500, 100, 300));
  MeasurePass(State, nester, true, &TProbe::RSkfCoreAlg);
}
BENCHMARK(BM_BoundedPass)->ArgName("small")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// In the manner of the plates of Beasley (1985): sides from a quarter to three quarters, then from an eighth to a
// third.
void BM_UnboundedPass(benchmark::State& State) {
  const auto arg = [&State](int i) { return static_cast<int>(State.range(i)); };
  TProbe nester(arg(0), arg(0), FreeSizes(arg(0), arg(1), arg(2), arg(3)));
  MeasurePass(State, nester, arg(4) != 0, &TProbe::URSKFCoreAlg);
}
BENCHMARK(BM_UnboundedPass)
    ->ArgNames({"side", "sizes", "least", "most", "rotate"})
    ->ArgsProduct({{250, 1000}, {50}, {6}, {18}, {0, 1}})
    ->ArgsProduct({{3000}, {32}, {3}, {8}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

// A whole run, the filling included: 30 sizes in amounts from 1 to 9 on a plate of 3000 by 1500.
void BM_Run(benchmark::State& State) {
  std::mt19937 random(1);
  TNestRectList parts;
  for (int k = 0; k < 30; ++k) {
    const double width = 100.0 + static_cast<double>(random() % 600);
    const TVRect2D box = TVRect2D::FromSize(width, 100.0 + static_cast<double>(random() % 400));
    parts.emplace_back(1 + static_cast<int>(random() % 9), k, box);
  }
  const bool isBigFirst = State.range(0) != 0;
  TNestedRects list;
  double placed = 0;
  for (auto _ : State) {
    list.clear();
    TRSKF nester(TVRect2D::FromSize(3000, 1500), parts, 5, 0, 0, false);
    placed = isBigFirst ? nester.RunBigFirstNest(list, 0, true, false) : nester.RunMultiRectNest(list, true, false);
  }
  State.counters["placed"] = list.Count();
  State.counters["result"] = placed;
}
BENCHMARK(BM_Run)->ArgName("big_first")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest
