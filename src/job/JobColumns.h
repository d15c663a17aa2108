#pragma once

#include <vector>

#include "JobSearch.h"
#include "JobTrials.h"

namespace platenest::detail {

// Whole answers by column generation, one search for each kind of plate: remnants first, then by cost for area, the
// fullest layouts as far as the stock goes; what that leaves goes to the next kind, and what all leave is placed by
// quick fills. Turns all parts. Begins with the layouts of the answers that were found before. Where there is one kind
// of plate the lower bound of the search becomes the estimate.
void NestByColumns(TJobSearch& Search, TSkyTrials& Trials, double Share, const std::vector<TJobLayouts>& Found);

}  // namespace platenest::detail
