#pragma once

#include "platenest/foundation/Polyline.h"

namespace platenest::detail {

// What an edge adds to the winding number around Point: 1 or -1 where it passes upward or downward on the right of it.
inline int WindingStep(const TVLine2D& Edge, const TPoint2D& Point) {
  const bool fromAbove = Edge.StartPoint.Y > Point.Y;
  if (fromAbove == (Edge.EndPoint.Y > Point.Y)) return 0;
  const double side = TPoint2DUtils::IsLeft(Edge.StartPoint, Edge.EndPoint, Point);
  if (fromAbove) return side < 0 ? -1 : 0;
  return side > 0 ? 1 : 0;
}

// 1: Point is enclosed by the contour, whichever way it runs. 0: it lies within Tol of the contour line. -1: outside.
int RelationWithContour(const TVPolyline2D& Contour, const TPoint2D& Point, double Tol);

}  // namespace platenest::detail
