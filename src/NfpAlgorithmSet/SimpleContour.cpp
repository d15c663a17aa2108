#include "SimpleContour.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

#include "platenest/foundation/Types.h"

namespace platenest::detail {

namespace {

__extension__ using TWide = __int128;

// Twice the area of the triangle, exact.
TWide Turn(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C) {
  return static_cast<TWide>(B.X - A.X) * (C.Y - B.Y) - static_cast<TWide>(B.Y - A.Y) * (C.X - B.X);
}

bool IsFlat(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C) {
  return Turn(A, B, C) == 0;
}

bool IsAbove(const TIntPoint& A, const TIntPoint& B) {
  return A.Y > B.Y || (A.Y == B.Y && A.X > B.X);
}

}  // namespace

void DropFlatVertices(TPath& Points, std::size_t Begin) {
  std::size_t end = Begin;
  for (std::size_t i = Begin; i < Points.size(); ++i) {
    const TIntPoint point = Points[i];
    while (end >= Begin + 2 && IsFlat(Points[end - 2], Points[end - 1], point)) --end;
    Points[end++] = point;
  }
  std::size_t first = Begin;
  while (end >= first + 3) {
    if (IsFlat(Points[end - 2], Points[end - 1], Points[first]))
      --end;
    else if (IsFlat(Points[end - 1], Points[first], Points[first + 1]))
      ++first;
    else
      break;
  }
  if (end < first + 3) end = first;
  Points.resize(end);
  Points.erase(Points.begin() + static_cast<std::ptrdiff_t>(Begin),
               Points.begin() + static_cast<std::ptrdiff_t>(first));
}

bool IsConvexCounterClockwise(std::span<const TIntPoint> Contour) {
  if (Contour.size() < 3) return false;
  int reversals = 0;
  const TIntPoint* before = &Contour[Contour.size() - 2];
  const TIntPoint* at = &Contour.back();
  bool upward = IsAbove(*at, *before);
  for (const TIntPoint& next : Contour) {
    if (Turn(*before, *at, next) <= 0) return false;
    const bool up = IsAbove(next, *at);
    reversals += up != upward;
    upward = up;
    before = std::exchange(at, &next);
  }
  return reversals == 2;
}

}  // namespace platenest::detail
