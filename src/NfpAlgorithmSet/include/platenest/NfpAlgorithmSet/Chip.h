#pragma once

#include <vector>

#include "platenest/foundation/Point2D.h"

namespace platenest {

// One directed segment of a convolution. A list of chips is one flat vector, in the order in which they were laid.
struct TChip {
  TPoint2D FStartPoint;
  TPoint2D FEndPoint;

  const TPoint2D& First() const { return FStartPoint; }
  const TPoint2D& Second() const { return FEndPoint; }
  // Both ends of this chip are compared with the start of the other one, within the tolerance of points. So only a chip
  // that is a mere point can be equal to anything; a chip of some length is not even equal to itself. False for
  // nullptr.
  bool EqualWith(const TChip* rhs) const {
    return rhs != nullptr && FStartPoint == rhs->FStartPoint && FEndPoint == rhs->FStartPoint;
  }
};

using TChipList = std::vector<TChip>;

}  // namespace platenest
