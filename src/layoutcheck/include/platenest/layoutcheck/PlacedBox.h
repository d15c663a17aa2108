#pragma once

#include <algorithm>
#include <cmath>

#include "platenest/foundation/Export.h"

namespace platenest {

// An axis-parallel part where it lies on the plate: plate units, y up.
struct TPlacedBox {
  double Left = 0;
  double Bottom = 0;
  double Right = 0;
  double Top = 0;

  double Width() const { return Right - Left; }
  double Height() const { return Top - Bottom; }
  double Area() const { return Width() * Height(); }
  // Finite sides, and Left <= Right, Bottom <= Top: a point is a proper box, a box with NaN is not.
  bool IsProper() const { return Left <= Right && Bottom <= Top && std::isfinite(Width()) && std::isfinite(Height()); }

  friend bool operator==(const TPlacedBox&, const TPlacedBox&) = default;
};

// The least distance between two boxes as the crow flies, 0 when they touch. Boxes that share more than an edge have a
// clearance below 0: minus the shortest way along one axis that parts them.
inline double Clearance(const TPlacedBox& A, const TPlacedBox& B) {
  const double dx = std::max(A.Left - B.Right, B.Left - A.Right);
  const double dy = std::max(A.Bottom - B.Top, B.Bottom - A.Top);
  return dx > 0 && dy > 0 ? std::hypot(dx, dy) : std::max(dx, dy);
}

}  // namespace platenest
