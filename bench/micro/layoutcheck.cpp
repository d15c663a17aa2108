#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "platenest/layoutcheck/CircleCheck.h"
#include "platenest/layoutcheck/LayoutCheck.h"
#include "platenest/layoutcheck/Measures.h"
#include "platenest/layoutcheck/Svg.h"

// The checker, the measures and the picture on layouts of 100000 boxes: as nesters make them, and as hard as they come.
namespace platenest {
namespace {

constexpr int kSide = 316;  // squared: close to 100000
constexpr double kGap = 0.5;

struct TScene {
  std::vector<TPlacedBox> Boxes;
  TPlacedBox Plate;
};

double Random01(std::mt19937_64& Random) {
  return static_cast<double>(Random() >> 11) * 0x1p-53;
}

// One size in rows and columns, each position off by what sums of doubles are off by.
TScene Lattice() {
  std::mt19937_64 random(1);
  TScene scene;
  for (int i = 0; i < kSide * kSide; ++i) {
    const double x = i % kSide * (3 + kGap) + 1e-10 * Random01(random);
    const double y = i / kSide * (3 + kGap) + 1e-10 * Random01(random);
    scene.Boxes.push_back({x, y, x + 3, y + 3});
  }
  scene.Plate = {0, 0, kSide * (3 + kGap) + 7, kSide * (3 + kGap) + 2};
  return scene;
}

// All sizes and places different, much room in between.
TScene Scattered() {
  std::mt19937_64 random(1);
  TScene scene;
  for (int i = 0; i < kSide * kSide; ++i) {
    const double x = i % kSide * 10 + 5 * Random01(random);
    const double y = i / kSide * 10 + 5 * Random01(random);
    scene.Boxes.push_back({x, y, x + 1 + 3 * Random01(random), y + 1 + 3 * Random01(random)});
  }
  scene.Plate = {0, 0, 3170, 3170};
  return scene;
}

// Two chains that face each other across a band: n^2 free rectangles that cannot be enlarged.
TScene Stairs() {
  TScene scene;
  const int half = kSide * kSide / 2;
  for (int i = 0; i < half; ++i) {
    scene.Boxes.push_back({i * 1.0, half - i - 1.0, i + 0.5, half - i - 0.5});
    scene.Boxes.push_back({i + half / 2.0, 1.5 * half - i - 1, i + half / 2.0 + 0.5, 1.5 * half - i - 0.5});
  }
  scene.Plate = {0, 0, 1.5 * half, 1.5 * half};
  return scene;
}

// Bars from side to side and pillars across them.
TScene Grating() {
  std::mt19937_64 random(1);
  TScene scene;
  for (int i = 0; i < kSide * kSide; ++i) {
    const double at = 1e5 * Random01(random);
    const double low = 2e4 * Random01(random);
    const double high = 1e5 - 2e4 * Random01(random);
    scene.Boxes.push_back(i % 2 == 0 ? TPlacedBox{low, at, high, at + 0.1} : TPlacedBox{at, low, at + 0.1, high});
  }
  scene.Plate = {0, 0, 1e5, 1e5};
  return scene;
}

using TMakeScene = TScene (*)();

void CheckLayout(benchmark::State& State) {
  const TScene scene = Lattice();
  const TNestRectList demand = {{kSide * kSide, 0, TVRect2D::FromSize(3, 3)}};
  TNestedRects layout;
  for (const TPlacedBox& box : scene.Boxes) layout.push_back({demand[0], false, {box.Left, box.Bottom}});
  const TVRect2D plate = TVRect2D::FromSize(scene.Plate.Right, scene.Plate.Top);
  for (auto _ : State)
    if (!CheckRectLayout(layout, plate, kGap, demand).empty()) State.SkipWithError("the layout is valid");
}

void CheckGap(benchmark::State& State, TMakeScene Make) {
  const TScene scene = Make();
  for (auto _ : State) benchmark::DoNotOptimize(FirstTooClose(scene.Boxes, kGap));
}

void Clearance(benchmark::State& State, TMakeScene Make) {
  const TScene scene = Make();
  for (auto _ : State) benchmark::DoNotOptimize(LeastClearance(scene.Boxes));
}

void EdgeToEdge(benchmark::State& State, TMakeScene Make) {
  const TScene scene = Make();
  for (auto _ : State) benchmark::DoNotOptimize(IsEdgeToEdge(scene.Boxes));
}

void FreeBox(benchmark::State& State, TMakeScene Make, double Gap) {
  const TScene scene = Make();
  for (auto _ : State) benchmark::DoNotOptimize(LargestFreeBox(scene.Boxes, scene.Plate, Gap));
}

void Svg(benchmark::State& State) {
  const TScene scene = Lattice();
  TLayoutPicture picture;
  picture.Width = scene.Plate.Width();
  picture.Height = scene.Plate.Height();
  picture.Kinds = {{"part-1", ""}};
  for (const TPlacedBox& box : scene.Boxes) picture.Parts.push_back({box, 0, picture.Parts.size() % 2 == 0});
  std::size_t bytes = 0;
  for (auto _ : State) bytes = RectLayoutSvg(picture).size();
  State.counters["bytes_per_part"] = static_cast<double>(bytes) / static_cast<double>(picture.Parts.size());
}

// Rows of touching circles, each row set into the hollows of the one below.
std::vector<TPlacedCircle> HexagonalCircles() {
  std::vector<TPlacedCircle> circles;
  for (int i = 0; i < kSide * kSide; ++i) {
    const int row = i / kSide;
    circles.push_back({{2 * (i % kSide) + 1.0 + row % 2, 1 + row * std::sqrt(3.0)}, 1, 0});
  }
  return circles;
}

// Each ring of seven circles is half as large as the one around it, nine of them as deep as a size ratio of 500.
std::vector<TPlacedCircle> NestedCircles() {
  std::vector<TPlacedCircle> circles;
  int idx = 0;
  for (int cell = 0; Size(circles) < kSide * kSide; ++cell) {
    const TPoint2D corner{cell % 64 * 1024.0, cell / 64 * 1024.0};
    for (double side = 512, at = 0; side >= 1; at += side, side /= 2) {
      const double r = side / 2;
      circles.push_back({{corner.X + at + r, corner.Y + at + r}, r, idx++});
      for (double along = at + side; along + side <= 1024; along += side) {
        circles.push_back({{corner.X + along + r, corner.Y + at + r}, r, idx++});
        circles.push_back({{corner.X + at + r, corner.Y + along + r}, r, idx++});
      }
    }
  }
  return circles;
}

using TMakeCircles = std::vector<TPlacedCircle> (*)();

void CheckCircleLayout(benchmark::State& State, TMakeCircles Make) {
  const std::vector<TPlacedCircle> circles = Make();
  TPlacedBox plate{0, 0, 0, 0};
  std::vector<TCircleDemand> demand;
  for (const TPlacedCircle& circle : circles) {
    plate.Right = std::max(plate.Right, circle.Center.X + circle.Radius);
    plate.Top = std::max(plate.Top, circle.Center.Y + circle.Radius);
    if (circle.Idx == Size(demand)) demand.push_back({circle.Radius, Size(circles)});
  }
  for (auto _ : State)
    if (!CheckCircles(circles, plate, 0, demand).empty()) State.SkipWithError("the layout is valid");
  State.counters["circles"] = static_cast<double>(circles.size());
}

void CircleClearance(benchmark::State& State, TMakeCircles Make) {
  const std::vector<TPlacedCircle> circles = Make();
  for (auto _ : State) benchmark::DoNotOptimize(LeastClearance(circles));
}

BENCHMARK(CheckLayout)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CheckGap, lattice, Lattice)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CheckGap, scattered, Scattered)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CheckGap, stairs, Stairs)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Clearance, lattice, Lattice)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Clearance, scattered, Scattered)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Clearance, stairs, Stairs)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EdgeToEdge, lattice, Lattice)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EdgeToEdge, stairs, Stairs)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FreeBox, lattice, Lattice, kGap)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FreeBox, lattice_without_gap, Lattice, 0.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FreeBox, scattered, Scattered, kGap)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FreeBox, stairs, Stairs, 0.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FreeBox, grating, Grating, 0.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CheckCircleLayout, hexagonal, HexagonalCircles)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CheckCircleLayout, nested, NestedCircles)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CircleClearance, hexagonal, HexagonalCircles)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CircleClearance, nested, NestedCircles)->Unit(benchmark::kMillisecond);
BENCHMARK(Svg)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest

BENCHMARK_MAIN();
