// The planar helpers at the sizes that the kernel asks for.
#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>
#include <random>

#include "platenest/foundation/HostShapes.h"
#include "platenest/foundation/LineIntersector.h"

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

void Sweep(benchmark::State& State, const TVLine2DList& Lines, bool IncludeEndpoints) {
  std::size_t hits = 0;
  for (auto _ : State) {
    TLineIntersector sweep(Lines, IncludeEndpoints);
    sweep.FindInterSect();
    hits = sweep.Intersections().size();
  }
  State.counters["lines"] = static_cast<double>(Lines.size());
  State.counters["hits"] = static_cast<double>(hits);
}

// Short lines strewn over a square, about as many crossings as lines.
TVLine2DList StrewnLines(int Count) {
  std::mt19937 engine(1);
  std::uniform_real_distribution<double> place(0, 1000);
  std::uniform_real_distribution<double> turn(0, 2 * std::numbers::pi);
  const double length = 1000 * std::sqrt(std::numbers::pi / Count);
  TVLine2DList lines;
  for (int i = 0; i < Count; ++i) {
    const TPoint2D start{place(engine), place(engine)};
    lines.push_back({start, start + TPoint2D{length, 0}.RotateBy(turn(engine))});
  }
  return lines;
}

void SweepStrewn(benchmark::State& State) {
  Sweep(State, StrewnLines(static_cast<int>(State.range(0))), false);
}
BENCHMARK(SweepStrewn)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// Long lines, nearly parallel, so that half of them are under the sweep at any place, and a hundred that cross a
// thousand each.
void SweepLong(benchmark::State& State) {
  TVLine2DList lines;
  for (int i = 0; i < 100000; ++i) lines.push_back({{i % 1000 * 0.5, i * 0.01}, {1000.0 + i % 777, i * 0.01 + 3}});
  for (int i = 0; i < 100; ++i) lines.push_back({{800.0 + i, i * 10.003}, {800.5 + i, i * 10.003 + 10}});
  Sweep(State, lines, false);
}
BENCHMARK(SweepLong)->Unit(benchmark::kMillisecond);

// Walks on a grid: shared ends everywhere, collinear overlaps, crossings at equal places.
void SweepGrid(benchmark::State& State) {
  std::mt19937 engine(1);
  std::uniform_int_distribution<int> step(-3, 3);
  TVLine2DList lines;
  TPoint2D at{0, 0};
  for (int i = 0; i < 100000; ++i) {
    const TPoint2D next = at + TPoint2D(step(engine), step(engine));
    lines.push_back({at, next});
    at = next;
  }
  Sweep(State, lines, State.range(0) != 0);
}
BENCHMARK(SweepGrid)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest
