#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <random>
#include <string>
#include <thread>

#include "CircleCase.h"
#include "CircleJudge.h"
#include "ForEachSeed.h"
#include "platenest/job/Run.h"

namespace platenest::test {
namespace {

constexpr std::array kMethods = {"auto", "pack", "pattern"};
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

Job JobOf(double Width, double Height, std::optional<int> Stock,
          std::vector<std::pair<double, std::optional<int>>> Parts, double Gap = 0) {
  Job job;
  job.Kind = JobKind::Circles;
  job.Gap = Gap;
  job.Plates = {{.Id = "p", .Width = Width, .Height = Height, .Count = Stock}};
  for (const auto& [radius, amount] : Parts)
    job.Parts.push_back({.Id = std::to_string(job.Parts.size()), .Amount = amount, .Radius = radius});
  job.Run.TimeLimit = 0.3;
  return job;
}

int PlacedIn(const Result& AResult) {
  int placed = 0;
  for (const PartUse& part : AResult.Parts) placed += part.Placed;
  return placed;
}

int PlacedIn(const Job& AJob) {
  const Result result = run(AJob);
  EXPECT_TRUE(CheckResult(AJob, result).empty());
  return PlacedIn(result);
}

TEST(Circles, AnswersAreValidAndLoseNothing) {
  ForEachSeed(kSeeds, [](unsigned seed) {
    const TJobCase made = CaseOf(seed, 0.1);
    Result result;
    ASSERT_NO_THROW(result = run(made.AJob)) << JobToJson(made.AJob);
    EXPECT_EQ(FirstFault(made, result), "") << JobToJson(made.AJob);
  });
}

// By another thread, and by the progress report.
TEST(Circles, StoppingAtAnyMomentGivesAValidAnswerOrNone) {
  ForEachSeed(kSeeds, [](unsigned seed) {
    const TJobCase made = CaseOf(seed, 5);
    StopToken stop;
    const std::jthread stopper([&stop, seed] {
      std::this_thread::sleep_for(std::chrono::microseconds(seed * 7919 % 40000));
      stop.RequestStop();
    });
    const auto onProgress = [&](const Progress& now) {
      EXPECT_TRUE(now.Plates >= 0 && now.Usage >= 0 && now.Usage <= 1 + 1e-9 && now.Unplaced >= 0);
      return seed % 3 != 0;
    };
    try {
      const Result result = run(made.AJob, {.OnProgress = onProgress, .Stop = &stop});
      EXPECT_EQ(FirstFault(made, result), "") << JobToJson(made.AJob);
    } catch (const StoppedError&) {
    }
  });
}

TEST(Circles, MoreTimeIsNeverWorseAndThreadsDoNotCount) {
  ForEachSeed(kSeeds / 5, [](unsigned seed) {
    TJobCase made = CaseOf(seed, 0.3, true);
    AskForCircles(made, "auto");
    made.AJob.Run.Threads = 1;
    const Result less = run(made.AJob);
    made.AJob.Run.Threads = 3;
    EXPECT_EQ(ResultToJson(less), ResultToJson(run(made.AJob))) << JobToJson(made.AJob);
    made.AJob.Run.TimeLimit = 1.5;
    const Result more = run(made.AJob);
    EXPECT_EQ(FirstFault(made, more), "") << JobToJson(made.AJob);
    EXPECT_FALSE(IsWorse(JobWorthOf(made.AJob, more), JobWorthOf(made.AJob, less))) << JobToJson(made.AJob);
  });
}

// What no pattern and no start pair of the nesters stands for.
TEST(Circles, FewCirclesAndThinPlatesAreLaidToo) {
  EXPECT_EQ(PlacedIn(JobOf(100, 100, 1, {{50, 1}})), 1);
  EXPECT_EQ(PlacedIn(JobOf(171, 171, 1, {{50, 2}})), 2);     // from corner to corner
  EXPECT_EQ(PlacedIn(JobOf(170, 170, 1, {{50, 2}})), 1);     // a millimetre short of that
  EXPECT_EQ(PlacedIn(JobOf(1000, 90, 1, {{45, 20}})), 11);   // a row
  EXPECT_EQ(PlacedIn(JobOf(1000, 144, 1, {{45, 20}})), 13);  // a zigzag, 54 up and 72 along
  EXPECT_EQ(PlacedIn(JobOf(144, 1000, 1, {{45, 20}})), 13);
  EXPECT_EQ(PlacedIn(JobOf(200, 100, 1, {{50, 1}, {49, 1}})), 2);       // side by side, no pair of bottom corners
  EXPECT_EQ(PlacedIn(JobOf(0.2, 0.1, 1, {{0.05, 1}, {0.049, 1}})), 2);  // in metres
  EXPECT_EQ(PlacedIn(JobOf(202, 100, 1, {{50, 2}, {9, 20}}, 2)), 4);    // one above and one below where the large meet
}

// The pattern is the first answer of each method but pack, and a search beside it loses nothing.
// A million in a square grid, 1154000 in a lattice: no answer that is cut to the limit in silence.
TEST(Circles, MoreCopiesThanAllowedAreRefused) {
  EXPECT_THROW(run(JobOf(1000, 1000, 1, {{0.5, std::nullopt}})), LimitError);
}

TEST(Circles, EqualCirclesAreNeverFewerThanInAPattern) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 12; ++i) {
    Job job = JobOf(200 + static_cast<double>(random() % 400), 150 + static_cast<double>(random() % 200), 1,
                    {{15 + static_cast<double>(random() % 40), std::nullopt}}, static_cast<double>(random() % 4));
    job.Run.Method = "pattern";
    const int inPattern = PlacedIn(job);
    job.Run.Method = "auto";
    EXPECT_GE(PlacedIn(job), inPattern) << JobToJson(job);
  }
}

