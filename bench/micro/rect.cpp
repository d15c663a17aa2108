#include <benchmark/benchmark.h>

#include <random>

#include "platenest/URectNest/Raster.h"
#include "platenest/URectNest/RectJostler.h"
#include "platenest/URectNest/RectangleNest.h"
#include "platenest/URectNest/RecursiveFiveblockNest.h"

namespace platenest {
namespace {

void BM_Raster(benchmark::State& State) {
  TIntBoxList boxes;
  for (int k = 0; k < 20; ++k) boxes.emplace_back(701 + 173 * k, 409 + 97 * k, k, static_cast<int>(State.range(0)), 0);
  TRaster raster;
  for (auto _ : State) {
    raster.Initialize(30000, 15000, boxes, State.range(1) != 0, State.range(2) != 0);
    benchmark::DoNotOptimize(raster.IndexInvL.data());
  }
  State.counters["points_l"] = raster.SizeL;
  State.counters["points_w"] = raster.SizeW;
}
BENCHMARK(BM_Raster)
    ->ArgNames({"copies", "rotate", "normal"})
    ->Args({10, 1, 0})
    ->Args({10, 0, 1})
    ->Args({99999, 1, 0})
    ->Unit(benchmark::kMicrosecond);

// 599 strips, 301 by 301 remaining plates: with the list of 90000 placements, and the choice of strips alone.
const TNestRect kPart(1'000'000, 0, TVRect2D::FromSize(100, 100));
const TRectangleNest kNest(TVRect2D::FromSize(30000, 30000), kPart, 0);

void BM_SingleNest(benchmark::State& State) {
  int placed = 0;
  for (auto _ : State) {
    TNestedRects list;
    bool isFull = false;
    placed = kNest.SingleNest(list, isFull);
    benchmark::DoNotOptimize(list.data());
  }
  State.counters["placed"] = placed;
}
BENCHMARK(BM_SingleNest)->Unit(benchmark::kMicrosecond);

void BM_SingleNestTable(benchmark::State& State) {
  for (auto _ : State) benchmark::DoNotOptimize(kNest.Summary().Count);
  State.counters["cells"] = 301 * 301;
}
BENCHMARK(BM_SingleNestTable)->Unit(benchmark::kMicrosecond);

// The narrowing search on a plate of 240 columns: about 160 trial plates.
void BM_Trim(benchmark::State& State) {
  const TNestRect part(1000000, 0, TVRect2D::FromSize(100, 70));
  TNestedRects list;
  for (auto _ : State) benchmark::DoNotOptimize(DynamicSingleRectNest(part, 20000, 24050, 5, list));
  State.counters["placed"] = list.Count();
}
BENCHMARK(BM_Trim)->Unit(benchmark::kMillisecond);

// The full search in whole units.
void BM_Fiveblock(benchmark::State& State) {
  const auto side = [&State](int i) { return static_cast<double>(State.range(i)); };
  const TNestRect part(1, 0, TVRect2D::FromSize(side(2), side(3)));
  const TRecursiveFiveblockNest nest(TVRect2D::FromSize(side(0), side(1)), part, 0, 0);
  TNestedRects list;
  for (auto _ : State) benchmark::DoNotOptimize(nest.SingleNest(list, 0, 0));
  State.counters["placed"] = list.Count();
}
BENCHMARK(BM_Fiveblock)
    ->ArgNames({"length", "width", "a", "b"})
    ->Args({2440, 1220, 145, 95})
    ->Args({124, 81, 21, 10})
    ->Args({114, 120, 24, 18})
    ->Unit(benchmark::kMicrosecond);

// Rectangles of 24 sizes in cells of 100 by 100, each somewhere in its cell, as blocks of one; or of one size, 0.05
// apart, as one block of all.
TNestedRects LooseLayout(int Side, bool IsOneBlock) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> size(20, 90);
  TNestRectList parts;
  for (int k = 0; k < 24; ++k) parts.emplace_back(1, k, TVRect2D::FromSize(size(random), size(random)));
  if (IsOneBlock) parts.assign(1, TNestRect(1, 0, TVRect2D::FromSize(99.95, 99.95)));
  TNestedRects list;
  for (int k = 0; k < Side * Side; ++k) {
    const TNestRect& part = parts[random() % parts.size()];
    const double x = IsOneBlock ? 0 : static_cast<double>(random() % 8) / 8 * (100 - part.BoundBox.Width());
    const double y = IsOneBlock ? 0 : static_cast<double>(random() % 8) / 8 * (100 - part.BoundBox.Height());
    list.emplace_back(part, false, TPoint2D{k % Side * 100 + x, k / Side * 100 + y});
  }
  return list;
}

void BM_Jostle(benchmark::State& State) {
  const int side = static_cast<int>(State.range(0));
  const bool isOneBlock = State.range(1) != 0;
  const TNestedRects loose = LooseLayout(side, isOneBlock);
  const TVRect2D plate = TVRect2D::FromSize(side * 100, side * 100);
  TNestedRects list;
  for (auto _ : State) benchmark::DoNotOptimize(TRectJostler::TryJostle(loose, list, plate, 0, true, isOneBlock, 1e-4));
  State.counters["rects"] = list.Count();
  State.counters["top"] = list.BoundBox().Top;
}
BENCHMARK(BM_Jostle)
    ->ArgNames({"side", "one_block"})
    ->Args({45, 0})
    ->Args({45, 1})
    ->Args({142, 0})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest
