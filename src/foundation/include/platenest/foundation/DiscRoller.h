#pragma once

#include "platenest/foundation/Polyline.h"

namespace platenest {

// The trace of a disc that rolls along the outside of a contour, as a contour with fewer points that stays outside:
// what the disc cannot reach is filled, in the manner of alpha hulls (Edelsbrunner, Kirkpatrick and Seidel 1983), with
// chords in place of the concave arcs; then points are dropped by moving edges outward within a bound. Outside is the
// right of the contour's direction: of a clockwise contour, the border of a cavity, the cavity's inside. There the disc
// keeps to one chamber where it cannot pass a neck, and fills no more from the first level on at which a tenth of the
// area would go.
//
// The disc has 0.4 % of the scale (the square root of the area of the bounding box) as its radius at level 1; each
// level doubles it, level 0 halves it, and levels stop at 8. Every level starts from the result of the lighter one, so
// the number of points never grows with the level.
//
// Both results are simple, keep the direction of the contour, contain the material of the input within 1e-6 and repeat
// their first point if the input did. Fewer than four vertices come back as they are, a contour without area as well; a
// contour that crosses itself gives some contour near its points. Coordinates must be finite, else Run raises
// TRangeError. Cost: O(n log n) for outlines that do not fill their box like a maze. One thread at a time.
class PLATENEST_API TDiscRoller {
 public:
  TDiscRoller(const TVPolyline2D& Polyline, int Level);

  void Run();

  // Empty before Run. Fine moves edges by at most 3 % of the radius at a level and by twice that in sum, Coarse by
  // 10 %; Coarse never has more points than Fine.
  const TVPolyline2D& Fine() const { return FFine; }
  const TVPolyline2D& Coarse() const { return FCoarse; }

 private:
  TVPolyline2D FPolyline;
  int FLevel;
  TVPolyline2D FFine;
  TVPolyline2D FCoarse;
};

}  // namespace platenest
