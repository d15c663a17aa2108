#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "ForEachSeed.h"
#include "JobJudge.h"
#include "platenest/job/Run.h"

// What the answers to random jobs of one kind must keep, by whatever method and however they end.
namespace platenest::test {

struct TRoad {
  std::vector<const char*> Methods;
  TJobCase (*Make)(unsigned Seed);
  void (*Ask)(TJobCase& Case, const std::string& Method);
  std::string (*Judge)(const TJobCase& Case, const Result& AResult);
  double Seconds;       // of a run that comes to something
  int ManyThreads = 1;  // that must not change a deterministic answer
};

inline constexpr unsigned kSeeds = 30;

// Each seed has its method, unless one is named; a round of the seeds has all.
inline TJobCase CaseOf(const TRoad& Road, unsigned Seed, double Seconds, const char* Method = nullptr) {
  TJobCase made = Road.Make(Seed);
  Road.Ask(made, Method != nullptr ? Method : Road.Methods[Seed % Road.Methods.size()]);
  made.AJob.Run.TimeLimit = Seconds;
  made.AJob.Run.Seed = Seed;
  return made;
}

inline void ExpectNoFault(const TRoad& Road, const TJobCase& Case, const Result& AResult) {
  EXPECT_EQ(Road.Judge(Case, AResult), "") << JobToJson(Case.AJob);
  for (const Fault& fault : CheckResult(Case.AJob, AResult))
    ADD_FAILURE() << fault.Place << ": " << fault.Text << '\n' << JobToJson(Case.AJob);
}

inline void ExpectValidAnswers(const TRoad& Road) {
  ForEachSeed(kSeeds, [&](unsigned seed) {
    const TJobCase made = CaseOf(Road, seed, Road.Seconds);
    Result result;
    ASSERT_NO_THROW(result = run(made.AJob)) << JobToJson(made.AJob);
    ExpectNoFault(Road, made, result);
    EXPECT_EQ(ParseResult(ResultToJson(result)), result);
  });
}

// By another thread, and by the progress report.
inline void ExpectValidAnswersWhenStopped(const TRoad& Road) {
  ForEachSeed(kSeeds, [&](unsigned seed) {
    const TJobCase made = CaseOf(Road, seed, 5);
    StopToken stop;
    const std::jthread stopper([&stop, seed] {
      std::this_thread::sleep_for(std::chrono::microseconds(seed * 7919 % 40000));
      stop.RequestStop();
    });
    unsigned reports = 0;
    bool isRefused = false;
    const auto onProgress = [&](const Progress& now) {
      EXPECT_FALSE(isRefused) << "a report after a refusal";
      EXPECT_TRUE(now.Plates >= 0 && now.Usage >= 0 && now.Usage <= 1 + 1e-9 && now.Unplaced >= 0);
      isRefused = seed % 3 == 0 && ++reports > seed % 4;
      return !isRefused;
    };
    try {
      ExpectNoFault(Road, made, run(made.AJob, {.OnProgress = onProgress, .Stop = &stop}));
    } catch (const StoppedError&) {
    }
  });
}

inline void ExpectEqualBytesAndNoLossByMoreTime(const TRoad& Road, double Seconds) {
  ForEachSeed(kSeeds / 5, [&](unsigned seed) {
    TJobCase made = CaseOf(Road, seed, Seconds, "auto");
    made.AJob.Run.Deterministic = true;
    made.AJob.Run.Threads = 1;
    const Result less = run(made.AJob);
    made.AJob.Run.Threads = Road.ManyThreads;
    EXPECT_EQ(ResultToJson(less), ResultToJson(run(made.AJob))) << JobToJson(made.AJob);
    made.AJob.Run.TimeLimit *= 5;
    const Result more = run(made.AJob);
    ExpectNoFault(Road, made, more);
    EXPECT_FALSE(IsWorse(JobWorthOf(made.AJob, more), JobWorthOf(made.AJob, less))) << JobToJson(made.AJob);
  });
}

}  // namespace platenest::test
