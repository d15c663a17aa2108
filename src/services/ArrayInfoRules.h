#pragma once

#include "platenest/foundation/Types.h"

namespace platenest::detail {

// Path units to drawing units where vectors and boxes leave the paths.
inline constexpr double kModelPerUnit = 1e-5;

// Growing of a no-fit polygon by the clearance, and shrinking of a part by a sucker.
inline constexpr int kSquareJoin = 0;
inline constexpr double kArcStep = 0.03490658503988659;  // radians, two degrees

// Crossings along an axis. The sentinels say that a side has none.
inline constexpr Int64 kNearScanTol = 20;    // path units; plain copies without Separate
inline constexpr double kFarAway = 8.5e307;  // path units

// Choice of the first vector.
inline constexpr double kConcaveArea = 1e-6;       // square drawing units, of the triangle at a vertex
inline constexpr double kNothingNearer = 8.5e307;  // drawing units
inline constexpr double kNothingFarther = -1;
inline constexpr int kConcaveCandidates = 1;
inline constexpr int kCandidates = 2;

// The row of the first vector and the search along it.
inline constexpr double kOnAxis = 0.001;        // drawing units; a component up to this counts as 0
inline constexpr double kInBound = 1e-6;        // drawing units
inline constexpr double kNoVector = 1e-12;      // drawing units
inline constexpr double kSameDirection = 1e-6;  // radians, also for right angles

// Bisection of a label's margin.
inline constexpr int kMarginRounds = 4;
inline constexpr double kNoPlace = -1;
inline constexpr double kClosedTol = 1e-6;           // drawing units
inline constexpr double kInnerLineHalfWidth = 0.01;  // drawing units
inline constexpr double kLineMiterLimit = 2.0;
inline constexpr double kLineArcTol = 0.25;  // path units
inline constexpr Int64 kNoVertexNear = 0x0FFFFFFFFFFFFFFF;

}  // namespace platenest::detail
