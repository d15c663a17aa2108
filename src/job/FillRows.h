#pragma once

#include <span>

#include "FillSizes.h"
#include "platenest/URectNest/RectRecords.h"

namespace platenest::detail {

// Copies of each part, no more than given, in rows of falling height from the bottom up, each copy in the first of
// the last 200 rows that has room (Coffman, Garey, Johnson and Tarjan 1980). Parts that may turn lie. In the units of
// Sizes, lower left corner at the origin; Part.Idx is a position in Sizes.Parts. At most 200 looks for each size, and
// no look at time or stop.
TNestedRects NestRows(const TFillSizes& Sizes, std::span<const int> Amounts);

}  // namespace platenest::detail
