#pragma once

#include <span>
#include <vector>

#include "JobSizes.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// Lower bounds on plates and cost of every answer that places all copies asked for by number, of parts that fit some
// plate:
//   plates, area    whole plates, largest first, until they are as large as the demand; all grown by the gap
//   plates, fekete  where it is more: by area again, the sides of the parts stretched and shrunk by a dual feasible
//                   function for each axis, which keep every layout on a box around all plates possible (Fekete and
//                   Schepers 2004). A part that may turn counts in the turn in which it counts less
//   cost, area      where plates differ in cost: whole and broken plates, cheapest for their area first, then up to the
//                   next sum that costs can make
//   cost, plates    where it is more: the cheapest plates, as many as the bounds on plates say
// and an upper bound on the part area of every answer:
//   area, stock     where the demand is as large as the stock, parts without limit taken as often as it could hold
//   them:
//                   the best mix of whole and broken copies. Where copies asked for by number are larger than the stock
//                   alone, it is the only bound
// Numbers of plates are worked out on whole numbers and sound for every packing of TGrownSizes; sums of cost and area
// are rounded to twelve digits. Cost: a few million steps.
std::vector<Bound> BoundsOfSizes(const TJobSizes& Sizes);

// Whether these copies of each part leave nothing of the whole stock free, in exact numbers.
bool FillsStock(const TJobSizes& Sizes, std::span<const Int64> Placed);

// The least sum of these costs, each as often as one likes, that is not below Cost, as far as their common divisor
// tells.
long double NextSum(std::span<const double> Costs, long double Cost);

// Whether all plates have one cost, so that fewest plates cost least.
bool HasOneCost(const TJobSizes& Sizes);

}  // namespace platenest::detail
