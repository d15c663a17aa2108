#pragma once

#include <limits>
#include <span>
#include <vector>

#include "platenest/foundation/Point2D.h"

namespace platenest::detail {

struct TThinningLimits {
  double Distance = std::numeric_limits<double>::infinity();  // from the input to the result and back, drawing units
  double Area = std::numeric_limits<double>::infinity();      // added in sum
};

// Drops vertices of a contour by moves that add material, which is on the left of its direction, cheapest area first
// (Visvalingam and Whyatt 1993): a notch vertex is cut off, or an edge between two tips is replaced by its neighbours,
// drawn out to their meeting point. A simple contour stays simple; at least three vertices stay. The result contains
// the material of the input up to the rounding of meeting points. A move beyond Distance is left out; the first one
// that would exceed Area ends the work, so for one Distance a larger Area never leaves more points.
// Cost: O(n log n) for a contour that does not fill its box like a maze.
PLATENEST_API std::vector<TPoint2D> ThinnedOutward(std::span<const TPoint2D> Vertices, const TThinningLimits& Limits);

}  // namespace platenest::detail
