#include "Arguments.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

namespace platenest::bench {

const char* const kUsage =
    "usage: platenest_bench one FILE [--method strip|fiveblock] [--json FILE] [--repeat N] [--rows N] [--quiet]\n"
    "       platenest_bench fill FILE [--method auto|smart|raster|rskf|bigfirst] [--seconds S] [--id REGEX] [--json "
    "FILE]\n"
    "                                 [--quiet]\n"
    "       platenest_bench fill-exact [--pairs N] [--seed S] [--json FILE]\n"
    "       platenest_bench job FILE [--method auto|repeat|svc|cg] [--time-limit S] [--seed N] [--turn on|off]\n"
    "                                [--only PATTERN] [--all] [--deterministic] [--json FILE] [--quiet]\n"
    "       platenest_bench job-random [--pairs N] [--seed S] [--method auto|repeat|svc|cg] [--time-limit S] [--stop]\n"
    "                                  [--deterministic] [--faults FOLDER] [--json FILE]\n"
    "       platenest_bench circles [counts|strips|area|times]... [--data FOLDER] [--only PATTERN] [--every N]\n"
    "                               [--time-limit S] [--threads N] [--repeat N] [--json FILE] [--quiet]\n"
    "                               [--id patterns|columns|greedy|budgets|threads]\n"
    "       platenest_bench circles-core [--count N] [--seed S] [--json FILE]\n"
    "       platenest_bench circles-random [--count N] [--seed S] [--method auto|pattern|pack] [--time-limit S]\n"
    "                                      [--stop] [--deterministic] [--faults FOLDER] [--json FILE]\n"
    "       platenest_bench nfp FILE... [--json FILE] [--repeat N] [--most PAIRS] [--pair NUMBER] [--turned]\n"
    "                                   [--inside] [--oracle off|sampling|area] [--quiet]\n"
    "       platenest_bench nfp-random|nfp-inside|nfp-jigsaw [--pairs N] [--seed S] [--edges N] [--json FILE]\n"
    "                                   [--oracle off|sampling|area]\n"
    "       platenest_bench nfp-layout FILE...\n"
    "       platenest_bench array|label FILE... [--json FILE] [--repeat N] [--most PARTS] [--turned]\n";

namespace {

bool ReadOracle(std::string_view Word, TOracle& Oracle) {
  const std::map<std::string_view, TOracle> words = {
      {"off", TOracle::Off}, {"sampling", TOracle::Sampling}, {"area", TOracle::Area}};
  const auto found = words.find(Word);
  if (found == words.end()) return false;
  Oracle = found->second;
  return true;
}

// The first one stands for none.
bool CheckMethod(TArguments& Arguments) {
  const std::vector<std::string> jobs = {"auto", "repeat", "svc", "cg"};
  const std::map<std::string_view, std::vector<std::string>> known = {
      {"one", {"strip", "fiveblock"}},
      {"fill", {"auto", "smart", "raster", "rskf", "bigfirst"}},
      {"job", jobs},
      {"job-random", jobs},
      {"circles-random", {"auto", "pattern", "pack"}}};
  const auto suite = known.find(Arguments.Suite);
  if (suite == known.end()) return Arguments.Method.empty();
  if (Arguments.Method.empty() && !Arguments.Suite.ends_with("-random")) Arguments.Method = suite->second.front();
  return Arguments.Method.empty() || std::ranges::find(suite->second, Arguments.Method) != suite->second.end();
}

bool TakesFiles(std::string_view Suite) {
  constexpr std::array suites = {"one", "fill", "job", "nfp", "nfp-layout", "array", "label"};
  return std::find(suites.begin(), suites.end(), Suite) != suites.end();
}

bool IsSuite(std::string_view Suite) {
  constexpr std::array suites = {"fill-exact", "job-random", "nfp-random",   "nfp-inside",
                                 "nfp-jigsaw", "circles",    "circles-core", "circles-random"};
  return TakesFiles(Suite) || std::find(suites.begin(), suites.end(), Suite) != suites.end();
}

// Only the times need no data.
bool AreCircleParts(const TArguments& Arguments) {
  constexpr std::array parts = {"counts", "strips", "area", "times"};
  const auto isPart = [&parts](const std::string& word) { return std::ranges::find(parts, word) != parts.end(); };
  const bool isTimes = Arguments.Files.size() == 1 && Arguments.Files[0] == "times";
  return std::ranges::all_of(Arguments.Files, isPart) && (isTimes || !Arguments.Data.empty());
}

bool ReadOption(std::string_view Word, const std::string& Value, TArguments& Arguments) {
  const std::map<std::string_view, int*> numbers = {{"--repeat", &Arguments.Repeat}, {"--rows", &Arguments.Rows},
                                                    {"--most", &Arguments.Most},     {"--pair", &Arguments.Pair},
                                                    {"--pairs", &Arguments.Pairs},   {"--seed", &Arguments.Seed},
                                                    {"--edges", &Arguments.Edges},   {"--count", &Arguments.Pairs},
                                                    {"--every", &Arguments.Every},   {"--threads", &Arguments.Threads}};
  if (const auto number = numbers.find(Word); number != numbers.end()) {
    *number->second = std::stoi(Value);
    return true;
  }
  const std::map<std::string_view, std::string*> texts = {
      {"--json", &Arguments.Json}, {"--data", &Arguments.Data},     {"--id", &Arguments.Id},
      {"--only", &Arguments.Only}, {"--method", &Arguments.Method}, {"--faults", &Arguments.Faults}};
  if (const auto text = texts.find(Word); text != texts.end()) {
    *text->second = Value;
    return true;
  }
  if (Word == "--seconds" || Word == "--time-limit") {
    Arguments.Seconds = std::stod(Value);
    return true;
  }
  if (Word == "--turn") {
    Arguments.Turn = Value == "on";
    return Arguments.Turn || Value == "off";
  }
  return Word == "--oracle" && ReadOracle(Value, Arguments.Oracle);
}

}  // namespace

bool ReadArguments(int argc, char** argv, TArguments& Arguments) {
  const std::map<std::string_view, bool*> flags = {
      {"--quiet", &Arguments.Quiet}, {"--turned", &Arguments.Turned}, {"--inside", &Arguments.Inside},
      {"--all", &Arguments.All},     {"--stop", &Arguments.Stops},    {"--deterministic", &Arguments.Deterministic}};
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (const auto flag = flags.find(word); flag != flags.end())
      *flag->second = true;
    else if (word.starts_with("--")) {
      if (i + 1 == argc || !ReadOption(word, argv[i + 1], Arguments)) return false;
      ++i;
    } else if (Arguments.Suite.empty())
      Arguments.Suite = word;
    else
      Arguments.Files.emplace_back(word);
  }
  if (!IsSuite(Arguments.Suite)) return false;
  const bool isCircles = Arguments.Suite == "circles";
  if (isCircles && !AreCircleParts(Arguments)) return false;
  if (!isCircles && TakesFiles(Arguments.Suite) == Arguments.Files.empty()) return false;
  constexpr std::array ofOneFile = {"one", "fill", "job"};
  if (std::ranges::find(ofOneFile, Arguments.Suite) != ofOneFile.end() && Arguments.Files.size() != 1) return false;
  if (!CheckMethod(Arguments)) return false;
  return Arguments.Seconds > 0 && Arguments.Repeat > 0 && Arguments.Most > 0 && Arguments.Pairs > 0 &&
         Arguments.Every > 0;
}

}  // namespace platenest::bench
