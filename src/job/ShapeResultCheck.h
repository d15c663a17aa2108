#pragma once

#include <vector>

#include "platenest/job/Job.h"
#include "platenest/job/JobErrors.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// What is wrong with a result for a job about shapes: its head; pairs and their order, each path on the grid, and the
// samples that the checker tries out; or the lattice, the label or the gripper of the part, with all that is said about
// them. That there is no place is not tried out.
std::vector<Fault> CheckShapeResult(const Job& AJob, const Result& AResult);

}  // namespace platenest::detail
