#include "CircleCase.h"
#include "CircleJudge.h"
#include "Road.h"

namespace platenest::test {
namespace {

const TRoad kRoad = {.Methods = {"auto", "pack", "pattern"},
                     .Make = MakeCircleCase,
                     .Ask = AskForCircles,
                     .Judge = CircleFault,
                     .Seconds = 0.1,
                     .ManyThreads = 3};

TEST(Circles, AnswersAreValidAndLoseNothing) {
  ExpectValidAnswers(kRoad);
}

TEST(Circles, StoppingAtAnyMomentGivesAValidAnswerOrNone) {
  ExpectValidAnswersWhenStopped(kRoad);
}

TEST(Circles, MoreTimeIsNeverWorseAndThreadsDoNotCount) {
  ExpectEqualBytesAndNoLossByMoreTime(kRoad, 0.3);
}

}  // namespace
}  // namespace platenest::test
