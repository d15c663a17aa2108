#pragma once

#include <span>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Point2D.h"

namespace platenest {

class TPolygonBasicAlgo {
 public:
  TPolygonBasicAlgo() = delete;

  // The tangents from Point to a convex list of points in any order: seen from Point, nothing of the list lies right of
  // Points[Index1] nor left of Points[Index2]; of points in one direction the first counts. An empty list gives -1
  // twice. Where Point lies inside there are no tangents; both indices are valid then but mean nothing. Cost: O(n).
  static PLATENEST_API void PointTangants(std::span<const TPoint2D> Points, const TPoint2D& Point, int& Index1,
                                          int& Index2);
};

}  // namespace platenest
