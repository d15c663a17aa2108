#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "JobCase.h"
#include "platenest/job/Run.h"

namespace platenest::test {
namespace {

std::string Answer(unsigned Seed) {
  Job job = MakeJobCase(Seed).AJob;
  job.Run.TimeLimit = 0.01;
  job.Run.Deterministic = true;
  return ResultToJson(run(job));
}

// Each column that one run finds must stay in that run.
TEST(JobThreads, RunsSideBySideGiveWhatEachGivesAlone) {
  constexpr unsigned kRuns = 6;
  std::vector<std::string> alone, together(kRuns);
  for (unsigned i = 0; i < kRuns; ++i) alone.push_back(Answer(i));
  std::vector<std::jthread> threads;
  for (unsigned i = 0; i < kRuns; ++i) threads.emplace_back([&together, i] { together[i] = Answer(i); });
  threads.clear();
  EXPECT_EQ(together, alone);
}

}  // namespace
}  // namespace platenest::test
