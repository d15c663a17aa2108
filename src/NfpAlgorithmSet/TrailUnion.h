#pragma once

#include <span>

#include "platenest/NfpAlgorithmSet/Chip.h"
#include "platenest/foundation/Paths.h"

namespace platenest::detail {

// The region that all chips of a convolution wind around, without any choice among them: chips, equal ones each on its
// own, are split into closed trails by their end points on the scale of paths (Hierholzer 1873), and these are united
// once where the winding number is positive. No trail is turned by its own area, since the sign tells real regions from
// artefacts. AgainstEdges walks the chips backwards, as is right where both loops run the same way round: there the
// winding number is minus the number of pieces of the overlap. For a cavity, where they run opposite ways, it is 1
// where the part fits, or encloses the cavity, and 0 or below elsewhere.
// Paths becomes the region: outer contours counter-clockwise, holes clockwise, none of fewer than three points; empty
// where nothing is enclosed. False, and no paths, for no chips, for a chip set with more than a few loose ends, and
// where Clipper gives up; a few loose ends are joined by straight chords to the nearest one. Raises TRangeError or
// ClipperLib::clipperException for coordinates beyond those of paths.
// Safe on any thread: work space is kept per thread, and besides Clipper nothing is allocated once it has grown. Cost:
// linear in the chips, and the union.
bool UnionOfTrails(std::span<const TChip> Chips, bool AgainstEdges, TPaths& Paths);

}  // namespace platenest::detail
