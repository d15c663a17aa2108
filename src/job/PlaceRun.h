#pragma once

#include "RunControl.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

// Answers about a place on one part. Each has passed the check; no place is an answer too.
namespace platenest::detail {

// Upright first, then turned; a turned label never displaces an upright one that fits. Where the search ends without an
// answer there is no place and a warning says so. Raises InputError where the core cannot work with the lines. Stop and
// time limit are looked at before each search; a run that ends there without a place says so by its status, and one
// that was stopped raises StoppedError.
void AnswerLabel(const Job& AJob, const TRunControl& Control, Result& AResult);
void AnswerSucker(const Job& AJob, const TRunControl& Control, Result& AResult);

}  // namespace platenest::detail
