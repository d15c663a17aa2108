#pragma once

#include "RunControl.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// Answers the pairs of a job of kind Nfp one after the other. Stop and time limit are looked at between two pairs; the
// one under way is finished. Each answer has passed the check. A lower quality stands in where one fails it.
void AnswerPairs(const Job& AJob, TRunControl& Control, Result& AResult);

}  // namespace platenest::detail
