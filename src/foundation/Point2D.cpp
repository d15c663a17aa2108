#include "platenest/foundation/Point2D.h"

namespace platenest {

namespace {

constexpr double kFullTurn = 2 * std::numbers::pi;

// Into [0, 2 pi). A tiny negative angle plus a full turn may round to the full turn itself, which counts as 0.
double ReduceAngle(double Angle) {
  if (Angle < 0) Angle += kFullTurn;
  return Angle >= kFullTurn ? 0 : Angle;
}

}  // namespace

double TPoint2D::Angle() const {
  if (X == 0 && Y == 0) return 0;
  return ReduceAngle(std::atan2(Y, X));
}

double TPoint2D::AngleFrom(const TPoint2D& Other) const {
  return ReduceAngle(Angle() - Other.Angle());
}

int TPoint2DUtils::Quadrant(const TPoint2D& Vector) {
  const auto [x, y] = Vector;
  if (y == 0) return x > 0 ? -1 : (x < 0 ? -3 : 0);
  if (x == 0) return y > 0 ? -2 : -4;
  if (y > 0) return x > 0 ? 1 : 2;
  return x < 0 ? 3 : 4;
}

void TGeometryUtils::CalcEqualRotateAndTrans(double Angle1, const TPoint2D& Point1, double Angle2,
                                             const TPoint2D& Point2, double& Angle, TPoint2D& Trans) {
  Trans = Point1.RotateBy(Angle2) + Point2;
  Angle = Angle1 + Angle2;
}

}  // namespace platenest
