#pragma once

#include "platenest/foundation/Paths.h"

// Shapes grown (positive Delta) or shrunk (negative) by a distance, over Clipper's offsetter.
namespace platenest {

class PLATENEST_API TPolyOffsetter {
 public:
  TPolyOffsetter() = delete;

  // JoinType says what becomes of a convex corner when growing, and of a reflex one when shrinking: 0 squared off at
  // distance Delta, 1 rounded, 2 mitred; another value raises TArgumentError. ArcTol is an angle in radians, for round
  // joins that of the chords that make the arc, for mitres the sharpest corner that is not cut off; 0 or less takes
  // Clipper's defaults, and no mitre reaches less far than two deltas.
  //
  // The paths are taken together, filled where their winding is not zero: a hole must run against its outer contour, a
  // lone path counts as outer however it runs. Delta is in path units. The result has counter-clockwise outer contours
  // and clockwise holes, in Clipper's order; it is empty where nothing is left. A coordinate that is or gets beyond
  // 2^62 raises TRangeError.
  static TPaths OffsetPathsToPaths(const TPaths& Paths, Int64 Delta, int JoinType, double ArcTol);

  // The same for a shape, Delta in drawing units: its first contour is the outer one and the others are holes, however
  // they run. The pieces come from large to small. A Delta that is not finite raises TRangeError.
  static TVHPolygonList OffsetHPolygon(const TVHPolygon& Polygon, double Delta, int JoinType, double ArcTol);
};

}  // namespace platenest
