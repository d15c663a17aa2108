#pragma once

#include "Region.h"

// The forbidden translations of one shape around another: those at which the moving one, from its own origin, overlaps
// the fixed one. Minkowski sum of the fixed and the negated moving shape. Only the inside of a region forbids: on its
// border the shapes touch. Free positions without area (a slit of width 0, the one place of an exact fit) are no part
// of a region and vanish in it; ask Overlaps() for such a place.
namespace platenest {

// Static and moving shape as connected polygons, holes included. Exact but for the rounding of crossing points by the
// unions, about one unit. Normalised; empty if one of the shapes is. About the square of the product of edge counts.
TPaths ForbiddenRegion(const TPaths& Static, const TPaths& Dynamic);
TPaths ForbiddenRegion(const TVHPolygon& Static, const TVHPolygon& Dynamic);

}  // namespace platenest
