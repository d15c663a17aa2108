#include <algorithm>

#include "PointRelation.h"
#include "RegionContact.h"
#include "platenest/foundation/Paths.h"
#include "platenest/foundation/PolylineTree.h"

namespace platenest {

namespace {

// 1, 0, -1 as for a contour; holes are outside, their lines are edges.
int RelationWithPolygon(const TVHPolygon& Polygon, const TPoint2D& Point, double Tol) {
  if (Polygon.empty()) return -1;
  int relation = detail::RelationWithContour(Polygon.front(), Point, Tol);
  for (std::size_t i = 1; i < Polygon.size() && relation > 0; ++i)
    relation = -detail::RelationWithContour(Polygon[i], Point, Tol);
  return relation;
}

detail::TRegion RegionOf(const TVHPolygon& Polygon) {
  detail::TRegion region;
  for (std::size_t i = 0; i < Polygon.size(); ++i) region.AddContour(Polygon[i], i != 0);
  return region;
}

}  // namespace

int detail::RelationWithContour(const TVPolyline2D& Contour, const TPoint2D& Point, double Tol) {
  if (Contour.empty() || !Contour.BoundBox().IsPointIn(Point, Tol)) return -1;
  const std::span<const TPoint2D> vertices = Contour.Vertices();
  int winding = 0;
  double t = 0;
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    const TVLine2D edge{vertices[i], vertices[i + 1 == vertices.size() ? 0 : i + 1]};
    if (edge.SegmentDistanceTo(Point, t) <= Tol) return 0;
    winding += WindingStep(edge, Point);
  }
  return winding != 0 ? 1 : -1;
}

TVHPolygonList TVHPolygonList::IntersectSelf() const {
  TClipper clipper;
  for (TVHPolygon polygon : *this) {
    polygon.SetIsClockwise(false);
    for (const TVPolyline2D& contour : polygon)
      clipper.AddPath(TPathUtils::CreatePath(contour, kPathScale), ClipperLib::ptSubject, true);
  }
  TPaths united;
  clipper.Execute(ClipperLib::ctUnion, united, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
  return TVPolyline2DTree(TPathUtils::CreatePolylines(united, kPathScale)).CreateHPolygons();
}

bool TVHPolygonList::MembersOverlap() const {
  std::vector<detail::TRegion> regions;
  for (const TVHPolygon& polygon : *this) regions.push_back(RegionOf(polygon));
  SortBy(regions, [](const detail::TRegion& A, const detail::TRegion& B) { return Sign(A.Box().Left, B.Box().Left); });
  for (std::size_t i = 0; i < regions.size(); ++i) {
    for (std::size_t j = i + 1; j < regions.size() && regions[j].Box().Left <= regions[i].Box().Right; ++j)
      if (detail::RegionsOverlap(regions[i], regions[j], kDefaultTol)) return true;
  }
  return false;
}

int TVHPolygonList::RelationWithPoint(const TPoint2D& Point, double Tol) const {
  int relation = -1;
  for (const TVHPolygon& polygon : *this) relation = std::max(relation, RelationWithPolygon(polygon, Point, Tol));
  return relation;
}

}  // namespace platenest
