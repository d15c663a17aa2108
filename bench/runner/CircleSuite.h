#pragma once

#include <vector>

#include "Arguments.h"
#include "Report.h"

namespace platenest::bench {

// The parts of the suite that the arguments name, all of them where none is named:
//   counts   closed-form patterns of equal circles on the plates of a table, against the counts known and proven;
//   strips   all circles into a strip, by greedy under bisection and by bottom-left fill, against the shortest known;
//   area     the facade on plates where all circles are known to fit;
//   times    patterns, greedy passes, threads and how far a budget is overrun.
// Every layout passes the checker. Prints a line for each instance and one of sums for each part. Results of strips are
// percents of the best known, so that more is better everywhere.
std::vector<TRow> RunCircleSuite(const TArguments& Arguments);

std::vector<TRow> RunCircleStrips(const TArguments& Arguments);
std::vector<TRow> RunCircleTimes(const TArguments& Arguments);

}  // namespace platenest::bench
