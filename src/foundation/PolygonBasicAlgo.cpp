#include "platenest/foundation/PolygonBasicAlgo.h"

#include <cmath>

#include "platenest/foundation/Paths.h"
#include "platenest/foundation/Sort.h"

namespace platenest {

TVPolyline2DList TPolygonBasicAlgo::PolygonSimplify(const TVPolyline2D& Polyline, double Scale) {
  TPaths contours;
  ClipperLib::SimplifyPolygon(TPathUtils::CreatePath(Polyline, Scale), contours, ClipperLib::pftNonZero);
  std::erase_if(contours, [](const TPath& Contour) { return Contour.size() < 3; });
  if (Polyline.IsClockwise()) ClipperLib::ReversePaths(contours);
  SortBy(contours, [](const TPath& A, const TPath& B) {
    return Sign(std::fabs(ClipperLib::Area(B)), std::fabs(ClipperLib::Area(A)));
  });
  return TPathUtils::CreatePolylines(contours, Scale);
}

void TPolygonBasicAlgo::PointTangants(std::span<const TPoint2D> Points, const TPoint2D& Point, int& Index1,
                                      int& Index2) {
  Index1 = Index2 = Points.empty() ? -1 : 0;
  for (int i = 1; i < Size(Points); ++i) {
    if (TPoint2DUtils::IsLeft(Point, Points[Index1], Points[i]) < 0) Index1 = i;
    if (TPoint2DUtils::IsLeft(Point, Points[Index2], Points[i]) > 0) Index2 = i;
  }
}

}  // namespace platenest
