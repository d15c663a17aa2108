#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "JobAnswer.h"
#include "Judgement.h"
#include "RunControl.h"
#include "Trouble.h"
#include "platenest/foundation/EventTimer.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

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

// What the searches of all kinds of jobs over a stock of plates share: the demand, the run's time and the best checked
// answer. TSizes is the job in the nesters' units, TLayouts what the nesters find.
template <class TSizes, class TLayouts>
class TStockSearch {
 public:
  const TSizes& Sizes() const { return FSizes; }
  const Options& Run() const { return FJob.Run; }
  TRunControl& Control() { return FControl; }
  bool IsTimed() const { return FJob.Run.TimeLimit > 0 && !FJob.Run.Deterministic; }

  // A search that was given all time that was left has come to the limit where that ran out, even if the clock says so
  // a moment later.
  void EndWith(const TTimeShare& AllThatWasLeft) {
    if (AllThatWasLeft.IsOver()) FControl.EndForTime();
  }

  // Runs what may fail: a nester's error loses what it would have found, and is kept in case nothing is found at all.
  void Try(const std::function<void()>& Step) { FTrouble.Try(Step); }
  void RaiseTrouble() const { FTrouble.Raise(); }

  bool HasAnswer() const { return !FBest.empty(); }
  bool PlacesAll() const { return HasAnswer() && FMerit.UnplacedArea <= 0; }
  const TLayouts& Best() const { return FBest; }
  const TJobMerit& Merit() const { return FMerit; }
  const std::string& Method() const { return FMethod; }
  std::vector<Layout> TakeLayouts() { return std::move(FLayouts); }

 protected:
  // How far beyond the limit writing an answer may reach.
  static constexpr double kLateSeconds = 0.05;

  TStockSearch(const Job& AJob, TRunControl& Control, const std::vector<Bound>& Bounds, TSizes Sizes)
      : FJob(AJob), FControl(Control), FBounds(Bounds), FSizes(std::move(Sizes)) {}

  // What writing an answer like the last one takes, in seconds.
  double WritingSeconds() const { return (1 + kWritingRate) * FCheckSeconds; }
  // What is left of the limit when the answer is written, below 0 when it is passed.
  double SecondsLeft() const { return FJob.Run.TimeLimit - FControl.Seconds() - WritingSeconds(); }
  // A deterministic run takes nothing once its time is out: what a search comes to when it is cut short is not what it
  // would have come to with more time, which must not be worse. A timed one takes nothing whose writing takes a moment
  // and would end so much later than the limit.
  bool IsTooLate(double LateSeconds) const {
    if (!HasAnswer()) return false;
    if (FJob.Run.Deterministic) return FControl.OutOfTime();
    return IsTimed() && WritingSeconds() > kLateSeconds && SecondsLeft() < -LateSeconds;
  }

  // The layouts become the answer, unless FaultOf finds something wrong with them, which is noted.
  template <class TAssemble, class TFaultOf>
  bool Take(std::string_view Method, TLayouts Layouts, const TJobMerit& Merit, TAssemble Assemble, TFaultOf FaultOf) {
    const double start = FControl.Seconds();
    std::vector<Layout> assembled = Assemble(FJob, FSizes, Layouts);
    std::string fault = FaultOf(FJob, assembled, FBounds);
    FCheckSeconds = FControl.Seconds() - start;
    FControl.Affords(kMsACopy * static_cast<double>(CopiesIn(Layouts)));
    if (!fault.empty()) {
      FTrouble.Note(std::move(fault));
      return false;
    }
    FBest = std::move(Layouts);
    FLayouts = std::move(assembled);
    FMerit = Merit;
    FMethod = Method;
    return true;
  }

  Progress ProgressIn(std::string_view Phase) const {
    Progress now = ProgressOf(FJob, FSizes, FBest, FMerit, FBounds);
    now.Phase = Phase;
    return now;
  }

  const Job& FJob;
  TRunControl& FControl;
  const std::vector<Bound>& FBounds;
  const TSizes FSizes;
  TLayouts FBest;
  TJobMerit FMerit;
  double FCheckSeconds = 0;  // of the last answer

 private:
  static constexpr double kWritingRate = 3;  // of checking, measuring and writing an answer to checking it
  static constexpr double kMsACopy = 1e-3;

  std::vector<Layout> FLayouts;
  std::string FMethod;
  TTrouble FTrouble;
};

}  // namespace platenest::detail
