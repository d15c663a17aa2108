#pragma once

#include "platenest/foundation/Polyline.h"

namespace platenest {

// Sorts contours that do not cross each other into shapes: contours in no other one, or in an even number of others,
// are outer contours, the others are holes of the smallest contour around them. Contours may touch. Equal ones do not
// contain each other, so each begins a shape of its own. Lists that enclose no area are left out. Directions stay as
// they are.
//
// Cost: O(n log n) for n contours plus the pairs whose boxes contain each other, each with one pass over the outer
// contour.
class PLATENEST_API TVPolyline2DTree {
 public:
  explicit TVPolyline2DTree(TVPolyline2DList Polylines);

  // The shapes by their outer contours, from large to small; so are the holes within a shape.
  TVHPolygonList CreateHPolygons() const;

 private:
  TVPolyline2DList FContours;  // from large to small
  std::vector<int> FDepth;     // number of contours around
  std::vector<int> FParent;    // the smallest of them, or -1
};

}  // namespace platenest
