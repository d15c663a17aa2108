#include "platenest/job/Run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>

#include "FaultText.h"
#include "ForEachSeed.h"
#include "platenest/URectNest/RectRecords.h"

namespace platenest {
namespace {

Job OneJob(double PlateWidth, double PlateHeight, double Width, double Height, double Gap = 0) {
  Job job;
  job.Gap = Gap;
  job.Plates.push_back({.Id = "plate", .Width = PlateWidth, .Height = PlateHeight});
  job.Parts.push_back({.Id = "part", .Width = Width, .Height = Height, .Amount = std::nullopt});
  return job;
}

int Placed(const Job& AJob) {
  return run(AJob).Parts[0].Placed;
}

std::string FirstFault(const Job& AJob, const Result& AResult) {
  const std::vector<Fault> faults = CheckResult(AJob, AResult);
  return faults.empty() ? "" : faults[0].Place + ": " + faults[0].Text;
}

double SixDigits(double V) {
  char text[32];
  std::snprintf(text, sizeof text, "%.5e", V);
  return std::stod(text);
}

struct TRandomJob {
  explicit TRandomJob(unsigned Seed) : FEngine(Seed) {}
  double Uniform(double Low, double High) { return std::uniform_real_distribution(Low, High)(FEngine); }

  Job Make() {
    const double width = SixDigits(std::pow(10, Uniform(-0.3, 5)));
    const double height = SixDigits(width * Uniform(0.05, 1));
    Job job = OneJob(width, height, SixDigits(width * std::pow(10, Uniform(-1.8, 0.1))),
                     SixDigits(height * std::pow(10, Uniform(-1.8, 0.1))));
    if (Uniform(0, 1) < 0.6) job.Gap = SixDigits(width * std::pow(10, Uniform(-4, -1.5)));
    if (Uniform(0, 1) < 0.3)
      job.Margin = {SixDigits(width * 0.01), SixDigits(height * 0.02), 0, SixDigits(height * 0.005)};
    if (Uniform(0, 1) < 0.3) job.Parts[0].Amount = 1 + static_cast<int>(Uniform(0, 50));
    if (Uniform(0, 1) < 0.3) job.Run.Method = "trim";
    if (Uniform(0, 1) < 0.3) job.Run.Method = "fiveblock";
    job.Run.TimeLimit = 0.03;
    return job;
  }

  std::mt19937 FEngine;
};

// The same job in another unit.
Job Times(Job AJob, int Exponent) {
  std::vector<double*> lengths = {&AJob.Plates[0].Width, &AJob.Plates[0].Height, &AJob.Parts[0].Width,
                                  &AJob.Parts[0].Height, &AJob.Gap};
  for (double& margin : AJob.Margin) lengths.push_back(&margin);
  for (double* v : lengths) *v = std::stod(std::to_string(*v) + "e" + std::to_string(Exponent));
  return AJob;
}

TEST(RunOne, RandomJobsPassTheCheckAndNeverBeatABound) {
  ForEachSeed(300, [](unsigned seed) {
    const Job job = TRandomJob(seed + 1).Make();
    const Result result = run(job);
    ASSERT_EQ(FirstFault(job, result), "") << JobToJson(job);
    ASSERT_EQ(FirstFault(job, ParseResult(ResultToJson(result))), "") << "through the file form";
  });
}

TEST(RunOne, MetresAndMillimetresAgree) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    TRandomJob random(seed);
    const double width = SixDigits(random.Uniform(500, 4000));
    Job job = OneJob(width, SixDigits(width * 0.5), SixDigits(width * random.Uniform(0.02, 0.3)),
                     SixDigits(width * random.Uniform(0.02, 0.3)), SixDigits(random.Uniform(0.1, 6)));
    const Result mm = run(job);
    const Result m = run(Times(job, -3));
    ASSERT_EQ(m.Parts[0].Placed, mm.Parts[0].Placed) << "seed " << seed;
    ASSERT_EQ(m.Bounds, mm.Bounds) << "seed " << seed;
  }
}

TEST(RunOne, ExactFitsAreFoundWithAndWithoutGap) {
  EXPECT_EQ(Placed(OneJob(995, 995, 95, 95, 5)), 100);
  EXPECT_EQ(Placed(OneJob(0.3, 0.1, 0.1, 0.1)), 3) << "0.1 + 0.1 + 0.1 exceeds 0.3 in doubles";
  EXPECT_EQ(Placed(OneJob(994.999, 995, 95, 95, 5)), 90) << "a thousandth short";
}

TEST(RunOne, CornersHaveTheDecimalsOfTheSizes) {
  Job job = OneJob(2440, 1220, 299.9, 199.9, 5.1);
  job.Margin = {10, 10, 10, 10};
  const Result result = run(job);
  for (const Placement& place : result.Layouts.at(0).Placements)
    for (const double edge : place.Bounds) EXPECT_EQ(edge, std::round(edge * 10) / 10);
}

