#include "Disturbance.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "PartNfpRules.h"
#include "platenest/foundation/Random.h"
#include "platenest/foundation/Simplify.h"

namespace platenest {

namespace {

using namespace detail;

std::vector<double> EdgeLengths(const TVPolyline2D& Contour) {
  std::vector<double> lengths;
  lengths.reserve(Contour.size());
  for (int i = 0; i < Contour.Count(); ++i)
    lengths.push_back(Contour[i].DistanceTo(Contour[i + 1 == Contour.Count() ? 0 : i + 1]));
  return lengths;
}

double RandomAngle(double Step, double LengthBefore, double Length) {
  const int drawn = Random(2 * kDisturbSteps) - kDisturbSteps;
  const double angle = (drawn == 0 ? kDisturbStepsForNone : drawn) * Step;
  if (LengthBefore >= kLongEdge || Length >= kLongEdge) return angle / std::max(LengthBefore, Length);
  for (const TShortEdgeRule& rule : kShortEdgeRules)
    if (Length < rule.Below) return angle * rule.Factor;
  return angle;
}

void TurnEverySecondVertex(TVPolyline2D& Contour, double Step) {
  const std::vector<double> lengths = EdgeLengths(Contour);
  int pivot = Contour.Count() - 1;
  for (int i = 0; i < Contour.Count();) {
    if (lengths[i] > kFixedEdge || lengths[pivot] > kFixedEdge) {
      ++i;
      continue;
    }
    const double angle = RandomAngle(Step, lengths[pivot], lengths[i]);
    Contour[i] = Contour[pivot] + (Contour[i] - Contour[pivot]).RotateBy(angle);
    pivot = i + 1;
    i += 2;
  }
}

}  // namespace

TVPolyline2D DisturbPolyline(const TVPolyline2D& poly, double a) {
  TVPolyline2D result = poly;
  if (result.empty()) return result;
  const double scale = std::sqrt(result.BoundBox().Area());
  if (scale > kDisturbScale) a *= std::max(kDisturbScale / scale, kLeastDisturbShare);
  if (result.IsClosed(kClosedWithin)) result.pop_back();
  TurnEverySecondVertex(result, a);
  TVPoint2DList simplified = DPSimplify(result, kDisturbSimplify, true);
  if (simplified.Count() > 3) return TVPolyline2D(std::move(simplified));
  return result;
}

void DisturbPolylineInPlace(TVPolyline2D& poly, double a) {
  poly = DisturbPolyline(poly, a);
}

}  // namespace platenest
