#pragma once

#include <vector>

#include "platenest/job/Job.h"
#include "platenest/job/JobErrors.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// What is wrong with a result for a job of kind Nfp: head, pairs and their order, each path on the grid, and the
// samples that the checker tries out.
std::vector<Fault> CheckPairs(const Job& AJob, const Result& AResult);

}  // namespace platenest::detail
