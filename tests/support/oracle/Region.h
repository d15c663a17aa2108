#pragma once

#include <algorithm>

#include "platenest/foundation/Paths.h"

// Exact answers about integer polygons at the scale of paths. A polygon is a list of contours with its inside on the
// left of every edge: the outer contour first and counter-clockwise, holes clockwise. A region is any list of contours
// under non-zero fill. Points are exact up to 2^60, whatever the length of the edges.
namespace platenest {

__extension__ using TWide = __int128;

enum class TPlace { Outside, Border, Inside };

// Twice the signed area of the triangle, positive for a left turn at B.
inline TWide Turn(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C) {
  return static_cast<TWide>(B.X - A.X) * (C.Y - A.Y) - static_cast<TWide>(B.Y - A.Y) * (C.X - A.X);
}

// The vertex after the i-th, around.
inline const TIntPoint& Next(const TPath& Contour, std::size_t i) {
  return Contour[i + 1 == Contour.size() ? 0 : i + 1];
}

// Whether the boxes of two segments touch.
inline bool BoxesMeet(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C, const TIntPoint& D) {
  return std::max(A.X, B.X) >= std::min(C.X, D.X) && std::min(A.X, B.X) <= std::max(C.X, D.X) &&
         std::max(A.Y, B.Y) >= std::min(C.Y, D.Y) && std::min(A.Y, B.Y) <= std::max(C.Y, D.Y);
}

// On the closed segment.
bool IsOnSegment(const TIntPoint& Point, const TIntPoint& A, const TIntPoint& B);

TPlace PlaceOf(const TIntPoint& Point, const TPaths& Region);

// To the nearest edge of any contour; infinity for an empty region. Path units, exact to rounding.
double DistanceToBorder(const TIntPoint& Point, const TPaths& Region);

// The path form of a part, turned as a polygon is; contours that round to fewer than three points are left out.
TPaths PolygonOf(const TVHPolygon& Part);
TVHPolygon PartOf(const TPaths& Polygon);

TPaths Scaled(TPaths Polygon, Int64 Factor);

// Rotated by half a turn: every point negated. Orientation stays.
TPaths Negated(const TPaths& Polygon);

TPaths Moved(const TPaths& Polygon, const TIntPoint& By);

// One operation under non-zero fill for both, without contours of fewer than three points.
TPaths Clipped(const TPaths& Subject, const TPaths& Clip, ClipperLib::ClipType Type);

// Union under non-zero fill: outers counter-clockwise, holes clockwise, no contour of fewer than three points.
TPaths Normalized(const TPaths& Region);

// Area in square drawing units under non-zero fill.
double RegionArea(const TPaths& Region);

// No two edges of all contours meet but neighbours at their common vertex. Quadratic.
bool IsSimple(const TPaths& Polygon);

}  // namespace platenest
