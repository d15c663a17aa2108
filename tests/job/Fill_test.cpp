#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "FakeClock.h"
#include "FaultText.h"
#include "ForEachSeed.h"
#include "platenest/job/Run.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

Job FillJob(double Width, double Height, std::vector<Part> Parts, double Gap = 0) {
  Job job;
  job.Kind = JobKind::Fill;
  job.Gap = Gap;
  job.Plates.push_back({.Id = "plate", .Width = Width, .Height = Height});
  job.Parts = std::move(Parts);
  GiveIds(job);
  return job;
}

Part Rect(double Width, double Height, std::optional<int> Amount, std::optional<double> Value = {},
          Rotate Turn = Rotate::Any) {
  return {.Id = "", .Width = Width, .Height = Height, .Amount = Amount, .Turn = Turn, .Value = Value};
}

Job With(Job AJob, const std::string& Method) {
  AJob.Run.Method = Method;
  return AJob;
}

Job Locked(Job AJob) {
  for (Part& part : AJob.Parts) part.Turn = Rotate::None;
  return AJob;
}

std::string FirstFault(const Job& AJob, const Result& AResult) {
  const std::vector<Fault> faults = CheckResult(AJob, AResult);
  return faults.empty() ? "" : faults[0].Place + ": " + faults[0].Text;
}

// The answer, which must pass the check.
Result Answer(const Job& AJob, const RunHooks& Hooks = {}) {
  Result result = run(AJob, Hooks);
  EXPECT_EQ(FirstFault(AJob, result), "") << JobToJson(AJob);
  return result;
}

std::vector<int> Placed(const Result& AResult) {
  std::vector<int> counts;
  for (const PartUse& part : AResult.Parts) counts.push_back(part.Placed);
  return counts;
}

double Worth(const Job& AJob) {
  return *Answer(AJob).Total.Value;
}

double Digits(double V, int Count) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*e", Count - 1, V);
  return std::stod(text);
}

struct TRandomFill {
  explicit TRandomFill(unsigned Seed) : FEngine(Seed) {}
  double Uniform(double Low, double High) { return std::uniform_real_distribution(Low, High)(FEngine); }
  bool Chance(double Share) { return Uniform(0, 1) < Share; }

  Part MakePart(double Width, double Height) {
    Part part = Rect(Digits(Width * std::pow(10, Uniform(-1.6, 0.02)), FDigits),
                     Digits(Height * std::pow(10, Uniform(-1.6, 0.02)), FDigits), 1 + static_cast<int>(Uniform(0, 12)));
    if (Chance(0.1)) part.Amount = static_cast<int>(std::pow(10, Uniform(2, 4.8)));
    if (Chance(0.15)) part.Amount = std::nullopt;
    if (FHasValues && Chance(0.8)) part.Value = Digits(part.Width * part.Height * Uniform(0.3, 3), 3);
    if (Chance(FLockShare)) part.Turn = Rotate::None;
    return part;
  }

  Job Make() {
    const double width = Digits(std::pow(10, Uniform(-0.3, 5)), 4);
    const double height = Digits(width * std::pow(10, Uniform(-0.5, 0.5)), 4);
    FHasValues = Chance(0.4);
    FDigits = Chance(0.2) ? 16 : 4;
    FLockShare = Chance(0.6) ? 0 : (Chance(0.5) ? 1 : 0.5);
    std::vector<Part> parts;
    for (int i = static_cast<int>(Uniform(1, 9)); i > 0; --i) parts.push_back(MakePart(width, height));
    Job job = FillJob(width, height, parts, Chance(0.5) ? Digits(width * std::pow(10, Uniform(-4, -2)), 2) : 0);
    if (Chance(0.3)) job.Margin = {Digits(width * 0.01, 2), 0, 0, Digits(height * 0.02, 2)};
    if (FLockShare == 0) job.Run.Method = std::vector{"auto", "smart", "raster", "rskf", "bigfirst"}[FEngine() % 5];
    job.Run.TimeLimit = 0.05;
    return job;
  }

