#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "Process.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

const std::vector<std::string> kSmallRun = {"one", "--plate", "100x100", "--part", "10x10", "--quiet"};

std::vector<std::string> SmallRun(const std::vector<std::string>& More) {
  std::vector<std::string> words = kSmallRun;
  words.insert(words.end(), More.begin(), More.end());
  return words;
}

TEST(Files, OutputsCarryTheirNamesAndNothingElseIsLeft) {
  const TempFolder folder;
  const Outcome outcome = Execute(SmallRun({"-o", "r.json", "--svg", "a/b", "--csv", "a/b/p.csv"}), folder.Path());
  EXPECT_EQ(outcome.Exit, 0) << outcome.Err;
  EXPECT_EQ(outcome.Out, "");
  EXPECT_THAT(folder.List(), ElementsAre("a", "r.json"));
  EXPECT_EQ(ParseResult(folder.Read("r.json")).Parts.front().Placed, 100);
  EXPECT_THAT(folder.Read("a/b/layout-001-x1.svg"), HasSubstr("<svg"));
  const std::string table = folder.Read("a/b/p.csv");
  EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 101);
}

TEST(Files, ThatCannotBeWrittenAreNamedBeforeTheRun) {
  const TempFolder folder;
  folder.Write("file", "x");
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"-o", "missing/r.json"}, "missing/r.json: cannot be written: No such file or directory"},
      {{"-o", "file/r.json"}, "file/r.json: cannot be written: Not a directory"},
      {{"-o", "."}, ".: cannot be written: Is a directory"},
      {{"--csv", "missing/p.csv"}, "missing/p.csv: cannot be written: No such file or directory"},
      {{"--svg", "file"}, "file: cannot be made a folder: Not a directory"},
      {{"--svg", "file/svg"}, "file/svg: cannot be made a folder: Not a directory"},
      {{"-o", "/dev/full"}, "/dev/full: cannot be written: No space left on device"},
  };
  for (const auto& [words, message] : cases) {
    const Outcome outcome = Execute(SmallRun(words), folder.Path());
    EXPECT_EQ(outcome.Exit, 5) << message;
    EXPECT_EQ(outcome.Err, "platenest: error: " + message + "\n");
    EXPECT_EQ(outcome.Out, "");
  }
  EXPECT_THAT(folder.List(), ElementsAre("file"));
}

TEST(Files, AWriteErrorLeavesTheFormerFileAndNoHalfOne) {
  const TempFolder folder;
  folder.Write("r.json", "former");
  Start start;
  start.Words = {"one", "--plate", "1000x1000", "--part", "10x10", "--quiet", "-o", "r.json"};
  start.Folder = folder.Path();
  start.Prepare = [] {
    const rlimit limit = {4096, 4096};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  };
  const Outcome outcome = Execute(start);
  EXPECT_EQ(outcome.Exit, 5);
  EXPECT_EQ(outcome.Err, "platenest: error: r.json: cannot be written: File too large\n");
  EXPECT_EQ(folder.Read("r.json"), "former");
  EXPECT_THAT(folder.List(), ElementsAre("r.json"));
}

