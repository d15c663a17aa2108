#include <utility>

#include "PartNfpRules.h"
#include "platenest/NfpAlgorithmSet/PartNfp.h"
#include "platenest/foundation/ClipperAdapter.h"
#include "platenest/foundation/ConcaveHull.h"
#include "platenest/foundation/Simplify.h"

namespace platenest {

namespace {

using namespace detail;

Int64 OutlineProduct(const TVHPolygon& A, const TVHPolygon& B) {
  return static_cast<Int64>(A.front().Count()) * B.front().Count();
}

// What is free inside an outline runs clockwise.
void AppendFree(TPaths&& Free, TPaths& NFPs) {
  ClipperLib::ReversePaths(Free);
  TPathUtils::PathsAddRange(NFPs, std::move(Free));
}

// Puts a quality back on every way out.
class TRequiredScope {
 public:
  explicit TRequiredScope(TNFPType& Required) : FRequired(Required), FFormer(Required) {}
  ~TRequiredScope() { FRequired = FFormer; }
  TRequiredScope(const TRequiredScope&) = delete;
  TRequiredScope& operator=(const TRequiredScope&) = delete;

 private:
  TNFPType& FRequired;
  TNFPType FFormer;
};

}  // namespace

void ConvexHullInPlace(TVHPolygon& part) {
  if (part.empty()) return;
  TVPolyline2D hull;
  part.front().ConvexHull(hull);
  part.front() = std::move(hull);
}

void TPartNFP::Nfp(TVHPolygon& staticPart, TVHPolygon& dynamicPart, bool putInside, TPaths& NFPs) {
  ForgetPair();
  NFPs.clear();
  _required = TNFPTypeUtils::WorseType(_required, HighestNFPType.load(std::memory_order_relaxed));
  _returned = _required;
  if (staticPart.empty() || dynamicPart.empty()) return;
  staticPart.SetIsClockwise(putInside);
  dynamicPart.SetIsClockwise(false);
  const bool hulled = _required == ntConvexHull && HullHeavyParts(staticPart, dynamicPart, putInside);
  if (putInside) {
    ThinForPlate(staticPart, dynamicPart);
    PlateNfp(staticPart, dynamicPart, NFPs);
  } else {
    OutlineNfp(staticPart, dynamicPart, NFPs);
  }
  if (hulled) _returned = ntConvexHull;
  ForgetPair();
}

// True if the outlines count as hulls from here on, which they may without any having been replaced.
bool TPartNFP::HullHeavyParts(TVHPolygon& Static, TVHPolygon& Dynamic, bool PutInside) const {
  const Int64 product = OutlineProduct(Static, Dynamic);
  const int staticPoints = Static.front().Count();
  const int dynamicPoints = Dynamic.front().Count();
  const bool areHeavy = product >= kHullProduct;
  const bool isDynamicHeavy = dynamicPoints > kHullDynamicAlonePoints && product > kHullDynamicAloneProduct;
  if (!areHeavy && !isDynamicHeavy) return false;
  if (isDynamicHeavy || dynamicPoints > kHullDynamicPoints) {
    ConvexHullInPlace(Dynamic);
    Dynamic.SetIsClockwise(false);
  }
  if (!areHeavy || PutInside || Static.IsRectangle || staticPoints <= kConcaveStaticPoints) return true;
  if (staticPoints > kHullStaticPoints)
    ConvexHullInPlace(Static);
  else
    Static.front() = GetConcaveHull(Static.front(), kConcaveStaticLevel);
  Static.SetIsClockwise(false);
  return true;
}

void TPartNFP::ThinForPlate(const TVHPolygon& Plate, TVHPolygon& Part) const {
  if (_required != ntConcaveHull) return;
  TVPolyline2D& outline = Part.front();
  if (Plate.front().Count() <= kThinPlatePoints || outline.Count() <= kThinPartPoints) return;
  if (outline.Area() > kThinPartArea || Plate.front().IsConvexPolygon()) return;
  TVPoint2DList thin = DPSimplify(outline, kThinPartTolerance, true);
  if (thin.Count() > 2) outline = TVPolyline2D(std::move(thin));
}

void TPartNFP::OutlineNfp(TVHPolygon& Static, TVHPolygon& Dynamic, TPaths& NFPs) {
  _returned = TNFPTypeUtils::BetterType(CalcNfp(Static.front(), Dynamic.front(), false, NFPs), _required);
  KeepLoops();
  TPaths local;
  _calcArea = kStatic;
  for (int i = 1; i < Dynamic.Count() && kHoleAreaShare * _dyArea >= _stArea; ++i) {
    CalcNfp(Static.front(), Dynamic[i], true, local);
    AppendFree(std::move(local), NFPs);
  }
  _calcArea = kDynamic;
  for (int j = 1; j < Static.Count() && _dyArea < kHoleAreaShare * _stArea; ++j) {
    CalcNfp(Static[j], Dynamic.front(), true, local);
    AppendFree(std::move(local), NFPs);
  }
}

void TPartNFP::PlateNfp(TVHPolygon& plate, TVHPolygon& part, TPaths& NFPs) {
  NFPs.clear();
  if (plate.empty() || part.empty()) return;
  ForgetPair();
  _returned = CalcNfp(plate.front(), part.front(), true, NFPs);
  if (plate.Count() > 1 && !NFPs.empty()) SubtractHoles(plate, part, NFPs);
}

void TPartNFP::SubtractHoles(TVHPolygon& Plate, TVHPolygon& Part, TPaths& NFPs) {
  const TRequiredScope restored(_required);
  const bool isWatched = (_required == ntConcaveHull || _required == ntComplete) && Plate.Count() > kWatchedContours;
  const double budget = _required == ntComplete ? kHoleBudgetComplete : kHoleBudgetOtherwise;
  double spent = 0;
  TClipper clipper;
  clipper.AddPaths(NFPs, ClipperLib::ptSubject, true);
  TPaths local;
  KeepLoops();
  _calcArea = kDynamic;
  for (int j = 1; j < Plate.Count(); ++j) {
    HoleOfPlateNfp(Plate[j], Part, local);
    clipper.AddPaths(local, ClipperLib::ptClip, true);
    if (!isWatched) continue;
    spent += TPathUtils::TotalLength(local);
    if (spent > budget) _required = ntConvexHull;
  }
  clipper.Execute(ClipperLib::ctDifference, NFPs, ClipperLib::pftPositive, ClipperLib::pftPositive);
}

void TPartNFP::HoleOfPlateNfp(TVPolyline2D& Hole, TVHPolygon& Part, TPaths& NFPs) {
  if (Part.Count() == 1) {
    CalcNfp(Hole, Part.front(), false, NFPs);
    return;
  }
  TVHPolygon obstacle{Hole};
  TPartNFP(_required).Nfp(obstacle, Part, false, NFPs);
}

}  // namespace platenest
