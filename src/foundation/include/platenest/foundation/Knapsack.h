#pragma once

#include <span>
#include <vector>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Types.h"

// Integer knapsacks, solved exactly: choose pieces of items so that their weights stay within a capacity and their
// values sum up highest. Kellerer, Pferschy, Pisinger, Knapsack Problems, 2004.
namespace platenest {

// The most pieces of each item that may be used; 0 and below means none. A type of its own, made only on purpose, so
// that a call with limits and counts exchanged does not compile. A view: the list must outlive it.
class TItemLimits {
 public:
  explicit TItemLimits(std::span<const int> Limits) : FLimits(Limits) {}
  std::span<const int> List() const { return FLimits; }

 private:
  std::span<const int> FLimits;
};

// Both operations return the best value and set Counts to the pieces of each item, one entry per item, which reproduce
// that value.
//
// Of several best answers the same one is returned on every machine. Put the items into the order of falling value per
// weight, equal ones as given. Then the answer is the one whose last used item comes earliest; among those the
// lightest; among those the one with the fewest pieces of its last item, then of the item before that, and so on.
//
// Degenerate input: items of value 0 or below and of negative weight are never used. A capacity of 0 or below gives
// value 0 and all counts 0. In the bounded form an item of weight 0 is used up to its limit; in the unbounded form,
// where it has no best count, it is left out.
//
// Errors, with Counts unchanged: TArgumentError for lists of different lengths; TRangeError when the best value or its
// weight may reach 2^61, a count exceeds 32 bits, or the tables would take more than 1 GiB.
//
// No shared state; safe on any thread. Counts may be one of the lists that were passed in.
class TKnapsackSolver {
 public:
  TKnapsackSolver() = delete;

  // Any number of pieces of each item. Cost: at most (items) * (weight of the item with the most value per weight),
  // whatever the capacity; but where the capacity holds few pieces, or that weight is in the millions, that of the
  // bounded form.
  static PLATENEST_API Int64 SolveInfiniteKnapsack(std::span<const int> Weights, std::span<const Int64> Values,
                                                   Int64 Capacity, std::vector<int>& Counts);
  static Int64 SolveInfiniteKnapsack(std::span<const int> Weights, std::span<const int> Values, Int64 Capacity,
                                     std::vector<int>& Counts) {
    return SolveInfiniteKnapsack(Weights, std::vector<Int64>(Values.begin(), Values.end()), Capacity, Counts);
  }

  // At most Limits pieces of each item. Cost in the worst case: (sum of log2 of the limits) * (capacity / greatest
  // common divisor of the weights) steps, and as many bits of memory. As a rule it is a thousandth of that, because
  // only choices that can still reach the best value are followed.
  static PLATENEST_API Int64 SolveMultiKnapsack(std::span<const int> Weights, std::span<const Int64> Values,
                                                TItemLimits Limits, Int64 Capacity, std::vector<int>& Counts);
  static Int64 SolveMultiKnapsack(std::span<const int> Weights, std::span<const int> Values, TItemLimits Limits,
                                  Int64 Capacity, std::vector<int>& Counts) {
    return SolveMultiKnapsack(Weights, std::vector<Int64>(Values.begin(), Values.end()), Limits, Capacity, Counts);
  }
};

}  // namespace platenest
