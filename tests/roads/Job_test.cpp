#include "Road.h"

namespace platenest::test {
namespace {

const TRoad kRoad = {.Methods = {"auto", "repeat", "svc", "cg"},
                     .Make = MakeJobCase,
                     .Ask = [](TJobCase& made, const std::string& method) { AskFor(made.AJob, method); },
                     .Judge = JobFault,
                     .Seconds = 0.05};

TEST(Job, AnswersAreValidAndLoseNothing) {
  ExpectValidAnswers(kRoad);
}

TEST(Job, StoppingAtAnyMomentGivesAValidAnswerOrNone) {
  ExpectValidAnswersWhenStopped(kRoad);
}

TEST(Job, MoreTimeIsNeverWorseAndEqualJobsGiveEqualBytes) {
  ExpectEqualBytesAndNoLossByMoreTime(kRoad, 0.01);
}

}  // namespace
}  // namespace platenest::test
