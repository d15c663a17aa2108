#pragma once

#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "platenest/foundation/Line2D.h"
#include "platenest/foundation/ListOf.h"
#include "platenest/foundation/Rect2D.h"

// Lines and contours of the floating world, in drawing units. Counter-clockwise is positive. Empty input gives empty
// output; nothing raises but access to an item that the list does not have (TRangeError).
// The lists hold no shared state: one object for one thread at a time, different ones on any thread.
namespace platenest {

using TDynPoints2D = std::vector<TPoint2D>;

class PLATENEST_API TVPoint2DList : public TListOf<TPoint2D> {
 public:
  using TListOf::TListOf;
  // Multiplies every point in place.
  void Zoom(double Factor);
};

// A polyline or a contour. A contour may repeat its first point at the end or not; both forms mean the same to every
// operation here. The geometric operations treat the list as a contour: the edge from the last point back to the first
// one counts.
class PLATENEST_API TVPolyline2D : public TVPoint2DList {
 public:
  using TVPoint2DList::TVPoint2DList;
  TVPolyline2D() = default;
  explicit TVPolyline2D(TVPoint2DList Points) : TVPoint2DList(std::move(Points)) {}
  // The contour of a box: top-left, top-right, bottom-right, bottom-left, hence clockwise and not repeating the first.
  explicit TVPolyline2D(const TVRect2D& Box);

  virtual std::unique_ptr<TVPolyline2D> Clone() const;
  // Signed area, positive for a counter-clockwise contour; 0 below three points.
  virtual double Area() const;
  // TVRect2D::InvalidRect for an empty list.
  virtual TVRect2D BoundBox() const;
  virtual void Translate(const TPoint2D& Vector);
  // Reverses the point order if needed. A contour without area has no direction and stays as it is.
  virtual void SetIsClockwise(bool Clockwise);
  // Negates every point: a half turn about the origin, so area and direction stay.
  virtual void Mirror();

  virtual ~TVPolyline2D();
  TVPolyline2D(const TVPolyline2D&) = default;
  TVPolyline2D(TVPolyline2D&&) = default;
  TVPolyline2D& operator=(const TVPolyline2D&) = default;
  TVPolyline2D& operator=(TVPolyline2D&&) = default;

  // The points without a closing point that repeats the first one within 1e-6.
  std::span<const TPoint2D> Vertices() const;
  // True if the last point repeats the first one within Tol on both coordinates. Fewer than three points are open.
  bool IsClosed(double Tol) const;
  bool IsClockwise() const { return Area() < 0; }
  // True for a contour with area that turns to one side only and goes round once, in either direction. Vertices on
  // straight edges are allowed (a sine up to 1e-9 is straight), fold-backs and crossings are not.
  bool IsConvexPolygon() const;
  // True for a rectangle with sides above 1e-6, in either direction, corners exact within 1e-6. Strict asks for sides
  // parallel to the axes, so that the box of the contour may stand for it.
  bool IsRect(bool Strict) const;
  // The convex hull, always counter-clockwise, without repeated closing point and without vertices on straight edges
  // (Andrew 1979). Fewer than three points: those points. Points on one line: its two ends. Cost: O(n log n).
  void ConvexHull(TVPolyline2D& Hull) const;
  // Distance from Point to the contour line (not to its inside) and the nearest point on it, the first of equals. The
  // closing edge counts, since the borders of offset regions come without repeated first point. An empty list gives
  // infinity and leaves Nearest alone.
  double DistTo(const TPoint2D& Point, TPoint2D& Nearest) const;
  // Appends where the two contours meet, in order along this one: to Lines the pieces above 1e-6 that run along each
  // other, in the direction of this contour, one per pair of edges; to Points all other crossings and contacts within
  // 1e-6, those on a piece left out. Closing edges count on both sides. The tolerance does not grow with the
  // coordinates: from about 1e9 on, pieces along the axes and true crossings are still found, but contacts at vertices
  // and pieces on slanted edges may be lost in rounding. Cost: the product of the two point counts, with a box test per
  // pair.
  void CrossWith(const TVPolyline2D& Other, TVPoint2DList& Points, TVLine2DList& Lines) const;
};

using TVPolyline2DList = TListOf<TVPolyline2D>;

// A shape: item 0 is the outer contour, every further item a hole.
class PLATENEST_API TVHPolygon : public TListOf<TVPolyline2D> {
 public:
  using TListOf::TListOf;

  // Marks a rectangular shape, which is spared from being replaced by its hull when an outline is too heavy.
  bool IsRectangle = false;

  // The outer contour gets the direction asked for, every hole the opposite one.
  void SetIsClockwise(bool Clockwise);
  // The centroid of the area, holes subtracted whatever their direction. Without area the centre of the outer contour's
  // box, for an empty shape the origin.
  TPoint2D Gravity() const;
};

class PLATENEST_API TVHPolygonList : public TListOf<TVHPolygon> {
 public:
  using TListOf::TListOf;

  // What the members cover together, as shapes that do not overlap: counter-clockwise outer contours from large to
  // small, clockwise holes. Coordinates are rounded to 1e-5. The members may run either way. A coordinate beyond the
  // bound of the integer paths raises. Cost: that of a union by Clipper.
  TVHPolygonList IntersectSelf() const;
  // True if two members share material, holes left out; touching within 1e-6 is none. Cost: that of
  // TMPolygon::TestOverlap for each pair of members whose boxes meet.
  bool MembersOverlap() const;
  // 1: Point lies inside a member. 0: on the edge of one, holes included, within Tol, and inside of none. -1: outside
  // of all, also in a hole. Cost: linear in the members whose boxes hold the point.
  int RelationWithPoint(const TPoint2D& Point, double Tol) const;
};

}  // namespace platenest
