#pragma once

#include <cmath>
#include <numbers>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Types.h"

// Points and free vectors of the floating world: drawing units, y axis up, angles in radians counter-clockwise.
// No state; safe on any thread. Nothing raises.
namespace platenest {

struct TPoint2D {
  double X = 0;
  double Y = 0;

  static const TPoint2D FZero;

  double Mag() const { return std::sqrt(X * X + Y * Y); }
  double DistanceTo(const TPoint2D& Other) const { return TPoint2D{Other.X - X, Other.Y - Y}.Mag(); }
  double DotMul(const TPoint2D& Other) const { return X * Other.X + Y * Other.Y; }
  // Positive when Other is a left turn from this vector.
  double CrossMul(const TPoint2D& Other) const { return X * Other.Y - Y * Other.X; }
  // Polar angle in [0, 2 pi); 0 for the zero vector.
  PLATENEST_API double Angle() const;
  // Counter-clockwise angle from Other to this vector, in [0, 2 pi).
  PLATENEST_API double AngleFrom(const TPoint2D& Other) const;
  // Turned counter-clockwise by Angle.
  TPoint2D RotateBy(double AngleRad) const {
    const double c = std::cos(AngleRad);
    const double s = std::sin(AngleRad);
    return {X * c - Y * s, X * s + Y * c};
  }
  TPoint2D RotateCcw90() const { return {-Y, X}; }
  TPoint2D MirrorByX() const { return {X, -Y}; }
  bool IsZeroLength(double Tol) const { return Mag() <= Tol; }

  TPoint2D operator-() const { return {-X, -Y}; }
  TPoint2D& operator+=(const TPoint2D& P) {
    X += P.X;
    Y += P.Y;
    return *this;
  }
  friend TPoint2D operator+(const TPoint2D& A, const TPoint2D& B) { return {A.X + B.X, A.Y + B.Y}; }
  friend TPoint2D operator-(const TPoint2D& A, const TPoint2D& B) { return {A.X - B.X, A.Y - B.Y}; }
  friend TPoint2D operator*(const TPoint2D& P, double Factor) { return {P.X * Factor, P.Y * Factor}; }
  friend TPoint2D operator*(double Factor, const TPoint2D& P) { return {P.X * Factor, P.Y * Factor}; }
  friend TPoint2D operator/(const TPoint2D& P, double Divisor) { return {P.X / Divisor, P.Y / Divisor}; }
  // Equal within 1e-6 on both coordinates. Not transitive: never a key for a map, a hash or unique().
  friend bool operator==(const TPoint2D& A, const TPoint2D& B) { return fEqual(A.X, B.X) && fEqual(A.Y, B.Y); }
};

inline constexpr TPoint2D TPoint2D::FZero{0, 0};
inline constexpr TPoint2D Origin2D{0, 0};
inline constexpr TPoint2D Org2D{0, 0};

inline TPoint2D Point2D(double X, double Y) {
  return {X, Y};
}

// The record of the few places that carry a height beside a plane point.
struct TPoint3D {
  double X = 0;
  double Y = 0;
  double Z = 0;
};

inline TPoint3D Point3D(double X, double Y, double Z) {
  return {X, Y, Z};
}

// Integer vector on the scale of the paths: 100000 units are one drawing unit.
struct TPointL2D {
  Int64 X = 0;
  Int64 Y = 0;

  TPointL2D operator-() const { return {-X, -Y}; }
  friend bool operator==(const TPointL2D&, const TPointL2D&) = default;
};

class TPoint2DUtils {
 public:
  TPoint2DUtils() = delete;

  // Cross product of A->B with A->C: positive when C lies left of the directed line, 0 on it.
  static double IsLeft(const TPoint2D& A, const TPoint2D& B, const TPoint2D& C) { return (B - A).CrossMul(C - A); }
  // Area of the triangle; with Signed positive when A, B, C run counter-clockwise.
  static double TriangleArea(const TPoint2D& A, const TPoint2D& B, const TPoint2D& C, bool Signed) {
    const double area = IsLeft(A, B, C) / 2;
    return Signed ? area : std::fabs(area);
  }
  // 1 to 4 inside the quadrants; -1, -2, -3, -4 on the axes +x, +y, -x, -y; 0 for the zero vector. No tolerance.
  static PLATENEST_API int Quadrant(const TPoint2D& Vector);
};

class TGeometryUtils {
 public:
  TGeometryUtils() = delete;

  // The one rotation about the origin followed by one translation that equals two such placements in a row:
  // (Angle1, Point1) first, then (Angle2, Point2). Angle is not reduced to a full turn.
  static PLATENEST_API void CalcEqualRotateAndTrans(double Angle1, const TPoint2D& Point1, double Angle2,
                                                    const TPoint2D& Point2, double& Angle, TPoint2D& Trans);
};

}  // namespace platenest
