#include "FillTable.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <regex>
#include <tuple>

#include "Report.h"

namespace platenest::bench {

namespace {

const char* AmountsOf(const TFillRef& Ref) {
  return Ref.Limited ? "limited" : "unlimited";
}

const char* TurningOf(const TFillRef& Ref) {
  return Ref.Turned ? "yes" : "no";
}

using TGroup = std::vector<const TFillLine*>;

void PrintGroup(const std::string& Name, const std::string& Cut, const TGroup& Lines) {
  double sum = 0;
  int reached = 0;
  std::vector<double> times;
  const TFillLine* worst = Lines.front();
  for (const TFillLine* line : Lines) {
    sum += line->Share();
    reached += line->Worth >= line->Ref.Best;
    times.push_back(line->Ms);
    if (line->Share() < worst->Share()) worst = line;
  }
  const TFillRef& first = Lines.front()->Ref;
  std::printf("| %s | %s | %s | %s | %zu | %.4f | %.4f (%s) | %d | %.3g, %.3g |\n", Name.c_str(), AmountsOf(first),
              TurningOf(first), Cut.c_str(), Lines.size(), sum / static_cast<double>(Lines.size()), worst->Share(),
              worst->Id.c_str(), reached, Quantile(times, 0.5) / 1000, Quantile(times, 1) / 1000);
}

void PrintTurning(const std::vector<TFillLine>& Lines) {
  std::map<std::pair<std::string, bool>, double> fixed, turned;
  for (const TFillLine& line : Lines) (line.Ref.Turned ? turned : fixed)[{line.Id, line.Ref.Limited}] = line.Worth;
  int both = 0, below = 0;
  for (const auto& [key, worth] : turned) {
    const auto other = fixed.find(key);
    if (other == fixed.end()) continue;
    ++both;
    if (worth >= other->second) continue;
    ++below;
    std::printf("%s, %s amounts: %.0f with turning, %.0f without\n", key.first.c_str(),
                key.second ? "limited" : "unlimited", worth, other->second);
  }
  std::printf("with turning below the own answer without: %d of %d jobs\n", below, both);
}

// Whole worths, so equal means to the unit. Layouts that no straight cuts can part may be worth more.
void PrintProven(const std::vector<TFillLine>& Lines) {
  const std::regex gcut("gcut([1-9]|1[0-3])", std::regex::icase);
  int all = 0, equal = 0, above = 0;
  for (const TFillLine& line : Lines) {
    if (line.Ref.Limited || !line.Ref.Proven || !std::regex_match(line.Id, gcut)) continue;
    ++all;
    equal += line.Worth == line.Ref.Best;
    above += line.Worth > line.Ref.Best;
    if (line.Worth != line.Ref.Best)
      std::printf("%s, turning %s: %.0f, by straight cuts %.0f\n", line.Id.c_str(), TurningOf(line.Ref), line.Worth,
                  line.Ref.Best);
  }
  if (all > 0)
    std::printf("gcut1 to gcut13, unlimited amounts: %d of %d equal to the best by straight cuts, %d above it\n", equal,
                all, above);
}

}  // namespace

void PrintFillTable(const std::vector<TFillLine>& Lines) {
  if (Lines.empty()) return;
  std::map<std::tuple<std::string, bool, bool, std::string>, TGroup> groups;
  std::map<std::pair<bool, bool>, TGroup> all;
  for (const TFillLine& line : Lines) {
    groups[{line.Group, !line.Ref.Limited, line.Ref.Turned, line.Ref.Cut}].push_back(&line);
    all[{!line.Ref.Limited, line.Ref.Turned}].push_back(&line);
  }
  std::printf("\n| group | amounts | turning | best of | jobs | mean | worst | reached | s: median, worst |\n");
  std::printf("|---|---|---|---|---|---|---|---|---|\n");
  for (const auto& [key, lines] : groups) PrintGroup(std::get<0>(key), std::get<3>(key), lines);
  for (const auto& [key, lines] : all) PrintGroup("all", "", lines);
  std::printf("\n");
  PrintTurning(Lines);
  PrintProven(Lines);
  int faults = 0, finds = 0;
  for (const TFillLine& line : Lines) {
    faults += !line.Fault.empty();
    finds += line.Worth > line.Ref.Best;
  }
  std::printf("%zu comparisons, %d above the best known worth, %d with faults, peak memory %.1f MiB\n", Lines.size(),
              finds, faults, PeakMemoryMiB());
}

}  // namespace platenest::bench
