#include "platenest/job/Run.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>

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

template <class Error>
std::string PlaceOfError(const Job& AJob) {
  try {
    run(AJob);
  } catch (const Error& error) {
    return error.Faults().at(0).Place;
  }
  return "no error";
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
    return job;
  }

  std::mt19937 FEngine;
};

// The same job in another unit.
Job Times(Job AJob, int Exponent) {
  const auto scale = [Exponent](double& V) { V = std::stod(std::to_string(V) + "e" + std::to_string(Exponent)); };
  scale(AJob.Plates[0].Width);
  scale(AJob.Plates[0].Height);
  scale(AJob.Parts[0].Width);
  scale(AJob.Parts[0].Height);
  scale(AJob.Gap);
  for (double& margin : AJob.Margin) scale(margin);
  return AJob;
}

TEST(RunOne, RandomJobsPassTheCheckAndNeverBeatABound) {
  for (unsigned seed = 1; seed <= 2000; ++seed) {
    const Job job = TRandomJob(seed).Make();
    const Result result = run(job);
    ASSERT_EQ(FirstFault(job, result), "") << "seed " << seed << '\n' << JobToJson(job);
    ASSERT_EQ(FirstFault(job, ParseResult(ResultToJson(result))), "") << "seed " << seed << " through the file form";
  }
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
    for (int i = 0; i < mm.Parts[0].Placed; ++i)
      ASSERT_NEAR(m.Layouts[0].Placements[i].Trans[0] * 1000, mm.Layouts[0].Placements[i].Trans[0], 1e-9)
          << "seed " << seed;
  }
}

TEST(RunOne, ExactFitsAreFoundWithAndWithoutGap) {
  EXPECT_EQ(Placed(OneJob(995, 995, 95, 95, 5)), 100);
  EXPECT_EQ(Placed(OneJob(0.995, 0.995, 0.095, 0.095, 0.005)), 100) << "metres";
  EXPECT_EQ(Placed(OneJob(999.9, 9.9, 99.9, 9.9, 0.1)), 10) << "a gap below 1 has no allowance in the nester";
  EXPECT_EQ(Placed(OneJob(0.3, 0.1, 0.1, 0.1)), 3) << "0.1 + 0.1 + 0.1 exceeds 0.3 in doubles";
  EXPECT_EQ(Placed(OneJob(994.999, 995, 95, 95, 5)), 90) << "a thousandth short";
}

