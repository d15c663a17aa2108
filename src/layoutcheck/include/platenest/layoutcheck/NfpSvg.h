#pragma once

#include <string>
#include <vector>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Point2D.h"

// Pictures of no-fit polygons. No state; safe on any thread.
namespace platenest {

using TPictureContours = std::vector<std::vector<TPoint2D>>;  // closed by themselves, filled by the even-odd rule

struct TNfpPicture {
  std::string Title;     // empty: made from the ids
  std::string FixedId;   // texts like those of TPictureKind
  std::string MovingId;  // likewise
  std::string Units = "mm";
  bool IsInside = false;
  TPictureContours Fixed;
  TPictureContours Moving;  // as it is drawn: its origin is the reference point
  TPictureContours Region;  // places of the reference point
  int MostPlaces = 6;       // where the moving part is shown, evenly along the region's boundary
};

// One SVG document as RectLayoutSvg makes them: real size, colours of KindColour, title and description, the y axis
// turned up once in the outermost group. The fixed part is filled, the region laid over it; the moving part is outlined
// at some places of the boundary, each with a dot on its reference point. A legend stands below. Raises TArgumentError
// for a coordinate that is not finite or beyond 1e15, or shapes without extent.
PLATENEST_API std::string NfpSvg(const TNfpPicture& Picture);

}  // namespace platenest
