#include "NfpKernel.h"

#include <utility>

#include "platenest/foundation/ClipperAdapter.h"
#include "platenest/services/NFP.h"

namespace platenest::detail {

namespace {

constexpr TNFPType TypeOf(NfpQuality Quality) {
  return static_cast<TNFPType>(static_cast<int>(Quality) + static_cast<int>(ntConvexHull));
}

// Nothing computed is the least of all qualities.
NfpQuality QualityOf(TNFPType Type) {
  if (Type == ntNone) return NfpQuality::Convex;
  return static_cast<NfpQuality>(static_cast<int>(Type) - static_cast<int>(ntConvexHull));
}

static_assert(TypeOf(NfpQuality::Convex) == ntConvexHull && TypeOf(NfpQuality::Exact) == ntExact);

}  // namespace

TKernelAnswer AskKernel(const TVHPolygon& Moving, const TVHPolygon& Fixed, bool IsInside, NfpQuality Quality) {
  const TNFP nfp = TNFPCalculator::CalcNFP(Moving, Fixed, IsInside, TypeOf(Quality), "", "");
  TKernelAnswer answer{{}, QualityOf(nfp.NFPType)};
  if (nfp.IsEmpty()) return answer;
  TClipper clipper;
  clipper.StrictlySimple(true);
  clipper.AddPaths(*nfp.NFP, ClipperLib::ptSubject, true);
  clipper.Execute(ClipperLib::ctUnion, answer.Paths, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
  std::erase_if(answer.Paths, [](const TPath& path) { return path.size() < 3; });
  return answer;
}

}  // namespace platenest::detail
