#include "platenest/job/Run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>

#include "ForEachSeed.h"
#include "PlateJobs.h"
#include "platenest/URectNest/RectRecords.h"

namespace platenest {
namespace {

Job OneJob(double PlateWidth, double PlateHeight, double Width, double Height, double Gap = 0) {
  return PlateJob(JobKind::One, {Sheet(PlateWidth, PlateHeight)}, {Rect(Width, Height)}, Gap);
}

int PlacedOf(const Job& AJob) {
  return Answer(AJob).Parts[0].Placed;
}

double SixDigits(double V) {
  char text[32];
  std::snprintf(text, sizeof text, "%.5e", V);
  return std::stod(text);
}

Job RandomJob(unsigned Seed) {
  TRandom random(Seed);
  const auto share = [&random](double whole, double low, double high) {
    return SixDigits(whole * std::pow(10, random.Uniform(low, high)));
  };
  const double width = share(1, -0.3, 5), height = SixDigits(width * random.Uniform(0.05, 1));
  Job job = OneJob(width, height, share(width, -1.8, 0.1), share(height, -1.8, 0.1));
  if (random.Chance(60)) job.Gap = share(width, -4, -1.5);
  if (random.Chance(30)) job.Margin = {SixDigits(width * 0.01), SixDigits(height * 0.02), 0, SixDigits(height * 0.005)};
  if (random.Chance(30)) job.Parts[0].Amount = random.Pick(1, 50);
  job.Run = {.Method = std::vector{"auto", "auto", "trim", "fiveblock"}[Seed % 4], .TimeLimit = 0.03};
  return job;
}

TEST(RunOne, RandomJobsPassTheCheckAndNeverBeatABound) {
  ForEachSeed(300, [](unsigned seed) {
    const Job job = RandomJob(seed);
    EXPECT_EQ(Verdict(job, ParseResult(ResultToJson(Answer(job)))), "") << "through the file form";
  });
}

TEST(RunOne, MetresAndMillimetresAgree) {
  ForEachSeed(200, [](unsigned seed) {
    TRandom random(seed);
    const double width = random.Uniform(500, 4000), part = random.Uniform(0.02, 0.3), other = random.Uniform(0.02, 0.3);
    const auto answer = [&, gap = random.Uniform(0.1, 6)](const char* unit) {
      const auto in = [unit](double length) { return std::stod(std::to_string(SixDigits(length)) + unit); };
      return run(OneJob(in(width), in(width * 0.5), in(width * part), in(width * other), in(gap)));
    };
    const Result millimetres = answer(""), metres = answer("e-3");
    EXPECT_EQ(Placed(metres), Placed(millimetres));
    EXPECT_EQ(metres.Bounds, millimetres.Bounds);
  });
}

TEST(RunOne, CornersHaveTheDecimalsOfTheSizes) {
  Job job = OneJob(2440, 1220, 299.9, 199.9, 5.1);
  job.Margin = {10, 10, 10, 10};
  const Result result = run(job);
  for (const Placement& place : result.Layouts.at(0).Placements)
    for (const double edge : place.Bounds) EXPECT_EQ(edge, std::round(edge * 10) / 10);
}

// From 600 strips on the nester lays a plain grid, which puts turned parts one gap to the right and the last column
// outside the plate; it must stand at the left edge. The trim nest runs off its list where a part takes the whole
// plate. Rounded up to whole units, seven sevenths do not fit, so that fiveblock does worse than strips.
TEST(RunOne, EachMethodAnswersOrThePlainNestStandsInWithAWarning) {
  const Job blocks = OneJob(22, 16, 5, 3), metres = OneJob(0.16, 0.22, 0.03, 0.05);
  const Job gap = OneJob(21, 15, 4, 2, 1), smallGap = OneJob(2.15, 1.55, 0.45, 0.25, 0.05);
  Job seven = blocks;
  seven.Parts[0].Amount = 7;
  const std::tuple<Job, const char*, const char*, const char*> cases[] = {
      {OneJob(995, 995, 95, 95, 5), "auto", "strip", "100 complete proved"},
      {OneJob(994.999, 995, 95, 95, 5), "auto", "strip", "90 complete"},
      {OneJob(0.3, 0.1, 0.1, 0.1), "auto", "strip", "3 complete proved"},  // 0.1 + 0.1 + 0.1 exceeds 0.3 in doubles
      {OneJob(3000, 7, 3, 7, 1), "auto", "strip", "750 complete proved"},
      {OneJob(100, 100, 60, 100), "trim", "strip",
       "1 complete proved, trim found no shorter plate length to try; the strip layout stands"},
      {OneJob(1, 1, 1.0 / 7, 1.0 / 7), "fiveblock", "strip",
       "49 complete proved, fiveblock placed fewer copies; the strip layout stands"},
      {blocks, "strip", "strip", "22 complete"},
      {blocks, "auto", "fiveblock", "23 complete proved"},
      {metres, "strip", "strip", "22 complete"},
      {metres, "auto", "fiveblock", "23 complete proved"},
      {gap, "strip", "strip", "22 complete"},
      {gap, "auto", "fiveblock", "23 complete proved"},
      {smallGap, "strip", "strip", "22 complete"},
      {smallGap, "auto", "fiveblock", "23 complete proved"},
      {OneJob(1000, 500, 300, 200), "auto", "strip", "8 complete proved"},
      {seven, "fiveblock", "fiveblock", "7 complete proved"},
  };
  for (const auto& [job, method, used, told] : cases) {
    const Result result = Answer(With(job, method));
    EXPECT_EQ(std::tuple(result.Run.Method, Told(result)), std::tuple(used, told)) << method << JobToJson(job);
    EXPECT_EQ(result.Layouts[0].UsedBox[0], 0);
  }
}

// In the second one the plate is full, and the bound shows that none holds more. By area nothing of 12 x 12 would be
// lost, but strips of 1 x 8 must leave 16.
TEST(RunOne, StatusSaysWhyCopiesAreLeftAndBoundsCountTheGap) {
  const std::tuple<Job, int, const char*, const char*> cases[] = {
      {OneJob(100, 50, 10, 10), 50, "50 complete proved", "count area 50, count barnes 50, "},
      {OneJob(100, 50, 10, 10), 51, "50 complete no_stock proved", "count area 50, count barnes 50, "},
      {OneJob(995, 995, 95, 95, 5), 101, "100 complete no_stock proved", "count area 100, count barnes 100, "},
      {OneJob(12, 12, 8, 3), 5, "5 complete proved", "count area 6, count barnes 5, "},
      {OneJob(100, 50, 100.001, 10), 1, "0 partial too_large proved", "count area 0, "},
  };
  for (auto [job, amount, told, bounds] : cases) {
    job.Parts[0].Amount = amount;
    const Result result = Answer(job);
    EXPECT_EQ(Told(result), told);
    EXPECT_THAT(BoundsText(result.Bounds), testing::StartsWith(bounds)) << JobToJson(job);
  }
}

// Lengths beyond nine decimals have no common step; what is handed to the nester stays within the promised 1e-6.
TEST(RunOne, NothingFitsByTheSlackThatKeepsExactFits) {
  EXPECT_EQ(PlacedOf(OneJob(600000, 0.612345, 50000, 0.612346, 1000)), 0);
  const Job job = OneJob(660000, 90001, 90000.0000003, 90000, 100000);
  EXPECT_EQ(Verdict(job, run(job)), "");
}

TEST(Run, RefusesWhatItCannotAnswerWithThePlace) {
  Job locked = OneJob(100, 50, 10, 10), narrow = locked, many = OneJob(1e5, 1e5, 1, 1);
  locked.Parts[0].Turn = Rotate::None;
  narrow.Margin = {60, 0, 40, 0};
  const std::vector<Part> mixed = {Rect(5e4, 5e4, 1), Rect(1, 1)}, disc = {{.Id = "", .Amount = {}, .Radius = 0.5}};
  const std::vector<Part> grain = {Rect(0.001, 0.001)}, lock = {Rect(9, 5, 1, Rotate::None)};
  Job filled = PlateJob(JobKind::Fill, {Sheet(100, 50)}, {Rect(10, 10, 1)}), row = PlateJob(JobKind::Array, {}, grain);
  const Job strips = With(filled, "strips");
  Job fine = PlateJob(JobKind::Circles, {Sheet(1000, 1000)}, disc);
  fine.Run.TimeLimit = 0.3;
  filled.Margin = narrow.Margin;
  row.Direction = Along::X;
  const std::pair<Job, const char*> cases[] = {
      {locked, "InputError: conflict /parts/0/rotate"},
      {narrow, "InputError: range /margin"},
      {filled, "InputError: range /margin"},
      {strips, "InputError: choice /options/method"},
      {many, "LimitError: limit /parts/0/amount"},
      {OneJob(1000, 1000, 300, 0.003), "LimitError: limit /parts/0/amount"},  // by strips, not the grid
      {PlateJob(JobKind::Fill, {Sheet(1e5, 1e5)}, mixed), "LimitError: limit /parts/1/amount"},
      // A million in a square grid, 1154000 in a lattice: no answer that is cut to the limit in silence.
      {fine, "LimitError: limit /parts/0/amount"},
      {With(PlateJob(JobKind::Job, {Sheet(10, 10)}, lock), "svc"), "InputError: conflict /options/method"},
      {With(PlateJob(JobKind::Job, {Sheet(10, 10)}, lock), "cg"), "InputError: conflict /options/method"},
      // As fine as the cleaning of paths, so that no vector is left, which the core refuses.
      {row, "InputError: shape /along"},
  };
  for (const auto& [job, faults] : cases) EXPECT_EQ(FaultsOf([&] { run(job); }), faults) << JobToJson(job);
  many.Parts[0].Amount = 1000;
  EXPECT_EQ(PlacedOf(many), 1000);
}

TEST(Run, AStopBeforeAnyResultIsAnErrorAndGlobalsStayAsTheyWere) {
  StopToken stop;
  stop.RequestStop();
  const Job circle = PlateJob(JobKind::Circles, {Sheet(10, 10)}, {{.Id = "", .Amount = 1, .Radius = 4}});
  for (const Job& job : {OneJob(10, 10, 1, 1), PlateJob(JobKind::Fill, {Sheet(10, 10)}, {Rect(3, 2, 9)}), circle}) {
    EXPECT_THROW(run(job, {.OnProgress = {}, .Stop = &stop}), StoppedError) << JobToJson(job);
    EXPECT_EQ(CurrentStopToken(), nullptr);
    EXPECT_FALSE(RectNestTerminated.load());
  }
}

}  // namespace
}  // namespace platenest
