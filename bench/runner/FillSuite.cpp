#include "FillSuite.h"

#include <cstdio>
#include <map>
#include <utility>

#include "FillMethods.h"
#include "FillTable.h"
#include "platenest/layoutcheck/LayoutCheck.h"
#include "platenest/layoutcheck/Measures.h"

namespace platenest::bench {

namespace {

// A layout that straight cuts can part is no better than what is proven for such layouts.
std::string BoundFault(const TFillAnswer& Answer, const TFillRef& Ref) {
  if (!Ref.Bound || Answer.Worth <= *Ref.Bound + kDefaultTol) return "";
  if (Ref.Cut != "any" && (Ref.Cut != "guillotine" || !IsEdgeToEdge(PlacedBoxesOf(Answer.Layout)))) return "";
  return "worth more than the proven bound";
}

std::vector<TFillLine> RunInstance(const TFillInstance& Instance, const TArguments& Arguments) {
  std::map<std::pair<bool, bool>, TFillAnswer> answers;
  std::vector<TFillLine> lines;
  for (const TFillRef& ref : Instance.Refs) {
    const test::TFillCase fill = CaseOf(Instance, ref.Turned, ref.Limited);
    if (!Answers(Arguments.Method, fill)) continue;
    const auto [at, isNew] = answers.try_emplace({ref.Turned, ref.Limited});
    TFillAnswer& answer = at->second;
    if (isNew) answer = AnswerFill(Arguments.Method, fill, Arguments.Seconds, Arguments.Repeat);
    std::string fault = answer.Fault.empty() ? BoundFault(answer, ref) : answer.Fault;
    lines.push_back({Instance.Id, Instance.Group, ref, answer.Worth, answer.Ms, std::move(fault)});
  }
  return lines;
}

TRow RowOf(const TFillLine& Line) {
  TRow row;
  row.Id = Line.Id + (Line.Ref.Turned ? "/turned" : "/fixed") + (Line.Ref.Limited ? "/limited/" : "/unlimited/") +
           Line.Ref.Cut;
  row.Size = Line.Group;
  row.Result = Line.Worth;
  row.Best = Line.Ref.Best;
  row.Bound = Line.Ref.Bound.value_or(0);
  row.Ms = Line.Ms;
  row.Fault = Line.Fault;
  row.Figures = {
      {"share", Line.Share()}, {"turned", Line.Ref.Turned}, {"limited", Line.Ref.Limited}, {"proven", Line.Ref.Proven}};
  return row;
}

void Print(const TRow& Row, double Share) {
  std::printf("%-36s %12.0f %12.0f %8.4f %10.1f %s\n", Row.Id.c_str(), Row.Result, Row.Best, Share, Row.Ms,
              Row.Fault.c_str());
  std::fflush(stdout);
}

}  // namespace

std::vector<TRow> RunFillSuite(const TArguments& Arguments) {
  std::vector<TFillLine> all;
  std::vector<TRow> rows;
  if (!Arguments.Quiet) std::printf("%-36s %12s %12s %8s %10s\n", "instance", "worth", "best", "share", "ms");
  for (const TFillInstance& instance : ReadFillInstances(Arguments.Files.front(), Arguments.Id))
    for (TFillLine& line : RunInstance(instance, Arguments)) {
      rows.push_back(RowOf(line));
      if (!Arguments.Quiet) Print(rows.back(), line.Share());
      all.push_back(std::move(line));
    }
  PrintFillTable(all);
  return rows;
}

}  // namespace platenest::bench
