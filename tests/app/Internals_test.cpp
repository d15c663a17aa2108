#include <chrono>
#include <new>
#include <stdexcept>
#include <thread>

#include "Process.h"
#include "Program.h"
#include "ProgressView.h"

// The program around runs that the library gives only on a bad day, or not at a chosen moment.
namespace platenest {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

Start RunWith(const Runner& Answer, const std::string& More = {}) {
  const std::vector<std::string> words = Split("one --plate 100x100 --part 10x10 --amount 7 " + More);
  return {.Body = [words, Answer] { return RunProgram(words, Answer); }};
}

Progress StepAt(double Usage) {
  return {0, "step", 1, Usage, 3, 8.0};
}

template <class Error>
Runner Throwing(const Error& AnError) {
  return [AnError](const Job&, const RunHooks&) -> Result { throw AnError; };
}

Result RunUntilStopped(const Job& AJob, const RunHooks& Hooks) {
  Hooks.OnProgress(StepAt(0.25));
  while (!Hooks.Stop->StopRequested()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  Result result = run(AJob, {});
  result.Status = ResultStatus::Stopped;
  return result;
}

TEST(ExitCodes, FollowTheErrorKindAndInternalFaultsLeaveAFileThatShowsThemAgain) {
  const Fault fault{"x", "/parts/0", "text", ""};
  const std::string kept = "; the job stands in platenest-reproduction.json";
  const std::tuple<Runner, int, std::string> cases[] = {
      {Throwing(InputError(fault)), 3, ""},
      {Throwing(LimitError(fault)), 4, ""},
      {Throwing(FileError(fault)), 5, ""},
      {Throwing(MemoryError(fault)), 6, ""},
      {Throwing(std::bad_alloc()), 6, ""},
      {Throwing(StoppedError(fault)), 7, ""},
      {Throwing(CheckError(fault)), 70, "text" + kept + "\n"},
      {Throwing(std::logic_error("unheard of")), 70, "internal fault" + kept + " (unheard of)\n"},
  };
  for (const auto& [answer, code, message] : cases) {
    const TempFolder folder;
    Start start = RunWith(answer);
    start.Folder = folder.Path();
    const Outcome outcome = Execute(start);
    EXPECT_TRUE(outcome.Exit == code && outcome.Out.empty()) << outcome.Exit;
    EXPECT_THAT(outcome.Err, AllOf(StartsWith("platenest: error: "), HasSubstr(message)));
    EXPECT_EQ(Size(folder.List()), code == 70 ? 1 : 0);
    if (code != 70) continue;
    EXPECT_EQ(ParseJob(folder.Read("platenest-reproduction.json")).Parts.front().Amount, 7);
  }
}

// Where nothing improves the former line comes again, with a later time.
TEST(Stop, TheBestAnswerSoFarIsWrittenAndObjectsGoOnUntilThen) {
  Process process(RunWith(RunUntilStopped, "--json-progress"));
  process.AwaitError("\n{\"t\":");
  process.Signal(SIGINT);
  const Outcome outcome = process.Finish();
  EXPECT_EQ(outcome.Exit, 0);
  EXPECT_EQ(ParseResult(outcome.Out).Status, ResultStatus::Stopped);
  EXPECT_THAT(outcome.Err, HasSubstr(R"("phase":"step","plates":1,"usage":0.25)"));
}

const Runner kThreeSteps = [](const Job& job, const RunHooks& hooks) {
  for (int i = 1; i <= 3; ++i) hooks.OnProgress(StepAt(0.25 * i));
  return run(job, {});
};

TEST(ProgressLines, ObjectsAreHeldBackButTheLastNewsComes) {
  const Runner manySteps = [](const Job& job, const RunHooks& hooks) {
    for (int i = 0; i < 1000; ++i) hooks.OnProgress(StepAt(0.25));
    hooks.OnProgress(StepAt(0.75));
    return run(job, {});
  };
  const std::string err = Execute(RunWith(manySteps, "--json-progress")).Err;
  EXPECT_LE(std::count(err.begin(), err.end(), '\n'), 50);
  EXPECT_THAT(err, HasSubstr(R"("usage":0.75)"));
}

TEST(ProgressLines, TellPlatesUseBoundAndLinearProgram) {
  const Progress now{12.3456, "cg", 8, 0.91362, 0, 8, 7.312345, 7.25};
  EXPECT_EQ(ProgressText(now), "cg  12 s  plates 8  use 91.4 %  bound 8  lp 7.31  unplaced 0");
  EXPECT_EQ(
      ProgressJson(now),
      R"({"t":12.346,"phase":"cg","plates":8,"usage":0.9136,"unplaced":0,"bound":8,"lp":7.3123,"estimate":7.25})");
}

TEST(ProgressLines, OneLineOfATerminalIsRewrittenAndLeftEmpty) {
  Start start = RunWith(kThreeSteps);
  start.TerminalErr = true;
  const std::string err = Execute(start).Err;
  EXPECT_THAT(err, StartsWith("\rstep  0 s  plates 1  use 25.0 %"));
  const std::string summary = err.substr(err.rfind('\r', err.find("complete")));
  EXPECT_THAT(summary, StartsWith("\rcomplete, "));
  EXPECT_EQ(err.find("\033"), std::string::npos);
  start.TerminalErr = false;
  EXPECT_THAT(Execute(start).Err, StartsWith("step  0 s  plates 1  use 25.0 %  bound 8  unplaced 3\n"
                                             "step  0 s  plates 1  use 50.0 %  bound 8  unplaced 3\n"));
}

TEST(ProgressLines, PaceIsAtMostFiveASecondAndAtLeastOneInTwo) {
  ProgressPace pace(1000);
  EXPECT_FALSE(pace.IsDue(1001, false)) << "nothing to repeat yet";
  EXPECT_TRUE(pace.IsDue(1001, true)) << "the first news";
  pace.LastMs = 2000;
  EXPECT_FALSE(pace.IsDue(2249, true)) << "the last news at the end of a run come on top";
  EXPECT_TRUE(pace.IsDue(3950, false)) << "the beat is 50 ms";
}

}  // namespace
}  // namespace platenest
