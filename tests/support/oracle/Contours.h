#pragma once

#include <cmath>
#include <numbers>

#include "platenest/foundation/Polyline.h"
#include "platenest/foundation/Random.h"

// Contours of one well-known character, for tests and benchmarks that look at outlines rather than at pairs. They run
// counter-clockwise and do not repeat their first point. Chance comes from Random, so that a test seeds it.
namespace platenest::test {

// In [Low, High).
inline double Uniform(double Low, double High) {
  return Low + (High - Low) * Random(1 << 30) / (1 << 30);
}

// One vertex per equal step of the angle, at Radius(index).
template <class RadiusOf>
TVPolyline2D Polar(int Count, RadiusOf Radius) {
  TVPolyline2D contour;
  for (int i = 0; i < Count; ++i) {
    const double angle = 2 * std::numbers::pi * i / Count;
    contour.push_back({Radius(i) * std::cos(angle), Radius(i) * std::sin(angle)});
  }
  return contour;
}

inline TVPolyline2D Circle(int Count, double Radius) {
  return Polar(Count, [Radius](int) { return Radius; });
}

// A star of random radii between Low and 1 times Radius.
inline TVPolyline2D Star(int Count, double Radius, double Low) {
  TVPoint2DList radii;
  for (int i = 0; i < Count; ++i) radii.push_back({Radius * Uniform(Low, 1), 0});
  return Polar(Count, [&radii](int i) { return radii[i].X; });
}

// A wheel with flat teeth, four vertices each, of the given depth.
inline TVPolyline2D Gear(int Teeth, double Radius, double Depth) {
  constexpr double kShares[] = {0, 0.4, 0.5, 0.9};
  TVPolyline2D contour;
  for (int i = 0; i < Teeth; ++i) {
    for (int k = 0; k < 4; ++k) {
      const double angle = 2 * std::numbers::pi * (i + kShares[k]) / Teeth;
      const double radius = k < 2 ? Radius : Radius - Depth;
      contour.push_back({radius * std::cos(angle), radius * std::sin(angle)});
    }
  }
  return contour;
}

// A zigzag band that is narrower than it swings, so that the bends of its sides reach into each other.
inline TVPolyline2D Snake(int Bends, double Swing, double Width) {
  TVPolyline2D contour;
  for (int i = 0; i < Bends; ++i) contour.push_back({1.0 * i, i % 2 == 0 ? 0 : Swing});
  for (int i = Bends - 1; i >= 0; --i) contour.push_back({1.0 * i, (i % 2 == 0 ? 0 : Swing) + Width * Uniform(0.3, 1)});
  return contour;
}

}  // namespace platenest::test
