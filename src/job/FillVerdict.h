#pragma once

#include <string>
#include <vector>

#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

// What may be said about an answer to a job of kind Fill. run() states it and CheckResult() compares.
namespace platenest::detail {

// In the order in which a result lists them. What all copies asked for of the parts that fit at all are worth is one
// too, unless one of these parts has no limit.
std::vector<Bound> FillBoundsOf(const Job& AJob);

// The worth reaches the bound, or is above it, by more than rounding explains.
bool MeetsBound(double Worth, const Bound& ABound);
bool BeatsBound(double Worth, const Bound& ABound);

// What is wrong with a layout as one English sentence; empty if it passes the checker, keeps amounts and turning locks
// and beats no bound.
std::string FillFault(const Job& AJob, const Layout& ALayout, const std::vector<Bound>& Bounds);

// Proved, status and reasons from bounds, layouts and counts, for a search that ended by itself: complete when all
// demand is placed and no copy of a part without limit fits into the largest free rectangle.
void JudgeFill(const Job& AJob, Result& AResult);

}  // namespace platenest::detail
