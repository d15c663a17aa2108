#include "InnerFit.h"

#include <algorithm>

#include "ExactMinkowski.h"
#include "OverlapDepth.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

TPath BoxPath(const TIntRect& Box) {
  return {{Box.Left, Box.Bottom}, {Box.Right, Box.Bottom}, {Box.Right, Box.Top}, {Box.Left, Box.Top}};
}

// What a part must not touch when it shall lie in the plate: a frame around its outer contour, and its holes filled.
std::vector<TPaths> PlateSurroundings(const TPaths& Plate) {
  const Int64 width = Round(kPathScale);
  const TIntRect box = TPathUtils::BoundBox(Plate);
  TPaths reversed = Plate;
  ClipperLib::ReversePaths(reversed);
  std::vector<TPaths> result;
  for (const TPath& contour : reversed) result.push_back({contour});
  result[0].insert(result[0].begin(),
                   BoxPath({box.Left - width, box.Right + width, box.Top + width, box.Bottom - width}));
  return result;
}

// Where the box of the part lies in the box of the plate.
TIntRect BoxRange(const TIntRect& Plate, const TIntRect& Part) {
  return {Plate.Left - Part.Left, Plate.Right - Part.Right, Plate.Top - Part.Top, Plate.Bottom - Part.Bottom};
}

}  // namespace

TPaths InnerFitRegion(const TPaths& Plate, const TPaths& Part) {
  if (Plate.empty() || Part.empty()) return {};
  const TIntRect range = BoxRange(TPathUtils::BoundBox(Plate), TPathUtils::BoundBox(Part));
  if (range.Width() <= 0 || range.Height() <= 0) return {};
  TPaths taken;
  for (const TPaths& obstacle : PlateSurroundings(Plate))
    TPathUtils::PathsAddRange(taken, ForbiddenRegion(obstacle, Part));
  return Clipped({BoxPath(range)}, taken, ClipperLib::ctDifference);
}

TPaths InnerFitRegion(const TVHPolygon& Plate, const TVHPolygon& Part) {
  return InnerFitRegion(PolygonOf(Plate), PolygonOf(Part));
}

bool FitsAt(const TPaths& Plate, const TPaths& Part, const TIntPoint& At) {
  const TPaths moved = Moved(Part, At);
  const TIntRect plate = TPathUtils::BoundBox(Plate);
  const TIntRect part = TPathUtils::BoundBox(moved);
  if (part.Left < plate.Left || part.Right > plate.Right) return false;
  if (part.Bottom < plate.Bottom || part.Top > plate.Top) return false;
  const std::vector<TPaths> obstacles = PlateSurroundings(Plate);
  return std::none_of(obstacles.begin(), obstacles.end(),
                      [&](const TPaths& obstacle) { return Overlaps(obstacle, moved); });
}

}  // namespace platenest