  std::mt19937 FEngine;
  bool FHasValues = false;
  int FDigits = 4;
  double FLockShare = 0;
};

TEST(RunFill, RandomJobsPassTheCheckAndNeverBeatABound) {
  ForEachSeed(150, [](unsigned seed) {
    const Job job = TRandomFill(seed).Make();
    const Result result = Answer(job);
    EXPECT_EQ(FirstFault(job, ParseResult(ResultToJson(result))), "") << "through the file form";
    for (int i = 0; i < Size(result.Parts); ++i)
      EXPECT_LE(result.Parts[i].Placed, job.Parts[i].Amount.value_or(limits::kCopies));
  });
}

// A plate that is higher than wide is where nesters exchange axes.
TEST(RunFill, LockedPartsNeverTurnAndMethodsThatTurnAreRefused) {
  const std::vector<Part> parts = {Rect(400, 260, 9), Rect(300, 120, 20), Rect(90, 70, 30)};
  for (const auto& [width, height] : {std::pair(1400, 900), std::pair(900, 1400)}) {
    for (const char* method : {"auto", "smart", "rskf"}) {
      Job job = With(Locked(FillJob(width, height, parts, 3)), method);
      job.Run.TimeLimit = 0.4;
      const Result result = Answer(job);
      EXPECT_GT(result.Total.Usage, 0.85) << method;
      for (const Placement& place : result.Layouts.at(0).Placements) EXPECT_FALSE(place.Rotated) << method;
    }
    Job mix = FillJob(width, height, parts, 3);
    mix.Parts[1].Turn = Rotate::None;
    mix.Run.TimeLimit = 0.4;
    EXPECT_GT(Answer(mix).Total.Usage, 0.85);
    for (const char* method : {"raster", "rskf", "bigfirst"})
      EXPECT_EQ(FaultsOf([&] { run(With(mix, method)); }), "InputError: conflict /options/method") << method;
    EXPECT_EQ(FaultsOf([&] { run(With(Locked(mix), "bigfirst")); }), "InputError: conflict /options/method");
  }
  const Result result = Answer(Locked(FillJob(100, 50, {Rect(20, 80, 1), Rect(80, 20, 1)})));
  EXPECT_THAT(Placed(result), ElementsAre(0, 1));
  EXPECT_EQ(result.Parts[0].Reason, "too_large");
}

TEST(RunFill, TurningNeverCostsWorth) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    Job job = TRandomFill(seed).Make();
    job.Run = {.TimeLimit = 0, .Deterministic = true};
    if (job.Parts.size() > 3) job.Parts.resize(3);
    for (Part& part : job.Parts) {
      part.Turn = Rotate::Any;
      part.Amount = std::min(part.Amount.value_or(5), 5);
    }
    EXPECT_GE(Worth(job), Worth(Locked(job)) * (1 - 1e-11)) << "seed " << seed;
  }
}

TEST(RunFill, EachMethodFillsThePlateInEveryUnit) {
  const Job mm = FillJob(2440, 1220, {Rect(600, 400, 8), Rect(395, 300, 12), Rect(212.5, 180, 25)}, 2.5);
  for (const char* method : {"smart", "raster", "rskf", "bigfirst"}) {
    SCOPED_TRACE(method);
    Job job = With(mm, method);
    job.Run.Deterministic = true;
    Job metres = job;
    metres.Plates[0].Width = 2.44;
    metres.Plates[0].Height = 1.22;
    const std::pair<double, double> sizes[] = {{0.6, 0.4}, {0.395, 0.3}, {0.2125, 0.18}};
    for (int i = 0; i < 3; ++i) std::tie(metres.Parts[i].Width, metres.Parts[i].Height) = sizes[i];
    metres.Gap = 0.0025;
    const Result wanted = Answer(job);
    EXPECT_EQ(Placed(Answer(metres)), Placed(wanted));
    EXPECT_GT(wanted.Total.Usage, 0.9);
  }
}

