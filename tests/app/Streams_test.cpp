#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Process.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

using testing::HasSubstr;
using testing::Not;

Start SmallRun(const std::vector<std::string>& More = {}) {
  Start start;
  start.Words = {"one", "--plate", "100x100", "--part", "30x30", "--gap", "1"};
  start.Words.insert(start.Words.end(), More.begin(), More.end());
  return start;
}

TEST(Streams, ResultStandsAloneOnStandardOutput) {
  const Outcome outcome = Execute(SmallRun());
  EXPECT_EQ(ParseResult(outcome.Out).Parts.front().Placed, 9);
  EXPECT_THAT(outcome.Err, HasSubstr("complete, 9 parts on 1 plate"));
  EXPECT_EQ(Execute(SmallRun({"--quiet"})).Err, "");
  EXPECT_EQ(Execute(SmallRun({"--quiet", "--json-progress"})).Err, "");
}

TEST(Streams, NumbersIgnoreTheLocale) {
  Start start = SmallRun({"--margin", "0.5", "--quiet", "--deterministic"});
  const std::string plain = Execute(start).Out;
  start.Environment = {{"LC_ALL", "de_DE.UTF-8"}, {"LANG", "de_DE.UTF-8"}};
  EXPECT_EQ(Execute(start).Out, plain);
}

TEST(Streams, AClosedOrFullOutputIsAFileError) {
  Start start = SmallRun();
  start.Prepare = [] { ::close(STDOUT_FILENO); };
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
  Start start = SmallRun({"-o", "r.json"});
  start.Folder = folder.Path();
  start.Prepare = [] {
    for (const int fd : {0, 1, 2}) ::close(fd);
  };
  EXPECT_EQ(Execute(start).Exit, 0);
  EXPECT_EQ(ParseResult(folder.Read("r.json")).Parts.front().Placed, 9);
}

TEST(Streams, ColoursStandOnTerminalsOnly) {
  Start start;
  start.Words = {"one", "no.json"};
  start.Environment = {{"TERM", "xterm"}, {"NO_COLOR", ""}};
  EXPECT_THAT(Execute(start).Err, Not(HasSubstr("\033")));
  start.TerminalErr = true;
  EXPECT_THAT(Execute(start).Err, HasSubstr("\033[1;31merror:\033[0m no.json"));
  start.Environment["NO_COLOR"] = "1";
  EXPECT_THAT(Execute(start).Err, Not(HasSubstr("\033")));
  start.Environment["NO_COLOR"] = "";
  start.Words.push_back("--no-color");
  EXPECT_THAT(Execute(start).Err, Not(HasSubstr("\033")));
}

TEST(Signals, TheFirstOneEndsAWaitForInputAtOnce) {
  for (const int number : {SIGINT, SIGTERM}) {
    Start start;
    start.Words = {"one", "-"};
    Process process(start);
    process.Feed("{");
    process.Signal(number);
    process.AwaitError("stopped before any result");  // while standard input stays open
    EXPECT_EQ(process.Finish().Exit, 7);
  }
}

TEST(Signals, APipeWithoutAWriterIsGivenUpToo) {
  const TempFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  Start start;
  start.Words = {"one", "pipe"};
  start.Folder = folder.Path();
  Process process(start);
  process.AwaitHandler(SIGINT);
  process.Signal(SIGINT);
  EXPECT_EQ(process.Finish().Exit, 7);
}

// Two different signals, since two equal ones that come close together count as one. The program hangs in its output.
TEST(Signals, TheSecondOneLeavesAtOnce) {
  Start start;
  start.Words = {"one", "--plate", "2000x2000", "--part", "10x10", "--quiet"};
  start.PipeBytes = 4096;
  Process process(start);
  process.AwaitOutput();
  process.Signal(SIGINT);
  process.Signal(SIGTERM);
  EXPECT_EQ(process.Finish().Exit, 130);
}

TEST(Signals, OneThatComesDuringTheOutputDoesNotCutIt) {
  Start start;
  start.Words = {"one", "--plate", "2000x2000", "--part", "10x10", "--quiet"};
  start.PipeBytes = 4096;
  Process process(start);
  process.AwaitOutput();
  process.Signal(SIGINT);
  const Outcome outcome = process.Finish();
  EXPECT_EQ(outcome.Exit, 0);
  EXPECT_EQ(ParseResult(outcome.Out).Parts.front().Placed, 40000);
}

}  // namespace
}  // namespace platenest
