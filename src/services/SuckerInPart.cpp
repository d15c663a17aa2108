#include <algorithm>

#include "ArrayInfoRules.h"
#include "UsableShape.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/PolyOffsetter.h"
#include "platenest/services/arrayInfo.h"

namespace platenest {

using namespace detail;

namespace {

void RequireUsable(const TVHPolygon& Part, double Radius) {
  const auto isUsable = [](const TVPolyline2D& Contour) { return IsUsable(Contour); };
  if (!IsUsable(Radius) || !std::all_of(Part.begin(), Part.end(), isUsable))
    throw TArgumentError("[Error] TSuckerInPartAlgo.CalcSuckerPosInPart: a number is not finite or too large");
}

}  // namespace

bool TSuckerInPartAlgo::CalcSuckerPosInPart(const TVHPolygon& PartShape, double SuckerRadius, TPoint2D& TransVec) {
  RequireUsable(PartShape, SuckerRadius);
  // The first contour speaks for all: behind a closed one an open line is taken for a hole.
  if (PartShape.empty() || !PartShape.front().IsClosed(kClosedTol)) return false;
  const TVHPolygonList region = TPolyOffsetter::OffsetHPolygon(PartShape, -SuckerRadius, kSquareJoin, kArcStep);
  if (region.empty()) return false;
  const TPoint2D gravity = PartShape.Gravity();
  TransVec = region.RelationWithPoint(gravity, kDefaultTol) == 1 ? gravity : CalcNearestPt(region, gravity);
  return true;
}

TPoint2D TSuckerInPartAlgo::CalcNearestPt(const TVHPolygonList& list, const TPoint2D& point) {
  TPoint2D best = list.At(0).At(0).At(0);
  double least = best.DistanceTo(point);
  for (const TVHPolygon& polygon : list) {
    for (const TVPolyline2D& contour : polygon) {
      TPoint2D nearest;
      const double distance = contour.DistTo(point, nearest);
      if (distance >= least) continue;
      least = distance;
      best = nearest;
    }
  }
  return best;
}

}  // namespace platenest
