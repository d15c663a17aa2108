#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <vector>

#include "Shapes.h"
#include "platenest/services/arrayInfo.h"

namespace platenest {
namespace {

double CpuUs() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

// Both lattice vectors of a part, its no-fit polygon given: free, along one axis, along both.
void BM_ArrayVectors(benchmark::State& State) {
  const TVHPolygonList shape{
      MakeShape(static_cast<TShapeKind>(State.range(0)), static_cast<int>(State.range(1)), 100, 1)};
  TPaths nfp;
  TArrayInfoAlgo::CalcNFP(shape, 0, nfp);
  TPair<TPoint2D, TPoint2D> lattice;
  for (auto _ : State) {
    TPaths copy = nfp;
    lattice = TArrayInfoAlgo::CalcArrayInfo(copy, State.range(2) > 0, State.range(2) > 1, false, 1e-3);
    benchmark::DoNotOptimize(lattice);
  }
  State.counters["points"] = static_cast<double>(shape.front().front().size());
  State.counters["nfp_points"] = static_cast<double>(nfp.front().size());
  State.counters["cell"] = std::fabs(lattice.first.CrossMul(lattice.second));
}
BENCHMARK(BM_ArrayVectors)
    ->ArgNames({"kind", "edges", "axes"})
    ->ArgsProduct({{static_cast<int>(TShapeKind::Convex), static_cast<int>(TShapeKind::Star),
                    static_cast<int>(TShapeKind::Comb), static_cast<int>(TShapeKind::Gear)},
                   {12, 40},
                   {0, 1, 2}})
    ->Unit(benchmark::kMicrosecond);

// A row of so many copies to either side, one union: each a half of its width from the next, or all within one width.
void BM_Row(benchmark::State& State) {
  TPaths nfp;
  TArrayInfoAlgo::CalcNFP({MakeShape(TShapeKind::Star, 40, 100, 1)}, 0, nfp);
  const int count = static_cast<int>(State.range(0));
  const double width = static_cast<double>(TPathUtils::BoundBox(nfp).Width()) / kPathScale;
  const TPoint2D step{State.range(1) > 0 ? width / (2 * count) : width / 2, 0.01};
  TPaths row;
  for (auto _ : State) {
    TArrayInfoAlgo::CalcGroupNFP(nfp, count, step, row);
    benchmark::DoNotOptimize(row);
  }
  State.counters["copies"] = 2 * count + 1;
}
BENCHMARK(BM_Row)->ArgNames({"count", "heaped"})->ArgsProduct({{10, 50}, {0, 1}})->Unit(benchmark::kMillisecond);

// A label of an eighth of the part's extent, with an inner line or none, over parts of all kinds; the median of the
// parts stands beside the mean that the time tells.
void BM_Label(benchmark::State& State) {
  std::vector<TVPolyline2DList> parts;
  for (int i = 0; i < 33; ++i) {
    TVPolyline2DList& layer = parts.emplace_back();
    for (TVPolyline2D contour : MakeShape(kShapeKinds[i % kShapeKinds.size()], 16, 100, i)) {
      contour.push_back(TPoint2D(contour.front()));
      layer.push_back(contour);
    }
  }
  std::vector<double> times(parts.size(), 0);
  int found = 0;
  for (auto _ : State) {
    found = 0;
    for (std::size_t i = 0; i < parts.size(); ++i) {
      const TVRect2D box = parts[i].front().BoundBox();
      const TVRect2D label = TVRect2D::FromSize(box.Width() / 8, box.Height() / 8);
      TVPolyline2DList inner;
      if (State.range(0) > 0) inner.push_back(TVPolyline2D{box.GetBottomLeft(), box.Center()});
      bool turned = false;
      TPoint2D place;
      const double start = CpuUs();
      if (TLabelInPartAlgo::CalcLabelPosInPart(parts[i], inner, label, 0.1, turned, place)) ++found;
      times[i] += CpuUs() - start;
    }
  }
  std::nth_element(times.begin(), times.begin() + times.size() / 2, times.end());
  State.counters["found"] = found;
  State.counters["median_us"] = times[times.size() / 2] / static_cast<double>(State.iterations());
  State.SetItemsProcessed(State.iterations() * static_cast<Int64>(parts.size()));
}
BENCHMARK(BM_Label)->ArgName("lines")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace platenest
