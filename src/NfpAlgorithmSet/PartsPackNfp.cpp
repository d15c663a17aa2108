#include <span>
#include <utility>
#include <vector>

#include "platenest/NfpAlgorithmSet/PartNfp.h"
#include "platenest/foundation/ClipperAdapter.h"

namespace platenest {

namespace {

constexpr auto kFill = ClipperLib::pftNonZero;

TPaths PairPaths(TPartNFP& Kernel, TVHPolygon& Static, TVHPolygon& Dynamic, bool PutInside, TNFPType& Type) {
  TPaths paths;
  Kernel.Nfp(Static, Dynamic, PutInside, paths);
  Type = TNFPTypeUtils::BetterType(Type, Kernel.Returned());
  return paths;
}

void AddOverStatics(TPartNFP& Kernel, TVHPolygonList& Statics, TVHPolygon& Dynamic, bool PutInside, TClipper& Clipper,
                    TNFPType& Type) {
  for (TVHPolygon& fixed : Statics)
    Clipper.AddPaths(PairPaths(Kernel, fixed, Dynamic, PutInside, Type), ClipperLib::ptSubject, true);
}

TPaths UnionOverAll(TPartNFP& Kernel, TVHPolygonList& Statics, TVHPolygonList& Dynamics, bool PutInside,
                    TNFPType& Type) {
  TClipper clipper;
  for (TVHPolygon& moving : Dynamics) AddOverStatics(Kernel, Statics, moving, PutInside, clipper, Type);
  TPaths all;
  clipper.Execute(ClipperLib::ctUnion, all, kFill, kFill);
  return all;
}

// Where every dynamic part finds room.
TPaths CommonRegion(TPartNFP& Kernel, TVHPolygonList& Statics, TVHPolygonList& Dynamics, TNFPType& Type) {
  TPaths common;
  for (int i = 0; i < Dynamics.Count(); ++i) {
    TClipper united;
    AddOverStatics(Kernel, Statics, Dynamics[i], true, united, Type);
    TPaths region;
    united.Execute(ClipperLib::ctUnion, region, kFill, kFill);
    if (i > 0) {
      TClipper crossed;
      crossed.AddPaths(common, ClipperLib::ptSubject, true);
      crossed.AddPaths(region, ClipperLib::ptClip, true);
      crossed.Execute(ClipperLib::ctIntersection, region, kFill, kFill);
    }
    common = std::move(region);
    if (common.empty()) break;
  }
  return common;
}

TVHPolygonList CopyOf(std::span<const TVHPolygon> Parts) {
  return TVHPolygonList(std::vector<TVHPolygon>(Parts.begin(), Parts.end()));
}

}  // namespace

TNFP TPartsPackNFP::Nfp(TVHPolygonList& staticParts, TVHPolygonList& dynamicParts, bool putInside,
                        TNFPType RequiredType) {
  TPartNFP kernel(RequiredType);
  if (staticParts.Count() == 1 && dynamicParts.Count() == 1) {
    TPaths paths;
    kernel.Nfp(staticParts.front(), dynamicParts.front(), putInside, paths);
    return {std::move(paths), kernel.Returned()};
  }
  TNFPType type = RequiredType;
  TPaths paths = putInside && dynamicParts.Count() > 1
                     ? CommonRegion(kernel, staticParts, dynamicParts, type)
                     : UnionOverAll(kernel, staticParts, dynamicParts, putInside, type);
  return {std::move(paths), type};
}

TNFP TPartsPackNFP::CalcNFP(std::span<const TVHPolygon> dynamicParts, std::span<const TVHPolygon> staticParts,
                            bool putInside, TNFPType RequiredType) const {
  TVHPolygonList statics = CopyOf(staticParts);
  TVHPolygonList dynamics = CopyOf(dynamicParts);
  return Nfp(statics, dynamics, putInside, RequiredType);
}

}  // namespace platenest
