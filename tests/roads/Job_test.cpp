#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <random>
#include <string>
#include <thread>

#include "ForEachSeed.h"
#include "JobJudge.h"
#include "platenest/job/Run.h"

namespace platenest::test {
namespace {

constexpr std::array kMethods = {"auto", "repeat", "svc", "cg"};
constexpr unsigned kSeeds = 30;

// Each seed has its method; a round of the seeds has all.
TJobCase CaseOf(unsigned Seed, double Seconds, bool Deterministic = false) {
  TJobCase made = MakeJobCase(Seed);
  AskFor(made.AJob, kMethods[Seed % kMethods.size()]);
  made.AJob.Run.TimeLimit = Seconds;
  made.AJob.Run.Seed = Seed;
  made.AJob.Run.Deterministic = Deterministic;
  return made;
}

std::string FirstFault(const TJobCase& Case, const Result& AResult) {
  const std::string fault = JobFault(Case, AResult);
  const std::vector<Fault> faults = CheckResult(Case.AJob, AResult);
  return !fault.empty() || faults.empty() ? fault : faults[0].Place + ": " + faults[0].Text;
}

TEST(Job, AnswersAreValidAndLoseNothing) {
  ForEachSeed(kSeeds, [](unsigned seed) {
    const TJobCase made = CaseOf(seed, 0.05);
    Result result;
    ASSERT_NO_THROW(result = run(made.AJob)) << JobToJson(made.AJob);
    EXPECT_EQ(FirstFault(made, result), "") << JobToJson(made.AJob);
  });
}

// By another thread, and by the progress report.
TEST(Job, StoppingAtAnyMomentGivesAValidAnswerOrNone) {
  ForEachSeed(kSeeds, [](unsigned seed) {
    const TJobCase made = CaseOf(seed, 5);
    StopToken stop;
    const std::jthread stopper([&stop, seed] {
      std::this_thread::sleep_for(std::chrono::microseconds(seed * 7919 % 40000));
      stop.RequestStop();
    });
    unsigned reports = 0;
    bool isRefused = false;
    const auto onProgress = [&](const Progress& now) {
      EXPECT_FALSE(isRefused) << "a report after a refusal";
      EXPECT_TRUE(now.Phase == "repeat" || now.Phase == "svc" || now.Phase == "cg" || now.Phase == "rounds")
          << now.Phase;
      EXPECT_TRUE(now.Plates >= 0 && now.Usage >= 0 && now.Usage <= 1 + 1e-9 && now.Unplaced >= 0);
      isRefused = seed % 3 == 0 && ++reports > seed % 4;
      return !isRefused;
    };
    try {
      const Result result = run(made.AJob, {.OnProgress = onProgress, .Stop = &stop});
      EXPECT_EQ(FirstFault(made, result), "") << JobToJson(made.AJob);
    } catch (const StoppedError&) {
    }
  });
}

TEST(Job, MoreTimeIsNeverWorseAndEqualJobsGiveEqualBytes) {
  ForEachSeed(kSeeds / 5, [](unsigned seed) {
    TJobCase made = CaseOf(seed, 0.01, true);
    AskFor(made.AJob, "auto");
    const Result less = run(made.AJob);
    EXPECT_EQ(ResultToJson(less), ResultToJson(run(made.AJob))) << JobToJson(made.AJob);
    made.AJob.Run.TimeLimit = 0.06;
    const Result more = run(made.AJob);
    EXPECT_EQ(FirstFault(made, more), "") << JobToJson(made.AJob);
    EXPECT_FALSE(IsWorse(JobWorthOf(made.AJob, more), JobWorthOf(made.AJob, less))) << JobToJson(made.AJob);
  });
}

// Each damage to a good answer must be seen, by the judge of these tests and by the facade's checker alike.
TEST(Job, BothChecksSeeWhatIsWrongWithAnAnswer) {
  Job job;
  job.Kind = JobKind::Job;
  job.Gap = 4;
  job.Margin = {10, 10, 10, 10};
  job.Plates = {{.Id = "sheet", .Width = 1000, .Height = 600, .Count = 3}, {.Id = "rest", .Width = 500, .Height = 300}};
  job.Parts = {{.Id = "a", .Width = 300, .Height = 200, .Amount = 7},
               {.Id = "b", .Width = 120, .Height = 90, .Amount = 9, .Turn = Rotate::None},
               {.Id = "large", .Width = 2000, .Height = 50, .Amount = 2}};
  job.Run.Method = "repeat";
  const Result good = run(job);
  ASSERT_EQ(FirstFault({job, {}}, good), "");
  const auto locked = [](Result& r) -> Placement& {
    for (Layout& layout : r.Layouts)
      for (Placement& item : layout.Placements)
        if (item.Part == "b") return item;
    return r.Layouts.at(0).Placements.at(0);
  };
  const auto first = [](Result& r) -> Placement& { return r.Layouts.at(0).Placements.at(0); };
  const std::pair<const char*, std::function<void(Result&)>> damages[] = {
      {"moved", [&](Result& r) { first(r).Trans[0] += 1e-3; }},
      {"moved with its box",
       [&](Result& r) {
         for (const int i : {0, 2}) first(r).Bounds[i] -= 5;
         first(r).Trans[0] -= 5;
       }},
      {"turned against its lock", [&](Result& r) { locked(r).Rotated = true; }},
      {"placed twice", [&](Result& r) { r.Layouts[0].Placements.push_back(first(r)); }},
      {"lost", [&](Result& r) { r.Layouts[0].Placements.pop_back(); }},
      {"one plate more", [](Result& r) { ++r.Layouts[0].Copies; }},
      {"a layout less", [](Result& r) { r.Layouts.pop_back(); }},
      {"another plate", [](Result& r) { r.Layouts[0].Plate = r.Layouts[0].Plate == "rest" ? "sheet" : "rest"; }},
      {"cheaper", [](Result& r) { r.Total.Cost *= 0.5; }},
      {"fuller", [](Result& r) { r.Layouts[0].Usage += 1e-3; }},
      {"fewer plates", [](Result& r) { --r.Total.Plates; }},
      {"less unplaced", [](Result& r) { r.Parts[2].Unplaced = 0; }},
      {"complete", [](Result& r) { r.Status = ResultStatus::Complete; }},
      {"another reason", [](Result& r) { r.Parts[2].Reason = "no_stock"; }},
  };
  for (const auto& [name, damage] : damages) {
    Result bad = good;
    damage(bad);
    EXPECT_NE(JobFault(job, bad), "") << name;
    EXPECT_FALSE(CheckResult(job, bad).empty()) << name;
  }
}

}  // namespace
}  // namespace platenest::test
