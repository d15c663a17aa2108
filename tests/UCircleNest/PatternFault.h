#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "platenest/foundation/Polyline.h"
#include "platenest/foundation/Random.h"

namespace platenest {

// The first thing wrong with circles of diameter 1 that are said to be Count on a plate of W by H, or nothing.
inline std::string PatternFault(TVPoint2DList Points, int Count, double W, double H) {
  const std::string plate = " on " + std::to_string(W) + " x " + std::to_string(H);
  if (static_cast<int>(Points.size()) != Count) return "other count than told" + plate;
  if (Count > 2 / std::numbers::sqrt3 * (W - 1) * (H - 1) + W + H - 1 + 1e-9) return "more than can stand" + plate;
  std::ranges::sort(Points, {}, &TPoint2D::X);
  for (auto p = Points.begin(); p != Points.end(); ++p) {
    if (std::min({p->X, p->Y, W - p->X, H - p->Y}) < 0.5 - 2e-9) return "outside" + plate;
    for (auto q = p + 1; q != Points.end() && q->X < p->X + 1; ++q)
      if (p->DistanceTo(*q) < 1 - 1e-9) return "too near" + plate;
  }
  return "";
}

inline double RandomIn(double Low, double High) {
  return Low + (High - Low) * Random(1 << 30) / (1 << 30);
}

// A length that a pattern just needs, of half pitches and hexagonal lines, or any other one.
inline double RandomExtent(double Low, double High) {
  if (Random(2) == 0) return RandomIn(Low, High);
  const double whole = RandomIn(Low, High) - 0.5;
  return std::floor(2 * whole) / 2 + std::numbers::sqrt3 / 2 * (1 + Random(5)) + (Random(2) == 0 ? 1e-7 : 0.0);
}

}  // namespace platenest
