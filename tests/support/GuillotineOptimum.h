#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "platenest/URectNest/RectRecords.h"

namespace platenest {

// Values of the best layouts by straight cuts from edge to edge on all plates up to L by W, copies unlimited: every cut
// at every whole length, no raster, no order. Cost: O(L * W * (L + W + boxes)).
class TGuillotineOptimum {
 public:
  TGuillotineOptimum(int L, int W, const TIntBoxList& Boxes, bool CanRotate)
      : FColumns(W + 1), FBest(static_cast<std::size_t>(L + 1) * (W + 1)) {
    for (int l = 1; l <= L; ++l)
      for (int w = 1; w <= W; ++w) FBest[Place(l, w)] = Best(l, w, Boxes, CanRotate);
  }

  Int64 At(int L, int W) const { return FBest[Place(L, W)]; }

 private:
  std::size_t Place(int L, int W) const { return static_cast<std::size_t>(L) * FColumns + W; }

  Int64 Best(int L, int W, const TIntBoxList& Boxes, bool CanRotate) const {
    Int64 best = 0;
    for (const TIntBox& box : Boxes) {
      const bool fits = (box.A <= L && box.B <= W) || (CanRotate && box.B <= L && box.A <= W);
      if (fits) best = std::max(best, box.Area);
    }
    for (int x = 1; x <= L / 2; ++x) best = std::max(best, At(x, W) + At(L - x, W));
    for (int y = 1; y <= W / 2; ++y) best = std::max(best, At(L, y) + At(L, W - y));
    return best;
  }

  int FColumns;
  std::vector<Int64> FBest;
};

}  // namespace platenest
