#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "CommandTable.h"
#include "Process.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> Split(const std::string& Line) {
  std::istringstream stream(Line);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

constexpr const char* kFileJob =
    R"({"schema": "platenest-job/1", "name": "shelf", "kind": "one", "units": "cm", "gap": 7, "margin": [1, 2, 3, 4],
        "plates": [{"id": "board", "width": 500, "height": 400}],
        "parts": [{"id": "shelf", "width": 90, "height": 40, "amount": 3}],
        "options": {"method": "strip", "time_limit": 9, "seed": 8, "threads": 2, "memory_limit": 70000000}})";

TEST(Options, WrongOnesAreNamedWithOneLineAndExitTwo) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "platenest: error: a command is missing"},
      {"nest", "platenest: error: unknown command \"nest\""},
      {"chek a b", "platenest: error: unknown command \"chek\" (did you mean check?)"},
      {"fill --plate 3x3", "platenest: error: unknown command \"fill\""},
      {"--plate 3x3 one", "platenest: error: --plate: the command comes first"},
      {"one", "platenest: error: one takes a JOB, or --plate and --part"},
      {"one --plate 10x10", "platenest: error: one takes a JOB, or --plate and --part"},
      {"one a.json b.json", "platenest: error: one takes [JOB], found 2 words"},
      {"one --gpa 3", "platenest: error: --gpa: unknown option (did you mean --gap?)"},
      {"one --html x", "platenest: error: --html: unknown option"},
      {"one --plates p.csv", "platenest: error: --plates: has no meaning for one"},
      {"one --gap", "platenest: error: --gap: needs a value"},
      {"one --quiet=no", "platenest: error: --quiet: takes no value"},
      {"one --csv --quiet", "platenest: error: --csv: needs a value, found the option --quiet"},
      {"one --gap 1 --gap 2", "platenest: error: --gap: given more than once"},
      {"one --plate 2440*1220 --part 3x2", "platenest: error: --plate: must be WIDTHxHEIGHT, for example 2440x1220"},
      {"one --plate 2440x --part 3x2", "platenest: error: --plate: must be WIDTHxHEIGHT"},
      {"one --plate infx5 --part 3x2", "platenest: error: --plate: must be WIDTHxHEIGHT"},
      {"one --plate 9x9 --part 3x2 --gap 1,5", "platenest: error: --gap: must be a number, found \"1,5\""},
      {"one --plate 9x9 --part 3x2 --gap 1e999", "platenest: error: --gap: must be a number"},
      {"one --plate 9x9 --part 3x2 --gap -1", "platenest: error: --gap: "},
      {"one --plate 9x9 --part -3x2", "platenest: error: --part: width "},
      {"one --plate 9x0 --part 3x2", "platenest: error: --plate: height "},
      {"one --plate 9x9 --part 3x2 --amount 0", "platenest: error: --amount: "},
      {"one --plate 9x9 --part 3x2 --margin 1,2,3", "platenest: error: --margin: must be one number, or four"},
      {"one --plate 9x9 --part 3x2 --units ell", "platenest: error: --units: "},
      {"one --plate 9x9 --part 3x2 --method magic", "platenest: error: --method: "},
      {"one --plate 9x9 --part 3x2 --seed -1", "platenest: error: --seed: must be a whole number of at least 0"},
      {"one --plate 9x9 --part 3x2 --memory-limit 5T", "platenest: error: --memory-limit: must be a number of bytes"},
      {"one --plate 9x9 --part 3x2 --memory-limit 9e18", "platenest: error: --memory-limit: must be a number of bytes"},
      {"check a.json", "platenest: error: check takes JOB RESULT, found 1 word"},
      {"check - -", "platenest: error: check can take one of JOB and RESULT as -"},
      {"convert a.json b.dxf", "platenest: error: OUTPUT must end in .json, .csv or .txt"},
      {"convert - b.json", "platenest: error: INPUT must end in .json, .csv or .txt"},
      {"convert a.csv b.json", "platenest: error: a table of parts holds no plate"},
      {"schema jobs", "platenest: error: schema takes job or result"},
      {"schema job --gap 3", "platenest: error: --gap: has no meaning for schema"},
  };
  for (const auto& [line, message] : cases) {
    const Outcome outcome = Execute(Split(line));
    EXPECT_EQ(outcome.Exit, 2) << line;
    EXPECT_EQ(outcome.Out, "") << line;
    EXPECT_THAT(outcome.Err, StartsWith(message)) << line;
    EXPECT_EQ(outcome.Err.find('\n'), outcome.Err.size() - 1) << line;
  }
}

TEST(Options, EveryUnreadableValueIsNamedInOneRun) {
  const Outcome outcome = Execute({"one", "--plate", "9", "--part", "x", "--gap", "b"});
  EXPECT_EQ(outcome.Exit, 2);
  for (const char* name : {"--plate: ", "--part: ", "--gap: "}) EXPECT_THAT(outcome.Err, HasSubstr(name));
}

TEST(Options, StandForAWholeJob) {
  const Outcome outcome = Execute(Split("one --plate 1e3x5E2 --part 300x200 --deterministic"));
  ASSERT_EQ(outcome.Exit, 0) << outcome.Err;
  const Result result = ParseResult(outcome.Out);
  ASSERT_EQ(result.Parts.size(), 1U);
  EXPECT_EQ(result.Parts.front().Placed, 8);
  EXPECT_EQ(result.Layouts.front().Width, 1000);
  EXPECT_EQ(result.Status, ResultStatus::Complete);
}

