#pragma once

#include <cmath>
#include <concepts>
#include <limits>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Types.h"

// The only door from double to integer. Every conversion names its rule and raises TRangeError when the value is NaN or
// does not fit the target, where a plain cast would be undefined. Rounding is to nearest with ties to even, independent
// of the rounding mode that the host has set. No state; safe on any thread.
namespace platenest {

namespace detail {

[[noreturn]] PLATENEST_API void RaiseConversionError(double V);

// The bounds of T as doubles: the lowest value is exact, one past the highest value is a power of two and exact as
// well.
template <std::integral T>
T ToInteger(double Whole) {
  constexpr double low = static_cast<double>(std::numeric_limits<T>::min());
  constexpr double pastHigh = 2.0 * static_cast<double>(std::numeric_limits<T>::max() / 2 + 1);
  if (!(Whole >= low && Whole < pastHigh)) RaiseConversionError(Whole);
  return static_cast<T>(Whole);
}

}  // namespace detail

// The nearest whole number as a double, ties to even: 0.5 -> 0, 1.5 -> 2, -2.5 -> -2. NaN and infinity stay.
inline double RoundHalfEven(double V) {
  constexpr double wholeFrom = 0x1p52;  // doubles from here on have no fraction
  if (!(std::fabs(V) < wholeFrom) || V == 0) return V;
  // Which way a value goes is as good as random, so it is told by sums and not by branches.
  const Int64 toZero = static_cast<Int64>(V);
  const Int64 low = toZero - Int64{static_cast<double>(toZero) > V};
  const double part = V - static_cast<double>(low);
  return static_cast<double>(low + (Int64{part > 0.5} | (Int64{part == 0.5} & low & 1)));
}

// Nearest integer, ties to even: 2.5 -> 2, -2.5 -> -2.
template <std::integral T = Int64>
T Round(double V) {
  return detail::ToInteger<T>(RoundHalfEven(V));
}

// Toward zero.
template <std::integral T = Int64>
T Trunc(double V) {
  // Doubles at the bounds of 64 bits have no fraction, and the cast does the rest.
  constexpr bool boundsAreWhole = std::signed_integral<T> && sizeof(T) == sizeof(Int64);
  return detail::ToInteger<T>(boundsAreWhole ? V : std::trunc(V));
}

template <std::integral T = int>
T Floor(double V) {
  return detail::ToInteger<T>(std::floor(V));
}

template <std::integral T = int>
T Ceil(double V) {
  return detail::ToInteger<T>(std::ceil(V));
}

// V - trunc(V), with the sign of V: Frac(-1.25) == -0.25.
inline double Frac(double V) {
  return V - std::trunc(V);
}

// The nearest multiple of 10^Digit, ties of the scaled value to even: RoundTo(1.2349, -3) == 1.235.
PLATENEST_API double RoundTo(double V, int Digit);

}  // namespace platenest
