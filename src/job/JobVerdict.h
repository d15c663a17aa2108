#pragma once

#include <string>
#include <vector>

#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

// FRAME. What may be said about an answer to a job of kind Job. run() states it and CheckResult() compares.
namespace platenest::detail {

// In the order in which a result lists them: least plates and least cost that all demand which fits some plate can
// need (kind "area": parts and plates grown by the gap), and "stock" where the stock is what binds.
std::vector<Bound> JobBoundsOf(const Job& AJob);

// What is wrong with the layouts as one English sentence; empty if all pass the checker, keep amounts, stock and
// turning locks and beat no bound.
std::string JobFault(const Job& AJob, const std::vector<Layout>& Layouts, const std::vector<Bound>& Bounds);

// Proved, status and reasons from bounds, layouts and counts, for a search that ended by itself.
void JudgeJob(const Job& AJob, Result& AResult);

}  // namespace platenest::detail
