#include <benchmark/benchmark.h>

#include <cmath>

#include "Contours.h"
#include "Shapes.h"
#include "platenest/NfpAlgorithmSet/KineticLoop.h"
#include "platenest/foundation/ConcaveHull.h"
#include "platenest/foundation/DiscRoller.h"
#include "platenest/foundation/PolyDecimator.h"
#include "platenest/foundation/PolyInterProfile.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

enum TCharacter { Noisy, Toothed, Wavy, Smooth, Spiky, CombLike, Stepped };

TVPolyline2D Outline(Int64 Character, int Count) {
  const TRandomScope seed(1);
  switch (Character) {
    case Noisy:
      return test::Star(Count, 1000, 0.99);
    case Toothed:
      return test::Gear(Count / 4, 1000, 10);
    case Wavy:
      return test::Polar(Count, [Count](int i) { return 1000 + 10 * std::sin(2 * std::numbers::pi * 40 * i / Count); });
    case Smooth:
      return test::Circle(Count, 1000);
    case Spiky:
      return test::Star(Count, 1000, 0.2);
    case CombLike:
      return MakeShape(TShapeKind::Comb, Count, 1000, 1).front();
    default:
      return MakeShape(TShapeKind::Staircase, Count, 1000, 1).front();
  }
}

void BM_LoopBuild(benchmark::State& State) {
  const TVPolyline2D outline = Outline(State.range(0), static_cast<int>(State.range(1)));
  TKMPLoop loop;
  for (auto _ : State) {
    TVPolyline2D copy = outline;
    loop = TKMPLoop();
    loop.Initialize(copy);
    benchmark::DoNotOptimize(loop[0]);
  }
  State.counters["edges"] = loop.FCount();
  State.counters["directions"] = loop.Count();
}
BENCHMARK(BM_LoopBuild)
    ->ArgNames({"character", "points"})
    ->Args({Noisy, 1000})
    ->Args({Noisy, 100000})
    ->Args({Stepped, 100000})
    ->Unit(benchmark::kMicrosecond);

void BM_DiscRoller(benchmark::State& State) {
  TVPolyline2D outline = Outline(State.range(0), static_cast<int>(State.range(1)));
  TDiscRoller roller(outline, static_cast<int>(State.range(2)));
  for (auto _ : State) roller.Run();
  State.counters["fine"] = roller.Fine().Count();
  State.counters["coarse"] = roller.Coarse().Count();
}
BENCHMARK(BM_DiscRoller)
    ->ArgNames({"character", "points", "level"})
    ->Args({Noisy, 720, 1})
    ->Args({Noisy, 720, 3})
    ->Args({Noisy, 720, 5})
    ->ArgsProduct({{Noisy, Toothed, Wavy, Smooth, Spiky, CombLike}, {20000}, {3}})
    ->Unit(benchmark::kMillisecond);

void BM_ConcaveHull(benchmark::State& State) {
  const TVPolyline2D outline = Outline(State.range(0), 20000);
  TVPolyline2D hull;
  for (auto _ : State) hull = GetConcaveHull(outline, 2);
  State.counters["points"] = hull.Count();
}
BENCHMARK(BM_ConcaveHull)->ArgName("character")->DenseRange(Noisy, CombLike)->Unit(benchmark::kMillisecond);

void BM_InscribedHull(benchmark::State& State) {
  const TVPolyline2D outline = Outline(State.range(0), 20000);
  TVPolyline2D hull;
  for (auto _ : State) hull = TPolyDecimator::GetInscribedHull(outline, 3);
  State.counters["points"] = hull.Count();
}
BENCHMARK(BM_InscribedHull)->ArgName("character")->DenseRange(Noisy, CombLike)->Unit(benchmark::kMillisecond);

void BM_InterProfile(benchmark::State& State) {
  const TVPolyline2D outline = Outline(State.range(0), 5000);
  TPolyInterProfile profile(TDynPoints2D(outline.begin(), outline.end()), 4);
  for (auto _ : State) profile.Run();
  State.counters["points"] = profile.Result().Count();
}
BENCHMARK(BM_InterProfile)->ArgName("character")->DenseRange(Noisy, Wavy)->Unit(benchmark::kMillisecond);

void BM_ReducedLoop(benchmark::State& State) {
  TVPolyline2D outline = Outline(Toothed, static_cast<int>(State.range(0)));
  TKMPLoop loop;
  loop.Initialize(outline);
  int edges = 0;
  for (auto _ : State) edges = loop.ToReducedLoop(static_cast<int>(State.range(1)), ntConcaveHull).FCount();
  State.counters["edges"] = edges;
}
BENCHMARK(BM_ReducedLoop)
    ->ArgNames({"points", "level"})
    ->ArgsProduct({{720, 5000}, {1, 3, 5}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest
