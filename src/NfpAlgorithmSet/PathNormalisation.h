#pragma once

#include <algorithm>
#include <span>

#include "PathRules.h"
#include "platenest/foundation/Paths.h"
#include "platenest/foundation/Simplify.h"

namespace platenest::detail {

// Simplifies a path by the first row of Rules whose number of points it exceeds; shorter ones stay.
inline void Thin(TPath& Path, std::span<const TThinning> Rules) {
  const auto rule =
      std::ranges::find_if(Rules, [&Path](const TThinning& thinning) { return Path.size() > thinning.PointsAbove; });
  if (rule != Rules.end()) Path = DPSimplify(Path, rule->Tol);
}

}  // namespace platenest::detail
