#include <sys/resource.h>
#include <sys/stat.h>

#include "Process.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kNineParts = R"({"schema": "platenest-job/1", "kind": "one",
    "plates": [{"width": 9, "height": 9}], "parts": [{"width": 3, "height": 3}]})";
constexpr Int64 kMostBytes = Int64{64} << 20;
const std::string kSmallRun = "one --plate 100x100 --part 10x10 --quiet";

std::string Replaced(std::string Text, const std::string& From, const std::string& To) {
  return Text.replace(Text.find(From), From.size(), To);
}

template <int Resource, Int64 Bytes>
void Limit() {
  const rlimit limit = {Bytes, Bytes};
  ::setrlimit(Resource, &limit);
}

TEST(Files, FaultsNameTheFileAndThePlaceAndLeaveAllAsItWas) {
  const TempFolder folder;
  folder.Write("file", "former");
  folder.Write("job.json", kNineParts);
  folder.Write("bad.json", Replaced(kNineParts, "9,", "\"9\","));
  folder.Write("r.json", "[]");
  folder.Write("demand.csv", "id,width,height,amount\nside,720,560,2.5\n");
  folder.Write("big.json", kNineParts);
  std::filesystem::resize_file(folder / "big.json", kMostBytes + 1);
  const std::set<std::string> names = folder.List();
  ExpectCases(folder,
              {{3, "check job.json r.json", "r.json: "},
               {3, "check bad.json r.json", "bad.json: /plates/0/width: "},
               {3, "convert " + folder / "demand.csv" + " r.json --plate 9x9", folder / "demand.csv" + ":2:amount: "},
               {4, "one --plate 10000x10000 --part 2x3", "--amount: "},
               {4, "one big.json", "big.json: must be at most 64 MiB long\n"},
               {4, "one /dev/zero", "/dev/zero: "},
               {5, "one no.json", "no.json: cannot be opened: No such file or directory\n"},
               {5, kSmallRun + " -o missing/r.json", "missing/r.json: cannot be written: No such file or directory\n"},
               {5, kSmallRun + " -o .", ".: cannot be written: Is a directory\n"},
               {5, kSmallRun + " --svg file", "file: cannot be made a folder: Not a directory\n"},
               {5, kSmallRun + " -o /dev/full", "/dev/full: cannot be written: No space left on device\n"}});
  EXPECT_EQ(folder.List(), names);
  EXPECT_EQ(folder.Read("file") + folder.Read("r.json"), "former[]");
}

TEST(Files, AWriteErrorLeavesTheFormerFileAndNoHalfOne) {
  const TempFolder folder;
  folder.Write("r.json", "former");
  const Outcome outcome = Execute({.Line = "one --plate 1000x1000 --part 10x10 --quiet -o r.json",
                                   .Folder = folder.Path(),
                                   .Prepare = Limit<RLIMIT_FSIZE, 4096>});
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
  EXPECT_EQ(folder.Run(kSmallRun + " -o link.json --svg a/b --csv a/b/p.csv").Out, "");
  EXPECT_THAT(folder.List(), ElementsAre("a", "link.json", "real.json"));
  EXPECT_THAT(folder.Read("a/b/p.csv"), HasSubstr("\n1,plate-1,1,part-1,"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.json"));
  EXPECT_EQ(ParseResult(folder.Read("real.json")).Parts.front().Placed, 100);
  EXPECT_EQ(std::filesystem::status(folder / "real.json").permissions(), std::filesystem::perms{0640});
  EXPECT_EQ(RunLine(kSmallRun + " -o /dev/null").Exit, 0);
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(Files, TooLargeForTheMemoryExitSix) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizer needs more address space than any limit leaves";
#endif
  const TempFolder folder;
  folder.Write("big.json", "");
  std::filesystem::resize_file(folder / "big.json", kMostBytes);
  const Outcome outcome =
      Execute({.Line = "one big.json", .Folder = folder.Path(), .Prepare = Limit<RLIMIT_AS, kMostBytes>});
  EXPECT_EQ(outcome.Exit, 6);
  EXPECT_EQ(outcome.Err, "platenest: error: big.json: not enough memory\n");
}

TEST(Input, EveryFaultStandsOnALineOfItsOwn) {
  const std::string text = Replaced(Replaced(kNineParts, "9}", "-5}"), "3}", "3, \"amuont\": 3}");
  const Outcome outcome = Execute({.Line = "one -"}, text);
  EXPECT_EQ(outcome.Exit, 3);
  EXPECT_THAT(outcome.Err, HasSubstr("platenest: error: standard input: /plates/0/height: "));
  EXPECT_THAT(outcome.Err, HasSubstr("platenest: error: standard input: /parts/0/amuont: "));
  EXPECT_EQ(std::count(outcome.Err.begin(), outcome.Err.end(), '\n'), 2);
  EXPECT_THAT(Execute({.Line = "one - --json-progress"}, text).Err, StartsWith(R"({"error":{"code":")"));
}

TEST(Input, GarbageIsRefusedInOneSafeLine) {
  std::string bytes;
  for (int i = 0; i < 4096; ++i) bytes += static_cast<char>((i * 7919) >> 3);
  for (const std::string& text : {bytes, std::string("{\"\x1b[2J\\u001b[2J\": 1}"), std::string(100000, '['), {}}) {
    const Outcome outcome = Execute({.Line = "one -"}, text);
    EXPECT_TRUE(outcome.Exit == 3 || outcome.Exit == 4) << outcome.Exit;
    EXPECT_THAT(outcome.Err, StartsWith("platenest: error: standard input: "));
    EXPECT_EQ(outcome.Err.find('\x1b'), std::string::npos);
  }
}

}  // namespace
}  // namespace platenest
