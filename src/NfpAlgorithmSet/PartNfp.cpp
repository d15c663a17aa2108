#include "platenest/NfpAlgorithmSet/PartNfp.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Disturbance.h"
#include "PartNfpRules.h"
#include "platenest/NfpAlgorithmSet/KineticConvolution.h"
#include "platenest/NfpAlgorithmSet/NfpStatistics.h"
#include "platenest/NfpAlgorithmSet/VectorGraph.h"
#include "platenest/foundation/Simplify.h"

namespace platenest {

namespace {

using namespace detail;

// From the top left corner counter-clockwise.
TPath BoxPath(double Left, double Right, double Bottom, double Top) {
  const TIntPoint low = TPathUtils::CreateIntPoint(TPoint2D{Left, Bottom}, kPathScale);
  const TIntPoint high = TPathUtils::CreateIntPoint(TPoint2D{Right, Top}, kPathScale);
  return {{low.X, high.Y}, {low.X, low.Y}, {high.X, low.Y}, {high.X, high.Y}};
}

// An interval of translations; false if it has none.
bool WidenExactFit(double Low, double& High) {
  if (Low - High >= kRectShort) return false;
  if (High - Low < kRectExactFit) High = Low + kRectExactSize;
  return true;
}

// Other levels than these, a failure included, count as complete.
TNFPType TypeOfLevel(int Level) {
  if (Level == 1) return ntConcaveHull;
  return Level == 2 ? ntConvexHull : ntComplete;
}

Int64 PointProduct(const TVPolyline2D& A, const TVPolyline2D& B) {
  return static_cast<Int64>(A.Count()) * B.Count();
}

void Thin(TVPolyline2D& Contour, const TThinningRule& Rule) {
  if (Contour.Count() <= Rule.Points) return;
  const double steps = std::min(Contour.Count() / Rule.Points, Rule.MostSteps) - 1;
  Contour = TVPolyline2D(DPSimplify(Contour, Rule.Tolerance + Rule.Step * steps));
}

double Fullness(double Area, const TVRect2D& Box) {
  return std::fabs(Area * Area / Box.Area());
}

bool IsTightPlay(double Play) {
  return Play >= kTightPlayLow && Play <= kTightPlayHigh;
}

// Between the box of a cavity and the box of what goes in.
bool IsTight(const TVRect2D& Cavity, const TVRect2D& Part) {
  return IsTightPlay(Cavity.Height() - Part.Height()) || IsTightPlay(Cavity.Width() - Part.Width());
}

// What nearly parallel edges leave beside a true region: many drawing units long, less than two path units wide, and at
// its points the shapes may overlap by far.
bool IsNeedle(const TPath& Path) {
  return std::fabs(ClipperLib::Area(Path)) < kNeedleWidth * TPathUtils::TotalLength({Path});
}

TVPolyline2D HullOf(const TVPolyline2D& Contour) {
  TVPolyline2D hull;
  Contour.ConvexHull(hull);
  hull.SetIsClockwise(false);
  return hull;
}

// What may stand for a convex or heavy contour that goes into a cavity. A box contour comes clockwise, and a clockwise
// shape would count as a cavity itself.
TVPolyline2D SubstituteFor(const TVPolyline2D& Contour) {
  if (!Contour.IsRect(true)) return HullOf(Contour);
  TVPolyline2D box(Contour.BoundBox());
  box.SetIsClockwise(false);
  return box;
}

// The answers for an outer pair whose convolution has given up, each further from the truth than the one before.
class TDisturbanceLadder {
 public:
  TDisturbanceLadder(TKineticConvolution& Convolution, const TKMPLoop& DynamicLoop, TPaths& NFPs)
      : FConvolution(Convolution), FDynamicLoop(DynamicLoop), FPaths(NFPs) {}

  int Climb(const TVPolyline2D& Static, double StaticArea, const TVPolyline2D& Dynamic) {
    TBoldPointPrecScope precision(kBoldPrecDisturbed);
    int level = WithDisturbedContour(Static, StaticArea);
    if (level >= 0) return Counted(1, level);
    BoldPointPrec = kBoldPrecHull;
    const TKMPLoop hull = DisturbedHull(Static);
    level = Convolve(hull);
    if (level >= 0) return Counted(2, level);
    level = Convolve(hull.ToBoundBoxLoop());
    if (level >= 0) return Counted(3, level);
    TPartNFP::CalcRectOuterNfp(Static.BoundBox(), Dynamic.BoundBox(), FPaths);
    NestAssert(!FPaths.empty(), "Error in CalcNfp!");
    return Counted(4, 1);
  }

