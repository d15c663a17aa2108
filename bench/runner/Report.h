#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace platenest::bench {

// One solved or measured instance. Counts and bounds are exact where times are noisy.
struct TRow {
  std::string Id;
  std::string Size;
  double Result = 0;
  double Best = 0;                                      // best known value
  double Bound = 0;                                     // proven, 0 for none
  double Ms = 0;                                        // median of the repetitions
  std::string Fault;                                    // what the check found, empty if nothing
  std::vector<std::pair<std::string, double>> Figures;  // further ones of the suite, by name
};

// The median time of Repeat calls in milliseconds.
double MedianMs(int Repeat, const std::function<void()>& Work);

struct TTimes {
  double Ms = 0;
  double CpuMs = 0;  // of the process
};

// The medians of both clocks.
TTimes MedianTimes(int Repeat, const std::function<void()>& Work);

// The q-quantile, 0 <= q <= 1, of a list that is sorted inside.
double Quantile(std::vector<double> Values, double Q);

// A word and a number behind it.
std::string Numbered(std::string Word, std::size_t Number);

// Peak resident memory of the process in MiB, since the last call of ForgetPeakMemory where the system can do that.
double PeakMemoryMiB();
void ForgetPeakMemory();

// Writes the rows as JSON, the form that scripts/compare_bench reads.
void WriteJson(const std::string& Path, const std::string& Suite, const std::vector<TRow>& Rows,
               bool LessIsBetter = false);

}  // namespace platenest::bench