TEST(RunFill, EqualDeterministicRunsGiveEqualBytes) {
  Job job = FillJob(50, 30, {Rect(17, 11, 6), Rect(9, 7, 9)});
  job.Run.Deterministic = true;
  EXPECT_EQ(ResultToJson(run(job)), ResultToJson(run(job)));
}

// Their decimals are many, but sixteenths are few.
TEST(RunFill, SixteenthsOfAnInchFitExactly) {
  const Job inches = FillJob(95.9375, 47.9375, {Rect(11.9375, 7.9375, 24), Rect(5.9375, 3.9375, 96)}, 0.0625);
  for (const char* method : {"raster", "rskf"}) {
    const Result result = Answer(With(inches, method));
    EXPECT_EQ(std::tuple(result.Status, result.Run.Method), std::tuple(ResultStatus::Complete, method));
  }
}

TEST(RunFill, ExactFitsWithGapAndMarginAreFoundAndProved) {
  Job job = FillJob(1015, 1015, {Rect(195, 95, 25), Rect(395, 195, 5), Rect(95, 45, 20)}, 5);
  job.Margin = {10, 10, 10, 10};
  const std::tuple<Job, std::vector<int>, ResultStatus> cases[] = {
      {job, {25, 5, 20}, ResultStatus::Complete},
      {FillJob(0.3, 0.1, {Rect(0.1, 0.1, 5)}), {3}, ResultStatus::Partial},
      {FillJob(0.3, 0.1, {Rect(0.1, 0.1, std::nullopt)}), {3}, ResultStatus::Complete},
      {FillJob(800, 600, {Rect(800, 600, 1), Rect(10, 10, 1)}), {1, 0}, ResultStatus::Partial},
      {FillJob(800, 600, {Rect(600, 800, 1)}, 7), {1}, ResultStatus::Complete},
  };
  for (const auto& [each, placed, status] : cases) {
    const Result result = Answer(each);
    EXPECT_EQ(std::tuple(Placed(result), result.Status, result.Proved), std::tuple(placed, status, true))
        << JobToJson(each);
  }
}

TEST(RunFill, StatedValuesReplaceAreasWhateverTheirSize) {
  for (const double scale : {1e-9, 1.0, 1e12}) {
    Job job = FillJob(1000, 500, {Rect(1000, 500, 1, 9 * scale), Rect(250, 250, 8, 1.5 * scale)});
    EXPECT_THAT(Placed(Answer(job)), ElementsAre(0, 8)) << scale;
    for (const char* method : {"raster", "rskf"}) EXPECT_THAT(Placed(Answer(With(job, method))), ElementsAre(0, 8));
    job.Parts[0].Value = 12.5 * scale;
    const Result result = Answer(job);
    EXPECT_THAT(Placed(result), ElementsAre(1, 0)) << scale;
    EXPECT_DOUBLE_EQ(*result.Total.Value, 12.5 * scale);
  }
  // Beside areas: 62500 for a small part without a value.
  Job mix = FillJob(1000, 500, {Rect(1000, 500, 1, 499999), Rect(250, 250, 8)});
  EXPECT_THAT(Placed(Answer(mix)), ElementsAre(0, 8));
  mix.Parts[0].Value = 500001;
  EXPECT_THAT(Placed(Answer(mix)), ElementsAre(1, 0));
}

TEST(RunFill, WhatAMethodLeavesIsFilledIn) {
  // Tiny parts of which many are asked for, which one method leaves out and others bundle.
  const Job tiny = FillJob(1000, 1000, {Rect(600, 1000, 1), Rect(20, 20, 900)});
  for (const char* method : {"smart", "rskf", "auto"})
    EXPECT_THAT(Placed(Answer(With(tiny, method))), ElementsAre(1, 900));
  // Too little for a nest that wants a full plate.
  const Result result = Answer(With(FillJob(1000, 1000, {Rect(300, 200, 4)}), "raster"));
  EXPECT_THAT(Placed(result), ElementsAre(4));
  EXPECT_EQ(result.Run.Method, "smart");
  EXPECT_EQ(result.Warnings.size(), 1u);
}

