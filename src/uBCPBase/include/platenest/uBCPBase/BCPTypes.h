#pragma once

#include <vector>

#include "platenest/foundation/Types.h"

// The plain vocabulary of branch-and-price: vectors, a matrix, and the number that stands for infinity.
namespace platenest {

using TDoubleDynArray = std::vector<double>;
using TIntegerDynArray = std::vector<int>;
// Row first. Rows may differ in length where nothing else is said.
using TDoubleMatrix = std::vector<TDoubleDynArray>;

// No bound, and the objective of what has no solution. A number like any other: sums and comparisons work on it.
inline constexpr double kBCPInfinity = 1.7e308;

// Dest becomes a copy of Src that shares no storage with it; on a throw it stays as it was.
inline void CloneDoubleArray(const TDoubleDynArray& Src, TDoubleDynArray& Dest) {
  Dest = TDoubleDynArray(Src);
}
inline void CloneIntegerArray(const TIntegerDynArray& Src, TIntegerDynArray& Dest) {
  Dest = TIntegerDynArray(Src);
}

}  // namespace platenest
