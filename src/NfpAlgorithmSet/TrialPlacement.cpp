#include "TrialPlacement.h"

#include <algorithm>
#include <utility>

#include "PathRules.h"
#include "platenest/NfpAlgorithmSet/KineticConvolution.h"

namespace platenest {

namespace {

// The paths whose points are tried; none if nothing is left of the path.
TPaths PathsToTry(const TPath& Path, int Offset) {
  const int sign = Sign(Offset, 0);
  if (sign != 0) return detail::OffsetPath(Path, detail::kTrialDelta * sign);
  return Path.empty() ? TPaths{} : TPaths{Path};
}

}  // namespace

namespace detail {

TPaths OffsetPath(const TPath& Path, double Delta) {
  TClipperOffset offset(kTrialMiterLimit, kTrialArcTolerance);
  offset.AddPath(Path, ClipperLib::jtMiter, ClipperLib::etClosedPolygon);
  TPaths paths;
  offset.Execute(paths, Delta);
  std::erase_if(paths, [](const TPath& path) { return path.empty(); });
  return paths;
}

TTrialPlacement::TTrialPlacement(const TKMPLoop& stLoop, const TKMPLoop& dyLoop)
    : FIsCavity((stLoop.Area() < 0) != (dyLoop.Area() < 0)),
      FStatic(stLoop.GetPolyline(), nullptr, FIsCavity),
      FDynamic(dyLoop.GetPolyline()) {
  FDynamic.Mirror();
}

bool TTrialPlacement::OverlapsAt(const TIntPoint& Place) const {
  TVPolyline2D moved = FDynamic;
  moved.Translate(TPathUtils::CreatePoint2D(Place, kPathScale));
  return FStatic.TestOverlap(TMPolygon(std::move(moved), nullptr, FIsCavity));
}

}  // namespace detail

bool TKineticConvolution::PathInvalid(const TKMPLoop& stLoop, const TKMPLoop& dyLoop, const TPath& testPath,
                                      int offset) {
  const TPaths paths = PathsToTry(testPath, offset);
  return paths.empty() || detail::TTrialPlacement(stLoop, dyLoop).OverlapsAt(paths.front().front());
}

bool TKineticConvolution::WholePathInvalid(const TKMPLoop& stLoop, const TKMPLoop& dyLoop, const TPath& testPath,
                                           int offset) {
  const TPaths paths = PathsToTry(testPath, offset);
  if (paths.empty()) return true;
  const detail::TTrialPlacement trial(stLoop, dyLoop);
  return std::ranges::any_of(paths, [&trial](const TPath& path) {
    return std::ranges::any_of(path, [&trial](const TIntPoint& place) { return trial.OverlapsAt(place); });
  });
}

}  // namespace platenest
