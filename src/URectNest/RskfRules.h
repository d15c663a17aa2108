#pragma once

#include "platenest/foundation/Types.h"

// The numbers of the raster program.
namespace platenest::detail {

// Added to a time limit, in seconds: the program is worth more than the clock says.
inline constexpr double kGraceSeconds = 5.0;
inline constexpr double kMsPerSecond = 1000.0;
// Looks at the stop flags and the clock of which one is real: at most some tens of cells.
inline constexpr int kLooksPerPoll = 64;

// A part that takes less than this fraction of the plate's short side is laid in grids.
inline constexpr double kPartsPerShortSide = 20;
// An unweighted piece is worth its area in hundredths of a square plate unit.
inline constexpr double kValuesPerArea = 100;
// Decimals that lengths are rounded to before they become whole, against noise in the last places.
inline constexpr int kRskfLengthDigit = -6;

// Most copies of one box that a bounded layout may use, most points on an axis of the raster and most boxes: the tables
// hold 16 bits.
inline constexpr int kMost16Bits = 65535;
// Worth of a layout up to which sums of two stay within 64 bits.
inline constexpr double kMostWorth = 4e18;
// A box with a longer side fits no raster.
inline constexpr double kMostBoxUnits = 1'000'000'000;

}  // namespace platenest::detail
