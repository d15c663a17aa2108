#include "WholeUnits.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "Scale.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

constexpr double kMostFitSlack = 1e-6;
constexpr double kFitSlackWithoutQuantum = 2.5e-10;
constexpr double kMostExact = 0x1p53;

// Of all lengths and half the gap in units; sizes in sixteenths have four decimals, yet few units will do.
double CommonDivisor(std::span<const double> Lengths, double Gap, double Scale) {
  if (std::max(std::ranges::max(Lengths), Gap) * Scale >= kMostExact) return 1;
  Int64 divisor = Round(Gap * Scale) / 2;
  for (const double length : Lengths) divisor = std::gcd(divisor, Round(length * Scale));
  return static_cast<double>(divisor);
}

}  // namespace

double FitSlack(std::optional<int> Decimals) {
  return Decimals ? std::min(std::pow(10.0, -*Decimals) / 4, kMostFitSlack) : kFitSlackWithoutQuantum;
}

void SnapToQuantum(TNestedRects& Layout, int Decimals) {
  const double scale = std::pow(10.0, Decimals);
  for (TNestedRect& placed : Layout) {
    placed.Trans.X = RoundHalfEven(placed.Trans.X * scale) / scale + 0.0;
    placed.Trans.Y = RoundHalfEven(placed.Trans.Y * scale) / scale + 0.0;
  }
}

TWholeUnits::TWholeUnits(std::span<const double> Lengths, double Gap, double MostUnits) {
  const double longest = std::ranges::max(Lengths) + Gap;
  std::vector<double> all(Lengths.begin(), Lengths.end());
  all.push_back(Gap);
  if (const auto decimals = CommonDecimals(all)) {
    const double quantum = std::pow(10.0, *decimals);
    const bool isGapOdd = std::fmod(RoundHalfEven(Gap * quantum), 2) != 0;
    FScale = isGapOdd ? 2 * quantum : quantum;
    if (longest * FScale > MostUnits) FScale /= CommonDivisor(Lengths, Gap, FScale);
    FIsExact = longest * FScale <= MostUnits;
  }
  if (!FIsExact) FScale = std::pow(10.0, std::floor(std::log10(MostUnits / longest)));
  FHalfGap = FIsExact ? RoundHalfEven(Gap * FScale) / 2 : std::ceil(Gap * FScale / 2);
}

double TWholeUnits::Room(double Length) const {
  return FIsExact ? RoundHalfEven(Length * FScale) : std::floor(Length * FScale);
}

double TWholeUnits::Need(double Length) const {
  return FIsExact ? RoundHalfEven(Length * FScale) : std::ceil(Length * FScale);
}

}  // namespace platenest::detail
