// The kernel through its public doors: chips of a convolution, and whole requests to the calculator.
#include <benchmark/benchmark.h>

#include <numbers>

#include "Contours.h"
#include "platenest/NfpAlgorithmSet/KineticConvolution.h"
#include "platenest/NfpAlgorithmSet/NfpStatistics.h"
#include "platenest/NfpAlgorithmSet/PartNfp.h"
#include "platenest/services/NFP.h"

namespace platenest {
namespace {

// Every second vertex reaches inward by half of the radius; Turn keeps the edges of two of them from being parallel.
TVPolyline2D Spiky(int Count, double Radius, double Turn) {
  TVPolyline2D contour;
  for (int i = 0; i < Count; ++i) {
    const double radius = i % 2 == 0 ? Radius : Radius / 2;
    contour.push_back(TPoint2D{radius, 0}.RotateBy(Turn + 2 * std::numbers::pi * i / Count));
  }
  return contour;
}

void CollectChips(benchmark::State& State) {
  const int edges = static_cast<int>(State.range(0));
  TVPolyline2D a = Spiky(edges, 300, 0.1);
  TVPolyline2D b = Spiky(edges, 200, 0.2);
  const TKMPLoop loopA = TPartNFP::GetKMPLoop(a, 0);
  const TKMPLoop loopB = TPartNFP::GetKMPLoop(b, 0);
  TChipList chips;
  for (auto _ : State) {
    chips.clear();
    TKineticConvolution::CollectChains(loopA, loopB, chips, true);
    TKineticConvolution::CollectChains(loopB, loopA, chips, false);
  }
  State.counters["chips"] = static_cast<double>(chips.size());
}
BENCHMARK(CollectChips)->Arg(100)->Arg(450)->Unit(benchmark::kMillisecond);

void Request(benchmark::State& State, const TVPolyline2D& Moving, const TVPolyline2D& Fixed, TNFPType Required) {
  const TVHPolygon moving{Moving};
  const TVHPolygon fixed{Fixed};
  TNFP nfp;
  for (auto _ : State) {
    NfpStatistics = {};
    nfp = TNFPCalculator::CalcNFP(moving, fixed, false, Required, {}, {});
  }
  State.SetLabel(TNFPTypeUtils::GetTypeNameStr(nfp.NFPType));
  State.counters["chips"] = static_cast<double>(NfpStatistics.Chips);
  State.counters["circuits"] = static_cast<double>(NfpStatistics.Circuits);
  State.counters["retries"] = static_cast<double>(NfpStatistics.Retries);
  State.counters["trail_hits"] = static_cast<double>(NfpStatistics.TrailHits);
  for (std::size_t i = 1; i < NfpStatistics.Rungs.size(); ++i)
    if (NfpStatistics.Rungs[i] > 0) State.counters["rung"] = static_cast<double>(i);
}

void NothingAskedFor(benchmark::State& State) {
  Request(State, Spiky(100, 10, 0), Spiky(100, 10, 0), ntNone);
}
BENCHMARK(NothingAskedFor)->Unit(benchmark::kMicrosecond);

void Rectangles(benchmark::State& State) {
  Request(State, {{0, 0}, {30, 0}, {30, 20}, {0, 20}}, {{0, 0}, {70, 0}, {70, 40}, {0, 40}}, ntComplete);
}
BENCHMARK(Rectangles)->Unit(benchmark::kMicrosecond);

void Convex(benchmark::State& State) {
  const int edges = static_cast<int>(State.range(0));
  Request(State, test::Circle(edges, 20), test::Circle(edges + 1, 30), ntComplete);
}
BENCHMARK(Convex)->Arg(5)->Arg(12)->Arg(60)->Unit(benchmark::kMicrosecond);

void SpikyAtComplete(benchmark::State& State) {
  const int edges = static_cast<int>(State.range(0));
  Request(State, Spiky(edges, 200, 0.2), Spiky(edges, 300, 0.1), ntComplete);
}
BENCHMARK(SpikyAtComplete)->Arg(20)->Arg(60)->Arg(200)->Unit(benchmark::kMillisecond);

void SpikyAtConcave(benchmark::State& State) {
  const int edges = static_cast<int>(State.range(0));
  Request(State, Spiky(edges, 200, 0.2), Spiky(edges, 300, 0.1), ntConcaveHull);
}
BENCHMARK(SpikyAtConcave)->Arg(200)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest
