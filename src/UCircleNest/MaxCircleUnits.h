#pragma once

#include <algorithm>
#include <cmath>

// Constants and formulas of the patterns of equal circles; lengths in pitches.
namespace platenest::detail {

// Quotients that are whole but for rounding count as whole: a plate of exactly n pitches holds n.
inline constexpr double kWholeTol = 1e-9;
inline constexpr double kSqrt3 = 1.732050807569;
inline constexpr double kHexStep = 0.8660254037845;

// The other leg of a right triangle with hypotenuse 1: how far circles that touch lie apart on the other axis.
inline double Leg(double V) {
  return std::sqrt(std::max(1 - V * V, 0.0));
}

}  // namespace platenest::detail
