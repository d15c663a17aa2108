#pragma once

#include <cmath>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "FaultText.h"

// Parts for jobs about shapes.
namespace platenest {

inline const PolygonRing kL = {{0, 0}, {4, 0}, {4, 1}, {1, 1}, {1, 3}, {0, 3}};

inline Part Polygon(const std::string& Id, PolygonRing Outline, std::vector<PolygonRing> Holes = {}) {
  return {.Id = Id, .Outline = std::move(Outline), .Holes = std::move(Holes)};
}

inline PolygonRing Square(double Left, double Bottom, double Side) {
  return {{Left, Bottom}, {Left + Side, Bottom}, {Left + Side, Bottom + Side}, {Left, Bottom + Side}};
}

// Count points around the origin, at the distance that RadiusAt tells of an index.
template <class Function>
PolygonRing Round(int Count, Function RadiusAt) {
  PolygonRing ring;
  for (int i = 0; i < Count; ++i) {
    const double angle = std::numbers::pi * 2 * i / Count;
    const double radius = RadiusAt(i);
    ring.push_back({radius * std::cos(angle), radius * std::sin(angle)});
  }
  return ring;
}

inline PolygonRing Disc(int Count) {
  return Round(Count, [](int) { return 1000; });
}

}  // namespace platenest
