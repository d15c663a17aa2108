#include "ExactMinkowski.h"

#include <algorithm>
#include <vector>

namespace platenest {

namespace {

constexpr Int64 kFine = 64;      // to the path unit, so that the rounding of each level does not add up to one
constexpr std::size_t kFan = 4;  // so many results are united into one at each level

// United level by level, which is faster than at once.
TPaths UniteMany(std::vector<TPaths> Parts) {
  for (std::size_t step = 1; step < Parts.size(); step *= kFan) {
    for (std::size_t i = 0; i < Parts.size(); i += step * kFan) {
      for (std::size_t k = i + step; k < std::min(i + step * kFan, Parts.size()); k += step)
        TPathUtils::PathsAddRange(Parts[i], Parts[k]);
      Parts[i] = Normalized(Parts[i]);
    }
  }
  return std::move(Parts.front());
}

// What the segment passes when it is moved along the border of a polygon: a parallelogram for each edge.
TPaths Swept(const TIntPoint& A, const TIntPoint& B, const TPaths& Polygon) {
  TPaths swept;
  for (const TPath& contour : Polygon) {
    for (std::size_t i = 0; i < contour.size(); ++i) {
      const TIntPoint& c = contour[i];
      const TIntPoint& d = Next(contour, i);
      swept.push_back({{A.X + c.X, A.Y + c.Y}, {B.X + c.X, B.Y + c.Y}, {B.X + d.X, B.Y + d.Y}, {A.X + d.X, A.Y + d.Y}});
      if (!ClipperLib::Orientation(swept.back())) ClipperLib::ReversePath(swept.back());
    }
  }
  return Normalized(swept);
}

}  // namespace

// Two shapes meet where their borders meet, or one holds a whole contour of the other.
TPaths ForbiddenRegion(const TPaths& Static, const TPaths& Dynamic) {
  if (Static.empty() || Dynamic.empty()) return {};
  const TPaths fixed = Scaled(Static, kFine), mirrored = Scaled(Dynamic, -kFine);
  std::vector<TPaths> parts;
  for (const TPath& contour : mirrored) parts.push_back(Moved(fixed, contour.front()));
  for (const TPath& contour : fixed) parts.push_back(Moved(mirrored, contour.front()));
  for (const TPath& contour : fixed)
    for (std::size_t i = 0; i < contour.size(); ++i) parts.push_back(Swept(contour[i], Next(contour, i), mirrored));
  return Normalized(TPathUtils::Zoom(UniteMany(std::move(parts)), 1.0 / kFine));
}

TPaths ForbiddenRegion(const TVHPolygon& Static, const TVHPolygon& Dynamic) {
  return ForbiddenRegion(PolygonOf(Static), PolygonOf(Dynamic));
}

}  // namespace platenest
