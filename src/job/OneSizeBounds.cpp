#include "OneSizeBounds.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Scale.h"
#include "platenest/URectNest/URectNest.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

struct TWholeSizes {
  Int64 L = 0;
  Int64 W = 0;
  Int64 A = 0;
  Int64 B = 0;
};

// Products of two plate sides must stay within 63 bits.
constexpr double kLargestWhole = 3e9;
// Slack against the noise of doubles, in units of the fine scale.
constexpr double kNoise = 1e-2;

TWholeSizes ToWholeNumbers(const TOneSize& S) {
  const double longest = std::max(S.PlateWidth, S.PlateHeight) + S.Gap;
  const std::array<double, 5> sizes{S.PlateWidth, S.PlateHeight, S.PartWidth, S.PartHeight, S.Gap};
  if (const auto decimals = CommonDecimals(sizes); decimals && longest * std::pow(10.0, *decimals) < kLargestWhole) {
    const double scale = std::pow(10.0, *decimals);
    const auto whole = [scale](double V) { return Round(V * scale); };
    const Int64 gap = whole(S.Gap);
    return {whole(S.PlateWidth) + gap, whole(S.PlateHeight) + gap, whole(S.PartWidth) + gap, whole(S.PartHeight) + gap};
  }
  const double scale = std::pow(10.0, std::floor(std::log10(kLargestWhole / longest)));
  const auto up = [&](double V) { return Ceil<Int64>((V + S.Gap) * scale + kNoise); };
  const auto down = [&](double V) { return std::max<Int64>(1, Floor<Int64>((V + S.Gap) * scale - kNoise)); };
  return {up(S.PlateWidth), up(S.PlateHeight), down(S.PartWidth), down(S.PartHeight)};
}

}  // namespace

TOneSizeBounds BoundOneSize(const TOneSize& Sizes) {
  const auto [l, w, a, b] = ToWholeNumbers(Sizes);
  TOneSizeBounds bounds;
  bounds.Grid = std::max((l / a) * (w / b), (l / b) * (w / a));
  const bool fits = (a <= l && b <= w) || (b <= l && a <= w);
  if (!fits) return bounds;
  bounds.Area = l * w / (a * b);
  bounds.Barnes = BarnesBound(l, w, a, b);
  return bounds;
}

}  // namespace platenest::detail
