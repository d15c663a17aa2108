#pragma once

#include <vector>

#include "Region.h"

// The forbidden translations of one shape around another: those at which the moving one, from its own origin, overlaps
// the fixed one. Minkowski sum of the fixed and the negated moving shape. Only the inside of a region forbids: on its
// border the shapes touch. Free positions without area (a slit of width 0, the one place of an exact fit) are no part
// of a region and vanish in it; ask Overlaps() for such a place.
namespace platenest {

// Sum of two polygons, holes included: their convex pieces are summed pair by pair and united. Exact but for the
// rounding of crossing points by the union, about one unit. Normalised.
TPaths MinkowskiSumOfPieces(const std::vector<TPath>& A, const std::vector<TPath>& B);

// Static and moving shape as polygons. Normalised; empty if one of them is.
TPaths ForbiddenRegion(const TPaths& Static, const TPaths& Dynamic);
TPaths ForbiddenRegion(const TVHPolygon& Static, const TVHPolygon& Dynamic);

}  // namespace platenest
