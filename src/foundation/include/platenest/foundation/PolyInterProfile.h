#pragma once

#include "platenest/foundation/Polyline.h"

namespace platenest {

// A contour within a contour: the border offset inward by t and then simplified with t, so that it cannot leave the
// input; t is 0.04 % of the scale (the square root of the area of the bounding box) per level. Where the offset falls
// apart the largest piece counts. The result is simple, keeps the direction of the input and repeats its first point if
// that did. It is empty if less than nine tenths of the area are left. Coordinates must stay below 4e10, else Run
// raises. Cost: that of an offset by Clipper. One thread at a time.
class PLATENEST_API TPolyInterProfile {
 public:
  TPolyInterProfile(TDynPoints2D Points, int Level);

  void Run();

  const TVPolyline2D& Result() const { return FResult; }

 private:
  TVPolyline2D FContour;
  int FLevel;
  TVPolyline2D FResult;
};

}  // namespace platenest
