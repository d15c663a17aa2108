#pragma once

#include "JobSizes.h"

namespace platenest::detail {

// The least number of plates that the copies asked for by number need: on a box around all plates any layout stays
// possible by area when widths go through one dual feasible function and heights through another. The functions of
// one threshold make sides above the box's side less the threshold whole, keep those from the threshold on and drop
// shorter ones. Every pair of thresholds is tried where sizes are few, evenly chosen ones else. Works on whole numbers.
// Source: Fekete and Schepers, A general framework for bounds for higher-dimensional orthogonal packing problems, 2004.
Int64 LeastPlatesByFekete(const TJobSizes& Sizes, const TGrownSizes& Grown);

}  // namespace platenest::detail
