#pragma once

#include <vector>

#include "JobSearch.h"
#include "JobTrials.h"

// Improves whole answers by many quick fills of single plates. All chance comes from the generator of this thread.
namespace platenest::detail {

// Sequential value correction (Belov and Scheithauer 2007) and exchange between plates in turn. A cycle builds Rounds
// answers from nothing, after each of which the worth of parts grows that lie on badly used plates; then takes two or
// three plates of an answer again and again and fills them anew with their parts and with what is unplaced, which is
// kept where it saves a plate or cost or makes the fuller plates fuller. Ends after Cycles, when the search is over, or
// when the time share of this thread is.
// The answers of the rounds are added to Built unless that is null.
void ImproveInCycles(TJobSearch& Search, TSkyTrials& Trials, int Cycles, std::vector<TJobLayouts>* Built);

}  // namespace platenest::detail
