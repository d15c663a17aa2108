#pragma once

#include <algorithm>
#include <cmath>

#include "platenest/NfpAlgorithmSet/PartNfp.h"
#include "platenest/foundation/Polyline.h"

namespace platenest::detail {

// Finite and within what paths can hold; false for NaN.
inline bool IsUsable(double Length) {
  return std::fabs(Length) <= kMaxNfpCoordinate;
}

inline bool IsUsable(const TVPolyline2D& Line) {
  return std::all_of(Line.begin(), Line.end(), [](const TPoint2D& P) { return IsUsable(P.X) && IsUsable(P.Y); });
}

}  // namespace platenest::detail
