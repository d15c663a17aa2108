#include "platenest/job/Run.h"

#include <algorithm>
#include <new>
#include <thread>
#include <utility>

#include "ArrayRun.h"
#include "Assembly.h"
#include "CircleRun.h"
#include "FillMethods.h"
#include "FillRun.h"
#include "JobForm.h"
#include "JobRun.h"
#include "NfpRun.h"
#include "OneSize.h"
#include "OneSizeBounds.h"
#include "OneSizeVerdict.h"
#include "PlaceRun.h"
#include "RunControl.h"

namespace platenest {

namespace {

using namespace detail;

int DefaultThreads() {
  return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 4);
}

Result BeginResult(const Job& AJob) {
  Result result;
  result.Name = AJob.Name;
  result.Kind = AJob.Kind;
  result.Units = AJob.Units;
  result.Gap = AJob.Gap;
  result.Margin = AJob.Margin;
  result.Run.Method = AJob.Run.Method;
  result.Run.Seed = AJob.Run.Seed;
  result.Run.Threads = AJob.Run.Threads > 0 ? AJob.Run.Threads : DefaultThreads();
  result.Run.TimeLimit = AJob.Run.TimeLimit;
  result.Run.MemoryLimit = AJob.Run.MemoryLimit;
  result.Run.Deterministic = AJob.Run.Deterministic;
  result.Run.Version = PLATENEST_VERSION;
  return result;
}

// What the forms allow but no method of this kind keeps or answers.
void RequireAnswerable(const Job& AJob) {
  if (IsOfShapes(AJob.Kind) || AJob.Kind == JobKind::Circles) return;
  if (AJob.Kind == JobKind::Fill) return RequireFillMethod(AJob);
  if (AJob.Kind == JobKind::Job) return RequireJobMethod(AJob);
  if (AJob.Parts[0].Turn == Rotate::None)
    throw InputError({"conflict", "/parts/0/rotate",
                      "method `" + AJob.Run.Method + "` turns parts freely and cannot keep `none`", ""});
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
    if (answer.Layout.Count() > limits::kCopies) RaiseTooManyCopies(0);
    Layout layout = AssembleLayout(AJob, AJob.Plates[0], Scaled, answer.Layout);
    const std::string fault = CheckLayout(TPartIds(AJob), layout, AJob.Gap, AJob.Margin);
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

void AnswerOne(const Job& AJob, TRunControl& Control, Result& AResult) {
  const Part& part = AJob.Parts[0];
  const TScaledPlate scaled(AJob, AJob.Plates[0]);
  RequireRoom(scaled, AJob.Plates[0]);
  const TOneSize sizes = SizesOf(AJob);
  const TOneSizeBounds bounds = BoundOneSize(sizes);
  if (!part.Amount && bounds.Grid > limits::kCopies) RaiseTooManyCopies(0);
  const Int64 most = std::min(bounds.Area, bounds.Barnes);
  // One copy more than can fit, so that the plate and not the amount ends the nest.
  const int amount = part.Amount.value_or(static_cast<int>(std::min<Int64>(most, limits::kCopies) + 1));

  AResult.Bounds = BoundsOf(AJob);
  Layout layout = FirstValidLayout(AJob, scaled, sizes, amount, AResult);
  if (!layout.Placements.empty()) {
    MeasureInto(layout, AJob.Gap, AJob.Margin);
    AResult.Layouts.push_back(std::move(layout));
  }
  Account(AJob, AResult);
  Judge(AJob, AResult);
  NoteInterruption(Control, AResult);
  Control.Report({.Phase = AResult.Run.Method,
                  .Plates = AResult.Total.Plates,
                  .Usage = AResult.Total.Usage,
                  .Unplaced = AResult.Parts[0].Unplaced,
                  .BoundValue = static_cast<double>(most)});
}

void Answer(const Job& AJob, TRunControl& Control, Result& AResult) {
  switch (AJob.Kind) {
    case JobKind::Fill:
      return AnswerFill(AJob, Control, AResult);
    case JobKind::Job:
      return AnswerJob(AJob, Control, AResult);
    case JobKind::Nfp:
      return AnswerPairs(AJob, Control, AResult);
    case JobKind::Array:
      return AnswerArray(AJob, Control, AResult);
    case JobKind::Label:
      return AnswerLabel(AJob, Control, AResult);
    case JobKind::Circles:
      return AnswerCircles(AJob, Control, AResult);
    case JobKind::Sucker:
      return AnswerSucker(AJob, Control, AResult);
    default:
      return AnswerOne(AJob, Control, AResult);
  }
}

}  // namespace

Result run(const Job& AJob, const RunHooks& Hooks) {
  try {
    CheckJob(AJob);
    RequireAnswerable(AJob);
    TRunControl control(AJob.Run, Hooks);
    if (control.StoppedByCaller()) throw StoppedError({"stopped", "", "stopped before any result", ""});
    Result result = BeginResult(AJob);
    Answer(AJob, control, result);
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
