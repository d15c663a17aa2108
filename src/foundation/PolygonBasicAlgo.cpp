#include "platenest/foundation/PolygonBasicAlgo.h"

#include "platenest/foundation/Types.h"

namespace platenest {

void TPolygonBasicAlgo::PointTangants(std::span<const TPoint2D> Points, const TPoint2D& Point, int& Index1,
                                      int& Index2) {
  Index1 = Index2 = Points.empty() ? -1 : 0;
  for (int i = 1; i < Size(Points); ++i) {
    if (TPoint2DUtils::IsLeft(Point, Points[Index1], Points[i]) < 0) Index1 = i;
    if (TPoint2DUtils::IsLeft(Point, Points[Index2], Points[i]) > 0) Index2 = i;
  }
}

}  // namespace platenest