TEST(Files, AreReplacedThroughLinksWithTheirPermissionsAndDevicesStay) {
  const TempFolder folder;
  folder.Write("real.json", "former");
  ASSERT_EQ(::chmod((folder / "real.json").c_str(), 0640), 0);
  ASSERT_EQ(::symlink("real.json", (folder / "link.json").c_str()), 0);
  EXPECT_EQ(Execute(SmallRun({"-o", "link.json"}), folder.Path()).Exit, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.json"));
  EXPECT_EQ(ParseResult(folder.Read("real.json")).Parts.front().Placed, 100);
  struct stat info = {};
  ASSERT_EQ(::stat((folder / "real.json").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0640U);
  EXPECT_EQ(Execute(SmallRun({"-o", "/dev/null"})).Exit, 0);
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(Files, ThatCannotBeReadExitFive) {
  const TempFolder folder;
  EXPECT_EQ(Execute({"one", "no.json"}, folder.Path()).Err,
            "platenest: error: no.json: cannot be opened: No such file or directory\n");
  for (const std::vector<std::string>& words : {std::vector<std::string>{"one", "no.json"},
                                                {"one", "."},
                                                {"check", "no.json", "-"},
                                                {"convert", "no.csv", "x.json", "--plate", "9x9"}}) {
    EXPECT_EQ(Execute(words, folder.Path()).Exit, 5) << words[0] << " " << words[1];
  }
}

TEST(Files, OverTheSizeLimitAreRefusedUnreadAndEndlessStreamsInTime) {
  const TempFolder folder;
  folder.Write("big.json", "{}");
  std::filesystem::resize_file(folder / "big.json", (Int64{64} << 20) + 1);
  const Outcome file = Execute({"one", "big.json"}, folder.Path());
  EXPECT_EQ(file.Exit, 4);
  EXPECT_EQ(file.Err, "platenest: error: big.json: must be at most 64 MiB long\n");
  Start start;
  start.Words = {"one", "/dev/zero"};
  EXPECT_EQ(Execute(start).Exit, 4);
}

TEST(Files, TooLargeForTheMemoryExitSix) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizer needs more address space than any limit leaves";
#endif
  const TempFolder folder;
  folder.Write("big.json", "");
  std::filesystem::resize_file(folder / "big.json", Int64{64} << 20);
  Start start;
  start.Words = {"one", "big.json"};
  start.Folder = folder.Path();
  start.Prepare = [] {
    const rlimit limit = {Int64{64} << 20, Int64{64} << 20};
    ::setrlimit(RLIMIT_AS, &limit);
  };
  const Outcome outcome = Execute(start);
  EXPECT_EQ(outcome.Exit, 6);
  EXPECT_EQ(outcome.Err, "platenest: error: big.json: not enough memory\n");
}

TEST(Input, FaultsNameTheFileAndThePlace) {
  const TempFolder folder;
  folder.Write("job.json", R"({"schema": "platenest-job/1", "kind": "one",
    "plates": [{"width": 100, "height": -5}], "parts": [{"width": 10, "height": 10, "amuont": 3}]})");
  const Outcome outcome = Execute({"one", "job.json"}, folder.Path());
  EXPECT_EQ(outcome.Exit, 3);
  EXPECT_THAT(outcome.Err, HasSubstr("platenest: error: job.json: /plates/0/height: "));
  EXPECT_THAT(outcome.Err, HasSubstr("platenest: error: job.json: /parts/0/amuont: "));
  EXPECT_EQ(std::count(outcome.Err.begin(), outcome.Err.end(), '\n'), 2);

  const Outcome json = Execute({"one", "job.json", "--json-progress"}, folder.Path());
  EXPECT_THAT(json.Err, HasSubstr(R"("pointer":"/plates/0/height","text":")"));
  EXPECT_THAT(json.Err, StartsWith(R"({"error":{"code":")"));
}

TEST(Input, OfAKindThatIsNotAnsweredIsRefusedAtTheKind) {
  const TempFolder folder;
  folder.Write("job.json", R"({"schema": "platenest-job/1", "kind": "fill",
    "plates": [{"width": 100, "height": 50}], "parts": [{"width": 10, "height": 10}]})");
  const Outcome outcome = Execute({"one", "job.json"}, folder.Path());
  EXPECT_EQ(outcome.Exit, 3);
  EXPECT_THAT(outcome.Err, StartsWith("platenest: error: job.json: /kind: must be `one`"));
}

TEST(Input, GarbageIsRefusedInOneSafeLine) {
  Start start;
  start.Words = {"one", "-"};
  std::string bytes;
  for (int i = 0; i < 4096; ++i) bytes += static_cast<char>((i * 7919) >> 3);
  for (const std::string& text :
       {bytes, std::string("{\"\x1b[2J\\u001b[2J\": 1}"), std::string(100000, '['), std::string()}) {
    const Outcome outcome = Execute(start, text);
    EXPECT_TRUE(outcome.Exit == 3 || outcome.Exit == 4) << outcome.Exit;
    EXPECT_THAT(outcome.Err, StartsWith("platenest: error: standard input: "));
    EXPECT_EQ(outcome.Err.find('\x1b'), std::string::npos);
  }
}

TEST(Input, ComesFromANamedPipeToo) {
  const TempFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  Start start;
  start.Words = {"one", "pipe", "--quiet"};
  start.Folder = folder.Path();
  Process process(start);
  folder.Write("pipe", R"({"schema": "platenest-job/1", "kind": "one", "plates": [{"width": 9, "height": 9}],
    "parts": [{"width": 3, "height": 3}]})");
  const Outcome outcome = process.Finish();
  EXPECT_EQ(outcome.Exit, 0) << outcome.Err;
  EXPECT_EQ(ParseResult(outcome.Out).Parts.front().Placed, 9);
}

}  // namespace
}  // namespace platenest
