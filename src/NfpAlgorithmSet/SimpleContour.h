#pragma once

#include <cstddef>
#include <span>

#include "platenest/foundation/Paths.h"

// Exact tests on contours in path units, for those whose union is known without Clipper.
namespace platenest::detail {

// Removes from Points, from Begin on, the vertices of that one contour at which it goes straight on or folds back; they
// add nothing to any winding number. Nothing is left of a contour without area.
void DropFlatVertices(TPath& Points, std::size_t Begin);

// Whether the contour turns left at every vertex and goes once round.
bool IsConvexCounterClockwise(std::span<const TIntPoint> Contour);

}  // namespace platenest::detail
