#pragma once

#include "RunControl.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// Answers a job of kind Fill by the ways behind its method, in fixed order: the answer worth most stands, of equals the
// first. Ends early where a bound is met. A way that fails, or whose answer fails the check, is passed over. Raises
// StoppedError where the run was stopped before any copy was placed, CheckError where no answer passed the check.
void AnswerFill(const Job& AJob, TRunControl& Control, Result& AResult);

}  // namespace platenest::detail
