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

// The paths of an outer polygon: an outline, holes in it where the shape fits, and what is neither.
struct TKineticConvolution::TOuterJudge {
  const TKineticConvolution& Owner;
  TPaths& Paths;
  TLoopPair Pair{*Owner._stLoop, *Owner._dyLoop};
  double Sum = Pair.AreaTogether() * kPathAreaScale;
  double MaxArea = 0;
  TPath Outline{};
  TPaths Outer{};
  TPaths Holes{};
  std::vector<double> HoleAreas{};
  int NoiseCount = 0;
  int UnusedCount = 0;

  bool Judge() {
    Classify();
    if (Outer.empty() || Size(Outer) > kMostOuterPaths || UnusedCount > kMostUnusedPaths) return false;
    if (!MakeOutline()) return false;
    if (MayHaveHoles()) {
      KeepHoles();
    } else {
      Holes.clear();
      if (const double distance = CleaningOfOutline(); distance > 0) ClipperLib::CleanPolygon(Outline, distance);
    }
    Paths.clear();
    Paths.push_back(std::move(Outline));
    TPathUtils::PathsAddRange(Paths, std::move(Holes));
    for (TPath& path : Paths) Thin(path, kOuterThinnings);
    return IsPossible(Paths.front(), Paths.size() > 1);
  }

 private:
  void Classify() {
    std::vector<double> areas;
    for (const TPath& path : Paths) areas.push_back(ClipperLib::Area(path));
    const auto largest = std::ranges::max_element(areas);
    MaxArea = *largest;
    for (std::size_t i = 0; i < Paths.size(); ++i) {
      const double size = std::abs(areas[i]);
      const bool isLargest = static_cast<std::ptrdiff_t>(i) == largest - areas.begin();
      if (!isLargest && size < kNoiseAreaBelow)
        ++NoiseCount;
      else
        Sort(std::move(Paths[i]), areas[i], std::abs(areas[i] / MaxArea));
    }
  }

  void Sort(TPath Path, double Area, double Share) {
    const bool isReal = (Path.size() >= kRealPoints || Share >= kRealShare) && std::abs(Area) >= kRealArea;
    if (isReal && Area >= 0)
      Outer.push_back(std::move(Path));
    else if (isReal && Sum <= MaxArea + Area)
      AddHole(std::move(Path), Area);
    else
      ++UnusedCount;
  }

  void AddHole(TPath Path, double Area) {
    if (Path.size() < kRawHolePoints) ClipperLib::CleanPolygon(Path, kHoleCleaning);
    if (Path.size() < kFewestPoints) return;
    Holes.push_back(std::move(Path));
    HoleAreas.push_back(Area);
  }

  // Several outer paths count as one if they join as soon as they grow a little.
  bool MakeOutline() {
    if (Outer.size() == 1) {
      Outline = std::move(Outer.front());
      return true;
    }
    TPaths joined;
    TClipper clipper;
    clipper.AddPath(Outer.front(), ClipperLib::ptSubject, true);
    for (std::size_t i = 1; i < Outer.size(); ++i) clipper.AddPaths(Grown(Outer[i]), ClipperLib::ptClip, true);
    clipper.Execute(ClipperLib::ctUnion, joined, ClipperLib::pftPositive, ClipperLib::pftPositive);
    const auto isOuter = [](const TPath& path) { return ClipperLib::Area(path) > 0; };
    if (std::ranges::count_if(joined, isOuter) != 1) return false;
    Outline = std::move(*std::ranges::find_if(joined, isOuter));
    MaxArea = ClipperLib::Area(Outline);
    return true;
  }

  static TPaths Grown(const TPath& Path) {
    TPaths pieces;
    ClipperLib::SimplifyPolygon(Path, pieces);
    TClipperOffset offset(kTrialMiterLimit, kTrialArcTolerance);
    offset.AddPaths(pieces, ClipperLib::jtMiter, ClipperLib::etClosedPolygon);
    offset.Execute(pieces, kOuterGrowth);
    return pieces;
  }

