#pragma once

#include <vector>

#include "Region.h"

namespace platenest {

// Translations at which the part lies in the plate, off its holes. Only what has an area is held: a part that fits
// exactly in one direction gives nothing, see Overlaps(). Normalised.
TPaths InnerFitRegion(const TPaths& Plate, const TPaths& Part);
TPaths InnerFitRegion(const TVHPolygon& Plate, const TVHPolygon& Part);

// Whether Part, moved by At, lies in the closed plate; exact.
bool FitsAt(const TPaths& Plate, const TPaths& Part, const TIntPoint& At);

}  // namespace platenest
