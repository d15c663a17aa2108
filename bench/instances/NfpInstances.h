#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Region.h"

// Irregular nesting instances: one JSON file each with name, strip_width, parts (id, demand, rotations, outer, holes)
// and, in some, plates and a layout that is known to be perfect.
namespace platenest {

struct TNfpPart {
  int Id = 0;
  int Demand = 0;
  std::vector<double> Rotations;  // degrees, counter-clockwise
  TVHPolygon Shape;  // outer contour counter-clockwise, holes clockwise; drawing units about its own origin
};

struct TNfpPlacement {
  int Part = 0;  // id of the part, not turned
  TPoint2D At;
};

struct TNfpInstance {
  std::string Name;
  std::optional<double> StripWidth;
  std::optional<double> BestLength;
  std::vector<TNfpPart> Parts;
  std::vector<TVHPolygon> Plates;
  std::vector<TNfpPlacement> Layout;
};

// Raises std::runtime_error, with the file and the reason, for what cannot be read or holds a contour of fewer than
// three points.
TNfpInstance ReadNfpInstance(const std::string& File);
TNfpInstance ParseNfpInstance(const std::string& Json);

}  // namespace platenest
