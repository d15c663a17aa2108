#pragma once

#include <optional>
#include <span>

namespace platenest::detail {

// Shifts lengths by a power of ten so that the longest side of a job lies in [500, 5000): some nesters count in whole
// units and use fixed constants. The shift is done on decimal digits, so metres and millimetres give the same doubles.
class TScale {
 public:
  explicit TScale(double LongestSide);

  int Exponent() const { return FExponent; }
  // Into the nester's units, rounded to 12 significant digits.
  double Up(double Length) const;
  // Back into the job's units.
  double Down(double Length) const;
  // Down(RoundToTwelveDigits(Length)) in one step.
  double DownRounded(double Length) const;

 private:
  int FExponent;
};

// V rounded to 12 significant decimal digits.
double RoundToTwelveDigits(double V);

// The number of decimal places after which every length is a whole number, if that is at most kMostDecimals.
inline constexpr int kMostDecimals = 9;
std::optional<int> CommonDecimals(std::span<const double> Lengths);

}  // namespace platenest::detail