TEST(Options, WinOverTheJobFileAndTheResultRepeatsWhatWasInForce) {
  Start start;
  start.Words = {"one", "-"};
  const Result fromFile = ParseResult(Execute(start, kFileJob).Out);
  EXPECT_EQ(fromFile.Gap, 7);
  EXPECT_EQ(fromFile.Run.Seed, 8U);
  EXPECT_EQ(fromFile.Parts.front().Placed, 3);

  start.Words = Split(
      "one - --plate 600x300 --part 80x50 --amount 2 --gap 0.5 --margin 4,3,2,1 --units in --method trim "
      "--time-limit 3 --seed 18446744073709551615 --threads 1 --memory-limit 80M");
  const Outcome outcome = Execute(start, kFileJob);
  ASSERT_EQ(outcome.Exit, 0) << outcome.Err;
  const Result result = ParseResult(outcome.Out);
  EXPECT_EQ(result.Name, "shelf");
  EXPECT_EQ(result.Gap, 0.5);
  EXPECT_EQ(result.Margin, (std::array<double, 4>{4, 3, 2, 1}));
  EXPECT_EQ(result.Units, "in");
  EXPECT_EQ(result.Plates.front().Id, "board");
  EXPECT_EQ(result.Layouts.front().Width, 600);
  EXPECT_EQ(result.Parts.front().Id, "shelf");
  EXPECT_EQ(result.Parts.front().Amount, 2);
  EXPECT_EQ(result.Run.Method, "trim");
  EXPECT_EQ(result.Run.TimeLimit, 3);
  EXPECT_EQ(result.Run.Seed, 18446744073709551615U);
  EXPECT_EQ(result.Run.Threads, 1);
  EXPECT_EQ(result.Run.MemoryLimit, Int64{80} << 20);
}

TEST(Options, OneMarginStandsForFourSidesAndAFaultAtItNamesTheOption) {
  const Outcome outcome = Execute(Split("one --plate 100x100 --part 10x10 --margin 5 --quiet"));
  ASSERT_EQ(outcome.Exit, 0) << outcome.Err;
  EXPECT_EQ(ParseResult(outcome.Out).Margin, (std::array<double, 4>{5, 5, 5, 5}));
  EXPECT_THAT(Execute(Split("one --plate 100x100 --part 10x10 --margin 1,-2,3,4")).Err,
              StartsWith("platenest: error: --margin: "));
}

TEST(Options, AreNamedForLimitsToo) {
  const Outcome outcome = Execute(Split("one --plate 10000x10000 --part 2x3"));
  EXPECT_EQ(outcome.Exit, 4);
  EXPECT_THAT(outcome.Err, StartsWith("platenest: error: --amount: "));
}

TEST(Options, RequireAllTellsOfDemandThatIsLeft) {
  const std::string line = "one --plate 100x100 --part 60x60 --amount 2 --quiet";
  EXPECT_EQ(Execute(Split(line)).Exit, 0);
  const Outcome outcome = Execute(Split(line + " --require-all"));
  EXPECT_EQ(outcome.Exit, 1);
  EXPECT_EQ(ParseResult(outcome.Out).Parts.front().Unplaced, 1);
  EXPECT_EQ(Execute(Split("one --plate 100x100 --part 60x60 --quiet --require-all")).Exit, 0) << "without a demand";
}

TEST(Help, HasAPageForEveryCommandWithItsOptionsAndThePlacementConvention) {
  for (const CommandRow& command : CommandTable()) {
    const Outcome outcome = Execute({std::string(command.Name), "--help"});
    EXPECT_EQ(outcome.Exit, 0);
    EXPECT_EQ(outcome.Err, "");
    EXPECT_THAT(outcome.Out, StartsWith("Usage: platenest " + std::string(command.Name)));
    EXPECT_THAT(outcome.Out, HasSubstr("lower right corner"));
    EXPECT_THAT(outcome.Out, testing::Not(HasSubstr("--html")));
    for (const OptionRow& option : OptionTable()) {
      const bool isShown = outcome.Out.find("\n  " + std::string(option.Name) + " ") != std::string::npos;
      EXPECT_EQ(isShown, Takes(command.Id, option)) << command.Name << " " << option.Name;
    }
  }
  EXPECT_THAT(Execute({"--help"}).Out, HasSubstr("Exit codes:"));
  EXPECT_THAT(Execute({"--version"}).Out, testing::MatchesRegex("platenest [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

// The examples of the pages in their order, each as it stands there.
TEST(Help, ExamplesRunAsWritten) {
  const TempFolder folder;
  folder.Write("job.json", kFileJob);
  folder.Write("demand.txt", "1000 500\n300 200 60000 8\n");
  folder.Write("demand.csv", "id,width,height,amount\na,300,200,4\nb,450,120,2\n");
  int count = 0;
  for (const CommandRow& command : CommandTable()) {
    std::istringstream page(Execute({std::string(command.Name), "--help"}).Out);
    for (std::string line; std::getline(page, line);) {
      if (!line.starts_with("  platenest ")) continue;
      ++count;
      const Outcome outcome = Execute(Split(line.substr(12)), folder.Path());
      EXPECT_EQ(outcome.Exit, 0) << line << "\n" << outcome.Err;
    }
  }
  EXPECT_EQ(count, 2 * Size(CommandTable()));
  EXPECT_EQ(ParseJob(folder.Read("demand.json")).Kind, JobKind::Fill);
}

}  // namespace
}  // namespace platenest
