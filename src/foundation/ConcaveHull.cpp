#include "platenest/foundation/ConcaveHull.h"

#include <algorithm>
#include <cmath>

#include "PocketTree.h"
#include "ReducerForm.h"

namespace platenest {

namespace {

constexpr double kMouthShare = 0.04;  // of the scale, at level 0
constexpr int kLastLevel = 8;         // from here on mouths are ten times as wide as the contour

}  // namespace

TVPolyline2D GetConcaveHull(const TVPolyline2D& Polyline, int Level) {
  const double area = Polyline.Area();
  if (area == 0 || Polyline.Vertices().size() < 4) return Polyline;
  std::vector<TPoint2D> points(Polyline.Vertices().begin(), Polyline.Vertices().end());
  if (area < 0) std::reverse(points.begin(), points.end());
  const double mouth = kMouthShare * std::ldexp(detail::ContourScale(Polyline), std::clamp(Level, 0, kLastLevel));
  points = detail::TPocketTree(points).Filled(
      [mouth](const detail::TPocketTree::TGate& Gate) { return Gate.From.DistanceTo(Gate.To) <= mouth; });
  if (area < 0) std::reverse(points.begin(), points.end());
  return detail::InFormOf(Polyline, std::move(points));
}

}  // namespace platenest
