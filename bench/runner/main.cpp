// Solves or measures the instances of data files, checks each answer and prints one row per instance and a summary.
#include <cstdio>
#include <exception>
#include <string_view>

#include "Arguments.h"
#include "ArraySuite.h"
#include "CircleCampaign.h"
#include "CircleSuite.h"
#include "FillCorpus.h"
#include "FillSuite.h"
#include "JobCampaign.h"
#include "JobSuite.h"
#include "LabelSuite.h"
#include "NfpCampaign.h"
#include "NfpSuite.h"
#include "OneSuite.h"
#include "Report.h"

using namespace platenest::bench;

namespace {

void PrintSummary(const std::vector<TRow>& Rows) {
  int atBest = 0, atFive = 0, atBound = 0, faults = 0;
  double total = 0;
  std::vector<double> times;
  for (const TRow& row : Rows) {
    atBest += row.Result >= row.Best;
    atFive += row.Result >= row.Figures.front().second;
    atBound += row.Result >= row.Bound;
    faults += !row.Fault.empty();
    total += row.Ms;
    times.push_back(row.Ms);
  }
  std::printf("%zu jobs, %d at the best known value, %d at the five-block value, %d at the bound, %d invalid layouts\n",
              Rows.size(), atBest, atFive, atBound, faults);
  std::printf("time %.1f ms, median %.4f ms, p99 %.4f ms, worst %.4f ms, peak memory %.1f MiB\n", total,
              Quantile(times, 0.5), Quantile(times, 0.99), Quantile(times, 1), PeakMemoryMiB());
}

std::vector<TRow> RunOne(const TArguments& Arguments) {
  std::vector<TRow> rows = RunOneSuite(Arguments);
  if (!Arguments.Quiet) {
    std::printf("%-24s %10s %10s %10s %10s\n", "instance", "result", "best", "bound", "ms");
    for (const TRow& row : rows)
      std::printf("%-24s %10.0f %10.0f %10.0f %10.4f %s\n", row.Id.c_str(), row.Result, row.Best, row.Bound, row.Ms,
                  row.Fault.c_str());
  }
  PrintSummary(rows);
  return rows;
}

std::vector<TRow> Run(const TArguments& Arguments) {
  if (Arguments.Suite == "one") return RunOne(Arguments);
  if (Arguments.Suite == "fill") return RunFillSuite(Arguments);
  if (Arguments.Suite == "fill-exact") return RunFillCorpus(Arguments);
  if (Arguments.Suite == "job") return RunJobSuite(Arguments);
  if (Arguments.Suite == "circles") return RunCircleSuite(Arguments);
  if (Arguments.Suite == "circles-core") return RunCircleCampaign(Arguments);
  if (Arguments.Suite == "job-random" || Arguments.Suite == "circles-random") return RunJobCampaign(Arguments);
  if (Arguments.Suite == "nfp") return RunNfpSuite(Arguments);
  if (Arguments.Suite == "array") return RunArraySuite(Arguments);
  if (Arguments.Suite == "label") return RunLabelSuite(Arguments);
  if (Arguments.Suite == "nfp-layout") return RunLayoutCampaign(Arguments);
  return RunNfpCampaign(Arguments);
}

// Plates and cost are to be few.
bool LessIsBetter(std::string_view Suite) {
  return Suite == "job" || Suite == "job-random" || Suite == "circles-random";
}

}  // namespace

int main(int argc, char** argv) {
  TArguments arguments;
  try {
    if (!ReadArguments(argc, argv, arguments)) {
      std::fputs(kUsage, stderr);
      return 2;
    }
    const std::vector<TRow> rows = Run(arguments);
    if (!arguments.Json.empty()) WriteJson(arguments.Json, arguments.Suite, rows, LessIsBetter(arguments.Suite));
    for (const TRow& row : rows)
      if (!row.Fault.empty()) return 1;
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "platenest_bench: error: %s\n", error.what());
    return 1;
  }
}
