#pragma once

#include "platenest/foundation/ClipperAdapter.h"
#include "platenest/foundation/Paths.h"

// What the checkers of shapes share. Path units.
namespace platenest::detail {

// Offset by whole units. A shape that vanishes leaves nothing. Arcs of a round join are up to ArcTol too flat.
inline TPaths Grown(const TPaths& Shape, double Delta, ClipperLib::JoinType Join = ClipperLib::jtMiter,
                    double ArcTol = 0.25) {
  TClipperOffset offset(2.0, ArcTol);
  offset.AddPaths(Shape, Join, ClipperLib::etClosedPolygon);
  TPaths result;
  offset.Execute(result, Delta);
  return result;
}

// Both filled where their winding is not zero.
inline TPaths Clipped(const TPaths& Subject, const TPaths& Clip, ClipperLib::ClipType Type) {
  TClipper clipper;
  clipper.AddPaths(Subject, ClipperLib::ptSubject, true);
  clipper.AddPaths(Clip, ClipperLib::ptClip, true);
  TPaths result;
  clipper.Execute(Type, result, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
  return result;
}

inline bool Meet(const TIntRect& A, const TIntRect& B) {
  return A.Left < B.Right && B.Left < A.Right && A.Bottom < B.Top && B.Bottom < A.Top;
}

}  // namespace platenest::detail
