#pragma once

#include <vector>

#include "platenest/foundation/Polyline.h"

namespace platenest::bench {

// What the margins of labels are measured by, without any no-fit polygon.
struct TLabelRoom {
  TVHPolygon Part;
  std::vector<TVPolyline2D> Obstacles;  // closed contours
  double Width = 0;                     // of the label
  double Height = 0;

  // The margin of a label centred there: how far it can grow on all four sides; negative by how far it must shrink, or
  // centred outside of the part.
  double MarginAt(const TPoint2D& Center) const;

  // The most margin anywhere, on a grid that is refined to the given pitch wherever it may still win. A margin grows
  // by no more than its centre moves, so the answer is below the optimum by less than the pitch.
  double BestMargin(double Pitch) const;
};

}  // namespace platenest::bench
