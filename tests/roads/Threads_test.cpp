#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "CircleCase.h"
#include "platenest/job/Run.h"

namespace platenest::test {
namespace {

// Whole jobs and jobs of circles in turn, these with workers of their own.
Job JobOf(unsigned Seed) {
  const bool isOfCircles = Seed % 2 == 0;
  Job job = (isOfCircles ? MakeCircleCase(Seed / 2) : MakeJobCase(Seed / 2)).AJob;
  job.Run = {.TimeLimit = isOfCircles ? 0.5 : 0.01, .Threads = 3, .Deterministic = true};
  return job;
}

// What one run finds must stay in it, workers must see nothing of another run, and a stop of one must not reach the
// other.
TEST(Threads, RunsSideBySideGiveWhatEachGivesAlone) {
  constexpr unsigned kRuns = 12;
  std::vector<std::string> alone, together(kRuns);
  for (unsigned i = 0; i < kRuns; ++i) alone.push_back(ResultToJson(run(JobOf(i))));
  StopToken stop;
  std::jthread stopped([&stop] {
    Job job = JobOf(2);
    job.Run = {.TimeLimit = 30};
    try {
      run(job, {.OnProgress = {}, .Stop = &stop});
    } catch (const StoppedError&) {
    }
  });
  std::vector<std::jthread> threads;
  for (unsigned i = 0; i < kRuns; ++i)
    threads.emplace_back([&together, i] { together[i] = ResultToJson(run(JobOf(i))); });
  stop.RequestStop();
  threads.clear();
  EXPECT_EQ(together, alone);
}

}  // namespace
}  // namespace platenest::test
