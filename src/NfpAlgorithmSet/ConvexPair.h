#pragma once

#include "platenest/NfpAlgorithmSet/KineticLoop.h"
#include "platenest/foundation/Paths.h"

namespace platenest::detail {

// The convolution of two convex counter-clockwise loops is one convex ring: their edges in the order of direction.
// Ring becomes it, without flat vertices; these are the points that the graph of the chips gives. False where that is
// not sure: a loop that is not convex, runs clockwise, is next to nothing as wide as a cell of the graph or has edges
// near that size, and edges of both loops that are next to parallel, unless they lie along the same axis. Cost: linear.
bool MergeConvexLoops(const TKMPLoop& A, const TKMPLoop& B, TPath& Ring);

}  // namespace platenest::detail
