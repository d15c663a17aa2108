#pragma once

#include "RunControl.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// FRAME: answers a job of kind Circles; methods auto, pattern, pack.
void AnswerCircles(const Job& AJob, TRunControl& Control, Result& AResult);

}  // namespace platenest::detail