 private:
  static int Counted(int Step, int Level) {
    ++NfpStatistics.Ladder[Step];
    return Level;
  }

  int WithDisturbedContour(const TVPolyline2D& Static, double StaticArea) {
    TVPolyline2D disturbed = DisturbPolyline(Static, kDisturbContour);
    disturbed.Translate(kLadderShift);
    return Convolve(TPartNFP::GetKMPLoop(disturbed, StaticArea));
  }

  static TKMPLoop DisturbedHull(const TVPolyline2D& Static) {
    TVPolyline2D hull = HullOf(Static);
    DisturbPolylineInPlace(hull, kDisturbHull);
    hull.Translate(kLadderShift);
    return TPartNFP::GetKMPLoop(hull, 0);
  }

  // With a shifted loop; the paths are shifted back.
  int Convolve(const TKMPLoop& StaticLoop) {
    const int level = FConvolution.Convolution(FDynamicLoop, StaticLoop, false, FPaths);
    if (level < 0) {
      FPaths.clear();
      return level;
    }
    const TIntPoint shift = TPathUtils::CreateIntPoint(kLadderShift, kPathScale);
    FPaths = TPathUtils::Translate(FPaths, -TPathUtils::CreatePointL2D(shift));
    return level;
  }

  TKineticConvolution& FConvolution;
  const TKMPLoop& FDynamicLoop;
  TPaths& FPaths;
};

}  // namespace

// A pair of contours in hand, with its areas: negative for a cavity.
struct TPartNFP::TPair {
  TVPolyline2D& Static;
  TVPolyline2D& Dynamic;
  double StaticArea;
  double DynamicArea;

  bool IsStaticCavity() const { return StaticArea < 0; }
  bool IsDynamicCavity() const { return DynamicArea < 0; }

  bool IsCavityTooSmall() const {
    if (IsStaticCavity() == IsDynamicCavity()) return false;
    return IsStaticCavity() ? -StaticArea < DynamicArea : -DynamicArea < StaticArea;
  }

  // False decides without any convolution that the one contour cannot lie in the other.
  bool MayFit() const {
    const TVRect2D staticBox = Static.BoundBox();
    const TVRect2D dynamicBox = Dynamic.BoundBox();
    const bool holds = IsStaticCavity() ? staticBox.Holds(dynamicBox.Inflate(kBoxPlay))
                                        : dynamicBox.Holds(staticBox.Inflate(kBoxPlay));
    if (!holds) return false;
    const double staticFullness = Fullness(StaticArea, staticBox);
    const double dynamicFullness = Fullness(DynamicArea, dynamicBox);
    if (IsStaticCavity() && staticFullness <= kFullnessShare * dynamicFullness) return false;
    return !(IsDynamicCavity() && dynamicFullness <= kFullnessShare * staticFullness);
  }

