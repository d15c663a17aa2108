#pragma once

#include <optional>
#include <span>

#include "CircleSizes.h"
#include "platenest/foundation/Types.h"

// Circles of several sizes on one plate by corner placement with look-ahead.
namespace platenest::detail {

struct TPackEffort {
  std::optional<double> Seconds;  // wall time; nothing where only steps and the run's stop end it
  Int64 Steps = 0;                // tried positions of each worker; 0 for no limit
  int Threads = 1;
  bool ExchangesSides = false;  // builds up from the plate's bottom edge instead of its left one
};

// Fills a plate with copies of what is left: the nester's answer, topped up. Where one greedy pass takes long, which
// look-ahead does not interrupt, there is no look-ahead. Empty where even that would take too long, where the sizes do
// not make a start or the answer does not pass the layout check. More sizes than the nester can hold are thinned out.
TCircleSpots PackPlate(const TCircleSizes& Sizes, int Plate, std::span<const int> Left, const TPackEffort& Effort);

}  // namespace platenest::detail
