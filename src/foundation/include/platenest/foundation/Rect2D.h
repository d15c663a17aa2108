#pragma once

#include "platenest/foundation/Point2D.h"

namespace platenest {

// How one axis-parallel box lies to another, seen from the receiver of RelationWithRectangle.
enum class TRectRelation : int {
  rrOverlap = 0,         // common area or contact, neither holds the other
  rrArgumentInside = 1,  // the argument lies inside the receiver; equal boxes count here
  rrReceiverInside = 2,  // the receiver lies inside the argument
  rrDisjoint = 3,        // a gap above the tolerance on some axis; touching is not disjoint
};
using enum TRectRelation;

// Axis-parallel box in drawing units, y up. No operation raises; an invalid box stays invalid when it is turned or
// scaled. No state; safe on any thread. Left and Bottom are the smallest, Right and Top the largest coordinates.
struct TVRect2D {
  double Left = 0;
  double Right = 0;
  double Top = 0;
  double Bottom = 0;

  // The empty box: IsValid rejects it and Expand ignores it. The start value of every bounding box.
  static const TVRect2D InvalidRect;

  TVRect2D() = default;
  // From two opposite corners, whichever they are.
  PLATENEST_API TVRect2D(const TPoint2D& Corner, const TPoint2D& Opposite);
  // The degenerate box of one point; it is valid.
  explicit TVRect2D(const TPoint2D& Point) : Left(Point.X), Right(Point.X), Top(Point.Y), Bottom(Point.Y) {}
  // The bounds as given, unordered. The order of arguments is not that of the fields.
  static constexpr TVRect2D FromBounds(double Top, double Left, double Bottom, double Right) {
    return TVRect2D(Left, Right, Top, Bottom);
  }
  // From (0, 0) to (Width, Height).
  static constexpr TVRect2D FromSize(double Width, double Height) { return TVRect2D(0, Width, Height, 0); }

  double Width() const { return Right - Left; }
  double Height() const { return Top - Bottom; }
  double Area() const { return Width() * Height(); }  // of a valid box
  TPoint2D Center() const { return {(Left + Right) / 2, (Bottom + Top) / 2}; }
  TPoint2D GetTopLeft() const { return {Left, Top}; }
  TPoint2D GetTopRight() const { return {Right, Top}; }
  TPoint2D GetBottomLeft() const { return {Left, Bottom}; }
  TPoint2D GetBottomRight() const { return {Right, Bottom}; }
  // Left <= Right and Bottom <= Top: a point is a valid box, a box with NaN is not.
  bool IsValid() const { return Left <= Right && Bottom <= Top; }

  // Each returns a new box.
  PLATENEST_API TVRect2D Translate(const TPoint2D& Vector) const;
  // All four sides outward by Margin; a negative margin shrinks and may leave an invalid box.
  PLATENEST_API TVRect2D Inflate(double Margin) const;
  // The bounding box of the box turned counter-clockwise about the origin by Angle radians.
  PLATENEST_API TVRect2D Rotate(double Angle) const;
  PLATENEST_API TVRect2D Expand(const TVRect2D& Other) const;
  void ExpandInPlace(const TVRect2D& Other) { *this = Expand(Other); }
  // The common box; not valid when there is none. Boxes that touch have a common box of width or height 0.
  PLATENEST_API TVRect2D Intersect(const TVRect2D& Other) const;

  // Other fits by size, wherever it lies: width and height each not larger, without tolerance.
  bool Holds(const TVRect2D& Other) const { return Other.Width() <= Width() && Other.Height() <= Height(); }
  // 0: Other fits unturned (preferred). 1: it fits turned by a quarter. -1: neither.
  PLATENEST_API int Holds90(const TVRect2D& Other) const;
  bool SizeEquals(const TVRect2D& Other, double Tol) const {
    return fEqual(Width(), Other.Width(), Tol) && fEqual(Height(), Other.Height(), Tol);
  }
  // Inside or on the edge, up to Tol outside.
  PLATENEST_API bool IsPointIn(const TPoint2D& Point, double Tol) const;
  // Both containments are inclusive up to Tol.
  PLATENEST_API TRectRelation RelationWithRectangle(const TVRect2D& Other, double Tol) const;

  friend TVRect2D operator*(const TVRect2D& R, double Factor) {
    if (!R.IsValid()) return R;
    return TVRect2D(R.Left * Factor, R.Right * Factor, R.Top * Factor, R.Bottom * Factor);
  }

 private:
  constexpr TVRect2D(double L, double R, double T, double B) : Left(L), Right(R), Top(T), Bottom(B) {}
};

// Far beyond every drawing, yet small enough that widths and areas stay finite.
inline constexpr TVRect2D TVRect2D::InvalidRect = TVRect2D::FromBounds(-1e100, 1e100, 1e100, -1e100);

}  // namespace platenest
