#pragma once

#include "platenest/URectNest/RectRecords.h"

namespace platenest::detail {

// The guillotine strips that put most copies of one rectangle on a plate of W by H. Every strip is PartX thick, along
// the left or the bottom edge of what remains, and holds whole pitches of PartY; PartX >= PartY > 0. Of equal choices
// the left strip wins. Amt is 0 when not even one rectangle fits.
//
// A remaining plate is known by the numbers of left and bottom strips laid before, so one table of (left, bottom)
// counts with one bit per cell, filled from the smallest plate up, replaces a recursion that carries strip lists.
// Cost: O(strips along W times strips along H) time, one bit for each; the caller keeps both numbers in the hundreds.
// Raises TRangeError when a strip or the plate holds more than an int can count.
TPlateNestInfo BestStrips(double W, double H, double PartX, double PartY);

}  // namespace platenest::detail