TEST(RunFill, ReasonsSayWhyCopiesAreLeft) {
  const auto reasons = [](const Job& job) {
    std::vector<std::string> all;
    for (const PartUse& part : Answer(job).Parts) all.push_back(part.Reason);
    return all;
  };
  EXPECT_THAT(reasons(FillJob(100, 50, {Rect(10, 10, 51), Rect(101, 10, 1)})), ElementsAre("no_stock", "too_large"));
  EXPECT_THAT(reasons(With(FillJob(100, 50, {Rect(60, 50, 2), Rect(7, 9, 60)}), "smart")),
              ElementsAre("left_by_method", "left_by_method"));
  EXPECT_THAT(reasons(FillJob(100, 50, {Rect(200, 90, 3)})), ElementsAre("too_large"));
}

// A job that no bound settles.
Job LongJob() {
  return FillJob(1000, 700, {Rect(313, 207, 5), Rect(171, 133, 9), Rect(97, 83, 14), Rect(223, 61, 11)}, 3);
}

TEST(RunFill, StopAndTimeKeepTheBestAnswerSoFar) {
  StopToken stop;
  int events = 0;
  const Result stopped = Answer(LongJob(), {.OnProgress =
                                                [&](const Progress& now) {
                                                  EXPECT_EQ(now.Phase, "smart");
                                                  EXPECT_GT(now.BoundValue.value_or(0), 1e5);
                                                  return ++events > 1;
                                                },
                                            .Stop = nullptr});
  EXPECT_EQ(events, 1);
  EXPECT_EQ(std::tuple(stopped.Status, stopped.Run.Method), std::tuple(ResultStatus::Stopped, "smart"));
  EXPECT_EQ(stopped.Parts[0].Reason == "left_by_method", false);

  Job job = LongJob();
  job.Run.TimeLimit = 5;
  for (const char* method : {"auto", "bigfirst"}) {
    TFakeClock clock;
    clock.AdvanceAtEachReading(2000);
    const Result cut = Answer(With(job, method));
    EXPECT_EQ(std::tuple(cut.Status, cut.Run.Method, cut.Parts[1].Reason),
              std::tuple(ResultStatus::TimeLimit, "smart", "time"));
    EXPECT_EQ(cut.Warnings.empty(), method == std::string("auto"));
    EXPECT_GT(cut.Total.Usage, 0.5);
  }

  stop.RequestStop();
  EXPECT_THROW(run(LongJob(), {.OnProgress = {}, .Stop = &stop}), StoppedError);
  EXPECT_EQ(CurrentStopToken(), nullptr);
}

// Best fit would place a few of them only.
TEST(RunFill, ManySizesHaveAnAnswerHoweverShortTheTimeIs) {
  for (const double lockShare : {0.0, 0.5, 1.0}) {
    TRandomFill random(7);
    std::vector<Part> parts;
    for (int i = 0; i < 2000; ++i) {
      parts.push_back(Rect(std::round(random.Uniform(8, 40)), std::round(random.Uniform(8, 60)), 5));
      if (random.Chance(lockShare)) parts.back().Turn = Rotate::None;
    }
    Job job = FillJob(900, 1400, parts, 2);
    job.Run.TimeLimit = 0.001;
    const Result result = Answer(job);
    EXPECT_EQ(std::tuple(result.Status, result.Run.Method), std::tuple(ResultStatus::TimeLimit, "rows"));
    EXPECT_GT(*result.Total.Value, 0.9 * result.Bounds[0].Value) << lockShare;
  }
}