  bool FitsTightly() const {
    const TVRect2D staticBox = Static.BoundBox();
    const TVRect2D dynamicBox = Dynamic.BoundBox();
    return (IsStaticCavity() && IsTight(staticBox, dynamicBox)) ||
           (IsDynamicCavity() && IsTight(dynamicBox, staticBox));
  }
};

TPartNFP::TPartNFP(TNFPType RequiredType) : _required(RequiredType) {}

TKMPLoop TPartNFP::GetKMPLoop(TVPolyline2D& APoly, double a) {
  TKMPLoop loop;
  loop.SetArea(std::fabs(a) < kUnknownArea ? APoly.Area() : a);
  loop.Initialize(APoly);
  return loop;
}

TVPolyline2D TPartNFP::GetSymmetry(const TVPolyline2D& Poly) {
  TVPolyline2D mirrored;
  mirrored.reserve(Poly.size());
  for (const TPoint2D& point : Poly) mirrored.push_back(-point);
  return mirrored;
}

void TPartNFP::CalcRectInnerNfp(const TVRect2D& plate, const TVRect2D& part, TPaths& NFPs) {
  NFPs.clear();
  const double left = plate.Left - part.Left;
  const double bottom = plate.Bottom - part.Bottom;
  double right = plate.Right - part.Right;
  double top = plate.Top - part.Top;
  if (!WidenExactFit(left, right) || !WidenExactFit(bottom, top)) return;
  NFPs.push_back(BoxPath(left, right, bottom, top));
}

void TPartNFP::CalcRectOuterNfp(const TVRect2D& plate, const TVRect2D& part, TPaths& NFPs) {
  NFPs.clear();
  NFPs.push_back(
      BoxPath(plate.Left - part.Right, plate.Right - part.Left, plate.Bottom - part.Top, plate.Top - part.Bottom));
}

void TPartNFP::ForgetPair() {
  _calcArea = kNothing;
  FStaticLoop.reset();
  FDynamicLoop.reset();
  _stLoopCache.reset();
  _dyLoopCache.reset();
  _stArea = 0;
  _dyArea = 0;
}

// The loops of the outer contours serve the holes as well.
void TPartNFP::KeepLoops() {
  _stLoopCache = std::exchange(FStaticLoop, std::nullopt);
  _dyLoopCache = std::exchange(FDynamicLoop, std::nullopt);
}

TPartNFP::TPair TPartNFP::MakePair(TVPolyline2D& Static, TVPolyline2D& Dynamic) {
  TPair pair{Static, Dynamic, _stArea, _dyArea};
  if (_calcArea != kStatic) pair.StaticArea = Static.Area();
  if (_calcArea != kDynamic) pair.DynamicArea = Dynamic.Area();
  if (_calcArea != kNothing) return pair;
  _stArea = pair.StaticArea;
  _dyArea = pair.DynamicArea;
  return pair;
}

const TKMPLoop& TPartNFP::StaticLoop(TPair& Pair) {
  std::optional<TKMPLoop>& loop = _calcArea == kStatic ? _stLoopCache : FStaticLoop;
  if (_calcArea != kStatic || !loop) loop = GetKMPLoop(Pair.Static, Pair.StaticArea);
  return *loop;
}

const TKMPLoop& TPartNFP::DynamicLoop(const TPair& Pair) {
  std::optional<TKMPLoop>& loop = _calcArea == kDynamic ? _dyLoopCache : FDynamicLoop;
  if (_calcArea == kDynamic && loop) return *loop;
  TVPolyline2D mirrored = GetSymmetry(Pair.Dynamic);
  loop = GetKMPLoop(mirrored, Pair.DynamicArea);
  return *loop;
}

TNFPType TPartNFP::CalcNfp(TVPolyline2D& staticPoly, TVPolyline2D& dynamicPoly, bool putInside, TPaths& NFPs) {
  NFPs.clear();
  TPair pair = MakePair(staticPoly, dynamicPoly);
  if (staticPoly.Count() < 3 || dynamicPoly.Count() < 3) return ntComplete;
  return putInside ? InnerNfp(pair, NFPs) : OuterNfp(pair, NFPs);
}

TNFPType TPartNFP::OuterNfp(TPair& Pair, TPaths& NFPs) {
  if (Pair.Static.IsRect(true) && Pair.Dynamic.IsRect(true)) {
    CalcRectOuterNfp(Pair.Static.BoundBox(), Pair.Dynamic.BoundBox(), NFPs);
    return ntComplete;
  }
  if (_required < ntComplete && PointProduct(Pair.Static, Pair.Dynamic) > kHeavyOuterPoints) {
    const int level = ThinnedNfp(Pair, NFPs);
    if (level >= 0) return TypeOfLevel(level);
  }
  const TKMPLoop& staticLoop = StaticLoop(Pair);
  const TKMPLoop& dynamicLoop = DynamicLoop(Pair);
  TKineticConvolution convolution(_required, false);
  int level = convolution.Convolution(dynamicLoop, staticLoop, false, NFPs);
  if (level < 0) {
    TDisturbanceLadder ladder(convolution, dynamicLoop, NFPs);
    level = ladder.Climb(Pair.Static, Pair.StaticArea, Pair.Dynamic);
  }
  return TypeOfLevel(level);
}

TNFPType TPartNFP::InnerNfp(TPair& Pair, TPaths& NFPs) {
  if (Pair.IsCavityTooSmall()) return ntComplete;
  if (Pair.IsStaticCavity() && Pair.Static.Count() <= kRectPlatePoints && Pair.Static.IsRect(true)) {
    CalcRectInnerNfp(Pair.Static.BoundBox(), Pair.Dynamic.BoundBox(), NFPs);
    return ntComplete;
  }
  if (!Pair.MayFit()) return ntComplete;
  const int level = Pair.FitsTightly() ? ZoomedNfp(Pair, NFPs) : ConvolveInside(Pair, NFPs);
  if (level < 0) NFPs.clear();
  std::erase_if(NFPs, IsNeedle);
  return TypeOfLevel(level);
}

int TPartNFP::ConvolveInside(TPair& Pair, TPaths& NFPs) {
  const bool hullAll = _required == ntConvexHull || (_required < ntExact && Pair.Static.Count() > kHullCavityPoints &&
                                                     PointProduct(Pair.Static, Pair.Dynamic) > kHullCavityProduct);
  std::optional<TKMPLoop> dynamicSubstitute;
  std::optional<TKMPLoop> staticSubstitute;
  TVPolyline2D mirrored;
  if (Pair.IsStaticCavity() && (hullAll || Pair.Dynamic.IsConvexPolygon())) {
    mirrored = SubstituteFor(GetSymmetry(Pair.Dynamic));
    dynamicSubstitute = GetKMPLoop(mirrored, 0);
  } else if (Pair.IsDynamicCavity() && (hullAll || Pair.Static.IsConvexPolygon())) {
    TVPolyline2D hull = HullOf(Pair.Static);
    staticSubstitute = GetKMPLoop(hull, 0);
  }
  const TKMPLoop& staticLoop = staticSubstitute ? *staticSubstitute : StaticLoop(Pair);
  const TKMPLoop& dynamicLoop = dynamicSubstitute ? *dynamicSubstitute : DynamicLoop(Pair);
  TKineticConvolution convolution(_required, false);
  const int level = convolution.Convolution(dynamicLoop, staticLoop, true, NFPs);
  if (level >= 0 || dynamicSubstitute || Pair.DynamicArea <= 0) return level;
  TVPolyline2D hull = HullOf(GetSymmetry(Pair.Dynamic));
  return convolution.Convolution(GetKMPLoop(hull, 0), staticLoop, true, NFPs);
}

int TPartNFP::PlainNfp(TVPolyline2D& Static, const TVPolyline2D& Dynamic, bool PutInside, TPaths& NFPs) const {
  TVPolyline2D mirrored = GetSymmetry(Dynamic);
  const TKMPLoop staticLoop = GetKMPLoop(Static, 0);
  const TKMPLoop dynamicLoop = GetKMPLoop(mirrored, 0);
  const int level = TKineticConvolution(_required, true).Convolution(dynamicLoop, staticLoop, PutInside, NFPs);
  if (level < 0) NFPs.clear();
  return level;
}

int TPartNFP::ThinnedNfp(const TPair& Pair, TPaths& NFPs) const {
  TVPolyline2D thinStatic = Pair.Static;
  TVPolyline2D thinDynamic = Pair.Dynamic;
  Thin(thinStatic, kHeavyThinning);
  Thin(thinDynamic, kHeavyThinning);
  return PlainNfp(thinStatic, thinDynamic, false, NFPs);
}

int TPartNFP::ZoomedNfp(const TPair& Pair, TPaths& NFPs) const {
  TVPolyline2D largeStatic = Pair.Static;
  TVPolyline2D largeDynamic = Pair.Dynamic;
  largeStatic.Zoom(kTightZoom);
  largeDynamic.Zoom(kTightZoom);
  Thin(Pair.IsDynamicCavity() ? largeDynamic : largeStatic, kTightThinning);
  const int level = PlainNfp(largeStatic, largeDynamic, true, NFPs);
  if (level >= 0) NFPs = TPathUtils::Zoom(NFPs, kTightZoomBack);
  return level;
}

TNFPType TPartNFP::Nfp(TVPolyline2D& staticPoly, TVPolyline2D& dynamicPoly, bool putInside, TPaths& NFPs) {
  ForgetPair();
  const TNFPType type = CalcNfp(staticPoly, dynamicPoly, putInside, NFPs);
  ForgetPair();
  return type;
}

}  // namespace platenest
