#pragma once

#include "RunControl.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// FRAME. Answers a job of kind Job: repeat, then strip values, then column generation until the time limit, for the
// method auto; the best checked answer stands.
void RequireJobMethod(const Job& AJob);
void AnswerJob(const Job& AJob, TRunControl& Control, Result& AResult);

}  // namespace platenest::detail
