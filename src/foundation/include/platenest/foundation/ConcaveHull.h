#pragma once

#include "platenest/foundation/Polyline.h"

namespace platenest {

// An outer hull between the contour and its convex hull: pockets are filled whose mouth is at most 4 % of the contour's
// scale wide at level 0, twice as wide at each further level. The scale is the square root of the area of the bounding
// box. The mouths are found in a triangulation of the pockets, in the manner of Duckham, Kulik, Worboys and Galton
// (2008). The result consists of points of the input in their order and in the direction of the input, also for a
// clockwise one, of which the inside is meant too; it is simple and contains the input exactly, and its area never
// falls with the level. It repeats its first point if the input did. Fewer than four vertices and contours without area
// come back as they are; a contour that crosses itself gives some contour over its points. Coordinates must be finite,
// else TRangeError. Cost: O(n log n) for outlines that do not fill their box like a maze.
PLATENEST_API TVPolyline2D GetConcaveHull(const TVPolyline2D& Polyline, int Level);

}  // namespace platenest
