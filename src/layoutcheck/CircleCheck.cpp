#include "platenest/layoutcheck/CircleCheck.h"

namespace platenest {

// FRAME
std::string CheckCircles(std::span<const TPlacedCircle>, const TPlacedBox&, double, std::span<const TCircleDemand>,
                         const TLayoutCheckOptions&) {
  return "not checked";
}
std::optional<double> LeastClearance(std::span<const TPlacedCircle>) {
  return std::nullopt;
}

}  // namespace platenest
