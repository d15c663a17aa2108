// The planar helpers at the sizes that the kernel asks for.
#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>
#include <random>

#include "platenest/foundation/HostShapes.h"

namespace platenest {
namespace {

// A spiky ring: every second vertex reaches inward by Depth of the radius 100.
TVPolyline2D Gear(int Count, double Depth, const TPoint2D& Centre) {
  TVPolyline2D gear;
  for (int i = 0; i < Count; ++i) {
    const double radius = i % 2 == 0 ? 100 : 100 * (1 - Depth);
    gear.push_back(Centre + TPoint2D{radius, 0}.RotateBy(2 * std::numbers::pi * i / Count));
  }
  return gear;
}

// Teeth that point up, Length long, one drawing unit apart.
TVPolyline2D Comb(int Count, double Length) {
  TVPolyline2D comb{{0, -1}, {Count / 4.0, -1}};
  for (int i = Count / 4; i > 0; --i)
    for (const TPoint2D& point : {TPoint2D{0.0, Length}, {-0.4, Length}, {-0.5, 0}, {-0.9, 0}})
      comb.push_back(TPoint2D(i * 1.0, 0) + point);
  return comb;
}

void Overlap(benchmark::State& State, const TVPolyline2D& A, const TVPolyline2D& B, bool Expected) {
  const TMPolygon a(A);
  const TMPolygon b(B);
  if (a.TestOverlap(b) != Expected) State.SkipWithError("wrong answer");
  for (auto _ : State) benchmark::DoNotOptimize(a.TestOverlap(b));
  State.counters["edges"] = A.Count() + B.Count();
}

void OverlapGearsMesh(benchmark::State& State) {
  Overlap(State, Gear(1000, 0.1, {0, 0}), Gear(1000, 0.1, {200, 0}), false);
}
BENCHMARK(OverlapGearsMesh)->Unit(benchmark::kMicrosecond);

void OverlapGearsCross(benchmark::State& State) {
  Overlap(State, Gear(1000, 0.5, {0, 0}), Gear(1000, 0.5, {3, 1}), true);
}
BENCHMARK(OverlapGearsCross)->Unit(benchmark::kMicrosecond);

void OverlapGearInHole(benchmark::State& State) {
  const TVPolyline2D gear = Gear(1000, 0.5, {0, 0});
  TVPolyline2D cavity = gear;
  cavity.SetIsClockwise(true);
  const TMPolygon plate(cavity, nullptr, true);
  const TMPolygon part(gear, nullptr, true);
  if (plate.TestOverlap(part)) State.SkipWithError("wrong answer");
  for (auto _ : State) benchmark::DoNotOptimize(plate.TestOverlap(part));
}
BENCHMARK(OverlapGearInHole)->Unit(benchmark::kMicrosecond);

// The teeth of one comb stand in the gaps of the other, touching nothing, and long across the sweep.
void OverlapCombs(benchmark::State& State) {
  const double length = static_cast<double>(State.range(0));
  const TVPolyline2D comb = Comb(1000, length);
  TVPolyline2D other = comb;
  other.Mirror();
  other.Translate({250.1, length + 0.5});
  Overlap(State, comb, other, false);
}
BENCHMARK(OverlapCombs)->Arg(1)->Arg(10000)->Unit(benchmark::kMicrosecond);

// Touching at the tip of every tooth: a contact and a free piece per tooth.
void OverlapTips(benchmark::State& State) {
  const TVPolyline2D comb = Comb(1000, 50);
  TVPolyline2D other = comb;
  other.Mirror();
  other.Translate({250, 100});
  Overlap(State, comb, other, false);
}
BENCHMARK(OverlapTips)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace platenest
