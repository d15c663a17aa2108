#include "FillRun.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "Assembly.h"
#include "FillFinish.h"
#include "FillMethods.h"
#include "FillVerdict.h"
#include "Trouble.h"
#include "platenest/job/JobErrors.h"

namespace platenest::detail {

namespace {

// More than rounding of the worth of one and the same answer.
constexpr double kGain = 1e-12;

class TFillSearch {
 public:
  TFillSearch(const Job& AJob, TRunControl& Control, const std::vector<Bound>& Bounds)
      : FJob(AJob), FControl(Control), FBounds(Bounds), FScaled(AJob, AJob.Plates.at(0)) {
    RequireRoom(FScaled, AJob.Plates[0]);
  }

  void Run(const std::vector<TFillMethod>& Methods) {
    for (const TFillMethod& method : Methods) {
      if (IsProved()) return;
      const bool isOver = !FControl.Affords(method.CountedMs) || FControl.IsOver();
      // What is quick has its chance however short the time is.
      const bool isQuick = method.Name == "rows" || (method.Name == "smart" && &method == &Methods.front());
      const bool isDue = isQuick && !HasAnswer() && !FControl.StoppedByCaller();
      if (isOver && !isDue) return;
      Try(method);
    }
  }

  bool HasAnswer() const { return !FBest.Placements.empty(); }
  const std::string& Method() const { return FMethod; }
  Layout TakeBest() { return std::move(FBest); }
  // Where nothing was found: whatever kept an answer from standing.
  void RaiseTrouble() const { FTrouble.Raise(); }

 private:
  bool IsProved() const {
    return HasAnswer() && std::ranges::any_of(FBounds, [&](const Bound& bound) { return MeetsBound(FWorth, bound); });
  }

  void Try(const TFillMethod& Method) {
    FTrouble.Try([&] {
      TNestedRects nested = Method.Nest();
      // What follows would be the work of the free-rectangle nest alone.
      if (nested.empty() && Method.Name != "smart") return;
      TidyLayout(*Method.Sizes, nested);
      if (Method.FillsFreeBoxes) FillFreeBoxes(*Method.Sizes, nested);
      for (TNestedRect& placed : nested) placed.Part.Idx = Method.Sizes->Parts[placed.Part.Idx].Position;
      Offer(Method.Name, nested);
    });
  }

  void Offer(const std::string& Method, const TNestedRects& Nested) {
    if (Nested.empty()) return;
    if (Nested.Count() > limits::kCopies)
      throw LimitError(
          {"limit", "/parts",
           "more than " + std::to_string(limits::kCopies) + " copies fit, which is the limit; ask for amounts", ""});
    std::vector<Int64> counts(FJob.Parts.size());
    for (const TNestedRect& placed : Nested) ++counts[placed.Part.Idx];
    const double worth = WorthOfCopies(FJob, counts);
    if (HasAnswer() && worth <= FWorth + kGain * FWorth) return;
    Layout layout = AssembleLayout(FJob, FJob.Plates[0], FScaled, Nested);
    std::string fault = FillFault(FJob, layout, FBounds);
    if (!fault.empty()) {
      FTrouble.Note(std::move(fault));
      return;
    }
    FBest = std::move(layout);
    FWorth = worth;
    FMethod = Method;
    Report(counts);
  }

  void Report(const std::vector<Int64>& Counts) {
    const Plate& plate = FJob.Plates[0];
    Progress now{.Phase = FMethod, .Plates = 1, .Usage = 0, .Unplaced = 0, .BoundValue = FBounds[0].Value};
    for (int i = 0; i < Size(Counts); ++i) {
      const Part& part = FJob.Parts[i];
      now.Usage += part.Width * part.Height * static_cast<double>(Counts[i]) / (plate.Width * plate.Height);
      if (part.Amount) now.Unplaced += *part.Amount - Counts[i];
    }
    for (const Bound& bound : FBounds) now.BoundValue = std::min(*now.BoundValue, bound.Value);
    FControl.Report(now);
  }

  const Job& FJob;
  TRunControl& FControl;
  const std::vector<Bound>& FBounds;
  TScaledPlate FScaled;
  Layout FBest;
  double FWorth = 0;
  std::string FMethod;
  TTrouble FTrouble;
};

// The quick answer that stands where a named method finds none, be it for lack of time.
std::vector<TFillMethod> StandInFor(const Job& AJob) {
  if (AJob.Run.Method == "auto" || AJob.Run.Method == "smart") return {};
  Job other = AJob;
  other.Run.Method = "smart";
  return FillMethods(other);
}

TFillSearch SearchedBy(const Job& AJob, TRunControl& Control, Result& AResult) {
  TFillSearch standIn(AJob, Control, AResult.Bounds);
  standIn.Run(StandInFor(AJob));
  TFillSearch search(AJob, Control, AResult.Bounds);
  search.Run(FillMethods(AJob));
  if (search.HasAnswer() || !standIn.HasAnswer()) return search;
  AResult.Warnings.push_back(AJob.Run.Method + " placed nothing; the layout of " + standIn.Method() + " stands");
  return standIn;
}

}  // namespace

void AnswerFill(const Job& AJob, TRunControl& Control, Result& AResult) {
  AResult.Bounds = FillBoundsOf(AJob);
  TFillSearch search = SearchedBy(AJob, Control, AResult);
  if (!search.HasAnswer()) {
    search.RaiseTrouble();
    if (Control.StoppedByCaller()) throw StoppedError({"stopped", "", "stopped before any result", ""});
  } else {
    AResult.Run.Method = search.Method();
    Layout layout = search.TakeBest();
    MeasureInto(layout, AJob.Gap, AJob.Margin);
    AResult.Layouts.push_back(std::move(layout));
  }
  Account(AJob, AResult);
  JudgeFill(AJob, AResult);
  if (!AResult.Proved) NoteInterruption(Control, AResult);
}

}  // namespace platenest::detail