// The last plate of equal circles takes a part of the pattern that leaves a strip of it free.
TEST(Circles, LastPlateKeepsAnOffcut) {
  Job job = JobOf(1000, 600, std::nullopt, {{40, 100}}, 3);
  job.Run.Method = "pattern";
  const Result result = run(job);
  ASSERT_EQ(result.Layouts.size(), 2U);
  const auto [left, bottom, right, top] = result.Layouts[1].FreeBox;
  EXPECT_GE((right - left) * (top - bottom), 0.9 * (600'000 - 1.1 * 83 * 83 * (100 - result.Parts[0].Placed + 21)));
  EXPECT_EQ(PlacedIn(result), 100);
}

TEST(Circles, LastPlateOfSeveralSizesIsFilledFromOneSide) {
  Job job = JobOf(2000, 1000, std::nullopt, {{222.5, 21}, {170, 5}, {142.5, 18}, {110, 11}, {82.5, 4}, {60, 3}}, 4);
  job.Run.TimeLimit = 2;
  job.Run.Deterministic = true;
  const Result result = run(job);
  EXPECT_TRUE(CheckResult(job, result).empty());
  const Layout& last = result.Layouts.back();
  const auto [left, bottom, right, top] = last.FreeBox;
  EXPECT_GE((right - left) * (top - bottom), 0.58 * (1 - last.Usage) * last.Width * last.Height);
}

// Great jobs end in time, with what was done until then.
TEST(Circles, TimeLimitHoldsForGreatJobs) {
  Job sizes = JobOf(3000, 1500, std::nullopt, {}, 1);
  for (int i = 0; i < 2000; ++i) sizes.Parts.push_back({.Id = std::to_string(i), .Amount = 10, .Radius = 5 + i * 0.01});
  const Job mixed = JobOf(1000, 1000, 1, {{60, 15}, {50, 20}, {40, 25}, {33, 30}, {26, 30}, {20, 30}}, 2);
  const Job copies = JobOf(3000, 3000, std::nullopt, {{6, 50'000}, {4, 100'000}});
  for (Job job : {sizes, mixed, copies}) {
    job.Run.TimeLimit = 0.5;
    const Result result = run(job);
    EXPECT_TRUE(CheckResult(job, result).empty());
    EXPECT_GT(PlacedIn(result), 0);
    EXPECT_LE(result.Run.Seconds, 3);  // far beyond what a loaded machine explains
  }
}

TEST(Circles, RemnantsComeFirstAndTheLastPlateIsTheCheapestThatTakesTheRest) {
  Job job = JobOf(1000, 1000, 5, {{100, 40}, {30, 20}});
  job.Plates.push_back({.Id = "rest", .Width = 600, .Height = 400, .Count = 1, .Cost = 0, .Remnant = true});
  job.Plates.push_back({.Id = "small", .Width = 700, .Height = 500, .Count = 3, .Cost = 400'000});
  const Result result = run(job);
  EXPECT_TRUE(CheckResult(job, result).empty());
  EXPECT_EQ(PlacedIn(result), 60);
  EXPECT_EQ(result.Plates[1].Used, 1);  // the remnant takes six of the large ones
  EXPECT_LE(result.Total.Cost, 2'000'000);
}

// Fifteen lie on a large plate and six on a small one, so that one kind alone takes 20 or more.
TEST(Circles, PlateKindsAreMixedWhereThatCostsLess) {
  for (const auto& parts : {std::vector<std::pair<double, std::optional<int>>>{{10, 27}}, {{10, 20}, {9.9, 7}}}) {
    Job job = JobOf(100, 60, std::nullopt, parts);
    job.Plates[0].Cost = 10;
    job.Plates.push_back({.Id = "small", .Width = 40, .Height = 60, .Count = std::nullopt, .Cost = 4.1});
    job.Run.Deterministic = true;
    job.Run.TimeLimit = 2;
    const Result result = run(job);
    EXPECT_TRUE(CheckResult(job, result).empty());
    EXPECT_NEAR(result.Total.Cost, 18.2, 1e-9);
  }
}

TEST(Circles, WordsTellWhyNoneOfACircleWithoutLimitIsLaid) {
  const Result result = run(JobOf(100, 60, 1, {{31, std::nullopt}}));
  EXPECT_EQ(result.Warnings, std::vector<std::string>{"\"0\" fits no plate"});
}

}  // namespace
}  // namespace platenest::test
