#include "platenest/foundation/Rect2D.h"

#include <algorithm>
#include <cmath>

namespace platenest {

TVRect2D::TVRect2D(const TPoint2D& Corner, const TPoint2D& Opposite)
    : Left(std::min(Corner.X, Opposite.X)),
      Right(std::max(Corner.X, Opposite.X)),
      Top(std::max(Corner.Y, Opposite.Y)),
      Bottom(std::min(Corner.Y, Opposite.Y)) {}

TVRect2D TVRect2D::Translate(const TPoint2D& Vector) const {
  return {Left + Vector.X, Right + Vector.X, Top + Vector.Y, Bottom + Vector.Y};
}

TVRect2D TVRect2D::Inflate(double Margin) const {
  return {Left - Margin, Right + Margin, Top + Margin, Bottom - Margin};
}

TVRect2D TVRect2D::Rotate(double Angle) const {
  if (!IsValid()) return *this;
  TVRect2D box = InvalidRect;
  for (const TPoint2D& corner : {GetTopLeft(), GetTopRight(), GetBottomRight(), GetBottomLeft()})
    box.ExpandInPlace(TVRect2D(corner.RotateBy(Angle)));
  return box;
}

TVRect2D TVRect2D::Expand(const TVRect2D& Other) const {
  if (!Other.IsValid()) return *this;
  if (!IsValid()) return Other;
  return {std::min(Left, Other.Left), std::max(Right, Other.Right), std::max(Top, Other.Top),
          std::min(Bottom, Other.Bottom)};
}

TVRect2D TVRect2D::Intersect(const TVRect2D& Other) const {
  return {std::max(Left, Other.Left), std::min(Right, Other.Right), std::min(Top, Other.Top),
          std::max(Bottom, Other.Bottom)};
}

int TVRect2D::Holds90(const TVRect2D& Other) const {
  if (Holds(Other)) return 0;
  return Other.Height() <= Width() && Other.Width() <= Height() ? 1 : -1;
}

bool TVRect2D::IsPointIn(const TPoint2D& Point, double Tol) const {
  return Point.X >= Left - Tol && Point.X <= Right + Tol && Point.Y >= Bottom - Tol && Point.Y <= Top + Tol;
}

TRectRelation TVRect2D::RelationWithRectangle(const TVRect2D& Other, double Tol) const {
  if (Other.Left - Right > Tol || Left - Other.Right > Tol || Other.Bottom - Top > Tol || Bottom - Other.Top > Tol)
    return rrDisjoint;
  const auto isWithin = [Tol](const TVRect2D& Inner, const TVRect2D& Outer) {
    return Inner.Left >= Outer.Left - Tol && Inner.Right <= Outer.Right + Tol && Inner.Bottom >= Outer.Bottom - Tol &&
           Inner.Top <= Outer.Top + Tol;
  };
  if (isWithin(Other, *this)) return rrArgumentInside;
  if (isWithin(*this, Other)) return rrReceiverInside;
  return rrOverlap;
}

}  // namespace platenest
