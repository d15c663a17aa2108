#include "Report.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace platenest::bench {

namespace {

double ForgottenPeak = 0;

double CpuMs() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

}  // namespace

double MedianMs(int Repeat, const std::function<void()>& Work) {
  return MedianTimes(Repeat, Work).Ms;
}

TTimes MedianTimes(int Repeat, const std::function<void()>& Work) {
  std::vector<double> wall;
  std::vector<double> cpu;
  for (int i = 0; i < Repeat; ++i) {
    const double cpuStart = CpuMs();
    const auto start = std::chrono::steady_clock::now();
    Work();
    wall.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    cpu.push_back(CpuMs() - cpuStart);
  }
  return {Quantile(std::move(wall), 0.5), Quantile(std::move(cpu), 0.5)};
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

void ForgetPeakMemory() {
  ForgottenPeak = std::max(ForgottenPeak, PeakMemoryMiB());
  std::ofstream("/proc/self/clear_refs") << 5;
}

void WriteJson(const std::string& Path, const std::string& Suite, const std::vector<TRow>& Rows, bool LessIsBetter) {
  nlohmann::ordered_json all;
  all["suite"] = Suite;
  if (LessIsBetter) all["less_is_better"] = true;
  all["peak_memory_mib"] = std::max(ForgottenPeak, PeakMemoryMiB());
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
