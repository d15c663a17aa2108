#include <algorithm>
#include <cmath>

#include "FillJob.h"
#include "JobFrame.h"
#include "Road.h"

namespace platenest::test {
namespace {

// A worth of 0 is refused; some jobs have margins, or locks on some parts.
TJobCase MakeCase(unsigned Seed) {
  const TFillCase fill = MakeFillCase(PicksOf(Seed));
  Job job = FillJobOf(fill, 0);
  const double millimetres = fill.Plate.Width() * 1000;
  if (std::fabs(millimetres - std::round(millimetres)) > 1e-6) job.Units = "in";
  for (std::size_t i = 0; i < job.Parts.size(); ++i) {
    if (job.Parts[i].Value == 0.0) job.Parts[i].Value = 0.01;
    if (Seed % 4 == 0 && i % 2 == 0) job.Parts[i].Turn = Rotate::None;
  }
  if (Seed % 3 == 0) job.Margin = {fill.Plate.Width() / 100, 0, 0, fill.Plate.Height() / 50};
  return {job, {}};
}

// Methods that turn freely refuse jobs with locks.
void AskForFill(TJobCase& Case, const std::string& Method) {
  Case.AJob.Run.Method = Method;
  if (Method == "auto" || Method == "smart") return;
  for (Part& part : Case.AJob.Parts) part.Turn = Rotate::Any;
}

const TRoad kRoad = {.Methods = {"auto", "smart", "raster", "rskf", "bigfirst"},
                     .Make = MakeCase,
                     .Ask = AskForFill,
                     .Judge = JobFault,
                     .Seconds = 0.05};

// The widest campaign so far: PLATENEST_ROUNDS=100, which is 3000 jobs.
TEST(Fill, EveryNesterKeepsPlateGapAndAmounts) {
  ForEachSeed(kSeeds, [](unsigned seed) {
    const TFillCase job = MakeFillCase(PicksOf(seed));
    for (const TFillMethod method : kFillMethods) {
      TNestedRects layout;
      ASSERT_NO_THROW(layout = RunFillSmall(method, job)) << NameOf(method) << ": " << TextOf(job);
      EXPECT_EQ(FillFault(method, layout, job), "") << NameOf(method) << ": " << TextOf(job);
    }
  });
}

TEST(Fill, AnswersAreValidAndWithinTheirBounds) {
  ExpectValidAnswers(kRoad);
}

TEST(Fill, StoppingAtAnyMomentGivesAValidAnswerOrNone) {
  ExpectValidAnswersWhenStopped(kRoad);
}

TEST(Fill, MoreTimeIsNeverWorseAndEqualJobsGiveEqualBytes) {
  ExpectEqualBytesAndNoLossByMoreTime(kRoad, 0.01);
}

TEST(Fill, TurningNeverCostsWorth) {
  ForEachSeed(6, [](unsigned seed) {
    Job job = CaseOf(kRoad, seed, 0, "auto").AJob;
    job.Run.Deterministic = true;
    job.Parts.resize(std::min<std::size_t>(job.Parts.size(), 3));
    for (Part& part : job.Parts) part.Amount = std::min(part.Amount.value_or(5), 5);
    double worths[2] = {};
    for (const Rotate turn : {Rotate::None, Rotate::Any}) {
      for (Part& part : job.Parts) part.Turn = turn;
      worths[turn == Rotate::Any] = *run(job).Total.Value;
    }
    EXPECT_GE(worths[1], worths[0] * (1 - 1e-11)) << JobToJson(job);
  });
}

}  // namespace
}  // namespace platenest::test
