#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "ForEachSeed.h"
#include "PlateJobs.h"
#include "platenest/foundation/EventTimer.h"

namespace platenest {
namespace {

using testing::ElementsAre;

constexpr const char* kMethods[] = {"repeat", "svc", "cg", "auto"};

Job WholeJob(std::vector<Plate> Plates, std::vector<Part> Parts, double Gap = 0) {
  Job job = PlateJob(JobKind::Job, std::move(Plates), std::move(Parts), Gap);
  job.Run = {.TimeLimit = 2, .Deterministic = true};
  return job;
}

Plate Endless(double Width, double Height, std::optional<double> Cost = {}) {
  return Sheet(Width, Height, std::nullopt, Cost);
}

std::vector<int> Used(const Result& AResult) {
  std::vector<int> counts;
  for (const PlateUse& plate : AResult.Plates) counts.push_back(plate.Used);
  return counts;
}

void Cut(TRandom& Random, int Width, int Height, int Depth, std::vector<std::pair<int, int>>& Pieces) {
  const bool isUpright = Width > Height;
  const int side = std::max(Width, Height);
  if (Depth == 0 || side < 4) return Pieces.push_back({Width, Height});
  const int at = Random.Pick(2, side - 2);
  Cut(Random, isUpright ? at : Width, isUpright ? Height : at, Depth - 1, Pieces);
  Cut(Random, isUpright ? side - at : Width, isUpright ? Height : side - at, Depth - 1, Pieces);
}

// Cut from edge to edge, so that no answer needs fewer plates. A gap of a whole unit is cut off the pieces and the
// plate.
TEST(RunJob, PlatesThatWereCutUpAreFoundAgainInEveryUnit) {
  ForEachSeed(12, [](unsigned seed) {
    TRandom random(seed);
    const int plates = 1 + static_cast<int>(seed % 4);
    const double unit = std::vector{1.0, 0.1, 30.0, 0.0625}[seed % 4];
    std::vector<std::pair<int, int>> pieces;
    for (int i = 0; i < plates; ++i) Cut(random, 24, 16, random.Pick(1, 3), pieces);
    const auto length = [&](int units) { return (units - (seed % 3 == 0 ? 1 : 0)) * unit; };
    std::vector<Part> parts;
    for (const auto& [width, height] : pieces) parts.push_back(Rect(length(width), length(height), 1));
    const Job job = WholeJob({Endless(length(24), length(16))}, parts, seed % 3 == 0 ? unit : 0);
    const Result result = Answer(job);
    EXPECT_EQ(result.Total.Plates, plates);
    EXPECT_TRUE(result.Proved);
    for (const char* method : {"svc", "cg"}) EXPECT_LE(Answer(With(job, method)).Total.Plates, plates + 1) << method;
  });
}

// Sizes without common decimals must not lose the fit of two thirds and a third.
TEST(RunJob, EachMethodRepeatsAPatternAndPlacesWhatIsAsLongAsThePlate) {
  for (const char* method : kMethods) {
    SCOPED_TRACE(method);
    const std::vector<Part> parts = {Rect(100, 60, 2), Rect(60, 30, 3), Rect(100, 20, 3), Rect(40, 60, 2)};
    const Result full = Answer(With(WholeJob({Endless(100, 60)}, parts), method));
    EXPECT_EQ(full.Status, ResultStatus::Complete);
    EXPECT_LE(full.Total.Plates, 6);
    const Result many =
        Answer(With(WholeJob({Endless(1, 1)}, {Rect(1.0 / 3, 2.0 / 3, 299), Rect(0.3, 0.3, 299)}), method));
    EXPECT_EQ(many.Status, ResultStatus::Complete);
    EXPECT_LE(many.Total.Plates, 101);
    EXPECT_LE(many.Layouts.size(), 8U);
  }
}

// Turning a square changes nothing, so that methods that turn take it.
TEST(RunJob, LocksLeavePlatesFull) {
  const std::pair<const char*, double> cases[] = {{"auto", 400}, {"repeat", 400}, {"svc", 260}, {"cg", 260}};
  for (const auto& [method, width] : cases) {
    const std::vector<Part> parts = {Rect(width, 260, 19, Rotate::None), Rect(300, 120, 40), Rect(90, 90, 30)};
    const Result result = Answer(With(WholeJob({Endless(900, 1400)}, parts, 3), method));
    EXPECT_EQ(result.Status, ResultStatus::Complete) << method;
    EXPECT_LE(result.Total.Plates, 4) << method;
  }
}

TEST(RunJob, KindsOfPlatesAreChosenByStockRemnantsAndCost) {
  const std::vector<Part> parts = {Rect(50, 50, 9)};
  const std::tuple<const char*, std::vector<Plate>, std::vector<int>> cases[] = {
      {"remnants first", {Endless(100, 100), Sheet(100, 50, 1, 0, true)}, {2, 1}},
      {"the last plate is the cheapest that holds the rest", {Endless(100, 100), Sheet(60, 60)}, {2, 1}},
      {"dear plates stay", {Sheet(100, 100, 9, 5), Sheet(100, 100, 2, 1), Sheet(50, 50, 9, 1)}, {0, 2, 1}},
      {"stock ends", {Sheet(100, 50), Sheet(50, 50, 2)}, {1, 2}},
  };
  for (const auto& [what, plates, used] : cases)
    for (const char* method : {"repeat", "auto"})
      EXPECT_EQ(Used(Answer(With(WholeJob(plates, parts), method))), used) << what << ' ' << method;
}

TEST(RunJob, CopiesWithoutLimitTakeWhatTheDemandLeavesOfTheStock) {
  const Job job = WholeJob({Sheet(100, 100, 3)}, {Rect(60, 100, 2), Rect(20, 20), Rect(300, 5, 1)});
  for (const char* method : kMethods) {
    const Result result = Answer(With(job, method));
    EXPECT_THAT(Placed(result), ElementsAre(2, 25 + 2 * 10, 0)) << method;
    EXPECT_EQ(result.Parts[2].Reason, "too_large");
  }
}

// However short the time is, the quick answer stands; rows take the part of quick fills where sizes are many.
TEST(RunJob, GreatJobsAreAnsweredInNoTime) {
  Job job = WholeJob({Endless(3000, 1500)}, {});
  TRandom random(1);
  for (int i = 0; i < 600; ++i) job.Parts.push_back(Rect(random.Pick(20, 919), random.Pick(20, 519), 300));
  GiveIds(job);
  job.Run = {.TimeLimit = 1e-3};
  const Result result = Answer(job);
  EXPECT_EQ(result.Status, ResultStatus::Complete);
  EXPECT_GT(result.Total.Usage, 0.75);
}

// The watch of the one method goes off a moment before that of the run.
TEST(RunJob, AMethodThatHadAllTheTimeEndsForTimeWhenThatIsOver) {
  TRandom random(1);
  std::vector<Part> parts;
  for (int i = 0; i < 60; ++i) parts.push_back(Rect(random.Pick(20, 200), random.Pick(20, 200), 9));
  Job job = WholeJob({Sheet(1000, 700, 3)}, parts);
  job.Run = {.TimeLimit = 1000};
  for (const char* method : {"repeat", "svc", "cg"}) {
    TTimerBoard board;
    const std::jthread mover([&board](const std::stop_token& end) {
      while (board.Running() < 2 && !end.stop_requested()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
      board.AdvanceSeconds(999.9999);
    });
    const TTimerScope scope(&board);
    EXPECT_EQ(Answer(With(job, method)).Status, ResultStatus::TimeLimit) << method;
  }
}

TEST(RunJob, ColumnGenerationTellsItsLpValueAndAnEstimateThatIsNoBound) {
  Job job =
      WholeJob({Endless(250, 250)}, {Rect(167, 184, 90), Rect(114, 118, 75), Rect(167, 152, 71), Rect(83, 140, 13),
                                     Rect(70, 86, 39), Rect(143, 166, 79), Rect(120, 160, 63), Rect(66, 148, 93)});
  job.Run = {.TimeLimit = 20};
  std::set<std::string> phases;
  const auto onProgress = [&](const Progress& now) { return phases.insert(now.Phase), true; };
  const Result result = Answer(With(job, "cg"), {.OnProgress = onProgress, .Stop = nullptr});
  EXPECT_TRUE(phases.contains("repeat"));
  ASSERT_TRUE(result.Estimate);
  EXPECT_EQ(result.Total.Plates, result.Estimate->Value) << "rounds up to the optimum";
  for (const Bound& bound : result.Bounds) EXPECT_NE(bound.Kind, "cg");
}

}  // namespace
}  // namespace platenest
