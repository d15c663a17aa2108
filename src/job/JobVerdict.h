#pragma once

#include <span>
#include <string>
#include <vector>

#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

// What may be said about an answer to a job of kind Job. run() states it and CheckResult() compares.
namespace platenest::detail {

// BoundsOfSizes of the job, in the order in which a result lists them.
std::vector<Bound> JobBoundsOf(const Job& AJob);

// A bound that the answer is better than, by more than rounding explains; none for a true one. Bounds on plates and
// cost speak of answers that place all copies asked for by number of parts that fit some plate. Looks at the sums of
// the result and at the counts of its parts.
const Bound* BeatenBound(const Job& AJob, const Result& AResult, std::span<const Bound> Bounds);

// What is wrong with the layouts as one English sentence; empty if all pass the checker, keep amounts, stock and
// turning locks and beat no bound. Cost: linear in the placements, but for a logarithm.
std::string JobFault(const Job& AJob, const std::vector<Layout>& Layouts, const std::vector<Bound>& Bounds);

// What is wrong with the plate of a layout, and with counts of copies and plates; empty if nothing.
std::string PlateFault(const Job& AJob, const Layout& ALayout);
std::string CountFault(const Result& AResult);

// Proved, status and reasons from bounds, layouts with their free boxes, and counts, for a search that ended by itself.
//   Complete: all copies asked for by number are placed, and no copy of a part without limit fits a plate left in stock
//   or the largest free rectangle of a layout.
//   Proved: no answer places more, or as much at less cost. Either all copies asked for by number of parts that fit
//   some plate are placed, no part without limit fits, and a bound on the cost is met, on the plates where all cost the
//   same; or the bound on area is met by copies that leave nothing of the whole stock free. Reasons: too_large,
//   no_stock where all plates of the kinds that hold the part are used up, else left_by_method.
void JudgeJob(const Job& AJob, Result& AResult);

}  // namespace platenest::detail
