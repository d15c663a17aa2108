#pragma once

#include <optional>
#include <span>
#include <string>

#include "platenest/foundation/Point2D.h"
#include "platenest/layoutcheck/LayoutCheck.h"
#include "platenest/layoutcheck/PlacedBox.h"

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

// FRAME: the first thing wrong as one English sentence, or an empty text, like CheckRectLayout.
PLATENEST_API std::string CheckCircles(std::span<const TPlacedCircle> Layout, const TPlacedBox& Plate, double Gap,
                                       std::span<const TCircleDemand> Demand, const TLayoutCheckOptions& Options = {});

// FRAME: the least distance between two of the circles, below 0 where they overlap; nothing for fewer than two.
PLATENEST_API std::optional<double> LeastClearance(std::span<const TPlacedCircle> Circles);

}  // namespace platenest
