#pragma once

#include <span>
#include <vector>

#include "platenest/foundation/Paths.h"

namespace platenest::detail {

// Closed contours in path units, one behind the other in one buffer; none has flat vertices.
class TContours {
 public:
  int Count() const { return Size(FEnds); }
  int Points() const { return Size(FPoints); }
  // The place of a contour among all points.
  int First(int Index) const { return Index == 0 ? 0 : FEnds[Index - 1]; }
  std::span<const TIntPoint> operator[](int Index) const {
    return {FPoints.data() + First(Index), FPoints.data() + FEnds[Index]};
  }

  void Clear();
  // Without the vertices at which it goes straight on or folds back; nothing is added if nothing is left then.
  void Add(std::span<const TIntPoint> Contour);

 private:
  TPath FPoints;
  std::vector<int> FEnds;
};

// The region that contours wind around positively, by their arrangement: outer contours counter-clockwise, holes
// clockwise, the same points as from Clipper, which rounds crossings to path units. False, and Paths undefined, where
// contours touch themselves or each other or come so near that rounding has a say, where they cross often, and for many
// points; those are for Clipper.
// Safe on any thread. Cost: O(n log n + n contours + pairs of edges that overlap in x); O(n) for a convex contour.
bool UniteContours(const TContours& Contours, TPaths& Paths);

}  // namespace platenest::detail
