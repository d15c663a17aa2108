#pragma once

#include <utility>

#include "platenest/foundation/Polyline.h"

// Shapes that a host draws with arcs (LAB) or as chains (M), as far as the debug log needs to know them: their points
// in drawing units. Arcs arrive here already flattened.
// One object for one thread at a time, different ones on any thread.
namespace platenest {

class TLABPolyline {
 public:
  TLABPolyline() = default;
  explicit TLABPolyline(TVPolyline2D Points) : FPoints(std::move(Points)) {}
  const TVPolyline2D& Points() const { return FPoints; }
  // The line in straight pieces, arcs within the two tolerances of chord and step.
  TVPolyline2D Sample(double /*ChordTol*/, double /*StepTol*/) const { return FPoints; }

 private:
  TVPolyline2D FPoints;
};

class TMPolygon {
 public:
  TMPolygon() = default;
  explicit TMPolygon(TVPolyline2D Points) : FPoints(std::move(Points)) {}
  const TVPolyline2D& Points() const { return FPoints; }

 private:
  TVPolyline2D FPoints;
};

class TMLABPolygon {
 public:
  TMLABPolygon() = default;
  explicit TMLABPolygon(TLABPolyline Line) : FLine(std::move(Line)) {}
  const TLABPolyline& Line() const { return FLine; }

 private:
  TLABPolyline FLine;
};

// Item 0 of a polygon is the outer contour, the others are holes.
struct TLABHPolygon : TListOf<TLABPolyline> {
  using TListOf::TListOf;
};
struct TMHPolygon : TListOf<TMPolygon> {
  using TListOf::TListOf;
};
struct TMLABHPolygon : TListOf<TMLABPolygon> {
  using TListOf::TListOf;
};

using TLABPolylineList = TListOf<TLABPolyline>;
using TLABHPolygonList = TListOf<TLABHPolygon>;
using TMPolygonList = TListOf<TMPolygon>;
using TMHPolygonList = TListOf<TMHPolygon>;
using TMLABHPolygonList = TListOf<TMLABHPolygon>;

}  // namespace platenest
