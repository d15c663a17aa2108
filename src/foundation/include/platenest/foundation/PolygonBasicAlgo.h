#pragma once

#include <span>

#include "platenest/foundation/Polyline.h"

namespace platenest {

class TPolygonBasicAlgo {
 public:
  TPolygonBasicAlgo() = delete;

  // What a contour that touches or crosses itself winds around (non-zero fill), as contours that do not, from large to
  // small; coordinates are rounded to 1 / Scale. The outer ones run as the input does, holes the other way; an input
  // whose parts cancel to area 0 counts as counter-clockwise. Empty where nothing is enclosed. Coordinates beyond the
  // bound of the integer paths raise. Cost: that of a union by Clipper.
  static PLATENEST_API TVPolyline2DList PolygonSimplify(const TVPolyline2D& Polyline, double Scale);

  // The tangents from Point to a convex list of points in any order: seen from Point, nothing of the list lies right of
  // Points[Index1] nor left of Points[Index2]; of points in one direction the first counts. An empty list gives -1
  // twice. Where Point lies inside there are no tangents; both indices are valid then but mean nothing. Cost: O(n).
  static PLATENEST_API void PointTangants(std::span<const TPoint2D> Points, const TPoint2D& Point, int& Index1,
                                          int& Index2);
};

}  // namespace platenest
