#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "LoopPair.h"
#include "PathNormalisation.h"
#include "PathRules.h"
#include "TrialPlacement.h"
#include "platenest/NfpAlgorithmSet/KineticConvolution.h"

namespace platenest {

using namespace detail;

namespace {

double DrawingArea(const TPath& Path) {
  return ClipperLib::Area(Path) / kPathAreaScale;
}

// True if the path lost points.
bool CleanShortPath(TPath& Path) {
  const std::size_t points = Path.size();
  if (points >= kInnerCleanedBelow || points < kInnerFinePoints) return false;
  if (points >= kInnerCoarsePoints)
    ClipperLib::CleanPolygon(Path, kInnerCoarseCleaning);
  else if (ClipperLib::Area(Path) > kInnerThinnedAreaAbove)
    Path = DPSimplify(Path, kInnerThinningTol);
  else
    ClipperLib::CleanPolygon(Path, kInnerFineCleaning);
  return Path.size() != points;
}

void DropWhatIsGone(TPaths& Paths) {
  std::erase_if(Paths, [](const TPath& path) { return path.size() < kFewestPoints; });
}

void CleanShortPaths(TPaths& Paths) {
  bool changed = false;
  for (TPath& path : Paths) changed = CleanShortPath(path) || changed;
  if (changed) DropWhatIsGone(Paths);
}

bool IsSliver(const TPath& Path, double Area) {
  return Area < 0 || std::ranges::any_of(kSlivers, [&](const TSliver& sliver) {
           return Path.size() == sliver.Points && Area < sliver.AreaBelow;
         });
}

bool SoleNeedsTrial(const TLoopPair& Pair, double Area) {
  const bool smallRegion =
      Area < Pair.SmallerArea() && Pair.St.FCount() > kSmallRegionEdgesAbove &&
      (Pair.StRatio > kSmallRegionStaticRatioAbove || Pair.DyRatio < kSmallRegionDynamicRatioBelow);
  return smallRegion || std::ranges::any_of(kSoleTrials, [&](const TSoleTrial& row) {
           return Area < row.AreaBelow && Pair.Density > row.DensityAbove && Pair.St.FCount() > row.StaticEdgesAbove &&
                  Pair.DyRatio >= row.DynamicRatio;
         });
}

bool IsCandidate(const TPath& Path, double Area) {
  return Area > kCandidateAreaAbove && Path.size() > kCandidatePointsAbove;
}

// The paths that may be regions, large ones thinned.
TPaths Candidates(TPaths Paths) {
  std::vector<double> areas;
  for (const TPath& path : Paths) areas.push_back(DrawingArea(path));
  double largest = 0;
  for (std::size_t i = 0; i < Paths.size(); ++i)
    if (IsCandidate(Paths[i], areas[i])) largest = std::max(largest, areas[i]);
  TPaths candidates;
  for (std::size_t i = 0; i < Paths.size(); ++i) {
    if (!IsCandidate(Paths[i], areas[i])) continue;
    if (areas[i] > kCandidateThinnedAreaAbove) Thin(Paths[i], kCandidateThinnings);
    if (Paths[i].size() < kSmallCandidatePointsBelow && areas[i] / largest < kSmallCandidateShareBelow) continue;
    candidates.push_back(std::move(Paths[i]));
  }
  return candidates;
}

bool CandidatesNeedTrial(const TLoopPair& Pair, std::size_t Count) {
  if (Pair.EdgesOfBothAbove(kTrialEdgesAbove) && TLoopPair::HasParallels(Pair.St) && TLoopPair::HasParallels(Pair.Dy))
    return true;
  return std::ranges::any_of(kCandidateTrials, [&](const TCandidateTrial& row) {
    return Count > row.CandidatesAbove && Pair.Density > row.DensityAbove;
  });
}

void DropWhatOverlaps(TPaths& Candidates, const TLoopPair& Pair) {
  const TTrialPlacement trial(Pair.St, Pair.Dy);
  std::erase_if(Candidates, [&trial](const TPath& path) {
    const TPaths shrunk = OffsetPath(path, -kCandidateDelta);
    return shrunk.empty() || trial.OverlapsAt(shrunk.front().front());
  });
}

void CleanSurvivor(TPath& Path) {
  if (Path.size() > kSurvivorCleanedAbove && Path.size() < kSurvivorCleanedBelow)
    ClipperLib::CleanPolygon(Path, kSurvivorCleaning);
  Thin(Path, kSurvivorThinnings);
}

}  // namespace

bool TKineticConvolution::NormorlizeInner(TPaths& paths) const {
  CleanShortPaths(paths);
  if (paths.empty()) return true;
  return paths.size() == 1 ? NormorlizeSolePath(paths) : NormorlizeRegions(paths);
}

bool TKineticConvolution::NormorlizeSolePath(TPaths& paths) const {
  TPath path = std::move(paths.front());
  paths.clear();
  if (InnerPathSuspect(path)) return false;
  if (path.size() < kFewestPoints) return true;
  if (path.size() < kSoleJudgedBelow) {
    const double area = DrawingArea(path);
    if (IsSliver(path, area)) return true;
    if (SoleNeedsTrial({*_stLoop, *_dyLoop}, area) && PathInvalid(*_stLoop, *_dyLoop, path, kShrink)) return false;
  }
  paths.push_back(std::move(path));
  return true;
}

bool TKineticConvolution::NormorlizeRegions(TPaths& paths) const {
  const TLoopPair pair(*_stLoop, *_dyLoop);
  paths = Candidates(std::move(paths));
  if (CandidatesNeedTrial(pair, paths.size())) DropWhatOverlaps(paths, pair);
  for (TPath& path : paths) CleanSurvivor(path);
  DropWhatIsGone(paths);
  return paths.size() <= kMostSurvivors || !pair.EdgesOfBothAbove(kManySurvivorsEdgesAbove) ||
         !TLoopPair::HasParallels(pair.St);
}

bool TKineticConvolution::InnerPathSuspect(const TPath& path) const {
  if (_stLoop->Area() > 0 || path.empty()) return false;
  const TLoopPair pair(*_stLoop, *_dyLoop);
  const double freeArea = std::abs(pair.St.Area() + pair.Dy.Area()) / pair.Dy.Area();
  const bool applies = std::ranges::any_of(kSuspects, [&](const TSuspect& row) {
    return (!row.ParallelStatic || TLoopPair::HasParallels(pair.St)) && pair.St.FCount() > row.StaticEdgesAbove &&
           pair.Dy.FCount() > row.DynamicEdgesAbove && pair.St.FCount() + pair.Dy.FCount() > row.EdgesTogetherAbove &&
           pair.Density > row.DensityAbove && pair.DyRatio > row.DynamicRatioAbove && freeArea < row.FreeAreaBelow;
  });
  if (!applies) return false;
  const TVRect2D cavity = pair.St.GetBoundbox();
  const TVRect2D mirrored = pair.Dy.GetBoundbox();
  const TVRect2D shape = TVRect2D::FromBounds(-mirrored.Bottom, -mirrored.Right, -mirrored.Top, -mirrored.Left);
  const auto sticksOutAt = [&](const TIntPoint& place) {
    const TVRect2D moved = shape.Translate(TPathUtils::CreatePoint2D(place, kPathScale));
    return cavity.RelationWithRectangle(moved, kSuspectBoxTol) != rrArgumentInside;
  };
  return sticksOutAt(path.front()) || (path.size() > kSuspectMiddlePointsAbove && sticksOutAt(path[path.size() / 2]));
}

}  // namespace platenest
