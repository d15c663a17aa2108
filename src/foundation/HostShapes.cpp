#include "platenest/foundation/HostShapes.h"

#include "RegionContact.h"

namespace platenest {

namespace {

detail::TRegion RegionOf(const TVPolyline2D& Contour, bool Directed) {
  detail::TRegion region;
  if (!Directed || !Contour.IsClockwise()) {
    region.AddContour(Contour, false);
  } else {
    region.AddContour(Contour);
    region.SetUnbounded();
  }
  return region;
}

}  // namespace

bool TMPolygon::TestOverlap(const TMPolygon& Other) const {
  return detail::RegionsOverlap(RegionOf(FPoints, FFlag), RegionOf(Other.FPoints, Other.FFlag), kDefaultTol);
}

}  // namespace platenest
