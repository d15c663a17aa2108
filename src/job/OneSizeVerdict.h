#pragma once

#include <vector>

#include "OneSizeBounds.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

// What may be said about an answer to a job of kind One. run() states it and CheckResult() compares.
namespace platenest::detail {

TOneSize SizesOf(const Job& AJob);

// The bounds in the order in which a result lists them. The demand is one too: no more is asked for.
std::vector<Bound> BoundsOf(const Job& AJob);

// No further copy fits into the largest free rectangle.
bool IsPlateFull(const Job& AJob, const Layout& ALayout);

// Proved, status and reason from bounds, layouts and counts, for a search that ended by itself: complete when all
// demand is placed or the plate is full.
void Judge(const Job& AJob, Result& AResult);

}  // namespace platenest::detail
