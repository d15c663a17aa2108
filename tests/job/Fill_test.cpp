#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "FakeClock.h"
#include "PlateJobs.h"

namespace platenest {
namespace {

using testing::ElementsAre;

Job FillJob(double Width, double Height, std::vector<Part> Parts, double Gap = 0) {
  return PlateJob(JobKind::Fill, {Sheet(Width, Height)}, std::move(Parts), Gap);
}

Part Worthy(double Width, double Height, int Amount, double Value) {
  return Rect(Width, Height, Amount, Rotate::Any, Value);
}

Job Locked(Job AJob) {
  for (Part& part : AJob.Parts) part.Turn = Rotate::None;
  return AJob;
}

// A job that no bound settles.
Job LongJob() {
  return FillJob(1000, 700, {Rect(313, 207, 5), Rect(171, 133, 9), Rect(97, 83, 14), Rect(223, 61, 11)}, 3);
}

// A plate that is higher than wide is where nesters exchange axes.
TEST(RunFill, LocksLeaveThePlateFull) {
  const std::vector<Part> parts = {Rect(400, 260, 9), Rect(300, 120, 20), Rect(90, 70, 30)};
  for (const auto& [width, height] : {std::pair(1400, 900), std::pair(900, 1400)}) {
    Job job = FillJob(width, height, parts, 3);
    job.Run.TimeLimit = 0.4;
    for (const char* method : {"auto", "smart", "rskf"})
      EXPECT_GT(Answer(With(Locked(job), method)).Total.Usage, 0.85) << method;
    job.Parts[1].Turn = Rotate::None;
    EXPECT_GT(Answer(job).Total.Usage, 0.85);
  }
}

TEST(RunFill, EachMethodFillsThePlateInEveryUnit) {
  for (const char* method : {"smart", "raster", "rskf", "bigfirst"}) {
    const auto answer = [method](const char* unit) {
      const auto in = [unit](double length) { return std::stod(std::to_string(length) + unit); };
      Job job = FillJob(in(2440), in(1220),
                        {Rect(in(600), in(400), 8), Rect(in(395), in(300), 12), Rect(in(212.5), in(180), 25)}, in(2.5));
      job.Run.Deterministic = true;
      return Answer(With(job, method));
    };
    const Result wanted = answer("");
    EXPECT_EQ(Placed(answer("e-3")), Placed(wanted)) << method;
    EXPECT_GT(wanted.Total.Usage, 0.9) << method;
  }
}

// Whatever their size, and beside areas: 62500 for a small part without a value.
TEST(RunFill, StatedValuesReplaceAreas) {
  for (const double scale : {1e-9, 1.0, 1e12}) {
    Job job = FillJob(1000, 500, {Worthy(1000, 500, 1, 9 * scale), Worthy(250, 250, 8, 1.5 * scale)});
    for (const char* method : {"auto", "raster", "rskf"})
      EXPECT_THAT(Placed(Answer(With(job, method))), ElementsAre(0, 8)) << scale;
    job.Parts[0].Value = 12.5 * scale;
    EXPECT_THAT(Placed(Answer(job)), ElementsAre(1, 0)) << scale;
  }
  for (const int value : {499999, 500001})
    EXPECT_EQ(Placed(Answer(FillJob(1000, 500, {Worthy(1000, 500, 1, value), Rect(250, 250, 8)})))[0], value > 500000);
  // A raised value is found however small all values are.
  Job job = With(LongJob(), "smart");
  for (Part& part : job.Parts) part.Value = 1e-12;
  Result raised = Answer(job);
  raised.Total.Value = raised.Bounds[0].Value;
  raised.Proved = true;
  EXPECT_THAT(Verdict(job, raised), testing::StartsWith("/summary/value"));
}

TEST(RunFill, PlacesWhatFitsAndSaysWhyTheRestIsLeft) {
  Job margin = FillJob(1015, 1015, {Rect(195, 95, 25), Rect(395, 195, 5), Rect(95, 45, 20)}, 5);
  margin.Margin = {10, 10, 10, 10};
  // Their decimals are many, but sixteenths are few.
  const Job inches = FillJob(95.9375, 47.9375, {Rect(11.9375, 7.9375, 24), Rect(5.9375, 3.9375, 96)}, 0.0625);
  // Tiny parts of which many are asked for, which one method leaves out and others bundle.
  const Job tiny = FillJob(1000, 1000, {Rect(600, 1000, 1), Rect(20, 20, 900)});
  const std::tuple<Job, const char*, const char*> cases[] = {
      {margin, "auto", "25 5 20 complete proved"},
      {FillJob(0.3, 0.1, {Rect(0.1, 0.1, 5)}), "auto", "3 partial no_stock proved"},
      {FillJob(0.3, 0.1, {Rect(0.1, 0.1)}), "auto", "3 complete proved"},
      {FillJob(800, 600, {Rect(800, 600, 1), Rect(10, 10, 1)}), "auto", "1 0 partial no_stock proved"},
      {FillJob(800, 600, {Rect(600, 800, 1)}, 7), "auto", "1 complete proved"},
      {Locked(FillJob(100, 50, {Rect(20, 80, 1), Rect(80, 20, 1)})), "auto", "0 1 partial too_large proved"},
      {FillJob(100, 50, {Rect(10, 10, 51), Rect(101, 10, 1)}), "auto", "50 0 partial no_stock too_large proved"},
      {FillJob(100, 50, {Rect(60, 50, 2), Rect(7, 9, 60)}), "smart", "1 30 partial left_by_method left_by_method"},
      {inches, "raster", "24 96 complete proved"},
      {inches, "rskf", "24 96 complete proved"},
      {tiny, "smart", "1 900 complete proved"},
      {tiny, "rskf", "1 900 complete proved"},
      {tiny, "auto", "1 900 complete proved"},
      // Too little for a nest that wants a full plate.
      {FillJob(1000, 1000, {Rect(300, 200, 4)}), "raster",
       "4 complete proved, raster placed nothing; the layout of smart stands"},
  };
  for (const auto& [job, method, told] : cases) {
    const Result result = Answer(With(job, method));
    EXPECT_EQ(Told(result), told) << method << JobToJson(job);
    EXPECT_TRUE(method == std::string("auto") || (result.Run.Method == method) == result.Warnings.empty());
  }
}

TEST(RunFill, StopAndTimeKeepTheBestAnswerSoFar) {
  int events = 0;
  const auto onProgress = [&](const Progress& now) {
    EXPECT_EQ(now.Phase, "smart");
    EXPECT_GT(now.BoundValue.value_or(0), 1e5);
    return ++events > 1;
  };
  const Result stopped = Answer(LongJob(), {.OnProgress = onProgress, .Stop = nullptr});
  EXPECT_EQ(std::tuple(events, stopped.Status, stopped.Run.Method), std::tuple(1, ResultStatus::Stopped, "smart"));
  EXPECT_NE(stopped.Parts[0].Reason, "left_by_method");

  Job job = LongJob();
  job.Run.TimeLimit = 5;
  for (const std::string method : {"auto", "bigfirst"}) {
    TFakeClock clock;
    clock.AdvanceAtEachReading(2000);
    const Result cut = Answer(With(job, method));
    EXPECT_EQ(std::tuple(cut.Status, cut.Run.Method, cut.Parts[1].Reason, cut.Warnings.empty()),
              std::tuple(ResultStatus::TimeLimit, "smart", "time", method == "auto"));
    EXPECT_GT(cut.Total.Usage, 0.5);
  }
  job.Run = {.TimeLimit = 0.0001, .Deterministic = true};
  EXPECT_EQ(Answer(job).Status, ResultStatus::TimeLimit);
  job.Run.TimeLimit = 0;
  EXPECT_EQ(Answer(job).Status, ResultStatus::Partial);
}

// Best fit would place a few of them only.
TEST(RunFill, ManySizesHaveAnAnswerHoweverShortTheTimeIs) {
  for (const int locked : {0, 50, 100}) {
    TRandom random(7);
    Job job = FillJob(900, 1400, {}, 2);
    for (int i = 0; i < 2000; ++i)
      job.Parts.push_back(
          Rect(random.Pick(8, 40), random.Pick(8, 60), 5, random.Chance(locked) ? Rotate::None : Rotate::Any));
    GiveIds(job);
    job.Run.TimeLimit = 0.001;
    const Result result = Answer(job);
    EXPECT_EQ(std::tuple(result.Status, result.Run.Method), std::tuple(ResultStatus::TimeLimit, "rows"));
    EXPECT_GT(*result.Total.Value, 0.9 * result.Bounds[0].Value) << locked;
  }
}

}  // namespace
}  // namespace platenest
