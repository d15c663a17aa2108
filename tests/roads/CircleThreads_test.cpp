#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "CircleCase.h"
#include "platenest/job/Run.h"

namespace platenest::test {
namespace {

std::string Answer(unsigned Seed) {
  Job job = MakeCircleCase(Seed).AJob;
  job.Run.TimeLimit = 0.5;
  job.Run.Threads = 3;
  job.Run.Deterministic = true;
  return ResultToJson(run(job));
}

// Workers of one run must see nothing of another, and a stop of one must not reach the other.
TEST(CircleThreads, RunsSideBySideGiveWhatEachGivesAlone) {
  constexpr unsigned kRuns = 6;
  std::vector<std::string> alone, together(kRuns);
  for (unsigned i = 0; i < kRuns; ++i) alone.push_back(Answer(i));
  StopToken stop;
  std::jthread stopped([&stop] {
    Job job = MakeCircleCase(1).AJob;
    job.Run.TimeLimit = 30;
    try {
      run(job, {.OnProgress = {}, .Stop = &stop});
    } catch (const StoppedError&) {
    }
  });
  std::vector<std::jthread> threads;
  for (unsigned i = 0; i < kRuns; ++i) threads.emplace_back([&together, i] { together[i] = Answer(i); });
  stop.RequestStop();
  threads.clear();
  EXPECT_EQ(together, alone);
}

}  // namespace
}  // namespace platenest::test
