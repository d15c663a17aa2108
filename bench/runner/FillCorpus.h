#pragma once

#include <vector>

#include "Arguments.h"
#include "Report.h"

namespace platenest::bench {

// Random small jobs without limits on amounts: the unbounded pass of the raster program against the best that
// straight cuts allow. A layout that is worth more is a fault.
std::vector<TRow> RunFillCorpus(const TArguments& Arguments);

}  // namespace platenest::bench
