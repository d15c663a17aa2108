#pragma once

#include <span>
#include <vector>

#include "platenest/foundation/Polyline.h"

// Regions of material bounded by contours, and the question whether two of them overlap. Drawing units.
namespace platenest::detail {

// Contours with the material on their left, as plain edges.
class TRegion {
 public:
  struct TEdge {
    TVLine2D Line;
    bool StartsRing = false;  // the first edge of its contour
  };

  // A contour as it runs, or turned as asked for. Contours without area add nothing.
  void AddContour(const TVPolyline2D& Contour);
  void AddContour(TVPolyline2D Contour, bool Clockwise);
  // Says that the material reaches to infinity: the region is what the clockwise contours leave.
  void SetUnbounded() { FUnbounded = true; }

  bool IsEmpty() const { return FEdges.empty(); }
  bool IsUnbounded() const { return FUnbounded; }
  const TVRect2D& Box() const { return FBox; }
  std::span<const TEdge> Edges() const { return FEdges; }
  // Point lies in the material; exact but for rounding, either answer on the edge itself.
  bool Holds(const TPoint2D& Point) const;
  // Point lies in the material, more than Depth away from every edge.
  bool HoldsDeep(const TPoint2D& Point, double Depth) const;

 private:
  std::vector<TEdge> FEdges;
  TVRect2D FBox = TVRect2D::InvalidRect;
  bool FUnbounded = false;
};

// True if the regions share material beyond a contact within Tol: an edge of one crosses an edge of the other and both
// reach more than Tol beyond; or a point of one outline lies in the other region, more than Tol away from its outline;
// or both outlines run along each other the same way with material of both beside them. Cost: a sweep over the edges
// in the common box, plus one pass over the edges of one region per piece between contacts.
bool RegionsOverlap(const TRegion& A, const TRegion& B, double Tol);

}  // namespace platenest::detail
