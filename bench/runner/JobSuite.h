#pragma once

#include <vector>

#include "Arguments.h"
#include "Report.h"

namespace platenest::bench {

// Whole jobs for fewest plates of a file through the facade. Every answer passes the facade's checker and the judge of
// the tests, and none may need fewer plates than proven. Prints a line for each job and the sums of each group: plates,
// best known, and the bounds for all layouts and for those that straight cuts can part.
std::vector<TRow> RunJobSuite(const TArguments& Arguments);

}  // namespace platenest::bench
