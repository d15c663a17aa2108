#pragma once

#include "platenest/foundation/Types.h"

namespace platenest::detail {

// One rectangle size on one plate: sizes in the nester's units, margin taken off the plate already.
struct TOneSize {
  double PlateWidth = 0;
  double PlateHeight = 0;
  double PartWidth = 0;
  double PartHeight = 0;
  double Gap = 0;
};

struct TOneSizeBounds {
  Int64 Area = 0;    // grown plate area over grown part area
  Int64 Barnes = 0;  // Barnes 1979: what strips as long as a part's side must leave over
  Int64 Grid = 0;    // no bound: what the better of the two plain grids holds
};

// Upper bounds on the number of copies, gap included by growing plate and part. Computed on whole numbers: exactly
// where the sizes are decimal fractions of moderate length; elsewhere with the plate rounded up and the part rounded
// down at a scale of 1e-8 of the plate or finer. Rounding therefore never makes a bound too low.
TOneSizeBounds BoundOneSize(const TOneSize& Sizes);

}  // namespace platenest::detail
