#include <gtest/gtest.h>

#include <cmath>

#include "FaultText.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

std::string ParseFaults(const std::string& Json) {
  return FaultsOf([&] { ParseResult(Json); });
}

std::string Cabinet() {
  return FileText(PLATENEST_TEST_DATA "/results/good/cabinet-written.json");
}

std::string Replaced(std::string Text, const std::string& From, const std::string& To) {
  return Text.replace(Text.find(From), From.size(), To);
}

TEST(ResultForm, TestFilesAreReadOrRefused) {
  for (const auto& file : DataFiles("results/good")) {
    const std::string text = FileText(file);
    EXPECT_EQ(ResultToJson(ParseResult(text)), text) << file;
  }
  for (const auto& file : DataFiles("results/bad")) EXPECT_NE(ParseFaults(FileText(file)), "none") << file;
}

TEST(ResultForm, FaultsHaveTheirCodeAndPlace) {
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"[570, 10]", "[570, 10, 1]", "InputError: entries /layouts/0/placements/0/trans"},
      {"730]}", "null]}", "InputError: type /layouts/0/placements/0/box/3"},
      {"\"min_clearance\": 4,", "", "InputError: missing /layouts/0"},
      {"\"rotated\": true", "\"rotate\": true",
       "InputError: unknown-key /layouts/0/placements/0/rotate, missing /layouts/0/placements/0"},
      {"\"layouts\": [",
       "\"pairs\": [{\"fixed\": \"a\", \"moving\": \"b\", \"quality\": \"exact\", \"paths\": []}], \"layouts\": [",
       "InputError: conflict /pairs"},
      {"\"threads\": 4, ", "", "InputError: missing /run"},
      {", \"seconds\": 12.4", ", \"seconds\": -1.5", "InputError: range /run/seconds"},
      {"\"left_by_method\"", "\"time limit\"", "InputError: choice /parts/1/reason"},
      {"\"the margin leaves little\"", "\"a\", 1", "InputError: type /warnings/1"},
  };
  for (const auto& [from, to, expected] : cases) EXPECT_EQ(ParseFaults(Replaced(Cabinet(), from, to)), expected) << to;
}

// Equal answers of deterministic runs must be equal bytes whatever machine they came from.
TEST(ResultForm, DeterministicRunsTellNeitherTimeNorThreads) {
  Result slow = ParseResult(Cabinet());
  slow.Run.Deterministic = true;
  Result quick = slow;
  quick.Run.Seconds = 1;
  quick.Run.Threads = 1;
  EXPECT_EQ(ResultToJson(slow), ResultToJson(quick));
  EXPECT_EQ(ParseResult(Replaced(Cabinet(), "\"deterministic\": false", "\"deterministic\": true")),
            ParseResult(ResultToJson(slow)));
}

TEST(ResultForm, NumbersTakeTheirShortestFormAndMustBeFinite) {
  Result result = ParseResult(Cabinet());
  result.Total.Usage = -0.0;
  result.Total.Cost = 4.0;
  result.Total.PartArea = 3e6;
  result.Total.PlateArea = 0.1 + 0.2;
  EXPECT_NE(ResultToJson(result).find(
                R"({"plates": 7, "usage": 0, "part_area": 3000000, "plate_area": 0.30000000000000004, "cost": 4})"),
            std::string::npos);
  result.Layouts[1].Placements[0].Trans[1] = std::nan("");
  EXPECT_EQ(FaultsOf([&] { ResultToJson(result); }), "InputError: range /layouts/1/placements/0/trans/1");
}

}  // namespace
}  // namespace platenest
