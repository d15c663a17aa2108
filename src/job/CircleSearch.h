#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CircleAnswer.h"
#include "CircleSizes.h"
#include "JobSearch.h"
#include "RunControl.h"
#include "Trouble.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

// What the methods of a job of kind Circles share: the demand, the run's time and the best checked answer.
namespace platenest::detail {

class TCircleSearch {
 public:
  TCircleSearch(const Job& AJob, TRunControl& Control, const std::vector<Bound>& Bounds);

  const TCircleSizes& Sizes() const { return FSizes; }
  const Options& Run() const { return FJob.Run; }
  int Threads() const;
  TRunControl& Control() { return FControl; }
  bool IsTimed() const { return FJob.Run.TimeLimit > 0 && !FJob.Run.Deterministic; }
  // What is left of the time limit, less what writing an answer takes; nothing where no clock ends the run.
  std::optional<double> SecondsLeft() const;
  // Stopped, out of time, or bounds prove that no answer is better.
  bool IsOver();

  // Takes layouts within stock and demand: checked they become the answer if they are better than it. Where writing
  // another one down would pass the limit, nothing is taken any more; nor does a deterministic run take anything once
  // its time is out, since with more time the search would have come to something else. Raises LimitError for more
  // copies of a part than are allowed.
  bool Offer(std::string_view Method, TCircleLayouts Layouts);
  // Runs what may fail: a nester's error loses what it would have found, and is kept in case nothing is found at all.
  void Try(const std::function<void()>& Step) { FTrouble.Try(Step); }

  bool HasAnswer() const { return !FBest.empty(); }
  bool PlacesAll() const { return HasAnswer() && FMerit.UnplacedArea <= 0; }
  const TCircleLayouts& Best() const { return FBest; }
  const TJobMerit& Merit() const { return FMerit; }
  const std::string& Method() const { return FMethod; }
  std::vector<Layout> TakeLayouts() { return std::move(FLayouts); }
  void RaiseTrouble() const { FTrouble.Raise(); }

 private:
  void RequireFewCopies(const TCircleLayouts& Layouts) const;
  bool IsBest() const;
  bool IsMet(std::string_view What, double Reached) const;
  void Report();

  const Job& FJob;
  TRunControl& FControl;
  const std::vector<Bound>& FBounds;
  TCircleSizes FSizes;
  TCircleLayouts FBest;
  TJobMerit FMerit;
  std::vector<Layout> FLayouts;
  std::string FMethod;
  bool FIsBest = false;
  double FWritingSeconds = 0;
  TTrouble FTrouble;
};

}  // namespace platenest::detail
