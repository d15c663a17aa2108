#pragma once

#include <compare>
#include <span>
#include <vector>

#include "platenest/foundation/Types.h"

namespace platenest::detail {

// Plates of one kind, each of which holds as much.
struct TCoverKind {
  int Each = 0;
  int Count = 0;
  double Cost = 0;
};

// What covers are compared by: cost, then plates; less is better.
struct TCoverWorth {
  double Cost = 0;
  Int64 Plates = 0;
  auto operator<=>(const TCoverWorth&) const = default;
};

// How many plates of each kind hold Need together at least cost, of equal ones the fewest: a covering knapsack. Empty
// for a need of nothing, where all plates hold less, and where it would take more than MostSteps of some nanoseconds:
// Need times the kinds times a logarithm of their plates.
std::vector<int> CheapestCover(std::span<const TCoverKind> Kinds, int Need, double MostSteps);

}  // namespace platenest::detail
