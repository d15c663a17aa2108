#pragma once

#include "Region.h"

namespace platenest {

// Whether the open insides of two polygons share a point. Exact: touching, however long, is none. Quadratic in the
// edges that reach into the common box.
bool Overlaps(const TPaths& A, const TPaths& B);
bool OverlapsAt(const TPaths& Static, const TPaths& Dynamic, const TIntPoint& At);

// Diameter of the largest disc in the common area, in drawing units and to four path units: no move shorter than this
// separates the polygons. A sharp tip may go deeper than it says. 0 without overlap.
double OverlapDepth(const TPaths& A, const TPaths& B);

// The same for what of Part lies out of Plate.
double DepthOutside(const TPaths& Plate, const TPaths& Part);

// The diameter of the largest disc in a region, as above.
double InnerWidth(const TPaths& Region);

}  // namespace platenest
