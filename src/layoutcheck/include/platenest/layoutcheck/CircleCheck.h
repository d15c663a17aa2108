#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platenest/foundation/Point2D.h"
#include "platenest/layoutcheck/LayoutCheck.h"
#include "platenest/layoutcheck/PlacedBox.h"

// Verifies and measures layouts of circles, in plate units, with code that shares nothing with the nesters. Nothing
// here keeps state; every function is safe on any thread.
namespace platenest {

struct TPlacedCircle {
  TPoint2D Center;
  double Radius = 0;
  int Idx = 0;  // position in the demand
};

struct TCircleDemand {
  double Radius = 0;
  int Amount = 0;
};

// The first thing wrong with a layout as one English sentence that names the circle by its position in the list, or an
// empty text when the layout is valid:
//   - every number is finite and every radius positive;
//   - Idx is a position in Demand and the radius is that entry's within the tolerance;
//   - no entry has more copies than its Amount, which options may make one without limit;
//   - every circle lies within Plate, wherever the plate itself lies;
//   - the Clearance of any two circles is at least Gap, the tolerance taken off. A Gap below 0 allows overlap of that
//     depth.
// Circles are looked at one by one first, pairs after that. An empty layout is valid, whatever plate and gap are.
// Cost: O(n log n) for n circles, however unequal they are: among circles that keep the gap only a handful are at least
// as large as a given one and near it. With a Gap below 0 add the number of pairs whose boxes overlap.
PLATENEST_API std::string CheckCircles(std::span<const TPlacedCircle> Layout, const TPlacedBox& Plate, double Gap,
                                       std::span<const TCircleDemand> Demand, const TLayoutCheckOptions& Options = {});

// The distance between the edges of two circles; below 0, by the depth, where they overlap.
PLATENEST_API double Clearance(const TPlacedCircle& A, const TPlacedCircle& B);

// The least Clearance of two of the circles; nothing for fewer than two. Raises TArgumentError for a circle that is not
// finite or has a radius below 0. Cost: O(n log n) for circles that do not overlap, as LeastClearance of boxes.
PLATENEST_API std::optional<double> LeastClearance(std::span<const TPlacedCircle> Circles);

// The boxes around circles. Straight cuts along the axes part circles exactly where they part these, so what is
// measured on boxes alone, as UsedBox and IsEdgeToEdge, is exact; a free rectangle keeps clear of the boxes' corners.
PLATENEST_API std::vector<TPlacedBox> PlacedBoxesOf(std::span<const TPlacedCircle> Circles);

}  // namespace platenest