// From 600 strips on the nester lays a plain grid, which puts turned parts one gap to the right and the last column
// outside the plate.
TEST(RunOne, PlainGridOfTurnedPartsStandsAtTheLeftEdge) {
  const Job job = OneJob(3000, 7, 3, 7, 1);
  const Result result = run(job);
  EXPECT_EQ(result.Parts[0].Placed, 750);
  EXPECT_EQ(result.Layouts.at(0).UsedBox[0], 0);
  EXPECT_EQ(FirstFault(job, result), "");
}

TEST(RunOne, TrimFallsBackToThePlainNestWhereItRunsOffItsList) {
  Job job = OneJob(100, 100, 60, 100);
  job.Run.Method = "trim";
  const Result result = run(job);
  EXPECT_EQ(result.Parts[0].Placed, 1);
  EXPECT_EQ(result.Run.Method, "strip");
  EXPECT_EQ(result.Warnings.size(), 1u);
}

TEST(RunOne, FiveblockNestsKeepTheGapAndAutoTakesThemOnlyForMoreCopies) {
  struct TCase {
    Job AJob;
    int Strips;
    int Blocks;
  };
  const TCase cases[] = {
      {OneJob(22, 16, 5, 3), 22, 23},           {OneJob(21, 15, 4, 2, 1), 22, 23},
      {OneJob(0.16, 0.22, 0.03, 0.05), 22, 23}, {OneJob(2.15, 1.55, 0.45, 0.25, 0.05), 22, 23},
      {OneJob(1000, 500, 300, 200), 8, 8},
  };
  for (auto [job, strips, blocks] : cases) {
    SCOPED_TRACE(JobToJson(job));
    job.Run.Method = "strip";
    EXPECT_EQ(Placed(job), strips);
    job.Run.Method = "auto";
    Result result = run(job);
    EXPECT_EQ(std::tuple(result.Parts[0].Placed, result.Proved), std::tuple(blocks, true));
    EXPECT_EQ(result.Run.Method, blocks > strips ? "fiveblock" : "strip");
    EXPECT_EQ(result.Layouts[0].UsedBox[0], 0);
    job.Run.Method = "fiveblock";
    job.Parts[0].Amount = 7;
    result = run(job);
    EXPECT_EQ(std::tuple(result.Parts[0].Placed, result.Run.Method), std::tuple(7, "fiveblock"));
  }
}

TEST(RunOne, StripsStandInWhereFiveblockDoesWorse) {
  Job job = OneJob(1, 1, 1.0 / 7, 1.0 / 7);  // rounded up to whole units, seven sevenths do not fit
  job.Run.Method = "fiveblock";
  const Result result = run(job);
  EXPECT_EQ(result.Run.Method, "strip");
  EXPECT_EQ(result.Parts[0].Placed, 49);
  EXPECT_EQ(result.Warnings, std::vector<std::string>{"fiveblock placed fewer copies; the strip layout stands"});
}

TEST(RunOne, StatusSaysWhyCopiesAreLeft) {
  const std::tuple<double, int, ResultStatus, std::string, int> cases[] = {
      {10, 50, ResultStatus::Complete, "", 50},
      {10, 51, ResultStatus::Complete, "no_stock", 50},  // the plate is full, and the bound shows that none holds more
      {100.001, 1, ResultStatus::Partial, "too_large", 0},
  };
  for (const auto& [width, amount, status, reason, placed] : cases) {
    Job job = OneJob(100, 50, width, 10);
    job.Parts[0].Amount = amount;
    const Result result = run(job);
    EXPECT_EQ(std::tuple(result.Status, result.Parts[0].Reason, result.Parts[0].Placed),
              std::tuple(status, reason, placed));
    EXPECT_EQ(result.Layouts.empty(), placed == 0);
    EXPECT_TRUE(result.Proved || amount != 50);
  }
}

TEST(RunOne, BoundsCountTheGapAndAreNeverTooLow) {
  const Result result = run(OneJob(995, 995, 95, 95, 5));
  EXPECT_EQ(result.Bounds.at(0), (Bound{"count", "area", 100}));
  EXPECT_EQ(result.Bounds.at(1), (Bound{"count", "barnes", 100}));
  // 12 x 12 in 8 x 3 leaves nothing by area; strips of 1 x 8 must leave 16.
  EXPECT_EQ(run(OneJob(12, 12, 8, 3)).Bounds.at(0).Value, 6);
  EXPECT_EQ(run(OneJob(12, 12, 8, 3)).Bounds.at(1).Value, 5);
}

// Lengths beyond nine decimals have no common step; what is handed to the nester stays within the promised 1e-6.
TEST(RunOne, NothingFitsByTheSlackThatKeepsExactFits) {
  EXPECT_EQ(Placed(OneJob(600000, 0.612345, 50000, 0.612346, 1000)), 0);
  const Job job = OneJob(660000, 90001, 90000.0000003, 90000, 100000);
  EXPECT_EQ(FirstFault(job, run(job)), "");
}

