#pragma once

#include <vector>

#include "CircleAnswer.h"
#include "CircleSizes.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// Lays the circles of layouts that leave most room anew, toward one side of the plate, where that leaves a larger free
// rectangle, the offcut worth keeping. Counts stay, so the answer is as good as before. Layouts are those of Found, in
// its order, checked and measured. Nothing is done where parts without limit could use the room, nor to layouts that
// would take more than some hundredths of a second.
void WidenCircleOffcuts(const Job& AJob, const TCircleSizes& Sizes, const TCircleLayouts& Found,
                        std::vector<Layout>& Layouts);

}  // namespace platenest::detail
