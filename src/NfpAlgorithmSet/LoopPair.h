#pragma once

#include <algorithm>
#include <cmath>

#include "platenest/NfpAlgorithmSet/KineticLoop.h"

namespace platenest::detail {

// What the rules ask about the two loops of a convolution.
struct TLoopPair {
  const TKMPLoop& St;
  const TKMPLoop& Dy;
  double StRatio;  // edges per direction
  double DyRatio;
  double Density;

  TLoopPair(const TKMPLoop& Static, const TKMPLoop& Dynamic)
      : St(Static), Dy(Dynamic), StRatio(Ratio(Static)), DyRatio(Ratio(Dynamic)), Density(DyRatio * StRatio) {}

  static double Ratio(const TKMPLoop& Loop) { return static_cast<double>(Loop.FCount()) / Loop.Count(); }
  static bool HasParallels(const TKMPLoop& Loop) { return Loop.Count() < Loop.FCount(); }
  bool EdgesOfBothAbove(int Edges) const { return std::min(St.FCount(), Dy.FCount()) > Edges; }
  bool CountOfBothAbove(int Directions) const { return std::min(St.Count(), Dy.Count()) > Directions; }
  double AreaTogether() const { return std::abs(St.Area()) + std::abs(Dy.Area()); }
  double SmallerArea() const { return std::min(std::abs(St.Area()), std::abs(Dy.Area())); }
};

}  // namespace platenest::detail
