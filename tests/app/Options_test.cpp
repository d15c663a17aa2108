#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Process.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kFileJob =
    R"({"schema": "platenest-job/1", "name": "shelf", "kind": "one", "units": "cm", "gap": 7, "margin": [1, 2, 3, 4],
        "plates": [{"id": "board", "width": 500, "height": 400}],
        "parts": [{"id": "shelf", "width": 90, "height": 40, "amount": 3}],
        "options": {"method": "strip", "time_limit": 9, "seed": 8, "threads": 2, "memory_limit": 70000000}})";

TEST(Options, WrongOnesAreNamedWithOneLineAndExitTwo) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "a command is missing"},
      {"chek a b", "unknown command \"chek\" (did you mean check?)"},
      {"--plate 3x3 one", "--plate: the command comes first"},
      {"one a.json b.json", "one takes [JOB], found 2 words"},
      {"one --gpa 3", "--gpa: unknown option (did you mean --gap?)"},
      {"one --plates p.csv", "--plates: has no meaning for one"},
      {"one --gap", "--gap: needs a value"},
      {"one --quiet=no", "--quiet: takes no value"},
      {"one --gap 1 --gap 2", "--gap: given more than once"},
      {"one --plate 2440*1220 --part 3x2", "--plate: must be WIDTHxHEIGHT, for example 2440x1220"},
      {"one --plate 9x9 --part 3x2 --gap 1,5", "--gap: must be a number, found \"1,5\""},
      {"one --plate 9x9 --part 3x2 --gap -1", "--gap: "},
      {"one --plate 9x9 --part 3x2 --margin 1,2,3", "--margin: must be one number, or four"},
      {"one --plate 9x9 --part 3x2 --memory-limit 5T", "--memory-limit: must be a number of bytes"},
      {"check a.json", "check takes JOB RESULT, found 1 word"},
      {"check - -", "check can take one of JOB and RESULT as -"},
      {"convert a.json b.dxf", "OUTPUT must end in .json, .csv or .txt"},
      {"convert a.csv b.json", "a table of parts holds no plate"},
      {"schema jobs", "schema takes job or result"},
  };
  for (const auto& [line, message] : cases) {
    const Outcome outcome = RunLine(line);
    EXPECT_TRUE(outcome.Exit == 2 && outcome.Out.empty()) << line;
    EXPECT_THAT(outcome.Err, StartsWith("platenest: error: " + message)) << line;
    EXPECT_EQ(outcome.Err.find('\n'), outcome.Err.size() - 1) << line;
  }
  const std::string err = RunLine("one --plate 9 --part x --gap b").Err;
  for (const char* name : {"--plate: ", "--part: ", "--gap: "}) EXPECT_THAT(err, HasSubstr(name));
}

TEST(Options, WinOverTheJobFileAndTheResultRepeatsWhatWasInForce) {
  const auto told = [](const std::string& line) {
    const Result r = ParseResult(Execute({.Line = line}, kFileJob).Out);
    return std::tuple(r.Name, r.Gap, r.Margin, r.Units, r.Plates[0].Id, r.Layouts[0].Width, r.Parts[0].Id,
                      r.Parts[0].Amount, r.Run.Method, r.Run.TimeLimit, r.Run.Seed, r.Run.Threads, r.Run.MemoryLimit);
  };
  EXPECT_EQ(told("one -"), std::tuple("shelf", 7, std::array{1.0, 2.0, 3.0, 4.0}, "cm", "board", 500, "shelf", 3,
                                      "strip", 9, 8U, 2, 70000000));
  EXPECT_EQ(told("one - --plate 600x300 --part 80x50 --amount 2 --gap 0.5 --margin 4,3,2,1 --units in --method trim "
                 "--time-limit 3 --seed 18446744073709551615 --threads 1 --memory-limit 80M"),
            std::tuple("shelf", 0.5, std::array{4.0, 3.0, 2.0, 1.0}, "in", "board", 600, "shelf", 2, "trim", 3,
                       18446744073709551615U, 1, Int64{80} << 20));
}

TEST(Options, RequireAllTellsOfDemandThatIsLeft) {
  const std::string line = "one --plate 100x100 --part 60x60 --quiet";
  EXPECT_EQ(RunLine(line + " --amount 2").Exit, 0);
  const Outcome outcome = RunLine(line + " --amount 2 --require-all");
  EXPECT_EQ(outcome.Exit, 1);
  EXPECT_EQ(ParseResult(outcome.Out).Parts.front().Unplaced, 1);
  EXPECT_EQ(RunLine(line + " --require-all").Exit, 0) << "without a demand";
}

}  // namespace
}  // namespace platenest
