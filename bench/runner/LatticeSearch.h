#pragma once

#include <utility>

#include "platenest/foundation/Paths.h"

namespace platenest::bench {

// A dense lattice of a part by trying many first vectors: what the lattices of the kernel are measured by. First
// vectors run along the border of the no-fit polygon, evenly spaced and its vertices, finer around the best; the second
// one is the vertex nearest to the line of the first on the union of the row, which leaves nothing to gain between two
// vertices. Copies are clear of each other but for 25 path units. Area: of the part, in square drawing units; no cell
// is smaller. Zero vectors where nothing was found. Costs hundreds of unions.
std::pair<TPoint2D, TPoint2D> SearchLattice(const TPaths& NFP, double Area);

}  // namespace platenest::bench
