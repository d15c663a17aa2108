#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "Assembly.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"
#include "platenest/layoutcheck/PlacedBox.h"

// What may be said about an answer to a job of kind Circles. run() states it and CheckResult() compares.
namespace platenest::detail {

// BoundsOfCircles of the job, in the order in which a result lists them.
std::vector<Bound> CircleBoundsOf(const Job& AJob);

// A bound that the answer is better than, by more than rounding explains; none for a true one. Bounds on plates and
// cost speak of answers that place all copies asked for by number of parts that fit some plate. Looks at the sums of
// the result and at the counts of its parts.
const Bound* BeatenCircleBound(const Job& AJob, const Result& AResult, std::span<const Bound> Bounds);

// The checker's verdict on the circles of a layout, empty if it is valid: plate less margin, gap, known parts of right
// radius.
std::string CheckCircleLayout(const TPartIds& Ids, const Layout& ALayout, double Gap,
                              const std::array<double, 4>& Margin);

// What is wrong with the layouts as one English sentence; empty if all pass the checker, keep amounts and stock and
// beat no bound. Cost: linear in the circles, but for a logarithm.
std::string CircleFault(const Job& AJob, const std::vector<Layout>& Layouts, const std::vector<Bound>& Bounds);

// The boxes around the circles of a layout.
std::vector<TPlacedBox> CircleBoxesOf(const Layout& ALayout);

// What can be measured on the circles of a layout: usage by their true areas, used box, clearance, edge-to-edge, which
// is exact on the circles' boxes, and the largest free rectangle that keeps the gap to these boxes, whose corners a
// circle leaves free.
void MeasureCirclesInto(Layout& ALayout, double Gap, const std::array<double, 4>& Margin);

// Proved, status and reasons from bounds, layouts with their free boxes, and counts, for a search that ended by itself.
//   Complete: all copies asked for by number are placed, and no copy of a part without limit fits a plate left in stock
//   or the largest free rectangle of a layout.
//   Proved: no answer places more, or as much at less cost. Either all copies asked for by number of parts that fit
//   some plate are placed, no part without limit fits, and a bound on the cost is met, on the plates where all cost the
//   same; or the bound on the count that the stock holds is met. Reasons: too_large, no_stock where all plates of the
//   kinds that hold the part are used up, else left_by_method.
void JudgeCircles(const Job& AJob, Result& AResult);

}  // namespace platenest::detail
