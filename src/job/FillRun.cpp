#include "FillRun.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "Assembly.h"
#include "FillFinish.h"
#include "FillMethods.h"
#include "FillVerdict.h"
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
      if (IsProved() || FControl.IsOver()) return;
      Try(method);
    }
  }

  bool HasAnswer() const { return !FBest.Placements.empty(); }
  const std::string& Method() const { return FMethod; }
  const std::string& Trouble() const { return FTrouble; }
  Layout TakeBest() { return std::move(FBest); }
  // Where nothing was found: whatever kept an answer from standing.
  void RaiseTrouble() const {
    if (FLacksMemory) throw std::bad_alloc();
    if (!FTrouble.empty()) throw CheckError({"check", "", "no answer passed the layout check", FTrouble});
  }

 private:
  bool IsProved() const {
    return HasAnswer() && std::ranges::any_of(FBounds, [&](const Bound& bound) { return MeetsBound(FWorth, bound); });
  }

  void Try(const TFillMethod& Method) {
    try {
      TNestedRects nested = Method.Nest();
      // What follows would be the work of the free-rectangle nest alone.
      if (nested.empty() && Method.Name != "smart") return;
      TidyLayout(*Method.Sizes, nested);
      FillFreeBoxes(*Method.Sizes, nested);
      for (TNestedRect& placed : nested) placed.Part.Idx = Method.Sizes->Parts[placed.Part.Idx].Position;
      Offer(Method.Name, nested);
    } catch (const JobError&) {
      throw;
    } catch (const TNestError& error) {
      FTrouble = error.Text();
    } catch (const std::bad_alloc&) {
      FLacksMemory = true;
    }
  }

  void Offer(const std::string& Method, const TNestedRects& Nested) {
    if (Nested.empty()) return;
    if (Nested.Count() > limits::kCopies)
      throw LimitError(
          {"limit", "/parts",
           "more than " + std::to_string(limits::kCopies) + " copies fit, which is the limit; ask for amounts", ""});
    Layout layout = AssembleLayout(FJob, FJob.Plates[0], FScaled, Nested);
    const double worth = WorthOfCopies(FJob, CountCopies(FJob, layout));
    if (HasAnswer() && worth <= FWorth + kGain * FWorth) return;
    std::string fault = FillFault(FJob, layout, FBounds);
    if (!fault.empty()) {
      FTrouble = std::move(fault);
      return;
    }
    FBest = std::move(layout);
    FWorth = worth;
    FMethod = Method;
    Report();
  }

  void Report() {
    Result now;
    now.Layouts.push_back(FBest);
    Account(FJob, now);
    Int64 unplaced = 0;
    for (const PartUse& part : now.Parts) unplaced += part.Unplaced;
    double bound = FBounds[0].Value;
    for (const Bound& each : FBounds) bound = std::min(bound, each.Value);
    FControl.Report({.Phase = FMethod,
                     .Plates = now.Total.Plates,
                     .Usage = now.Total.Usage,
                     .Unplaced = unplaced,
                     .BoundValue = bound});
  }

  const Job& FJob;
  TRunControl& FControl;
  const std::vector<Bound>& FBounds;
  TScaledPlate FScaled;
  Layout FBest;
  double FWorth = 0;
  std::string FMethod;
  std::string FTrouble;
  bool FLacksMemory = false;
};

// Where a named method finds nothing the free-rectangle nest stands in.
void TryStandIn(const Job& AJob, TFillSearch& Search, Result& AResult) {
  if (Search.HasAnswer() || AJob.Run.Method == "auto" || AJob.Run.Method == "smart") return;
  Job other = AJob;
  other.Run.Method = "smart";
  Search.Run(FillMethods(other));
  if (!Search.HasAnswer()) return;
  AResult.Warnings.push_back(AJob.Run.Method + " placed nothing; the layout of " + Search.Method() + " stands");
}

}  // namespace

void AnswerFill(const Job& AJob, TRunControl& Control, Result& AResult) {
  TFillSearch search(AJob, Control, AResult.Bounds = FillBoundsOf(AJob));
  search.Run(FillMethods(AJob));
  TryStandIn(AJob, search, AResult);
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
