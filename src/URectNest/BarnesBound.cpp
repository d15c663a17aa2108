#include "platenest/URectNest/BarnesBound.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

// Products of two 64-bit sizes.
__extension__ using TWide = __int128;

// The area that pieces of 1 by Side cannot cover, whichever way they lie.
TWide StripWaste(TWide L, TWide W, TWide Side) {
  const TWide r = L % Side;
  const TWide s = W % Side;
  return std::min(r * s, (Side - r) * (Side - s));
}

}  // namespace

Int64 BarnesBound(Int64 L, Int64 W, Int64 A, Int64 B) {
  if (L < 0 || W < 0) throw TArgumentError("[Error] BarnesBound: negative plate size");
  if (A <= 0 || B <= 0) throw TArgumentError("[Error] BarnesBound: the rectangle has no positive sides");
  const TWide area = TWide{L} * W;
  const TWide unit = TWide{A} * B;
  const TWide rest = area % unit;
  const TWide most = std::max(StripWaste(L, W, A), StripWaste(L, W, B));
  // The waste has the remainder of the area: the next such value not below the strips' waste.
  const TWide waste = (most / unit + (most % unit <= rest ? 0 : 1)) * unit + rest;
  const TWide bound = (area - waste) / unit;
  if (bound > std::numeric_limits<Int64>::max()) throw TRangeError("[Error] BarnesBound: beyond 64 bits");
  return static_cast<Int64>(bound);
}

Int64 BarnesUpbound(double L, double W, double A, double B) {
  if (!std::isfinite(L) || !std::isfinite(W) || !std::isfinite(A) || !std::isfinite(B))
    throw TArgumentError("[Error] BarnesUpbound: a size is not finite");
  return BarnesBound(Floor<Int64>(L * 100), Floor<Int64>(W * 100), Round(A * 100), Round(B * 100));
}

}  // namespace platenest
