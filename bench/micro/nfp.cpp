#include <benchmark/benchmark.h>

#include "Contours.h"
#include "Shapes.h"
#include "platenest/NfpAlgorithmSet/NfpStatistics.h"
#include "platenest/NfpAlgorithmSet/PartNfp.h"
#include "platenest/foundation/Random.h"
#include "platenest/services/NFP.h"

namespace platenest {
namespace {

TVHPolygon Square(double Left, double Side) {
  return {{{{Left, Left}, {Left + Side, Left}, {Left + Side, Left + Side}, {Left, Left + Side}}}};
}

// The work of one request.
void Count(benchmark::State& State, const TNFP& Nfp) {
  const double requests = static_cast<double>(State.iterations());
  State.counters["chips"] = static_cast<double>(NfpStatistics.Chips) / requests;
  State.counters["circuits"] = static_cast<double>(NfpStatistics.Circuits) / requests;
  State.counters["net hits"] = static_cast<double>(NfpStatistics.TrailHits) / requests;
  double fallen = 0;
  for (std::size_t i = 1; i < NfpStatistics.Rungs.size(); ++i) fallen += static_cast<double>(NfpStatistics.Rungs[i]);
  for (const Int64 steps : NfpStatistics.Ladder) fallen += static_cast<double>(steps);
  State.counters["fallbacks"] = fallen / requests;
  State.counters["paths"] = static_cast<double>(Nfp.NFP->size());
}

void Run(benchmark::State& State, const TVHPolygon& Static, const TVHPolygon& Dynamic, bool IsInside) {
  NfpStatistics = {};
  TNFP nfp;
  for (auto _ : State) {
    nfp = TNFPCalculator::CalcNFP(Dynamic, Static, IsInside, ntComplete, "", "");
    benchmark::DoNotOptimize(nfp);
  }
  Count(State, nfp);
}

void BM_NfpRectangles(benchmark::State& State) {
  Run(State, Square(0, 4), Square(0, 1), State.range(0) != 0);
}
BENCHMARK(BM_NfpRectangles)->ArgName("inside")->Arg(0)->Arg(1);

// Without the door and its copies.
void BM_KernelRectangles(benchmark::State& State) {
  TVHPolygon fixed = Square(0, 4);
  TVHPolygon moving = Square(0, 1);
  TPartNFP kernel(ntComplete);
  TPaths paths;
  for (auto _ : State) {
    kernel.Nfp(fixed, moving, false, paths);
    benchmark::DoNotOptimize(paths.data());
  }
}
BENCHMARK(BM_KernelRectangles);

void BM_NfpConvex(benchmark::State& State) {
  const int edges = static_cast<int>(State.range(0));
  Run(State, MakeShape(TShapeKind::Convex, edges, 100, 1), MakeShape(TShapeKind::Convex, edges, 60, 2), false);
}
BENCHMARK(BM_NfpConvex)->ArgName("edges")->Arg(8)->Arg(20)->Arg(60)->Arg(200);

void BM_NfpPair(benchmark::State& State) {
  const auto kind = static_cast<TShapeKind>(State.range(0));
  const int edges = static_cast<int>(State.range(1));
  State.SetLabel(NameOf(kind));
  Run(State, MakeShape(kind, edges, 100, 1), MakeShape(kind, edges, 60, 2), false);
}
BENCHMARK(BM_NfpPair)
    ->ArgNames({"kind", "edges"})
    ->ArgsProduct({{static_cast<int>(TShapeKind::LShape)}, {6}})
    ->ArgsProduct({{static_cast<int>(TShapeKind::Star), static_cast<int>(TShapeKind::Comb)}, {20, 60, 200}})
    ->Unit(benchmark::kMicrosecond);

// A round plate with star-shaped holes.
void BM_NfpPlate(benchmark::State& State) {
  TVHPolygon plate{test::Circle(60, 100)};
  const TRandomScope seed(1);
  for (int i = 0; i < State.range(0); ++i) {
    TVPolyline2D hole = test::Star(12, 4, 0.5);
    hole.Translate({-60.0 + 24 * (i % 6), -60.0 + 24 * (i / 6)});
    plate.push_back(hole);
  }
  Run(State, plate, MakeShape(TShapeKind::Star, 20, 20, 3), true);
}
BENCHMARK(BM_NfpPlate)->ArgName("holes")->Arg(0)->Arg(6)->Arg(36)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace platenest
