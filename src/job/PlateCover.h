#pragma once

#include <span>
#include <vector>

namespace platenest::detail {

// Plates of one kind, each of which holds as much.
struct TCoverKind {
  int Each = 0;
  int Count = 0;
  double Cost = 0;
};

// How many plates of each kind hold Need together at least cost, of equal ones the fewest: a covering knapsack. Empty
// for a need of nothing, where all plates hold less, and where it would take more than MostSteps of some nanoseconds:
// Need times the kinds times a logarithm of their plates.
std::vector<int> CheapestCover(std::span<const TCoverKind> Kinds, int Need, double MostSteps);

}  // namespace platenest::detail
