#pragma once

#include <string_view>

#include "platenest/URectNest/RectRecords.h"

// Looks at finished layouts, for developers.
namespace platenest {

// Hands the placements to the host's debug view, each as a closed contour under the list's own rule: an unturned part
// keeps the position of its box, a turned one does not.
PLATENEST_API void OutputNestedRects(const TNestedRects& NestedRects, std::string_view FileName);

// How much edge the placements share, for comparing layouts of the same parts: each box grows by 0.01 on all sides, and
// each pair that then overlaps adds twice the longer side of its overlap. So the sum is about twice the shared length,
// with 0.02 more per pair and side, and contact at a corner counts too. Raises TArgumentError for a box that is not
// finite or more than 0.02 below 0 in a side. Cost: O((n + pairs) log n).
PLATENEST_API double CalcCoedgeLength(const TNestedRects& NestedRects);

}  // namespace platenest
