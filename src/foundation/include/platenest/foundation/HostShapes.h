#pragma once

#include <utility>

#include "platenest/foundation/Polyline.h"

// Shapes that a host draws with arcs (LAB) or as chains (M), as far as the debug log and the overlap test need to know
// them: their points in drawing units. Arcs arrive here already flattened.
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
  // Data is the host's own and only carried along. Flag: the direction tells where the material lies, left of the
  // edges, so that a clockwise contour is a cavity in a plate without end; otherwise the contour is solid however it
  // runs.
  explicit TMPolygon(TVPolyline2D Polyline, void* Data = nullptr, bool Flag = false)
      : FPoints(std::move(Polyline)), FData(Data), FFlag(Flag) {}
  const TVPolyline2D& Points() const { return FPoints; }
  void* Data() const { return FData; }

  // True if the material of the two overlaps. Touching within 1e-6 is no overlap, whether from outside or, for a part
  // in its cavity, from inside; an exact copy overlaps, and so do shapes that cross without a vertex of one in the
  // other. Contours are expected simple. One without area overlaps nothing, two cavities always do. Cost:
  // O(n log n) plus the pairs of edges whose boxes meet along the longer side of the common box, plus n for each
  // contact; nothing is kept between calls, so equal objects may be asked from several threads.
  PLATENEST_API bool TestOverlap(const TMPolygon& Other) const;

 private:
  TVPolyline2D FPoints;
  void* FData = nullptr;
  bool FFlag = false;
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
