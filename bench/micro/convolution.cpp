#include <benchmark/benchmark.h>

#include "ChipCollector.h"
#include "Contours.h"
#include "Shapes.h"
#include "platenest/NfpAlgorithmSet/KineticConvolution.h"
#include "platenest/NfpAlgorithmSet/NfpStatistics.h"

namespace platenest {
namespace {

TKMPLoop LoopOf(TVPolyline2D Contour) {
  TKMPLoop loop;
  loop.Initialize(Contour);
  return loop;
}

TKMPLoop MirroredLoopOf(TVPolyline2D Contour) {
  Contour.Mirror();
  return LoopOf(std::move(Contour));
}

TVPolyline2D OuterOf(TShapeKind Kind, int Edges, double Size, unsigned Seed) {
  return TPathUtils::CreatePolyline(PolygonOf(MakeShape(Kind, Edges, Size, Seed)).front(), kPathScale);
}

// The mean over all iterations; the rung of the last one.
void Convolve(benchmark::State& State, const TKMPLoop& Static, const TKMPLoop& Dynamic, bool Inside,
              TNFPType Required) {
  TKineticConvolution convolution(Required, false);
  TPaths paths;
  NfpStatistics = {};
  int level = 0;
  for (auto _ : State) level = convolution.Convolution(Dynamic, Static, Inside, paths);
  const auto mean = benchmark::Counter::kAvgIterations;
  State.counters["chips"] = benchmark::Counter(static_cast<double>(NfpStatistics.Chips), mean);
  State.counters["circuits"] = benchmark::Counter(static_cast<double>(NfpStatistics.Circuits), mean);
  State.counters["checks"] = benchmark::Counter(static_cast<double>(NfpStatistics.TrailChecks), mean);
  State.counters["hits"] = benchmark::Counter(static_cast<double>(NfpStatistics.TrailHits), mean);
  State.counters["retries"] = benchmark::Counter(static_cast<double>(NfpStatistics.Retries), mean);
  for (int rung = 0; rung < Size(NfpStatistics.Rungs); ++rung)
    if (NfpStatistics.Rungs[rung] > 0) State.counters["rung"] = rung;
  State.counters["level"] = level;
}

// Argument: edges of each of two spiky outlines.
void CollectChips(benchmark::State& State) {
  const TRandomScope random(1);
  const int edges = static_cast<int>(State.range(0));
  const TKMPLoop a = LoopOf(test::Star(edges, 100, 0.2));
  const TKMPLoop b = LoopOf(test::Star(edges, 80, 0.2));
  TChipList chips;
  for (auto _ : State) detail::CollectConvolution(a, b, chips);
  State.counters["chips"] = static_cast<double>(chips.size());
}
BENCHMARK(CollectChips)->Arg(100)->Arg(400)->Arg(1000)->Unit(benchmark::kMicrosecond);

void Rectangles(benchmark::State& State) {
  const TVPolyline2D a{{0, 0}, {30, 0}, {30, 20}, {0, 20}};
  const TVPolyline2D b{{0, 0}, {10, 0}, {10, 15}, {0, 15}};
  Convolve(State, LoopOf(a), MirroredLoopOf(b), false, ntComplete);
}
BENCHMARK(Rectangles)->Unit(benchmark::kMicrosecond);

// Argument: edges of each outline.
void ConvexPair(benchmark::State& State) {
  const int edges = static_cast<int>(State.range(0));
  Convolve(State, LoopOf(test::Circle(edges, 10)), LoopOf(test::Circle(edges + 1, 5)), false, ntComplete);
}
BENCHMARK(ConvexPair)->Arg(5)->Arg(10)->Arg(20)->Arg(60)->Unit(benchmark::kMicrosecond);

// Arguments: kind, edges.
void PairOfOneKind(benchmark::State& State) {
  const TShapeKind kind = kShapeKinds[static_cast<std::size_t>(State.range(0))];
  const int edges = static_cast<int>(State.range(1));
  State.SetLabel(NameOf(kind));
  Convolve(State, LoopOf(OuterOf(kind, edges, 100, 3)), MirroredLoopOf(OuterOf(kind, edges, 60, 4)), false, ntComplete);
}
BENCHMARK(PairOfOneKind)->ArgsProduct({{1, 2, 3, 4, 5}, {30, 60}})->Unit(benchmark::kMicrosecond);

// Arguments: edges, quality.
void SpikyPair(benchmark::State& State) {
  const TRandomScope random(1);
  const int edges = static_cast<int>(State.range(0));
  const TKMPLoop a = LoopOf(test::Star(edges, 100, 0.2));
  const TKMPLoop b = LoopOf(test::Star(edges, 80, 0.2));
  const TNFPType required = static_cast<TNFPType>(State.range(1));
  State.SetLabel(TNFPTypeUtils::GetTypeNameStr(required));
  Convolve(State, a, b, false, required);
}
BENCHMARK(SpikyPair)->ArgsProduct({{100, 200, 400, 1000}, {2, 3}})->Unit(benchmark::kMillisecond);

// Argument: edges of the part in a plate of forty.
void PartInside(benchmark::State& State) {
  TVPolyline2D plate = OuterOf(TShapeKind::Staircase, 40, 200, 5);
  plate.SetIsClockwise(true);
  const int edges = static_cast<int>(State.range(0));
  Convolve(State, LoopOf(plate), MirroredLoopOf(OuterOf(TShapeKind::Star, edges, 30, 6)), true, ntComplete);
}
BENCHMARK(PartInside)->Arg(20)->Arg(100)->Arg(400)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace platenest
