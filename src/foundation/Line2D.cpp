#include "platenest/foundation/Line2D.h"

#include <algorithm>

namespace platenest {

double TVLine2D::SegmentDistanceTo(const TPoint2D& Point, double& T) const {
  const TPoint2D direction = EndPoint - StartPoint;
  const double square = direction.DotMul(direction);
  T = square > 0 ? std::clamp(direction.DotMul(Point - StartPoint) / square, 0.0, 1.0) : 0.0;
  return Point.DistanceTo(EvalPoint(T));
}

TIntersectPoint2D TCircle2D::Intersect(const TLine2D& Line) const {
  const TPoint2D direction = Line.Point2 - Line.Point1;
  const double length = direction.Mag();
  if (!(length > 1e-12)) return {};
  const TPoint2D unit = direction / length;
  const TPoint2D foot = Line.Point1 + unit * unit.DotMul(Center - Line.Point1);
  const double distance = std::fabs(unit.CrossMul(Center - Line.Point1));
  if (!(distance <= Radius + kDefaultTol)) return {};
  const double half = std::sqrt(std::max(0.0, (Radius - distance) * (Radius + distance)));
  if (half <= kDefaultTol) return {1, {foot, {}}};
  return {2, {foot - unit * half, foot + unit * half}};
}

}  // namespace platenest
