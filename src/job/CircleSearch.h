#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "CircleAnswer.h"
#include "CircleSizes.h"
#include "RunControl.h"
#include "StockSearch.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// What the methods of a job of kind Circles share: the demand, the run's time and the best checked answer.
class TCircleSearch : public TStockSearch<TCircleSizes, TCircleLayouts> {
 public:
  TCircleSearch(const Job& AJob, TRunControl& Control, const std::vector<Bound>& Bounds);

  int Threads() const;
  // What is left of the time limit, less what writing an answer takes; nothing where no clock ends the run.
  std::optional<double> SecondsLeft() const;
  // Stopped, out of time, or bounds prove that no answer is better.
  bool IsOver();

  // Takes layouts within stock and demand, unless it is too late: checked they become the answer if they are better
  // than it. Raises LimitError for more copies of a part than are allowed.
  bool Offer(std::string_view Method, TCircleLayouts Layouts);

 private:
  void RequireFewCopies(const TCircleLayouts& Layouts) const;
  bool IsBest() const;
  bool IsMet(std::string_view What, double Reached) const;
  void Report();

  bool FIsBest = false;
};

}  // namespace platenest::detail
