#pragma once

#include <span>

#include "platenest/foundation/Paths.h"

namespace platenest::detail {

// The region that one contour, without flat vertices, winds around positively, by the arrangement of the contour with
// itself: outer contours counter-clockwise, holes clockwise, the same points as from Clipper, which rounds crossings to
// path units. False, and Paths undefined, where the contour touches itself or comes so near to it that rounding has a
// say, where it crosses itself often, and for long contours; those are for Clipper.
// Safe on any thread. Cost: O(n log n + pairs of edges that overlap in x); O(n) for a convex contour.
bool UniteContour(std::span<const TIntPoint> Contour, TPaths& Paths);

}  // namespace platenest::detail
