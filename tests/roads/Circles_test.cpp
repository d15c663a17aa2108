#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "CircleCase.h"
#include "CircleJudge.h"
#include "ForEachSeed.h"
#include "platenest/job/Run.h"

namespace platenest::test {
namespace {

constexpr std::array kMethods = {"auto", "pattern", "pack"};
constexpr unsigned kSeeds = 30;

// Each seed has its method; a round of the seeds has all.
TJobCase CaseOf(unsigned Seed, double Seconds, bool Deterministic = false) {
  TJobCase made = MakeCircleCase(Seed);
  AskForCircles(made, kMethods[Seed % kMethods.size()]);
  made.AJob.Run.TimeLimit = Seconds;
  made.AJob.Run.Seed = Seed;
  made.AJob.Run.Deterministic = Deterministic;
  return made;
}

std::string FirstFault(const TJobCase& Case, const Result& AResult) {
  const std::string fault = CircleFault(Case, AResult);
  const std::vector<Fault> faults = CheckResult(Case.AJob, AResult);
  return !fault.empty() || faults.empty() ? fault : faults[0].Place + ": " + faults[0].Text;
}

TEST(Circles, AnswersAreValidAndLoseNothing) {
  ForEachSeed(kSeeds, [](unsigned seed) {
    const TJobCase made = CaseOf(seed, 0.1);
    Result result;
    ASSERT_NO_THROW(result = run(made.AJob)) << JobToJson(made.AJob);
    EXPECT_EQ(FirstFault(made, result), "") << JobToJson(made.AJob);
  });
}

TEST(Circles, StoppingAtAnyMomentGivesAValidAnswerOrNone) {
  ForEachSeed(kSeeds, [](unsigned seed) {
    const TJobCase made = CaseOf(seed, 5);
    StopToken stop;
    const std::jthread stopper([&stop, seed] {
      std::this_thread::sleep_for(std::chrono::microseconds(seed * 7919 % 40000));
      stop.RequestStop();
    });
    try {
      const Result result = run(made.AJob, {.OnProgress = {}, .Stop = &stop});
      EXPECT_EQ(FirstFault(made, result), "") << JobToJson(made.AJob);
    } catch (const StoppedError&) {
    }
  });
}

// The number of threads among them.
TEST(Circles, MoreTimeIsNeverWorseAndEqualJobsGiveEqualBytes) {
  ForEachSeed(kSeeds / 5, [](unsigned seed) {
    TJobCase made = CaseOf(seed, 0.01, true);
    AskForCircles(made, "auto");
    made.AJob.Run.Threads = 4;
    const Result less = run(made.AJob);
    made.AJob.Run.Threads = 1;
    EXPECT_EQ(ResultToJson(less), ResultToJson(run(made.AJob))) << JobToJson(made.AJob);
    made.AJob.Run.TimeLimit = 0.06;
    const Result more = run(made.AJob);
    EXPECT_EQ(FirstFault(made, more), "") << JobToJson(made.AJob);
    EXPECT_FALSE(IsWorse(JobWorthOf(made.AJob, more), JobWorthOf(made.AJob, less))) << JobToJson(made.AJob);
  });
}

// Each damage to a good answer must be seen, by the judge of these tests and by the facade's checker alike.
TEST(Circles, BothChecksSeeWhatIsWrongWithAnAnswer) {
  const auto circle = [](const char* id, double radius, int amount) {
    Part part{.Id = id};
    part.Radius = radius;
    part.Amount = amount;
    return part;
  };
  Job job;
  job.Kind = JobKind::Circles;
  job.Gap = 4;
  job.Margin = {10, 10, 10, 10};
  job.Plates = {{.Id = "sheet", .Width = 500, .Height = 300, .Count = 3}};
  job.Parts = {circle("a", 60, 9), circle("b", 35, 11), circle("large", 145, 2)};
  job.Run.TimeLimit = 1;
  const Result good = run(job);
  ASSERT_EQ(FirstFault({job, {}}, good), "");
  ASSERT_GT(good.Parts[0].Placed + good.Parts[1].Placed, 2);
  const auto first = [](Result& r) -> CirclePlacement& { return r.Layouts.at(0).Circles.at(0); };
  const std::pair<const char*, std::function<void(Result&)>> damages[] = {
      {"moved", [&](Result& r) { first(r).Center = r.Layouts[0].Circles.at(1).Center; }},
      {"outside", [&](Result& r) { first(r).Center[0] = 10; }},
      {"smaller", [&](Result& r) { first(r).Radius -= 1e-3; }},
      {"placed twice", [&](Result& r) { r.Layouts[0].Circles.push_back(first(r)); }},
      {"lost", [&](Result& r) { r.Layouts[0].Circles.pop_back(); }},
      {"of another part", [&](Result& r) { first(r).Part = first(r).Part == "a" ? "b" : "a"; }},
      {"one plate more", [](Result& r) { ++r.Layouts[0].Copies; }},
      {"a layout less", [](Result& r) { r.Layouts.pop_back(); }},
      {"a free box of all",
       [](Result& r) {
         r.Layouts[0].FreeBox = {10, 10, 490, 290};
       }},
      {"less clearance", [](Result& r) { *r.Layouts[0].MinClearance -= 1; }},
      {"a smaller box in use", [](Result& r) { r.Layouts[0].UsedBox[2] -= 1; }},
      {"cheaper", [](Result& r) { r.Total.Cost *= 0.5; }},
      {"fuller", [](Result& r) { r.Layouts[0].Usage += 1e-3; }},
      {"less unplaced", [](Result& r) { r.Parts[2].Unplaced = 0; }},
      {"complete", [](Result& r) { r.Status = ResultStatus::Complete; }},
      {"another reason", [](Result& r) { r.Parts[2].Reason = "no_stock"; }},
  };
  for (const auto& [name, damage] : damages) {
    Result bad = good;
    damage(bad);
    EXPECT_NE(CircleFault(job, bad), "") << name;
    EXPECT_FALSE(CheckResult(job, bad).empty()) << name;
  }
}

}  // namespace
}  // namespace platenest::test
