#pragma once

#include "RunControl.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// Answers a job of kind Array with the smallest cell that passes the check: of the direction asked for, of all
// directions where it is free, and of rows and columns spaced by the part's box, which stand in where the search gives
// up. Stop and time limit are looked at between the searches; from then on copies spaced by the box and what was found
// before stand. Raises InputError where the search finds no vector in the direction asked for.
void AnswerArray(const Job& AJob, const TRunControl& Control, Result& AResult);

}  // namespace platenest::detail
