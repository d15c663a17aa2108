#pragma once

#include "platenest/foundation/Rect2D.h"

namespace platenest::detail {

// Exactly the same size, turned by a quarter or not.
inline bool SamePlate(const TVRect2D& A, const TVRect2D& B) {
  return (A.Width() == B.Width() && A.Height() == B.Height()) || (A.Width() == B.Height() && A.Height() == B.Width());
}

// The part of a plate that is used; 0 on a plate without area.
inline double UsedShare(double Used, const TVRect2D& Plate) {
  return Plate.Area() > 0 ? Used / Plate.Area() : 0;
}

}  // namespace platenest::detail
