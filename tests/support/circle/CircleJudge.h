#pragma once

#include <string>

#include "JobCase.h"
#include "JobJudge.h"
#include "platenest/job/Result.h"

// Judges answers to jobs of circles by arithmetic of its own: nothing is taken from the facade's checker.
namespace platenest::test {

// What is wrong with an answer as one sentence, empty if nothing: every circle of the size asked for, within its plate
// less margin and clear of the others; each copy asked for placed or unplaced, none twice; no more plates than in
// stock; a summary and measures that follow from the placements; no bound beaten; reasons, status and proof that the
// numbers bear out. A circle that is left although an unused plate holds it is a fault of a search that ended by
// itself, and so is one size that takes more plates, or leaves more circles, than rows laid one by one do.
std::string CircleFault(const Job& AJob, const Result& AResult);

// The same, and no bound may rule the sample out.
std::string CircleFault(const TJobCase& Case, const Result& AResult);

}  // namespace platenest::test