TEST(RunOne, CornersAreWholeWhereSizesAre) {
  Job job = OneJob(2440, 1220, 300, 200, 5);
  job.Margin = {10, 10, 10, 10};
  const Result result = run(job);
  for (const Placement& place : result.Layouts.at(0).Placements)
    for (const double edge : place.Bounds) EXPECT_EQ(edge, std::round(edge));
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

TEST(RunOne, StatusSaysWhyCopiesAreLeft) {
  Job job = OneJob(100, 50, 10, 10);
  job.Parts[0].Amount = 50;
  Result result = run(job);
  EXPECT_EQ(result.Status, ResultStatus::Complete);
  EXPECT_TRUE(result.Proved);

  job.Parts[0].Amount = 51;
  result = run(job);
  EXPECT_EQ(result.Status, ResultStatus::Complete) << "the plate is full";
  EXPECT_EQ(result.Parts[0].Reason, "no_stock") << "the bound is met: no layout holds more";

  job = OneJob(100, 50, 100.001, 10);
  job.Parts[0].Amount = 1;
  result = run(job);
  EXPECT_TRUE(result.Layouts.empty());
  EXPECT_EQ(result.Status, ResultStatus::Partial);
  EXPECT_EQ(result.Parts[0].Reason, "too_large");
}

TEST(RunOne, BoundsCountTheGapAndAreNeverTooLow) {
  const Result result = run(OneJob(995, 995, 95, 95, 5));
  EXPECT_EQ(result.Bounds.at(0), (Bound{"count", "area", 100}));
  EXPECT_EQ(result.Bounds.at(1), (Bound{"count", "barnes", 100}));
  // Sevenths have no decimal end: the plate is rounded up and the part down, and 49 stays possible.
  EXPECT_GE(run(OneJob(1, 1, 1.0 / 7, 1.0 / 7)).Bounds.at(1).Value, 49);
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
  Job job = OneJob(100, 50, 10, 10);
  job.Parts[0].Turn = Rotate::None;
  EXPECT_EQ(PlaceOfError<InputError>(job), "/parts/0/rotate");
  job = OneJob(100, 50, 10, 10);
  job.Margin = {60, 0, 40, 0};
  EXPECT_EQ(PlaceOfError<InputError>(job), "/margin");
  job.Margin = {0, 0, 0, 0};
  job.Kind = JobKind::Fill;
  EXPECT_EQ(PlaceOfError<InputError>(job), "/kind");
  EXPECT_EQ(PlaceOfError<LimitError>(OneJob(1e5, 1e5, 1, 1)), "/parts/0/amount");
  EXPECT_EQ(PlaceOfError<LimitError>(OneJob(1000, 1000, 300, 0.003)), "/parts/0/amount")
      << "by strips, not by the grid";
  job = OneJob(1e5, 1e5, 1, 1);
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

TEST(RunOne, DeterministicRunsGiveEqualBytes) {
  Job job = OneJob(2440, 1220, 300, 200, 5);
  job.Run.Deterministic = true;
  EXPECT_EQ(ResultToJson(run(job)), ResultToJson(run(job)));
}

// Each change to a valid result must be found, at its place.
TEST(CheckResult, FindsEveryWrongNumber) {
  Job job = OneJob(1000, 500, 300, 200, 5);
  job.Parts[0].Amount = 9;
  const Result good = run(job);
  ASSERT_EQ(FirstFault(job, good), "");
  const std::pair<const char*, std::function<void(Result&)>> changes[] = {
      {"/gap", [](Result& r) { r.Gap = 4; }},
      {"/kind", [](Result& r) { r.Kind = JobKind::Job; }},
      {"/margin/2", [&job](Result&) { job.Margin[2] = 1; }},
      {"/layouts/0/plate", [](Result& r) { r.Layouts[0].Plate = "other"; }},
      {"/layouts/0/width", [](Result& r) { r.Layouts[0].Width = 1001; }},
      {"/layouts/0/usage", [](Result& r) { r.Layouts[0].Usage += 1e-6; }},
      {"/layouts/0/used_box", [](Result& r) { r.Layouts[0].UsedBox[2] += 1e-3; }},
      {"/layouts/0/min_clearance", [](Result& r) { r.Layouts[0].MinClearance.reset(); }},
      {"/layouts/0/edge_to_edge", [](Result& r) { r.Layouts[0].EdgeToEdge ^= true; }},
      {"/layouts/0/free_box",
       [](Result& r) {
         r.Layouts[0].FreeBox = {0, 0, 1, 1};
       }},
      {"/layouts/0/placements/3/box", [](Result& r) { r.Layouts[0].Placements[3].Bounds[0] -= 1; }},
      {"/layouts/0/placements/0/part", [](Result& r) { r.Layouts[0].Placements[0].Part = "x"; }},
      {"/summary/cost", [](Result& r) { r.Total.Cost += 1; }},
      {"/plates/0/used", [](Result& r) { r.Plates[0].Used = 0; }},
      {"/parts/0/placed", [](Result& r) { r.Parts[0].Placed -= 1; }},
      {"/parts/0/reason", [](Result& r) { r.Parts[0].Reason.clear(); }},
      {"/layouts/0/free_box",
       [](Result& r) {
         for (double& v : r.Layouts[0].FreeBox) v += 1000;
       }},
      {"/name", [](Result& r) { r.Name = "x"; }},
      {"/bounds", [](Result& r) { r.Bounds[0].Value += 1; }},
      {"/bounds", [](Result& r) { r.Bounds.clear(); }},
      {"/bounds",
       [](Result& r) {
         r.Bounds.push_back({"count", "stock", 7});
         r.Proved = true;
       }},
      {"/parts/0/reason", [](Result& r) { r.Parts[0].Reason = "too_large"; }},
      {"/status", [](Result& r) { r.Status = ResultStatus::Partial; }},
      {"/proved", [](Result& r) { r.Proved ^= true; }},
  };
  for (const auto& [place, change] : changes) {
    Result bad = good;
    change(bad);
    EXPECT_EQ(FirstFault(job, bad).substr(0, std::string(place).size()), place);
    job.Margin = {0, 0, 0, 0};
  }
}

// The tolerance is granted once: a gap or a plate stated a little wrong does not add another one.
TEST(CheckResult, GrantsTheToleranceOnce) {
  const Job job = OneJob(1000, 500, 300, 200, 5);
  Result bad = run(job);
  bad.Gap -= 1e-7;
  EXPECT_EQ(FirstFault(job, bad).substr(0, 4), "/gap");
  bad.Gap = 5;
  bad.Layouts[0].Width += 1e-7;
  EXPECT_EQ(FirstFault(job, bad).substr(0, 16), "/layouts/0/width");
}

TEST(CheckResult, DoesNotTakeAHalfEmptyPlateForComplete) {
  const Job job = OneJob(1000, 500, 300, 200, 5);
  Job less = job;
  less.Parts[0].Amount = 2;
  Result bad = run(less);
  bad.Parts[0].Amount = std::nullopt;
  EXPECT_EQ(FirstFault(job, bad).substr(0, 7), "/bounds");
  bad.Bounds.pop_back();
  bad.Proved = false;
  EXPECT_EQ(FirstFault(job, bad).substr(0, 7), "/status");
}

TEST(CheckResult, FindsPartsThatOverlapOrLeaveThePlateOrAreTooMany) {
  Job job = OneJob(1000, 500, 300, 200, 5);
  const Result good = run(job);
  Result bad = good;
  for (const double move : {-0.001, 0.001}) {
    bad = good;
    Placement& place = bad.Layouts[0].Placements[0];
    place.Trans[0] += move;
    place.Bounds[0] += move;
    place.Bounds[2] += move;
    EXPECT_EQ(FirstFault(job, bad).substr(0, 10), "/layouts/0") << move;
  }
  job.Parts[0].Amount = 3;
  bad = good;
  bad.Parts[0].Amount = 3;
  EXPECT_EQ(FirstFault(job, bad).substr(0, 15), "/parts/0/placed");
  job.Parts[0].Amount = std::nullopt;
  bad = good;
  bad.Layouts[0].Copies = 2;
  EXPECT_FALSE(CheckResult(job, bad).empty());
}

}  // namespace
}  // namespace platenest
