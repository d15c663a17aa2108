#pragma once

#include <vector>

#include "Arguments.h"
#include "Report.h"

namespace platenest::bench {

// The jobs of a file with many sizes and one plate each, once for every pair of turning and amounts that the published
// results know, against each of those. Every layout is checked. The figures turned, limited and proven are 0 or 1.
std::vector<TRow> RunFillSuite(const TArguments& Arguments);

}  // namespace platenest::bench
