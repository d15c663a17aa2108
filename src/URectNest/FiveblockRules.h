#pragma once

#include <limits>

#include "platenest/foundation/Types.h"

// The numbers of the five-block nest.
namespace platenest::detail {

// The time that a search may take, in seconds.
inline constexpr Int64 kSecondsPerLevel = 2;
inline constexpr Int64 kSecondsAtLevelZero = 4;
inline constexpr Int64 kLeastSeconds = 1;

// What the full search is expected to take, in seconds per squared number of cells. From the limit on, guillotine cuts
// of one level do.
inline constexpr double kSecondsPerSquaredCell = 4e-9;
// Nor are tables searched that would take more than 1.2 GB.
inline constexpr Int64 kMostCells = 32'000'000;

// Steps of the search between two looks at the clock and at the stop flags: some microseconds.
inline constexpr int kStepsPerPoll = 1024;

// A plate of more units is refused: an index of its length would take more than 4 GB.
inline constexpr double kMostUnits = 1'000'000'000;
// A rectangle may be longer: none fits then.
inline constexpr double kMostRectUnits = std::numeric_limits<int>::max();

// Decimals that a rectangle's sizes are rounded to where there is no gap to hide noise in.
inline constexpr int kSizeDigit = -6;
// Up to this gap, in units, the layout is jostled.
inline constexpr double kMostJostledGap = 1e-6;
// Skyline steps closer than this, in plate units, are one for the jostler.
inline constexpr double kJostleTol = 0.0001;

}  // namespace platenest::detail
