#include <benchmark/benchmark.h>

#include <vector>

#include "ChipCollector.h"
#include "NfpInstances.h"
#include "Shapes.h"
#include "TrailUnion.h"
#include "platenest/NfpAlgorithmSet/PartNfp.h"

namespace platenest {
namespace {

TChipList ChipsOf(const TVHPolygon& Static, const TVHPolygon& Dynamic) {
  TVPolyline2D fixed = Static.front();
  TVPolyline2D moving = TPartNFP::GetSymmetry(Dynamic.front());
  TChipList chips;
  detail::CollectConvolution(TPartNFP::GetKMPLoop(fixed, 0), TPartNFP::GetKMPLoop(moving, 0), chips);
  return chips;
}

void Unite(benchmark::State& State, const std::vector<TChipList>& Lists) {
  std::size_t chips = 0;
  std::size_t points = 0;
  TPaths paths;
  for (auto _ : State) {
    chips = points = 0;
    for (const TChipList& list : Lists) {
      benchmark::DoNotOptimize(detail::UnionOfTrails(list, true, paths));
      chips += list.size();
      for (const TPath& path : paths) points += path.size();
    }
  }
  const double count = static_cast<double>(Lists.size());
  State.counters["chips"] = static_cast<double>(chips) / count;
  State.counters["points"] = static_cast<double>(points) / count;
  State.counters["per_union"] =
      benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Argument: edges of each shape.
template <TShapeKind Kind>
void Alike(benchmark::State& State) {
  const int edges = static_cast<int>(State.range(0));
  std::vector<TChipList> lists;
  for (unsigned seed = 0; seed < 8; ++seed)
    lists.push_back(ChipsOf(MakeShape(Kind, edges, 40, 2 * seed), MakeShape(Kind, edges, 40, 2 * seed + 1)));
  Unite(State, lists);
}
BENCHMARK(Alike<TShapeKind::Convex>)->Arg(8)->Arg(30)->Arg(500);
BENCHMARK(Alike<TShapeKind::Star>)->Arg(8)->Arg(16)->Arg(40);
BENCHMARK(Alike<TShapeKind::Comb>)->Arg(12)->Arg(32);
BENCHMARK(Alike<TShapeKind::Staircase>)->Arg(12)->Arg(40);
BENCHMARK(Alike<TShapeKind::Spiral>)->Arg(16)->Arg(32);
BENCHMARK(Alike<TShapeKind::Gear>)->Arg(32);

}  // namespace

// All ordered pairs of the outer contours of an instance.
void AddInstance(const char* File) {
  const TNfpInstance instance = ReadNfpInstance(File);
  std::vector<TChipList> lists;
  for (const TNfpPart& fixed : instance.Parts)
    for (const TNfpPart& moving : instance.Parts) lists.push_back(ChipsOf(fixed.Shape, moving.Shape));
  benchmark::RegisterBenchmark(instance.Name.c_str(), [lists](benchmark::State& state) { Unite(state, lists); });
}

}  // namespace platenest

// Further arguments name instance files.
int main(int Count, char** Arguments) {
  benchmark::Initialize(&Count, Arguments);
  for (int i = 1; i < Count; ++i) platenest::AddInstance(Arguments[i]);
  benchmark::RunSpecifiedBenchmarks();
}