TEST(RunOne, RefusesWhatItCannotKeepWithThePlace) {
  const auto faults = [](const Job& job) { return FaultsOf([&] { run(job); }); };
  Job job = OneJob(100, 50, 10, 10);
  job.Parts[0].Turn = Rotate::None;
  EXPECT_EQ(faults(job), "InputError: conflict /parts/0/rotate");
  job = OneJob(100, 50, 10, 10);
  job.Margin = {60, 0, 40, 0};
  EXPECT_EQ(faults(job), "InputError: range /margin");
  job = OneJob(1e5, 1e5, 1, 1);
  EXPECT_EQ(faults(job), "LimitError: limit /parts/0/amount");
  EXPECT_EQ(faults(OneJob(1000, 1000, 300, 0.003)), "LimitError: limit /parts/0/amount") << "by strips, not the grid";
  job.Parts[0].Amount = 1000;
  EXPECT_EQ(Placed(job), 1000);
}

TEST(RunOne, AStopBeforeAnyResultIsAnErrorAndGlobalsStayAsTheyWere) {
  StopToken stop;
  stop.RequestStop();
  EXPECT_THROW(run(OneJob(10, 10, 1, 1), {.OnProgress = {}, .Stop = &stop}), StoppedError);
  EXPECT_EQ(CurrentStopToken(), nullptr);
  EXPECT_FALSE(RectNestTerminated.load());
}

void MovePart(Result& AResult, double By) {
  Placement& place = AResult.Layouts[0].Placements[0];
  for (double* x : {&place.Trans[0], &place.Bounds[0], &place.Bounds[2]}) *x += By;
}

// Each change to a valid result must be found, at its place. The tolerance is granted once: a gap or a plate stated a
// little wrong does not add another one.
TEST(CheckResult, FindsEveryWrongNumber) {
  Job job = OneJob(1000, 500, 300, 200, 5);
  job.Parts[0].Amount = 9;
  const Result good = run(job);
  ASSERT_EQ(FirstFault(job, good), "");
  const std::array<double, 4> corner = {0, 0, 1, 1};
  const Bound tooLow = {"count", "stock", 7};
  const std::pair<const char*, std::function<void(Job&, Result&)>> changes[] = {
      {"/gap", [](Job&, Result& r) { r.Gap -= 1e-7; }},
      {"/kind", [](Job&, Result& r) { r.Kind = JobKind::Job; }},
      {"/margin/2", [](Job& j, Result&) { j.Margin[2] = 1; }},
      {"/layouts/0/plate", [](Job&, Result& r) { r.Layouts[0].Plate = "other"; }},
      {"/layouts/0/width", [](Job&, Result& r) { r.Layouts[0].Width += 1e-7; }},
      {"/layouts/0/usage", [](Job&, Result& r) { r.Layouts[0].Usage += 1e-6; }},
      {"/layouts/0/min_clearance", [](Job&, Result& r) { r.Layouts[0].MinClearance.reset(); }},
      {"/layouts/0/edge_to_edge", [](Job&, Result& r) { r.Layouts[0].EdgeToEdge ^= true; }},
      {"/layouts/0/free_box", [&corner](Job&, Result& r) { r.Layouts[0].FreeBox = corner; }},
      {"/layouts/0/free_box",
       [](Job&, Result& r) {
         for (double& v : r.Layouts[0].FreeBox) v += 1000;
       }},
      {"/layouts/0/placements/3/box", [](Job&, Result& r) { r.Layouts[0].Placements[3].Bounds[0] -= 1; }},
      {"/layouts/0", [](Job&, Result& r) { MovePart(r, -0.001); }},
      {"/layouts/0", [](Job&, Result& r) { MovePart(r, 0.001); }},
      {"/summary/cost", [](Job&, Result& r) { r.Total.Cost += 1; }},
      {"/plates/0/used", [](Job&, Result& r) { r.Plates[0].Used = 0; }},
      {"/parts/0/placed", [](Job&, Result& r) { r.Parts[0].Placed -= 1; }},
      {"/parts/0/reason", [](Job&, Result& r) { r.Parts[0].Reason = "too_large"; }},
      {"/bounds", [](Job&, Result& r) { r.Bounds[0].Value += 1; }},
      {"/bounds", [&](Job&, Result& r) { r.Proved = (r.Bounds.push_back(tooLow), true); }},
      {"/status", [](Job&, Result& r) { r.Status = ResultStatus::Partial; }},
      {"/proved", [](Job&, Result& r) { r.Proved ^= true; }},
  };
  for (const auto& [place, change] : changes) {
    Job asked = job;
    Result bad = good;
    change(asked, bad);
    EXPECT_THAT(FirstFault(asked, bad), testing::StartsWith(place)) << place;
  }
}

TEST(CheckResult, DoesNotTakeAHalfEmptyPlateForComplete) {
  const Job job = OneJob(1000, 500, 300, 200, 5);
  Job less = job;
  less.Parts[0].Amount = 2;
  Result bad = run(less);
  bad.Parts[0].Amount = std::nullopt;
  EXPECT_THAT(FirstFault(job, bad), testing::StartsWith("/bounds"));
  bad.Bounds.pop_back();
  bad.Proved = false;
  EXPECT_THAT(FirstFault(job, bad), testing::StartsWith("/status"));
}

}  // namespace
}  // namespace platenest
