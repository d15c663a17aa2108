#include "Process.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::string kNineParts = "one --plate 100x100 --part 30x30 --gap 1";

TEST(Streams, ResultStandsAloneOnStandardOutput) {
  const Outcome outcome = RunLine(kNineParts);
  EXPECT_EQ(ParseResult(outcome.Out).Parts.front().Placed, 9);
  EXPECT_THAT(outcome.Err, HasSubstr("complete, 9 parts on 1 plate"));
  EXPECT_EQ(RunLine(kNineParts + " --quiet --json-progress").Err, "");
}

TEST(Streams, AClosedOrFullOutputIsAFileError) {
  Start start{.Line = kNineParts, .Prepare = [] { ::close(STDOUT_FILENO); }};
  EXPECT_EQ(Execute(start).Exit, 5);
  start.Prepare = [] {
    int ends[2];
    if (::pipe(ends) != 0) _exit(122);
    ::close(ends[0]);
    ::dup2(ends[1], STDOUT_FILENO);
  };
  const Outcome outcome = Execute(start);
  EXPECT_EQ(outcome.Exit, 5);
  EXPECT_THAT(outcome.Err, HasSubstr("platenest: error: standard output: cannot be written: Broken pipe"));
}

// With all three closed a file could get the number of a stream and receive what was meant for it.
TEST(Streams, MessagesNeverLandInAFile) {
  const TempFolder folder;
  const auto closeAll = [] {
    for (const int fd : {0, 1, 2}) ::close(fd);
  };
  EXPECT_EQ(Execute({.Line = kNineParts + " -o r.json", .Folder = folder.Path(), .Prepare = closeAll}).Exit, 0);
  EXPECT_EQ(ParseResult(folder.Read("r.json")).Parts.front().Placed, 9);
}

TEST(Streams, ColoursStandOnTerminalsOnly) {
  const auto told = [](const std::string& line, bool terminal, const char* noColor) {
    return Execute({.Line = line, .TerminalErr = terminal, .Prepare = [=] { ::setenv("NO_COLOR", noColor, 1); }}).Err;
  };
  const auto isPlain = AllOf(HasSubstr("error: no.json"), Not(HasSubstr("\033")));
  EXPECT_THAT(told("one no.json", true, ""), HasSubstr("\033[1;31merror:\033[0m no.json"));
  EXPECT_THAT(told("one no.json", false, ""), isPlain);
  EXPECT_THAT(told("one no.json", true, "1"), isPlain);
  EXPECT_THAT(told("one no.json --no-color", true, ""), isPlain);
}

TEST(Signals, TheFirstOneEndsAWaitForInputAtOnce) {
  for (const int number : {SIGINT, SIGTERM}) {
    Process process({.Line = "one -"});
    process.Feed(std::string(1 << 17, ' '));  // more than waits in the pipe unread
    process.Signal(number);
    process.AwaitError("stopped before any result");  // while standard input stays open
    EXPECT_EQ(process.Finish().Exit, 7);
  }
}

// Two different signals, since two equal ones that come close together count as one. The program hangs in its output.
TEST(Signals, OneDuringTheOutputDoesNotCutItButTheSecondLeavesAtOnce) {
  for (const bool twice : {false, true}) {
    Process process({.Line = "one --plate 2000x2000 --part 10x10 --quiet"});
    process.AwaitOutput();
    process.Signal(SIGINT);
    if (twice) process.Signal(SIGTERM);
    const Outcome outcome = process.Finish();
    EXPECT_EQ(outcome.Exit, twice ? 130 : 0);
    if (twice) continue;
    EXPECT_EQ(ParseResult(outcome.Out).Parts.front().Placed, 40000);
  }
}

}  // namespace
}  // namespace platenest
