#pragma once

#include <string>
#include <vector>

#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

// What may be said about an answer to a job of kind Circles. run() states it and CheckResult() compares.
namespace platenest::detail {

// FRAME: in the order in which a result lists them; kinds oler, area, stock, demand.
std::vector<Bound> CircleBoundsOf(const Job& AJob);

// FRAME: what is wrong with the layouts as one English sentence; empty if all pass the checker, keep amounts and stock
// and beat no bound.
std::string CircleFault(const Job& AJob, const std::vector<Layout>& Layouts, const std::vector<Bound>& Bounds);

// FRAME: usage, used box, clearance, edge to edge, free box of a layout of circles.
void MeasureCirclesInto(Layout& ALayout, double Gap, const std::array<double, 4>& Margin);

// FRAME: proved, status and reasons for a search that ended by itself.
void JudgeCircles(const Job& AJob, Result& AResult);

}  // namespace platenest::detail
