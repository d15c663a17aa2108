// platenest_bench <suite> <data file> [--json FILE] [--repeat N] [--rows N] [--quiet]
// Solves the instances of a data file, checks each layout and prints one row per instance and a summary.
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>

#include "OneSuite.h"
#include "Report.h"

using namespace platenest::bench;

namespace {

struct TArguments {
  std::string Suite;
  std::string File;
  std::string Json;
  int Repeat = 1;
  int Rows = 0;
  bool Quiet = false;
};

bool ReadArguments(int argc, char** argv, TArguments& Arguments) {
  int place = 0;
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    const bool hasValue = i + 1 < argc;
    if (word == "--json" && hasValue)
      Arguments.Json = argv[++i];
    else if (word == "--repeat" && hasValue)
      Arguments.Repeat = std::stoi(argv[++i]);
    else if (word == "--rows" && hasValue)
      Arguments.Rows = std::stoi(argv[++i]);
    else if (word == "--quiet")
      Arguments.Quiet = true;
    else if (place == 0 && ++place)
      Arguments.Suite = word;
    else if (place == 1 && ++place)
      Arguments.File = word;
    else
      return false;
  }
  return place == 2 && Arguments.Suite == "one" && Arguments.Repeat > 0;
}

// Returns the number of invalid layouts.
int PrintSummary(const std::vector<TRow>& Rows) {
  int atBest = 0, atBound = 0, faults = 0;
  double total = 0;
  std::vector<double> times;
  for (const TRow& row : Rows) {
    atBest += row.Result >= row.Best;
    atBound += row.Result >= row.Bound;
    faults += !row.Fault.empty();
    total += row.Ms;
    times.push_back(row.Ms);
  }
  std::printf("%zu jobs, %d at the best known value, %d at the bound, %d invalid layouts\n", Rows.size(), atBest,
              atBound, faults);
  std::printf("time %.1f ms, median %.4f ms, p99 %.4f ms, worst %.4f ms, peak memory %.1f MiB\n", total,
              Quantile(times, 0.5), Quantile(times, 0.99), Quantile(times, 1), PeakMemoryMiB());
  return faults;
}

}  // namespace

int main(int argc, char** argv) {
  TArguments arguments;
  try {
    if (!ReadArguments(argc, argv, arguments)) {
      std::fputs("usage: platenest_bench one FILE [--json FILE] [--repeat N] [--rows N] [--quiet]\n", stderr);
      return 2;
    }
    const std::vector<TRow> rows = RunOneSuite(arguments.File, arguments.Repeat, arguments.Rows);
    if (!arguments.Quiet) {
      std::printf("%-24s %10s %10s %10s %10s\n", "instance", "result", "best", "bound", "ms");
      for (const TRow& row : rows)
        std::printf("%-24s %10.0f %10.0f %10.0f %10.4f %s\n", row.Id.c_str(), row.Result, row.Best, row.Bound, row.Ms,
                    row.Fault.c_str());
    }
    const int faults = PrintSummary(rows);
    if (!arguments.Json.empty()) WriteJson(arguments.Json, arguments.Suite, rows);
    return faults == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "platenest_bench: error: %s\n", error.what());
    return 1;
  }
}
