#pragma once

#include "RunControl.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// Refuses with InputError the methods that turn parts freely where some part must not turn and is no square.
void RequireJobMethod(const Job& AJob);

// Answers a job of kind Job. A quick answer by repeated layouts comes first, whatever the time limit is, and stands in
// for a named method that finds none or none better, which makes a warning. The method auto goes on with the nesters on
// repeated plates, rounds over quick fills, strip values, column generation from all layouts found so far, and rounds
// again until time, a met bound or a fixed count ends them; where parts must not turn, without the two in the middle.
// The best checked answer stands: least unplaced area, most area of copies without limit, least cost, fewest plates,
// emptiest last plate. Raises StoppedError where the run was stopped before any, CheckError where none passed the
// check.
void AnswerJob(const Job& AJob, TRunControl& Control, Result& AResult);

}  // namespace platenest::detail
