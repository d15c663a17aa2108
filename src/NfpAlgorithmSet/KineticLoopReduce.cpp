#include <algorithm>
#include <utility>

#include "platenest/NfpAlgorithmSet/KineticLoop.h"
#include "platenest/foundation/DiscRoller.h"
#include "platenest/foundation/PolyDecimator.h"
#include "platenest/foundation/PolyInterProfile.h"
#include "platenest/foundation/Simplify.h"

namespace platenest {

namespace {

// All lengths in drawing units, all counts those of polylines that repeat their first point.
constexpr int kLargeHull = 600;    // points above which a hull is thinned, without repeated point
constexpr double kHullTol = 0.01;  // at that size; 0.002 more per further 600 points, up to 0.02
constexpr double kHullTolStep = 0.002;
constexpr double kHullTolLastSize = 6;
constexpr int kSmallContour = 20;    // points up to which no hull is taken
constexpr double kSkewedBox = 0.05;  // sides above it make the box skew
constexpr TPoint2D kSkewBottomRight{0.011, 0};
constexpr TPoint2D kSkewTopLeft{0.008, -0.0073};
constexpr int kLastFineLevel = 3;        // above it the coarse trace of the disc is taken
constexpr int kSecondDiscLevel = 4;      // at least, when the level asked for dropped nothing
constexpr double kSecondLineTol = 0.04;  // at least
constexpr int kInnerLevel = 3;           // of the inner thinning: from here on, at this level for large contours only
constexpr int kInnerLarge = 900;
constexpr double kInnerShare = 0.95;      // the hull counts as not shrunk above it
constexpr double kInnerHeavyShare = 0.9;  // the same above kInnerLevel
constexpr double kProfileShare = 0.95;    // a profile of fewer points than this replaces the hull
constexpr double kProfileLeast = 0.005;   // and of more than this, but of more than kProfileFewest
constexpr double kProfileFewest = 4;

TKMPLoop LoopOf(TVPolyline2D Contour) {
  TKMPLoop loop;
  loop.Initialize(Contour);
  return loop;
}

TVPolyline2D ThinnedHull(const TVPolyline2D& Contour) {
  TVPolyline2D hull;
  Contour.ConvexHull(hull);
  if (hull.Count() <= kLargeHull) return hull;
  const double size = static_cast<double>(hull.Count()) / kLargeHull;
  const double tol = kHullTol + kHullTolStep * (std::min(size, kHullTolLastSize) - 1);
  return TVPolyline2D(DPSimplify(hull, tol, false));
}

// Empty if the disc dropped no point.
TVPolyline2D ReduceByDisc(const TVPolyline2D& Contour, int Level) {
  TDiscRoller roller(Contour, Level);
  roller.Run();
  const bool takesFine = Level <= kLastFineLevel && roller.Fine().size() < Contour.size();
  const TVPolyline2D& trace = takesFine ? roller.Fine() : roller.Coarse();
  return trace.size() < Contour.size() ? trace : TVPolyline2D();
}

// Empty if no point was dropped or too few stay.
TVPolyline2D ReduceByLines(const TVPolyline2D& Contour, double Tol) {
  TVPoint2DList thinned = DPSimplify(Contour, Tol, true);
  const bool counts = thinned.size() > 3 && thinned.size() < Contour.size();
  return counts ? TVPolyline2D(std::move(thinned)) : TVPolyline2D();
}

double LineTol(int Level, TNFPType NfpType) {
  const double tol = Level >= 6 ? 0.012 : Level == 5 ? 0.01 : Level == 4 ? 0.008 : 0.005;
  return NfpType == ntConcaveHull ? 2 * tol : tol;
}

bool IsHardlyShrunk(int HullCount, int Count, int Level) {
  if (Level == kInnerLevel) return Count > kInnerLarge && HullCount > kInnerShare * Count;
  return Level > kInnerLevel && HullCount > kInnerHeavyShare * Count;
}

}  // namespace

TKMPLoop TKMPLoop::ToConvexLoop() const {
  return LoopOf(ThinnedHull(GetPolyline()));
}

TKMPLoop TKMPLoop::ToConvexLoop(bool ccw) const {
  TVPolyline2D contour = GetPolyline();
  if (contour.Count() > kSmallContour) contour = ThinnedHull(contour);
  contour.SetIsClockwise(!ccw);
  return LoopOf(std::move(contour));
}

TKMPLoop TKMPLoop::ToBoundBoxLoop() const {
  const TVRect2D box = GetBoundbox();
  TVPolyline2D contour(box);
  contour.SetIsClockwise(false);  // from bottom-left on
  if (box.Width() > kSkewedBox && box.Height() > kSkewedBox) {
    contour[1] += kSkewBottomRight;
    contour[3] += kSkewTopLeft;
  }
  return LoopOf(std::move(contour));
}

TKMPLoop TKMPLoop::ToReducedLoop(int level, TNFPType nfpType) const {
  const TVPolyline2D contour = GetPolyline();
  TVPolyline2D out = ReduceByDisc(contour, level);
  if (out.empty() && level >= 2) out = ReduceByDisc(contour, std::max(kSecondDiscLevel, level + 2));
  const double tol = LineTol(level, nfpType);
  if (out.empty() && (level >= 1 || nfpType == ntComplete)) out = ReduceByLines(contour, tol);
  if (out.empty() && nfpType <= ntComplete) out = ReduceByLines(contour, std::max(2 * tol, kSecondLineTol));
  if (out.empty()) contour.ConvexHull(out);
  return LoopOf(std::move(out));
}

TKMPLoop TKMPLoop::ToReducedInnerLoop(int level) const {
  const TVPolyline2D contour = GetPolyline();
  TVPolyline2D hull = TPolyDecimator::GetInscribedHull(contour, level);
  if (IsHardlyShrunk(hull.Count(), contour.Count(), level)) {
    TPolyInterProfile profile(TDynPoints2D(hull.begin(), hull.end()), level);
    profile.Run();
    const double count = profile.Result().Count();
    if (count > std::max(kProfileLeast * hull.Count(), kProfileFewest) && count < kProfileShare * hull.Count())
      hull = profile.Result();
  }
  hull.SetIsClockwise(true);
  return LoopOf(std::move(hull));
}

}  // namespace platenest
