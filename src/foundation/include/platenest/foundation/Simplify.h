#pragma once

#include "platenest/foundation/Paths.h"
#include "platenest/foundation/Polyline.h"

// Line simplification after Douglas and Peucker (1973), iterative. What stays are points of the input in their order,
// the first one always; every point that goes lies within Tol of the edge that bridges it. Tol is in drawing units in
// both forms. Flag tells a contour that closes on itself: its closing edge is simplified too, it is anchored at its
// first point and at two points far apart, keeps at least three points, and repeats its first point at the end if the
// input did. Without Flag both ends stay. Fewer than three points come back as they are; a negative Tol or NaN keeps
// every point that differs from its bridge.
//
// Cost: the method alone is quadratic on inputs whose splits stay lopsided. Once the distance tests have cost more than
// 32 n log2 n, remaining pieces that exceed Tol are cut at their middle point, which keeps the bound on the distance,
// keeps some more points than needed, and bounds the whole by O(n log n).
// No state; safe on any thread.
namespace platenest {

PLATENEST_API TVPoint2DList DPSimplify(const TVPoint2DList& Points, double Tol, bool Flag = true);
PLATENEST_API TPath DPSimplify(const TPath& Points, double Tol, bool Flag = true);

}  // namespace platenest
