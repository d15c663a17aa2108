#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "JobAnswer.h"
#include "JobSizes.h"
#include "RunControl.h"
#include "StockSearch.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// What the methods of a job of kind Job share: the demand, the run's time and the best checked answer.
class TJobSearch : public TStockSearch<TJobSizes, TJobLayouts> {
 public:
  TJobSearch(const Job& AJob, TRunControl& Control, const std::vector<Bound>& Bounds);

  // A share of what is left of the time limit, less what writing an answer takes; nothing where no clock ends the run.
  std::optional<double> SecondsOf(double Share) const;
  // Stopped, out of time, or bounds prove that no answer places more, or as much at less cost.
  bool IsOver();
  // From now on the search goes on after such a proof, for fewer plates and an emptier last one.
  void SeekFewer() { FSeeksFewer = true; }

  // Takes layouts that place any part of the demand, unless it is too late: tidied and checked they become the answer
  // if they are better than it.
  bool Offer(std::string_view Method, TJobLayouts Layouts);
  // Whether writing an answer down again would take a small part of the time since the last one.
  bool IsDue() const;
  // Whether layouts of this merit would become the answer.
  bool WouldStand(const TJobMerit& Merit) const { return !HasAnswer() || IsBetter(Merit, FMerit); }
  // Tells the caller that a phase goes on, at most five times a second.
  void Tell(std::string_view Phase, std::optional<double> LpValue);

  // Plates that a column generation takes for the least.
  void SetEstimate(double Plates) { FEstimate = Plates; }
  std::optional<double> Estimate() const { return FEstimate; }

  bool IsBest() const { return FIsBest; }  // in unplaced area and cost
  bool HasFewestPlates() const { return HasFewestPlates(FMerit); }

 private:
  bool IsBest(const TJobMerit& Merit) const;
  bool HasFewestPlates(const TJobMerit& Merit) const;
  bool Meets(std::string_view What, double Reached) const;
  void Report(std::string_view Phase, std::optional<double> LpValue);

  bool FIsBest = false;
  bool FSeeksFewer = false;
  std::optional<double> FEstimate;
  double FWrittenAt = 0;
  double FToldAt = -1;
};

}  // namespace platenest::detail
