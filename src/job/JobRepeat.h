#pragma once

#include "JobSearch.h"
#include "JobTrials.h"

// A plate is filled with what is left, the layout repeated as often as demand and stock allow, and so on.
namespace platenest::detail {

// The first answer, whatever the time limit is; only the caller's stop ends it early. Rows for great jobs.
void RepeatQuickly(TJobSearch& Search, TSkyTrials& Trials);

// The same with the nesters of many sizes, the best of them on each plate, within a share of the time that is left.
// Several orders of the kinds of plates.
void RepeatNested(TJobSearch& Search, TSkyTrials& Trials, double Share);

}  // namespace platenest::detail
