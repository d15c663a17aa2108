#pragma once

#include <cstddef>
#include <span>

#include "platenest/foundation/Paths.h"

// Exact tests on contours in path units, for those whose union is known without Clipper.
namespace platenest::detail {

// Removes from Points, from Begin on, the vertices of that one contour at which it goes straight on or folds back; they
// add nothing to any winding number. Nothing is left of a contour without area.
void DropFlatVertices(TPath& Points, std::size_t Begin);

// Whether the contour, which has no flat vertices, runs counter-clockwise and neither crosses nor touches itself. Then
// it is its own union. False also for long contours, which are not looked at. Cost: O(n log n + pairs of edges that
// overlap in x); O(n) for a convex one.
bool IsSimpleCounterClockwise(std::span<const TIntPoint> Contour);

}  // namespace platenest::detail
