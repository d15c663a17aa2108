#include "CircleSuite.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>

#include "CircleInstances.h"
#include "CircleJudge.h"
#include "platenest/UCircleNest/UCircleNest.h"
#include "platenest/job/Run.h"
#include "platenest/layoutcheck/CircleCheck.h"

namespace platenest::bench {

namespace {

std::string FaultOf(const TEqualInstance& Instance, const TVPoint2DList& Centers, int Count) {
  std::vector<TPlacedCircle> layout;
  for (const TPoint2D& center : Centers) layout.push_back({center, 1, 0});
  if (Size(layout) != Count) return "the layout has another count";
  if (Count > Instance.Bound) return "more circles than the proven bound";
  const TCircleDemand demand{1, Count};
  return CheckCircles(layout, {0, 0, Instance.Width, Instance.Height}, 0, {&demand, 1});
}

TRow Solve(const TEqualInstance& Instance, int Repeat) {
  TRow row;
  row.Id = Instance.Id;
  row.Best = Instance.Best;
  row.Bound = Instance.Bound;
  int fallbacks = 0;
  row.Ms = MedianMs(Repeat, [&] {
    TMaxCirclePacking packing(TVRect2D::FromSize(Instance.Width, Instance.Height), 1);
    row.Result = packing.TryMaxFill();
    fallbacks = packing.FallbackCount();
    row.Fault = FaultOf(Instance, packing.ResultPt(), static_cast<int>(row.Result));
  });
  row.Figures = {
      {"patterns", Instance.Patterns}, {"optimal", Instance.IsOptimal}, {"fallbacks", static_cast<double>(fallbacks)}};
  return row;
}

double FigureOf(const TRow& Row, const std::string& Name) {
  for (const auto& [name, value] : Row.Figures)
    if (name == Name) return value;
  return 0;
}

void PrintCounts(const std::vector<TRow>& Rows) {
  int below = 0, above = 0, atBest = 0, overBest = 0, faults = 0;
  double fallbacks = 0, missing = 0, total = 0;
  for (const TRow& row : Rows) {
    below += row.Result < FigureOf(row, "patterns");
    above += row.Result > FigureOf(row, "patterns");
    atBest += row.Result >= row.Best;
    overBest += row.Result > row.Best;
    faults += !row.Fault.empty();
    fallbacks += FigureOf(row, "fallbacks");
    missing += std::max(0.0, row.Best - row.Result);
    total += row.Ms;
  }
  std::printf(
      "counts: %zu plates, %d below and %d above the patterns known, %d at the best known count (%d above), %.0f "
      "circles missing to it, %d faults, %.0f fallbacks, %.1f ms\n",
      Rows.size(), below, above, atBest, overBest, missing, faults, fallbacks, total);
}

std::vector<TRow> RunCounts(const TArguments& Arguments) {
  std::vector<TRow> rows;
  if (!Arguments.Quiet) std::printf("%-10s %7s %7s %7s %7s %10s\n", "plate", "result", "known", "best", "bound", "ms");
  for (const TEqualInstance& instance : ReadEqualInstances(Arguments.Data, Arguments.Only, Arguments.Every)) {
    rows.push_back(Solve(instance, Arguments.Repeat));
    const TRow& row = rows.back();
    if (!Arguments.Quiet)
      std::printf("%-10s %7.0f %7d %7.0f %7.0f %10.4f %s\n", row.Id.c_str(), row.Result, instance.Patterns, row.Best,
                  row.Bound, row.Ms, row.Fault.c_str());
  }
  PrintCounts(rows);
  return rows;
}

void Answer(const Job& AJob, TRow& Row) try {
  const Result result = run(AJob);
  for (const PartUse& part : result.Parts) Row.Result += part.Placed;
  Row.Figures = {{"usage", result.Total.Usage}};
  Row.Fault = test::CircleFault(AJob, result);
  if (const std::vector<Fault> faults = CheckResult(AJob, result); !faults.empty())
    Row.Fault += faults[0].Place + ": " + faults[0].Text;
} catch (const std::exception& error) {
  Row.Fault = std::string("raised ") + error.what();
}

void PrintArea(const std::string& Name, const std::vector<const TRow*>& Rows) {
  if (Rows.empty()) return;
  int whole = 0, faults = 0;
  double usage = 0, possible = 0;
  std::vector<double> times;
  for (const TRow* row : Rows) {
    whole += row->Result >= row->Best;
    faults += !row->Fault.empty();
    usage += FigureOf(*row, "usage");
    possible += FigureOf(*row, "possible");
    times.push_back(row->Ms / 1000);
  }
  std::printf("area %s: %d of %zu with all circles, usage %.4f of %.4f possible, %d faults, s median %.2f worst %.2f\n",
              Name.c_str(), whole, Rows.size(), usage / static_cast<double>(Rows.size()),
              possible / static_cast<double>(Rows.size()), faults, Quantile(times, 0.5), Quantile(times, 1));
}

std::vector<TRow> RunArea(const TArguments& Arguments) {
  std::vector<TRow> rows;
  if (!Arguments.Quiet) std::printf("%-14s %7s %7s %9s %9s %8s\n", "plate", "placed", "of", "usage", "possible", "s");
  for (const TAreaInstance& instance : ReadAreaInstances(Arguments.Data, Arguments.Only, Arguments.Every)) {
    Job job = JobOf(instance.Id, instance.Length, instance.Width, instance.Sizes);
    job.Run.TimeLimit = Arguments.Seconds;
    job.Run.Threads = Arguments.Threads;
    TRow row;
    row.Id = instance.Id;
    row.Best = row.Bound = instance.Sizes.Copies();
    row.Ms = MedianMs(1, [&] { Answer(job, row); });
    row.Figures.emplace_back("possible", instance.Sizes.Area() / (instance.Length * instance.Width));
    if (!Arguments.Quiet)
      std::printf("%-14s %7.0f %7.0f %9.4f %9.4f %8.2f %s\n", row.Id.c_str(), row.Result, row.Best,
                  FigureOf(row, "usage"), FigureOf(row, "possible"), row.Ms / 1000, row.Fault.c_str());
    std::fflush(stdout);
    rows.push_back(std::move(row));
  }
  for (const std::string family : {"SY", "KBG"})
    for (const std::string length : {"x100", "x103", "x108"}) {
      std::vector<const TRow*> some;
      for (const TRow& row : rows)
        if (row.Id.starts_with(family) && row.Id.ends_with(length)) some.push_back(&row);
      PrintArea(family + length, some);
    }
  return rows;
}

}  // namespace

std::vector<TRow> RunCircleSuite(const TArguments& Arguments) {
  constexpr std::pair<const char*, std::vector<TRow> (*)(const TArguments&)> parts[] = {
      {"counts", RunCounts}, {"strips", RunCircleStrips}, {"area", RunArea}, {"times", RunCircleTimes}};
  std::vector<TRow> rows;
  for (const auto& [name, part] : parts) {
    if (!Arguments.Files.empty() && std::ranges::find(Arguments.Files, name) == Arguments.Files.end()) continue;
    std::vector<TRow> more = part(Arguments);
    rows.insert(rows.end(), more.begin(), more.end());
  }
  return rows;
}

}  // namespace platenest::bench
