#pragma once

#include "platenest/foundation/Polyline.h"

namespace platenest {

class TPolyDecimator {
 public:
  TPolyDecimator() = delete;

  // A contour with fewer points inside the given one, for shapes that serve as a cavity. Corners are cut off and edges
  // between two reflex vertices are replaced by their neighbours, drawn out to their meeting point, cheapest area first
  // (Visvalingam and Whyatt 1993), until 0.5 % of the area per level is used up; no point moves by more than 3 % of the
  // scale (the square root of the area of the bounding box). The result is simple, lies inside the input within 1e-6
  // whatever the direction, which it keeps, has at least three points, never more at a higher level, and repeats its
  // first point if the input did. Fewer than four vertices and contours without area come back as they are; a contour
  // that crosses itself gives some contour near its points. Coordinates must be finite, else TRangeError. Cost:
  // O(n log n) for outlines that do not fill their box like a maze.
  static PLATENEST_API TVPolyline2D GetInscribedHull(const TVPolyline2D& Polyline, int Level);
};

}  // namespace platenest
