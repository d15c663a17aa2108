#pragma once

#include <polyclipping/clipper.hpp>

// The one header that includes Clipper, which stays in its own namespace. What callers have to know of it:
// - cInt is long long, which is another type than Int64: std::min and other templates see two types.
// - AddPath(s) throws clipperException for coordinates beyond 2^62 and drops flat paths (false, nothing added).
// - Execute gives false and an empty solution when nothing was added: an empty result, no failure.
// - The first contour of a result is not always the outline; where the outline is meant, take the largest area.
// - StrictlySimple is off by default; with it a result may hold contours of fewer than three points.
// - The shape types below must not be copied, and one object serves one thread.
namespace platenest {

using TClipper = ClipperLib::Clipper;
using TClipperOffset = ClipperLib::ClipperOffset;
using TPolyTree = ClipperLib::PolyTree;

static_assert(sizeof(ClipperLib::cInt) == 8, "Clipper is built with 64-bit coordinates");

}  // namespace platenest
