#pragma once

#include <string>

#include "FillCase.h"
#include "platenest/job/Run.h"

// A case as the facade takes it; part ids are positions.
namespace platenest::test {

inline Job FillJobOf(const TFillCase& Case, double Seconds) {
  Job job;
  job.Kind = JobKind::Fill;
  job.Gap = Case.Gap;
  job.Plates.push_back({.Id = "plate", .Width = Case.Plate.Width(), .Height = Case.Plate.Height()});
  for (const TNestRect& part : Case.Parts) {
    Part made{.Id = std::to_string(part.Idx), .Width = part.BoundBox.Width(), .Height = part.BoundBox.Height()};
    made.Amount = part.Amount;
    if (Case.Unlimited) made.Amount.reset();
    if (!Case.CanTurn) made.Turn = Rotate::None;
    if (Case.Weighted) made.Value = part.Area;
    job.Parts.push_back(made);
  }
  job.Run.TimeLimit = Seconds;
  return job;
}

// The answer in the records of the core; at most one plate can be in it.
inline TNestedRects LayoutOf(const Result& AResult, const TFillCase& Case) {
  TNestedRects layout;
  for (const Layout& plate : AResult.Layouts)
    for (const Placement& item : plate.Placements)
      layout.push_back({Case.Parts.at(std::stoul(item.Part)), item.Rotated, {item.Trans[0], item.Trans[1]}});
  return layout;
}

inline std::string FirstFault(const Job& AJob, const Result& AResult) {
  const std::vector<Fault> faults = CheckResult(AJob, AResult);
  return faults.empty() ? "" : faults[0].Place + ": " + faults[0].Text;
}

}  // namespace platenest::test
