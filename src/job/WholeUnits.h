#pragma once

#include <optional>
#include <span>

#include "platenest/URectNest/RectRecords.h"

// How lengths are handed to nesters that work on doubles or count in whole units, and how their answers come back.
namespace platenest::detail {

// A plate side is handed over this much longer than it is, so that sums of doubles do not lose an exact fit. Where all
// sizes have the given number of decimals it stays below their quantum and cannot make anything fit that does not.
double FitSlack(std::optional<int> Decimals);

// Sums of doubles back to the multiples of 10^-Decimals that they stand for.
void SnapToQuantum(TNestedRects& Layout, int Decimals);

// Whole units at which half the gap is whole too: exactly where all lengths are decimal fractions and the longest of
// them makes at most MostUnits, be it by a common divisor; elsewhere room is rounded down and whatever takes room up.
class TWholeUnits {
 public:
  TWholeUnits(std::span<const double> Lengths, double Gap, double MostUnits);

  double Scale() const { return FScale; }  // units in one length
  bool IsExact() const { return FIsExact; }
  double HalfGap() const { return FHalfGap; }
  double Room(double Length) const;
  double Need(double Length) const;

 private:
  double FScale = 1;
  double FHalfGap = 0;
  bool FIsExact = false;
};

}  // namespace platenest::detail
