#pragma once

#include <span>

#include "platenest/layoutcheck/PlacedBox.h"

namespace platenest::detail {

// From here up to the next step (or to the end of the run) a vertical line is free, and so is the plane to its left
// down to Left and to its right up to Right: Left <= line <= Right.
struct TFreeStep {
  double From;
  double Left;
  double Right;
};

// Replaces Best by the largest free rectangle across the line between the first step and End, if that one is larger.
// Cost: O(k log^3 k) for k steps, less where Best rules out whole parts of the run.
void FindLargestAcross(std::span<const TFreeStep> Steps, double End, TPlacedBox& Best);

}  // namespace platenest::detail
