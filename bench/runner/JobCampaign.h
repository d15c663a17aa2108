#pragma once

#include <vector>

#include "Arguments.h"
#include "Report.h"

namespace platenest::bench {

// Random whole jobs, or jobs of circles in suite circles-random, through the facade by every method or one, to the end,
// to the time limit or stopped at a random moment by another thread; jobs of circles on one thread and on four. Both
// the facade's checker and the judge of the tests look at each answer; auto may not be worse than the quick method
// alone. Every job that went wrong is made as small as it can be and written to the folder of faults, where the job at
// work stands as running-METHOD.json in case it takes the process down. Tells how far answers are late.
std::vector<TRow> RunJobCampaign(const TArguments& Arguments);

}  // namespace platenest::bench
