#pragma once

#include "FillCase.h"

namespace platenest::bench {

// The largest worth that straight cuts from edge to edge, any number of them, get out of the plate with amounts without
// limit: plate and sizes are whole numbers, the gap is 0. A plain recursion over every cut, with nothing of the nesters
// in it. Cost: O(L * W * (L + W)) for a plate of L by W, and 8 bytes for each pair of lengths.
double BestByCuts(const test::TFillCase& Case);

}  // namespace platenest::bench
