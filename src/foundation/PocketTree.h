#pragma once

#include <functional>
#include <span>
#include <vector>

#include "platenest/foundation/Point2D.h"

namespace platenest::detail {

// The free side of a contour, cut into triangles over its vertices, as a tree that is entered from far away: from the
// edges of the convex hull for a counter-clockwise contour, from the last triangle left of its inside, one of the roomy
// ones, for a clockwise contour. A gate is the side of a triangle that one passes first. Shutting gates fills the
// pockets behind them; since a gate is the only way to what lies behind it, the contour that is left is simple if the
// input was, consists of vertices of the input in their order, and adds material only. Material is on the left of the
// direction.
//
// The triangles are corners cut off in the order of their new edge, short ones first, so that gates lie across the
// narrow places. Cost: O(n log n) unless corners are blocked over and over by other parts of the contour.
class TPocketTree {
 public:
  struct TGate {
    TPoint2D From;
    TPoint2D Apex;  // the third corner of the triangle behind the gate
    TPoint2D To;
    int Before;  // the gates From -> Apex and Apex -> To, -1 for an edge of the contour
    int After;
  };

  explicit TPocketTree(std::span<const TPoint2D> Vertices);

  // The contour after filling what lies behind every gate for which IsShut holds. To shut more gates never gives more
  // points.
  std::vector<TPoint2D> Filled(const std::function<bool(const TGate&)>& IsShut) const;

 private:
  struct TRoot {
    TPoint2D Start;
    int Gate;
  };

  std::vector<TGate> FGates;
  std::vector<TRoot> FRoots;
};

// Whether a disc of Radius that comes from outside and rests on both ends of the gate stays clear of the apex.
bool IsShutForDisc(const TPocketTree::TGate& Gate, double Radius);

}  // namespace platenest::detail
