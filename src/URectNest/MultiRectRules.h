#pragma once

#include "platenest/foundation/Types.h"

// The numbers of the three-block nest.
namespace platenest::detail {

// With a gap every rectangle is grown by half of it less this on each side, in plate units, so that rounding keeps no
// copy off a plate that it fits exactly.
inline constexpr double kGapAllowance = 1e-6;
// Copies of each size where amounts do not count.
inline constexpr int kUnlimitedAmount = 99999;

// Raster points kept along the longer side: kMostPoints / v^kPointsExponent, where v = max(ln(longer side) -
// kLogOffset, kLeastLog) * sizes / kLeastLog.
inline constexpr double kMostPoints = 40;
inline constexpr double kPointsExponent = 0.25;
inline constexpr double kLogOffset = 6.5;
inline constexpr double kLeastLog = 1.3;
// When points are spread evenly, a point that comes early by this is in time.
inline constexpr double kSpreadTol = 1e-9;

// Candidate layouts kept, and how near in value they count as equal, in plate areas.
inline constexpr int kCandidates = 5;
inline constexpr double kEqualRate = 2.5e-5;

// Usage below which a result is poor, whatever less the caller asks for.
inline constexpr double kLeastMinRate = 0.88;
// Nothing is tried when the whole demand covers less of the plate.
inline constexpr double kLeastDemandRate = 0.9;

// Multiplies the first of two numbers that are joined to one code.
inline constexpr Int64 kCodeFactor = 1'000'000;

// A layout of more copies is refused: it would take more than a gigabyte.
inline constexpr Int64 kMostPlacements = 10'000'000;

// Rectangles are no longer than this for the raster, in units; it holds no plate of that size.
inline constexpr double kMostRasterSide = 2e9;

}  // namespace platenest::detail
