#pragma once

#include "platenest/foundation/Polyline.h"

namespace platenest {

// Counter-clockwise from the lower left corner, first point not repeated.
inline TVPolyline2D Box(double Left, double Bottom, double Right, double Top) {
  return {{Left, Bottom}, {Right, Bottom}, {Right, Top}, {Left, Top}};
}

}  // namespace platenest
