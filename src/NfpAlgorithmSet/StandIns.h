#pragma once

#include <list>

#include "platenest/NfpAlgorithmSet/KineticLoop.h"

namespace platenest::detail {

// Makes and owns the loops that take the place of heavier ones; each lives as long as this object. A cavity stays a
// cavity: where parts are placed inside something, a clockwise loop is only ever replaced by a clockwise one. Its hull
// or its box would reach into the material, and turned the other way it would count as a part outside; so it is made
// smaller instead.
class TStandIns {
 public:
  explicit TStandIns(bool Inside) : FInside(Inside) {}

  const TKMPLoop& Hull(const TKMPLoop& Loop);
  const TKMPLoop& Box(const TKMPLoop& Loop);
  const TKMPLoop& Reduced(const TKMPLoop& Loop, int Level, TNFPType Required);
  const TKMPLoop& Cavity(const TKMPLoop& Loop, int Level) { return Keep(Loop.ToReducedInnerLoop(Level)); }

 private:
  bool IsCavity(const TKMPLoop& Loop) const { return FInside && Loop.Area() < 0; }
  const TKMPLoop& Keep(TKMPLoop Loop) { return FLoops.emplace_back(std::move(Loop)); }

  bool FInside;
  std::list<TKMPLoop> FLoops;
};

}  // namespace platenest::detail
