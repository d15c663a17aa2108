#pragma once

#include <vector>

#include "platenest/URectNest/RSKF.h"

namespace platenest {

// The outline of a layout as two stairs, one seen from above and one from the right. Lengths in plate units; placements
// count with half a gap around them, and so should the plate.
//
//     FYs   +--------------+
//           |              |      FXHeights[i] is the top of what is placed from FXs[i] to FXs[i + 1],
//           |----+         |      FYHeights[i] the right end of what is placed from FYs[i] to FYs[i + 1].
//           |    |----+    |
//           |    |    |    |
//           +----+----+----+ FXs
//
class TRSKF::TLStair {
 public:
  // Placements lie in the plate.
  TLStair(const TVRect2D& APlate, const TNestedRects& ANestedRects, double AGap);

  // What lies above a run of x steps up to the plate's top, then what lies right of a run of y steps, half a gap taken
  // off all around; areas may overlap each other and occur twice. An area is left out when a side of it is not above
  // the smallest side of ARects, and when none of ARects fits with a whole gap around it: where there is a gap, a
  // rectangle that would just fit is not tried. Cost: O(steps * (steps + rectangles)).
  std::vector<TVRect2D> FindCandidateArea(const TNestRectList& ARects) const;

  const std::vector<double>& Xs() const { return FXs; }
  const std::vector<double>& Ys() const { return FYs; }
  const std::vector<double>& XHeights() const { return FXHeights; }
  const std::vector<double>& YHeights() const { return FYHeights; }

 private:
  void AddRect(const TVRect2D& Rect);
  void RemoveDup();

  double FGap;
  std::vector<double> FXs;
  std::vector<double> FYs;
  std::vector<double> FXHeights;  // one less than FXs
  std::vector<double> FYHeights;
};

}  // namespace platenest
