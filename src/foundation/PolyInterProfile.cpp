#include "platenest/foundation/PolyInterProfile.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "ReducerForm.h"
#include "platenest/foundation/Paths.h"
#include "platenest/foundation/PolygonBasicAlgo.h"
#include "platenest/foundation/Simplify.h"

namespace platenest {

namespace {

constexpr double kDepthShare = 0.0004;  // of the scale, per level
constexpr double kOffsetScale = 1e8;    // finer than the paths, so that slits do not close by rounding
constexpr double kRounding = 4e-5;      // drawing units that the repair of crossings may cost
constexpr double kMiterLimit = 2;
constexpr double kAreaShare = 0.9;  // that a result worth having keeps

// The largest piece of the contour offset inward by Depth; empty if nothing is left.
TVPolyline2D LargestInset(const TVPolyline2D& Contour, double Depth) {
  TPath path = TPathUtils::CreatePath(Contour, kOffsetScale);
  if (!ClipperLib::Orientation(path)) ClipperLib::ReversePath(path);
  TClipperOffset offset(kMiterLimit);
  offset.AddPath(path, ClipperLib::jtMiter, ClipperLib::etClosedPolygon);
  TPaths pieces;
  offset.Execute(pieces, -Depth * kOffsetScale);
  const auto largest = std::max_element(pieces.begin(), pieces.end(), [](const TPath& A, const TPath& B) {
    return ClipperLib::Area(A) < ClipperLib::Area(B);
  });
  return largest == pieces.end() ? TVPolyline2D() : TPathUtils::CreatePolyline(*largest, kOffsetScale);
}

}  // namespace

TPolyInterProfile::TPolyInterProfile(TDynPoints2D Points, int Level)
    : FContour(TVPoint2DList(std::move(Points))), FLevel(std::max(1, Level)) {}

void TPolyInterProfile::Run() {
  FResult.clear();
  if (FContour.Area() == 0) return;
  const double depth = kDepthShare * FLevel * detail::ContourScale(FContour);
  const TVPolyline2D thinned(DPSimplify(LargestInset(FContour, depth + kRounding), depth, true));
  // Simplification may make the contour cross itself; what it winds around still lies inside.
  TVPolyline2DList simple = TPolygonBasicAlgo::PolygonSimplify(thinned, kPathScale);
  if (simple.empty() || std::fabs(simple.front().Area()) < kAreaShare * std::fabs(FContour.Area())) return;
  simple.front().SetIsClockwise(FContour.IsClockwise());
  FResult = detail::InFormOf(FContour, {simple.front().begin(), simple.front().end()});
}

}  // namespace platenest
