#include "Report.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace platenest::bench {

double MedianMs(int Repeat, const std::function<void()>& Work) {
  std::vector<double> times;
  for (int i = 0; i < Repeat; ++i) {
    const auto start = std::chrono::steady_clock::now();
    Work();
    times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
  }
  return Quantile(std::move(times), 0.5);
}

double Quantile(std::vector<double> Values, double Q) {
  if (Values.empty()) return 0;
  std::sort(Values.begin(), Values.end());
  return Values[static_cast<std::size_t>(std::floor(Q * static_cast<double>(Values.size() - 1)))];
}

std::string Numbered(std::string Word, std::size_t Number) {
  Word += std::to_string(Number);
  return Word;
}

double PeakMemoryMiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

void WriteJson(const std::string& Path, const std::string& Suite, const std::vector<TRow>& Rows) {
  nlohmann::ordered_json all;
  all["suite"] = Suite;
  all["peak_memory_mib"] = PeakMemoryMiB();
  all["rows"] = nlohmann::ordered_json::array();
  for (const TRow& row : Rows) {
    nlohmann::ordered_json entry = {{"id", row.Id},      {"size", row.Size},   {"result", row.Result},
                                    {"best", row.Best},  {"bound", row.Bound}, {"ms", row.Ms},
                                    {"fault", row.Fault}};
    for (const auto& [name, value] : row.Figures) entry[name] = value;
    all["rows"].push_back(std::move(entry));
  }
  std::ofstream file(Path);
  file << all.dump(1) << '\n';
  if (!file) throw std::runtime_error("cannot write " + Path);
}

}  // namespace platenest::bench
