#include "platenest/job/Run.h"

#include <algorithm>
#include <new>
#include <utility>

#include "Assembly.h"
#include "OneSize.h"
#include "OneSizeBounds.h"
#include "RunControl.h"

namespace platenest {

namespace {

using namespace detail;

Result BeginResult(const Job& AJob) {
  Result result;
  result.Name = AJob.Name;
  result.Kind = AJob.Kind;
  result.Units = AJob.Units;
  result.Gap = AJob.Gap;
  result.Margin = AJob.Margin;
  result.Run.Method = AJob.Run.Method;
  result.Run.Seed = AJob.Run.Seed;
  result.Run.Threads = AJob.Run.Threads > 0 ? AJob.Run.Threads : 4;
  result.Run.TimeLimit = AJob.Run.TimeLimit;
  result.Run.MemoryLimit = AJob.Run.MemoryLimit;
  result.Run.Deterministic = AJob.Run.Deterministic;
  result.Run.Version = PLATENEST_VERSION;
  return result;
}

// What the forms allow but no method of this kind keeps or answers.
void RequireAnswerable(const Job& AJob) {
  if (AJob.Kind != JobKind::One)
    throw InputError({"choice", "/kind", "this version answers jobs of kind `one` only", ""});
  if (AJob.Run.Method == "fiveblock")
    throw InputError(
        {"choice", "/options/method", "this version knows the methods `auto`, `strip` and `trim` for kind `one`", ""});
  if (AJob.Parts[0].Turn == Rotate::None)
    throw InputError({"conflict", "/parts/0/rotate",
                      "method `" + AJob.Run.Method + "` turns parts freely and cannot keep `none`", ""});
}

// The bounds of a job of kind One in the order in which they are stated. The demand is one too: no more is asked for.
std::vector<Bound> StateBounds(const Job& AJob, const TOneSizeBounds& Bounds) {
  std::vector<Bound> stated{{"count", "area", static_cast<double>(Bounds.Area)},
                            {"count", "barnes", static_cast<double>(Bounds.Barnes)}};
  if (AJob.Parts[0].Amount) stated.push_back({"count", "demand", static_cast<double>(*AJob.Parts[0].Amount)});
  return stated;
}

// The first answer of the chain that passes the checker.
Layout FirstValidLayout(const Job& AJob, const TScaledPlate& Scaled, const TOneSize& Sizes, int Amount,
                        Result& AResult) {
  std::string verdict;
  for (const auto& method : OneSizeMethods(AJob.Run.Method, Sizes, Amount)) {
    TOneSizeAnswer answer;
    try {
      answer = method();
    } catch (const TNestError& error) {
      verdict = error.Text();
      continue;
    }
    Layout layout = AssembleLayout(AJob, AJob.Plates[0], Scaled, answer.Layout);
    const std::string fault = CheckLayout(AJob, layout, AJob.Gap, AJob.Margin);
    if (!fault.empty()) {
      verdict = fault;
      continue;
    }
    AResult.Run.Method = answer.Method;
    if (!answer.Remark.empty()) AResult.Warnings.push_back(answer.Remark);
    return layout;
  }
  throw CheckError({"check", "", "no answer passed the layout check", verdict});
}

void SetStatus(const TOneSizeBounds& Bounds, int FullCount, Result& AResult) {
  PartUse& part = AResult.Parts[0];
  const double bound = static_cast<double>(std::min(Bounds.Area, Bounds.Barnes));
  AResult.Proved = part.Placed >= bound || (part.Amount && part.Placed >= *part.Amount);
  const bool isComplete = part.Amount ? part.Unplaced == 0 : part.Placed >= FullCount;
  AResult.Status = isComplete ? ResultStatus::Complete : ResultStatus::Partial;
  if (part.Unplaced == 0) return;
  if (bound == 0)
    part.Reason = "too_large";
  else
    part.Reason = part.Placed >= bound ? "no_stock" : "left_by_method";
}

Result RunOne(const Job& AJob, TRunControl& Control) {
  const Part& part = AJob.Parts[0];
  const TScaledPlate scaled(AJob, AJob.Plates[0]);
  if (scaled.Width <= 0 || scaled.Height <= 0)
    throw InputError({"range", "/margin", "leaves nothing of plate `" + AJob.Plates[0].Id + "`", ""});
  const TOneSize sizes{scaled.Width, scaled.Height, scaled.Scale.Up(part.Width), scaled.Scale.Up(part.Height),
                       scaled.Gap};
  const TOneSizeBounds bounds = BoundOneSize(sizes);
  const Int64 most = std::min(bounds.Area, bounds.Barnes);
  if (!part.Amount && bounds.Grid > limits::kCopies)
    throw LimitError({"limit", "/parts/0/amount",
                      std::to_string(bounds.Grid) + " copies fit, at most " + std::to_string(limits::kCopies) +
                          " are placed; ask for an amount",
                      ""});
  // One copy more than can fit, so that the plate and not the amount ends the nest.
  const int amount = part.Amount.value_or(static_cast<int>(std::min<Int64>(most, 2 * limits::kCopies) + 1));

  Result result = BeginResult(AJob);
  result.Bounds = StateBounds(AJob, bounds);
  Layout layout = FirstValidLayout(AJob, scaled, sizes, amount, result);
  int fullCount = Size(layout.Placements);
  if (result.Run.Method == "trim")  // trimming may give up copies on purpose
    fullCount = Size(OneSizeMethods("strip", sizes, amount)[0]().Layout);
  if (!layout.Placements.empty()) {
    MeasureInto(layout, AJob.Gap, AJob.Margin);
    result.Layouts.push_back(std::move(layout));
  }
  Account(AJob, result);
  SetStatus(bounds, fullCount, result);
  if (Control.StoppedByCaller()) result.Status = ResultStatus::Stopped;
  Control.Report({.Phase = result.Run.Method,
                  .Plates = result.Total.Plates,
                  .Usage = result.Total.Usage,
                  .Unplaced = result.Parts[0].Unplaced,
                  .BoundValue = static_cast<double>(most)});
  return result;
}

}  // namespace

Result run(const Job& AJob, const RunHooks& Hooks) {
  try {
    CheckJob(AJob);
    RequireAnswerable(AJob);
    TRunControl control(AJob.Run, Hooks);
    if (control.StoppedByCaller()) throw StoppedError({"stopped", "", "stopped before any result", ""});
    Result result = RunOne(AJob, control);
    result.Run.Seconds = control.Seconds();
    return result;
  } catch (const JobError&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw MemoryError({"memory", "", "not enough memory", ""});
  } catch (const std::exception& error) {
    throw CheckError({"internal", "", "the nester failed", error.what()});
  }
}

}  // namespace platenest
