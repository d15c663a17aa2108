// The JSON forms at full size: a result of many placements with coordinates of all digits, and a job of many part
// kinds.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

Result LargeResult(int Placements) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> coordinate(0, 3000);
  Result result;
  result.Units = "mm";
  Layout& layout = result.Layouts.emplace_back();
  layout.Plate = "plate-1";
  for (int i = 0; i < Placements; ++i) {
    const double x = coordinate(random);
    const double y = coordinate(random);
    layout.Placements.push_back({"part-1", i % 2 == 1, {x, y}, {x, y, x + 30.5, y + 20.25}});
  }
  return result;
}

void BM_WriteResult(benchmark::State& State) {
  const Result result = LargeResult(static_cast<int>(State.range(0)));
  std::size_t bytes = 0;
  for (auto _ : State) bytes = ResultToJson(result).size();
  State.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(BM_WriteResult)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_ParseResult(benchmark::State& State) {
  const std::string text = ResultToJson(LargeResult(static_cast<int>(State.range(0))));
  for (auto _ : State) benchmark::DoNotOptimize(ParseResult(text));
  State.counters["bytes"] = static_cast<double>(text.size());
}
BENCHMARK(BM_ParseResult)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_ParseJob(benchmark::State& State) {
  Job job;
  job.Kind = JobKind::Job;
  job.Plates = {{"plate", 2440, 1220}};
  for (int i = 0; i < State.range(0); ++i) job.Parts.push_back({"part " + std::to_string(i), 10.0 + i % 500, 20.5, 7});
  const std::string text = JobToJson(job);
  for (auto _ : State) benchmark::DoNotOptimize(ParseJob(text));
  State.counters["bytes"] = static_cast<double>(text.size());
}
BENCHMARK(BM_ParseJob)->Arg(limits::kPartKinds)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace platenest
