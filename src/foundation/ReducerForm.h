#pragma once

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "platenest/foundation/Polyline.h"

namespace platenest::detail {

// The length that the reducers measure their steps in: the side of the square as large as the box of the contour.
inline double ContourScale(const TVPolyline2D& Contour) {
  return Contour.empty() ? 0 : std::sqrt(std::max(0.0, Contour.BoundBox().Area()));
}

// A reduced contour in the form of its input: it repeats its first point at the end if that one did.
inline TVPolyline2D InFormOf(const TVPolyline2D& Input, std::vector<TPoint2D> Points) {
  const bool repeatsFirst = Input.Vertices().size() < Input.size();
  if (repeatsFirst && !Points.empty()) Points.push_back(TPoint2D(Points.front()));
  return TVPolyline2D(TVPoint2DList(std::move(Points)));
}

}  // namespace platenest::detail
