#pragma once

#include <cmath>
#include <concepts>
#include <span>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Types.h"

// Tolerant comparison of lengths. Equality includes the tolerance itself, the two orders are strict beyond it, so for
// any finite A and B and any Tol not below 0 exactly one of fEqual, fGreat, fSmall holds. None of them is transitive:
// never a sort or map key. No state; safe on any thread.
namespace platenest {

inline constexpr double kDefaultTol = 1e-6;  // drawing units

constexpr bool fGreat(double A, double B, double Tol = kDefaultTol) {
  return A - B > Tol;
}
constexpr bool fSmall(double A, double B, double Tol = kDefaultTol) {
  return B - A > Tol;
}
constexpr bool fEqual(double A, double B, double Tol = kDefaultTol) {
  return (A < B ? B - A : A - B) <= Tol;
}

// The same in extended precision, as soon as one argument is extended.
template <class A, class B, class T>
concept OneIsExtended = std::same_as<A, TExtended> || std::same_as<B, TExtended> || std::same_as<T, TExtended>;

template <class A, class B, class T = double>
requires OneIsExtended<A, B, T>
constexpr bool fGreat(A Left, B Right, T Tol = kDefaultTol) {
  return TExtended(Left) - TExtended(Right) > TExtended(Tol);
}
template <class A, class B, class T = double>
requires OneIsExtended<A, B, T>
constexpr bool fSmall(A Left, B Right, T Tol = kDefaultTol) {
  return fGreat(TExtended(Right), TExtended(Left), Tol);
}
template <class A, class B, class T = double>
requires OneIsExtended<A, B, T>
constexpr bool fEqual(A Left, B Right, T Tol = kDefaultTol) {
  return !fGreat(TExtended(Left), TExtended(Right), Tol) && !fSmall(TExtended(Left), TExtended(Right), Tol);
}

// The exact sign of A - B for comparers: -1, 0 or 1, without tolerance and without overflow.
template <class T>
constexpr int Sign(const T& A, const T& B) {
  return A < B ? -1 : (B < A ? 1 : 0);
}

class TMathUtils {
 public:
  TMathUtils() = delete;

  // 0 within Tol, else the sign of A - B.
  static constexpr int CompareFloat(double A, double B, double Tol) { return fEqual(A, B, Tol) ? 0 : (A < B ? -1 : 1); }
  // B exceeds A by more than Tol.
  static constexpr bool FloatLess(double A, double B, double Tol) { return fSmall(A, B, Tol); }

  template <class T>
  static constexpr bool IsInRange(const T& Value, const T& Low, const T& High, bool IncludeLow, bool IncludeHigh) {
    return (IncludeLow ? Low <= Value : Low < Value) && (IncludeHigh ? Value <= High : Value < High);
  }

  // The value after Value in the cycle Low, ..., High, Low.
  static constexpr int CycInc(int Value, int Low, int High) { return Value >= High ? Low : Value + 1; }

  // Largest and smallest member; 0 for an empty list.
  static PLATENEST_API Int64 Max(std::span<const Int64> List);
  static PLATENEST_API Int64 Min(std::span<const Int64> List);
  static PLATENEST_API int Max(std::span<const int> List);
  static PLATENEST_API int Min(std::span<const int> List);
};

}  // namespace platenest
