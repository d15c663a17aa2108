#pragma once

#include "FillSizes.h"

namespace platenest::detail {

// What the copies of the best layout can be worth at most: they lie on the plate grown by one gap, each on a rectangle
// grown by one gap, and no size alone fits more often than Most. The best mix of whole and broken copies under these
// two rules is worth no less (Dantzig 1957).
double BoundFillByArea(const TFillSizes& Sizes);

}  // namespace platenest::detail
