#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "JobAnswer.h"
#include "JobSizes.h"
#include "RunControl.h"
#include "Trouble.h"
#include "platenest/foundation/EventTimer.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

// What the methods of a job of kind Job share: the demand, the run's time and the best checked answer.
namespace platenest::detail {

// A span of the run's time after which everything that polls the stop token of this thread sees a stop. A run without
// limit, or with a counted clock, has no such spans: only the run's own stop passes through.
class TTimeShare {
 public:
  explicit TTimeShare(std::optional<double> Seconds);
  bool IsOver() const { return FToken.StopRequested(); }

 private:
  TStopToken FToken;
  std::optional<TEventTimer> FTimer;
  TStopTokenScope FScope;
};

class TJobSearch {
 public:
  TJobSearch(const Job& AJob, TRunControl& Control, const std::vector<Bound>& Bounds);

  const TJobSizes& Sizes() const { return FSizes; }
  const Options& Run() const { return FJob.Run; }
  TRunControl& Control() { return FControl; }
  // A share of what is left of the time limit, less what writing an answer takes; nothing where no clock ends the run.
  std::optional<double> SecondsOf(double Share) const;
  bool IsTimed() const { return FJob.Run.TimeLimit > 0 && !FJob.Run.Deterministic; }
  // Stopped, out of time, or bounds prove that no answer places more, or as much at less cost.
  bool IsOver();
  // From now on the search goes on after such a proof, for fewer plates and an emptier last one.
  void SeekFewer() { FSeeksFewer = true; }

  // Takes layouts that place any part of the demand: tidied and checked they become the answer if they are better than
  // it. Where writing another one down takes time and would pass the limit, nothing is taken any more. Nor does a
  // deterministic run take anything once its time is out: what a search comes to when it is cut short is not what it
  // would have come to with more time, which must not be worse.
  bool Offer(std::string_view Method, TJobLayouts Layouts);
  // Whether writing an answer down again would take a small part of the time since the last one.
  bool IsDue() const;
  // Whether layouts of this merit would become the answer.
  bool WouldStand(const TJobMerit& Merit) const { return !HasAnswer() || IsBetter(Merit, FMerit); }
  // Runs what may fail: a nester's error loses what it would have found, and is kept in case nothing is found at all.
  void Try(const std::function<void()>& Step) { FTrouble.Try(Step); }
  // Tells the caller that a phase goes on, at most five times a second.
  void Tell(std::string_view Phase, std::optional<double> LpValue);

  // Plates that a column generation takes for the least.
  void SetEstimate(double Plates) { FEstimate = Plates; }
  std::optional<double> Estimate() const { return FEstimate; }

  bool HasAnswer() const { return !FBest.empty(); }
  bool IsBest() const { return FIsBest; }  // in unplaced area and cost
  bool HasFewestPlates() const { return HasFewestPlates(FMerit); }
  const TJobLayouts& Best() const { return FBest; }
  const TJobMerit& Merit() const { return FMerit; }
  const std::string& Method() const { return FMethod; }
  std::vector<Layout> TakeLayouts() { return std::move(FLayouts); }
  void RaiseTrouble() const { FTrouble.Raise(); }

 private:
  bool IsTooLateToWrite() const;
  bool IsBest(const TJobMerit& Merit) const;
  bool HasFewestPlates(const TJobMerit& Merit) const;
  bool Meets(std::string_view What, double Reached) const;
  void Report(std::string_view Phase, std::optional<double> LpValue);

  const Job& FJob;
  TRunControl& FControl;
  const std::vector<Bound>& FBounds;
  TJobSizes FSizes;
  TJobLayouts FBest;
  TJobMerit FMerit;
  std::vector<Layout> FLayouts;
  std::string FMethod;
  bool FIsBest = false;
  bool FSeeksFewer = false;
  std::optional<double> FEstimate;
  double FWritingSeconds = 0;
  double FWrittenAt = 0;
  double FToldAt = -1;
  TTrouble FTrouble;
};

}  // namespace platenest::detail
