#pragma once

#include "platenest/layoutcheck/NfpCheck.h"

namespace platenest::detail {

// What a polygon or region should enclose, by brute force: the places where the shapes overlap or, with IsInside, those
// where the moving one lies within the fixed one. Exact up to the rounding of crossings to whole units.
//
// Two edges touch at the places of the parallelogram of their differences. Where no two edges cross, one contour lies
// within another or none does, which a single point tells (Minkowski sums: de Berg et al. 2008, 13.3). Cost: one union
// of as many parallelograms as there are pairs of edges.
TPaths EnclosedPlaces(const TNfpQuestion& Question);

}  // namespace platenest::detail
