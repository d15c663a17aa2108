#pragma once

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Polyline.h"

namespace platenest {

// The contour with about every second vertex turned a tiny random angle about the vertex before it, then simplified
// within 0.022 drawing units: practically the same shape, but no longer parallel to its partner. a is the step of the
// angle in radians for contours of moderate size; vertices move by up to 10 steps times the edge, by up to 50 steps for
// short edges. Without a repeated last point. The angles come from Random of the calling thread.
//
// An edge longer than 99 keeps its vertices, and its start stays the pivot of the vertices after it: once the edge at
// the pivot is itself that long, the rest of the contour is left alone.
PLATENEST_API TVPolyline2D DisturbPolyline(const TVPolyline2D& poly, double a);
PLATENEST_API void DisturbPolylineInPlace(TVPolyline2D& poly, double a);

}  // namespace platenest
