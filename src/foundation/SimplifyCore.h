#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platenest/foundation/Point2D.h"

namespace platenest::detail {

struct TKeptPoints {
  std::vector<std::uint8_t> Kept;  // one flag per point
  Int64 DistanceTests = 0;         // work done
};

// Which of at least three points stay. Closed: they are a contour without repeated first point.
PLATENEST_API TKeptPoints KeepPoints(std::span<const TPoint2D> Points, double Tol, bool Closed);

}  // namespace platenest::detail
