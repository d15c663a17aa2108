#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include "Process.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

using testing::HasSubstr;

const std::string kNineParts = "one --plate 100x100 --part 30x30 --gap 1";

TEST(Streams, ResultStandsAloneOnStandardOutput) {
  const Outcome outcome = RunLine(kNineParts);
  EXPECT_EQ(ParseResult(outcome.Out).Parts.front().Placed, 9);
  EXPECT_THAT(outcome.Err, HasSubstr("complete, 9 parts on 1 plate"));
  EXPECT_EQ(RunLine(kNineParts + " --quiet --json-progress").Err, "");
}

TEST(Streams, NumbersIgnoreTheLocale) {
  Start start{.Line = kNineParts + " --margin 0.5 --quiet --deterministic"};
  const std::string plain = Execute(start).Out;
  start.Environment = {{"LC_ALL", "de_DE.UTF-8"}, {"LANG", "de_DE.UTF-8"}};
  EXPECT_EQ(Execute(start).Out, plain);
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
  const std::tuple<std::string, bool, std::string, bool> cases[] = {
      {"one no.json", true, "", true},
      {"one no.json", false, "", false},
      {"one no.json", true, "1", false},
      {"one no.json --no-color", true, "", false},
  };
  for (const auto& [line, terminal, noColor, coloured] : cases) {
    const Start start{.Line = line, .Environment = {{"TERM", "xterm"}, {"NO_COLOR", noColor}}, .TerminalErr = terminal};
    const std::string err = Execute(start).Err;
    EXPECT_THAT(err, HasSubstr(coloured ? "\033[1;31merror:\033[0m no.json" : "error: no.json"));
    EXPECT_EQ(err.find('\033') != std::string::npos, coloured);
  }
}

TEST(Signals, TheFirstOneEndsAWaitForInputAtOnce) {
  for (const int number : {SIGINT, SIGTERM}) {
    Process process({.Line = "one -"});
    process.Feed("{");
    process.Signal(number);
    process.AwaitError("stopped before any result");  // while standard input stays open
    EXPECT_EQ(process.Finish().Exit, 7);
  }
}

// Two different signals, since two equal ones that come close together count as one. The program hangs in its output.
TEST(Signals, OneDuringTheOutputDoesNotCutItButTheSecondLeavesAtOnce) {
  for (const bool twice : {false, true}) {
    Process process({.Line = "one --plate 2000x2000 --part 10x10 --quiet", .PipeBytes = 4096});
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
