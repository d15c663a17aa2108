#include "Process.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

using testing::HasSubstr;

constexpr const char* kFileJob =
    R"({"schema": "platenest-job/1", "name": "shelf", "kind": "one", "units": "cm", "gap": 7, "margin": [1, 2, 3, 4],
        "plates": [{"id": "board", "width": 500, "height": 400}],
        "parts": [{"id": "shelf", "width": 90, "height": 40, "amount": 3}],
        "options": {"method": "strip", "time_limit": 9, "seed": 8, "threads": 2, "memory_limit": 70000000}})";

TEST(Options, WrongOnesAreNamedWithOneLineAndExitTwo) {
  ExpectCases({}, {{2, "", "a command is missing"},
                   {2, "chek a b", "unknown command \"chek\" (did you mean check?)"},
                   {2, "--plate 3x3 one", "--plate: the command comes first"},
                   {2, "one a.json b.json", "one takes [JOB], found 2 words"},
                   {2, "one --gpa 3", "--gpa: unknown option (did you mean --gap?)"},
                   {2, "one --plates p.csv", "--plates: has no meaning for one"},
                   {2, "one --gap", "--gap: needs a value"},
                   {2, "one --quiet=no", "--quiet: takes no value"},
                   {2, "one --gap 1 --gap 2", "--gap: given more than once"},
                   {2, "one --plate 2440*1220 --part 3x2", "--plate: must be WIDTHxHEIGHT, for example 2440x1220"},
                   {2, "one --plate 9x9 --part 3x2 --gap 1,5", "--gap: must be a number, found \"1,5\""},
                   {2, "one --plate 9x9 --part 3x2 --gap -1", "--gap: "},
                   {2, "one --plate 9x9 --part 3x2 --margin 1,2,3", "--margin: must be one number, or four"},
                   {2, "one --plate 9x9 --part 3x2 --memory-limit 5T", "--memory-limit: must be a number of bytes"},
                   {2, "check a.json", "check takes JOB RESULT, found 1 word"},
                   {2, "check - -", "check can take one of JOB and RESULT as -"},
                   {2, "convert a.json b.dxf", "OUTPUT must end in .json, .csv or .txt"},
                   {2, "convert a.csv b.json", "a table of parts holds no plate"},
                   {2, "schema jobs", "schema takes job or result"}});
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

TEST(Options, DeterministicRunsGiveEqualBytes) {
  const std::string line = "one --plate 2440x1220 --part 317x213 --gap 3.175 --quiet --deterministic";
  EXPECT_EQ(RunLine(line + " --threads 1").Out, RunLine(line).Out);
}

}  // namespace
}  // namespace platenest
