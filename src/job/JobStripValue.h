#pragma once

#include <vector>

#include "JobSearch.h"
#include "JobTrials.h"

namespace platenest::detail {

// Whole answers by the strip-value nest with its own correction of values, in units so coarse that it ends within a
// share of the time that is left; what it leaves is placed by quick fills. Turns all parts. The answers, also those
// that are not the best, are added to Found. Nothing where even the coarsest units would take too long, unless it Must.
void NestByStripValues(TJobSearch& Search, TSkyTrials& Trials, double Share, bool Must,
                       std::vector<TJobLayouts>& Found);

}  // namespace platenest::detail
