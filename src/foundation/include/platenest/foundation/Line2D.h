#pragma once

#include <vector>

#include "platenest/foundation/Point2D.h"

// Segments, infinite lines and circles of the floating world, in drawing units.
// No state; safe on any thread. Nothing raises.
namespace platenest {

// A directed segment.
struct TVLine2D {
  TPoint2D StartPoint;
  TPoint2D EndPoint;

  // The point at parameter T: exactly the start at 0, exactly the end at 1, beyond them outside [0, 1].
  TPoint2D EvalPoint(double T) const { return T == 1 ? EndPoint : StartPoint + (EndPoint - StartPoint) * T; }
  // Distance from Point to the segment; T becomes the parameter of the nearest point, in [0, 1] (0 for a segment of no
  // length).
  PLATENEST_API double SegmentDistanceTo(const TPoint2D& Point, double& T) const;
};

using TVLine2DList = std::vector<TVLine2D>;

// The infinite line through two points.
struct TLine2D {
  TPoint2D Point1;
  TPoint2D Point2;
};

// Up to two common points of a line and a circle, in the direction of the line.
struct TIntersectPoint2D {
  int Count = 0;
  TPoint2D Points[2];
};

struct TCircle2D {
  TPoint2D Center;
  double Radius = 0;

  // Two points; their middle alone where the line touches within 1e-6 or cuts off a chord of at most 2e-6; none when
  // the line passes by, or when its two points are one and give no direction.
  PLATENEST_API TIntersectPoint2D Intersect(const TLine2D& Line) const;
};

}  // namespace platenest
