#pragma once

#include "RunControl.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// Answers a job of kind Circles. A quick answer comes first: patterns for circles of one size, a fill of each plate to
// one side for several, or both. Corner placement with look-ahead then fills plate by plate, in several orders of kinds
// and shares of the demand, until time, a met bound or a fixed effort ends it; the method pattern leaves it out, the
// method pack the patterns. The best checked answer stands: least unplaced area, most area of copies without limit,
// least cost, fewest plates, emptiest last plate. Raises StoppedError where the run was stopped before any, CheckError
// where none passed the check.
void AnswerCircles(const Job& AJob, TRunControl& Control, Result& AResult);

}  // namespace platenest::detail