  bool MayHaveHoles() const {
    if (Outer.size() > 1) return false;
    return (Owner._selfNfp < kHolesSimilarBelow && UnusedCount < kHolesUnusedBelow) ||
           (UnusedCount == 0 && NoiseCount > 0 && !Holes.empty());
  }

  void KeepHoles() {
    TPaths kept;
    for (std::size_t i = 0; i < Holes.size() && kept.size() < kMostHoles; ++i) {
      const double share = std::abs(HoleAreas[i] / MaxArea);
      const bool isTiny = share < kTinyHoleShareBelow;
      if (Owner._selfNfp == 1 && !isTiny) {
        if (share < kEndOfHolesShareBelow) break;
        if (share < kSmallHoleShareBelow || share > kLargeHoleShareAbove) continue;
      }
      if (IsFreeHole(HoleAreas[i]) || !PathInvalid(Pair.St, Pair.Dy, Holes[i], kShrink))
        kept.push_back(std::move(Holes[i]));
    }
    Holes = std::move(kept);
  }

  // A sole large hole of unlike loops with few parallel edges is believed without a trial.
  bool IsFreeHole(double Area) const {
    return Owner._selfNfp == 0 && Holes.size() <= 1 && std::abs(Area) >= kFreeHoleArea &&
           Pair.Density <= kFreeHoleDensity;
  }

  double CleaningOfOutline() const {
    const std::size_t points = Outline.size();
    const int similar = Owner._selfNfp;
    if (similar >= kCoarseSimilar && points >= kCoarseSimilarPoints) return kCoarseCleaning;
    if (UnusedCount > 0 && points > kCoarseUnusedPointsAbove) return kCoarseCleaning;
    if (points > kFinePointsAbove && Pair.CountOfBothAbove(kFineEdgesAbove)) return kFineCleaning;
    if (similar > kFineSimilarAbove && Pair.EdgesOfBothAbove(kFineEdgesAbove) && Pair.Density > kFineDensityAbove)
      return kFineCleaning;
    const bool isDense = std::ranges::any_of(kDenseCleanings, [&](const TDenseCleaning& row) {
      return similar >= row.Similar && Pair.Density >= row.Density;
    });
    return isDense ? kFineCleaning : 0;
  }

  bool IsPossible(const TPath& Path, bool HasHoles) const {
    const double ratio = MaxArea / Sum;
    if (Path.size() < kFewestPoints || ratio < kImpossibleRatioBelow) return false;
    const double mixed = kMixedAreaFactor * std::sqrt(Pair.St.Area() * Pair.Dy.Area());
    const bool similar = Owner._selfNfp >= kSimilarBoxTest && Pair.EdgesOfBothAbove(kSimilarEdgesAbove) &&
                         Pair.Density > kSimilarDensityAbove;
    const bool needsBoxTest = ratio < kTightRatioBelow || (ratio < kLooseRatioBelow && MaxArea < Sum + mixed) ||
                              (similar && (ratio < kSimilarRatioBelow || HasHoles));
    return !needsBoxTest || !Owner.PathBoxTooSmall(Path, kBoxTol);
  }
};

bool TKineticConvolution::NormorlizePaths(TPaths& paths, bool putInside) const {
  if (paths.empty()) return putInside;
  return putInside ? NormorlizeInner(paths) : TOuterJudge{*this, paths}.Judge();
}

bool TKineticConvolution::PathBoxTooSmall(const TPath& path, double tol) const {
  const TVRect2D box = TPathUtils::BoundBox(path).ToRect(kPathScale);
  const TVRect2D st = _stLoop->GetBoundbox();
  const TVRect2D dy = _dyLoop->GetBoundbox();
  return box.Width() < st.Width() + dy.Width() - tol || box.Height() < st.Height() + dy.Height() - tol;
}

}  // namespace platenest
