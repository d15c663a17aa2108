#include "StandIns.h"

#include <utility>

#include "KineticConvolutionRules.h"

namespace platenest::detail {

const TKMPLoop& TStandIns::Hull(const TKMPLoop& Loop) {
  return IsCavity(Loop) ? Cavity(Loop, kCavityInsteadOfHullLevel) : Keep(Loop.ToConvexLoop());
}

const TKMPLoop& TStandIns::Box(const TKMPLoop& Loop) {
  return IsCavity(Loop) ? Cavity(Loop, kCavityInsteadOfHullLevel) : Keep(Loop.ToBoundBoxLoop());
}

const TKMPLoop& TStandIns::Reduced(const TKMPLoop& Loop, int Level, TNFPType Required) {
  TKMPLoop reduced = Loop.ToReducedLoop(Level, Required);
  if (IsCavity(Loop) && reduced.Area() >= 0) return Cavity(Loop, Level);
  return Keep(std::move(reduced));
}

}  // namespace platenest::detail
