#include "platenest/foundation/PolyDecimator.h"

#include <algorithm>
#include <cmath>

#include "OutwardThinning.h"
#include "ReducerForm.h"

namespace platenest {

namespace {

constexpr double kAreaShare = 0.005;     // of the area, per level
constexpr double kDistanceShare = 0.03;  // of the scale; the same at all levels, so that heavier ones only go on

}  // namespace

TVPolyline2D TPolyDecimator::GetInscribedHull(const TVPolyline2D& Polyline, int Level) {
  const double area = Polyline.Area();
  if (area == 0 || Level <= 0 || Polyline.Vertices().size() < 4) return Polyline;
  std::vector<TPoint2D> points(Polyline.Vertices().begin(), Polyline.Vertices().end());
  if (area > 0) std::reverse(points.begin(), points.end());  // clockwise: the material that grows is outside
  points = detail::ThinnedOutward(points, {.Distance = kDistanceShare * detail::ContourScale(Polyline),
                                           .Area = kAreaShare * Level * std::fabs(area)});
  if (area > 0) std::reverse(points.begin(), points.end());
  return detail::InFormOf(Polyline, std::move(points));
}

}  // namespace platenest
