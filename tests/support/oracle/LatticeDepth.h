#pragma once

#include <algorithm>
#include <cmath>
#include <utility>

#include "OverlapDepth.h"
#include "Region.h"

// Judges lattices and rows of a part: how deep copies overlap, in drawing units.
namespace platenest::test {

// What cleaning and the rounding of paths may cost.
inline constexpr double kAllowedDepth = 5e-4;

inline TIntPoint UnitsOf(const TPoint2D& Vector) {
  return TPathUtils::CreateIntPoint(Vector, kPathScale);
}

inline double DepthAt(const TPaths& Fixed, const TPaths& Moving, const TPoint2D& At) {
  const TPaths moved = Moved(Moving, UnitsOf(At));
  const TIntRect a = TPathUtils::BoundBox(Fixed);
  const TIntRect b = TPathUtils::BoundBox(moved);
  if (a.Right <= b.Left || b.Right <= a.Left || a.Top <= b.Bottom || b.Top <= a.Bottom) return 0;
  return Overlaps(Fixed, moved) ? OverlapDepth(Fixed, moved) : 0;
}

// Deepest overlap of the part with its copies on the lattice from -3 to 3; copies on opposite sides are alike.
inline double LatticeDepth(const TPaths& Part, const std::pair<TPoint2D, TPoint2D>& Lattice) {
  double deepest = 0;
  for (int i = -3; i <= 3; ++i)
    for (int j = 0; j <= 3; ++j)
      if (j > 0 || i > 0) deepest = std::max(deepest, DepthAt(Part, Part, i * Lattice.first + j * Lattice.second));
  return deepest;
}

// Deepest overlap of Moving at At with the row of Fixed along Step.
inline double RowDepth(const TPaths& Fixed, const TPaths& Moving, const TPoint2D& Step, const TPoint2D& At) {
  double deepest = 0;
  for (int k = -3; k <= 3; ++k) deepest = std::max(deepest, DepthAt(Fixed, Moving, At - k * Step));
  return deepest;
}

inline double CellArea(const std::pair<TPoint2D, TPoint2D>& Lattice) {
  return std::fabs(Lattice.first.CrossMul(Lattice.second));
}

}  // namespace platenest::test
