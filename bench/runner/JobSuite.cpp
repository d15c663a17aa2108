#include "JobSuite.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <map>
#include <string>

#include "JobInstances.h"
#include "JobJudge.h"
#include "platenest/job/Run.h"

namespace platenest::bench {

namespace {

struct TJobLine {
  std::string Id;
  std::string Group;
  int Sizes = 0;
  int Copies = 0;
  int Plates = 0;
  int Left = 0;     // copies that the answer does not place
  double Best = 0;  // 0 for none
  std::string Source;
  double Bound = 0;  // for all layouts
  double Cuts = 0;   // for layouts that straight cuts can part
  double Own = 0;    // stated by the answer
  bool IsProved = false;
  double Usage = 0;
  std::string Method;  // that the answer is from
  double Seconds = 0;
  double MiB = 0;
  std::string Fault;
};

std::string FaultOf(const Job& AJob, const Result& AResult, const TJobInstance& Instance, bool Turned) {
  const std::vector<Fault> faults = CheckResult(AJob, AResult);
  if (!faults.empty()) return faults[0].Place + ": " + faults[0].Text;
  const std::string fault = test::JobFault(AJob, AResult);
  if (!fault.empty()) return fault;
  if (AResult.Status != ResultStatus::Complete) return "";
  const bool areCuts = std::ranges::all_of(AResult.Layouts, &Layout::EdgeToEdge);
  return AResult.Total.Plates < Instance.Bound(Turned, areCuts) ? "fewer plates than the proven bound" : "";
}

void Answer(const Job& AJob, const TJobInstance& Instance, bool Turned, TJobLine& Line) try {
  const Result result = run(AJob);
  Line.Plates = result.Total.Plates;
  for (const PartUse& part : result.Parts) Line.Left += part.Unplaced;
  for (const Bound& bound : result.Bounds)
    if (bound.What == "plates") Line.Own = std::max(Line.Own, bound.Value);
  Line.IsProved = result.Proved;
  Line.Usage = result.Total.Usage;
  Line.Method = result.Run.Method;
  Line.Fault = FaultOf(AJob, result, Instance, Turned);
} catch (const std::exception& error) {
  Line.Fault = std::string("raised ") + error.what();
}

TJobLine RunInstance(const TJobInstance& Instance, const TArguments& Arguments) {
  TJobLine line;
  line.Id = Instance.Id;
  line.Group = Instance.Group;
  line.Sizes = Size(Instance.AJob.Parts);
  line.Copies = Instance.Copies();
  if (const TJobRef* best = Instance.Best(Arguments.Turn)) {
    line.Best = *best->Best;
    line.Source = best->Source;
  }
  line.Bound = Instance.Bound(Arguments.Turn, false);
  line.Cuts = Instance.Bound(Arguments.Turn, true);
  Job job = Instance.AJob;
  job.Run.Method = Arguments.Method;
  job.Run.TimeLimit = Arguments.Seconds;
  job.Run.Seed = static_cast<std::uint64_t>(Arguments.Seed);
  job.Run.Deterministic = Arguments.Deterministic;
  if (!Arguments.Turn)
    for (Part& part : job.Parts) part.Turn = Rotate::None;
  ForgetPeakMemory();
  line.Seconds = MedianMs(1, [&] { Answer(job, Instance, Arguments.Turn, line); }) / 1000;
  line.MiB = PeakMemoryMiB();
  return line;
}

void Print(const TJobLine& Line) {
  std::printf("%-16s %5d %6d %6d %6.0f %6.0f %6.0f %6.0f %3s %8.4f %-6s %7.2f %7.1f %s %s\n", Line.Id.c_str(),
              Line.Sizes, Line.Copies, Line.Plates, Line.Best, Line.Cuts, Line.Bound, Line.Own,
              Line.IsProved ? "yes" : "", Line.Usage, Line.Method.c_str(), Line.Seconds, Line.MiB, Line.Source.c_str(),
              Line.Fault.c_str());
  if (Line.Left > 0) std::printf("%-16s leaves %d copies\n", "", Line.Left);
  std::fflush(stdout);
}

TRow RowOf(const TJobLine& Line) {
  TRow row;
  row.Id = Line.Id;
  row.Size = Line.Group;
  row.Result = Line.Plates;
  row.Best = Line.Best;
  row.Bound = Line.Bound;
  row.Ms = Line.Seconds * 1000;
  row.Fault = Line.Fault;
  row.Figures = {{"sizes", Line.Sizes},   {"copies", Line.Copies},   {"left", Line.Left},   {"cuts_bound", Line.Cuts},
                 {"own_bound", Line.Own}, {"proved", Line.IsProved}, {"usage", Line.Usage}, {"mib", Line.MiB}};
  return row;
}

using TGroup = std::vector<const TJobLine*>;

void PrintGroup(const std::string& Name, const TGroup& Lines) {
  int plates = 0, left = 0, proved = 0, faults = 0, at = 0, below = 0;
  double best = 0, bound = 0, cuts = 0, mib = 0;
  std::vector<double> times;
  for (const TJobLine* line : Lines) {
    plates += line->Plates;
    left += line->Left;
    proved += line->IsProved;
    faults += !line->Fault.empty();
    const bool isWhole = line->Fault.empty() && line->Left == 0 && line->Best > 0;
    at += isWhole && line->Plates <= line->Best;
    below += isWhole && line->Plates < line->Best;
    best += line->Best;
    bound += line->Bound;
    cuts += line->Cuts;
    mib = std::max(mib, line->MiB);
    times.push_back(line->Seconds);
  }
  std::printf("| %s | %zu | %d | %.0f | %.0f | %.0f | %d | %d | %d | %.3g, %.3g | %.0f |\n", Name.c_str(), Lines.size(),
              plates, best, cuts, bound, at, below, proved, Quantile(times, 0.5), Quantile(times, 1), mib);
  if (left > 0) std::printf("%s: %d copies are not placed, the sum of plates means little\n", Name.c_str(), left);
  if (faults > 0) std::printf("%s: %d answers with faults\n", Name.c_str(), faults);
}

void PrintTable(const std::vector<TJobLine>& Lines) {
  std::map<std::string, TGroup> groups;
  TGroup all;
  for (const TJobLine& line : Lines) {
    groups[line.Group].push_back(&line);
    all.push_back(&line);
  }
  std::printf(
      "\n| group | jobs | plates | best known | bound by cuts | bound | at best or below | below | proved | s: median, "
      "worst | MiB |\n|---|---|---|---|---|---|---|---|---|---|---|\n");
  for (const auto& [name, lines] : groups) PrintGroup(name, lines);
  if (groups.size() > 1) PrintGroup("all", all);
}

}  // namespace

std::vector<TRow> RunJobSuite(const TArguments& Arguments) {
  std::vector<TJobLine> lines;
  std::vector<TRow> rows;
  if (!Arguments.Quiet)
    std::printf("%-16s %5s %6s %6s %6s %6s %6s %6s %3s %8s %-6s %7s %7s\n", "instance", "sizes", "copies", "plates",
                "best", "cuts", "bound", "own", "", "usage", "method", "s", "MiB");
  for (const TJobInstance& instance : ReadJobInstances(Arguments.Files.front(), Arguments.Only, Arguments.All)) {
    lines.push_back(RunInstance(instance, Arguments));
    rows.push_back(RowOf(lines.back()));
    if (!Arguments.Quiet) Print(lines.back());
  }
  PrintTable(lines);
  return rows;
}

}  // namespace platenest::bench