TEST(RunFill, DeterministicLimitsBoundTheTries) {
  double former = 0;
  for (const double limit : {0.0001, 0.03, 0.0}) {
    Job job = LongJob();
    job.Run = {.TimeLimit = limit, .Deterministic = true};
    const Result result = Answer(job);
    EXPECT_EQ(result.Status, limit > 0 ? ResultStatus::TimeLimit : ResultStatus::Partial);
    EXPECT_EQ(ResultToJson(result), ResultToJson(run(job)));
    EXPECT_GE(*result.Total.Value, std::max(former, 1.0)) << limit;
    former = *result.Total.Value;
  }
}

TEST(RunFill, MoreTimeNeverGivesLess) {
  double former = 0;
  for (const double limit : {0.001, 0.02, 0.1, 0.4}) {
    Job job = LongJob();
    job.Run.TimeLimit = limit;
    const double worth = Worth(job);
    EXPECT_GE(worth, former) << limit;
    former = worth;
  }
}

TEST(RunFill, RefusesWhatItCannotAnswerWithThePlace) {
  const auto faults = [](const Job& job) { return FaultsOf([&] { run(job); }); };
  EXPECT_EQ(faults(With(LongJob(), "strips")), "InputError: choice /options/method");
  Job job = LongJob();
  job.Margin = {600, 0, 400, 0};
  EXPECT_EQ(faults(job), "InputError: range /margin");
  EXPECT_EQ(faults(FillJob(1e5, 1e5, {Rect(5e4, 5e4, 1), Rect(1, 1, std::nullopt)})),
            "LimitError: limit /parts/1/amount");
}

TEST(CheckResult, FindsWhatIsWrongInAFill) {
  Job job = With(LongJob(), "smart");
  job.Parts[3].Turn = Rotate::None;
  job.Parts.push_back({.Id = "large", .Width = 2000, .Height = 10});
  const Result good = Answer(job);
  const auto drop = [](Result& r) { r.Total.Value.reset(); };
  const std::pair<const char*, std::function<void(Job&, Result&)>> changes[] = {
      {"/summary/value", [](Job&, Result& r) { *r.Total.Value *= 1 + 1e-6; }},
      {"/summary/value", [&](Job&, Result& r) { drop(r); }},
      {"/summary/value", [](Job& j, Result&) { j.Parts[0].Value = 1; }},
      {"/bounds", [](Job&, Result& r) { r.Bounds[0].Value *= 1.5; }},
      {"/bounds", [](Job&, Result& r) { r.Bounds.pop_back(); }},
      {"/proved", [](Job&, Result& r) { r.Proved = true; }},
      {"/status", [](Job&, Result& r) { r.Status = ResultStatus::Complete; }},
      {"/parts/4/reason", [](Job&, Result& r) { r.Parts[4].Reason = "left_by_method"; }},
      {"/parts/0/placed", [](Job&, Result& r) { ++r.Parts[0].Placed; }},
      {"/parts/1/amount", [](Job& j, Result&) { j.Parts[1].Amount = 2; }},
  };
  for (const auto& [place, change] : changes) {
    Job asked = job;
    Result bad = good;
    change(asked, bad);
    EXPECT_THAT(FirstFault(asked, bad), StartsWith(place));
  }
  // However small all values are.
  for (Part& part : job.Parts) part.Value = 1e-12;
  const Result small = Answer(job);
  Result raised = small;
  raised.Total.Value = raised.Bounds[0].Value;
  raised.Proved = true;
  EXPECT_THAT(FirstFault(job, raised), StartsWith("/summary/value"));
  for (Rotate& turn : std::vector<std::reference_wrapper<Rotate>>{job.Parts[0].Turn, job.Parts[1].Turn})
    turn = Rotate::None;
  const bool turns = std::ranges::any_of(good.Layouts[0].Placements, &Placement::Rotated);
  EXPECT_EQ(turns, FirstFault(Locked(job), good).find("/rotated") != std::string::npos);
}

}  // namespace
}  // namespace platenest
