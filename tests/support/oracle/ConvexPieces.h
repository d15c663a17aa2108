#pragma once

#include <vector>

#include "Region.h"

namespace platenest {

// Splits a polygon into convex counter-clockwise pieces between its own vertices, so without any rounding: ears are
// cut off after each hole has been tied to the outer contour, then triangles are joined across inner edges as long as
// they stay convex (Hertel and Mehlhorn 1983). A polygon that touches or crosses itself is first replaced by its
// non-zero union, whose crossing points are rounded. Raises std::runtime_error when even that cannot be cut. Quadratic
// as a rule.
std::vector<TPath> ConvexPieces(const TPaths& Polygon);

}  // namespace platenest
