#pragma once

#include <vector>

#include "JobAnswer.h"
#include "JobSizes.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// Lays the copies of the layouts that leave most room anew where that leaves a larger free rectangle, the offcut worth
// keeping: on less and less of the plate's width, and of its height, as far as quick fills go. Counts stay, so the
// answer is as good as before. Layouts are those of Found, in its order, checked and measured. Nothing is done where
// parts without limit could use the room, nor to layouts that would take more than some hundredths of a second. A stop
// of the thread's token leaves one fill for each step.
void WidenOffcuts(const Job& AJob, const TJobSizes& Sizes, const TJobLayouts& Found, std::vector<Layout>& Layouts);

}  // namespace platenest::detail
