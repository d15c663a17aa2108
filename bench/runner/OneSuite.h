#pragma once

#include <string>
#include <vector>

#include "Arguments.h"
#include "Report.h"

namespace platenest::bench {

// Every job of a pallet file (rows of plate, part, best known, bound, five) by one nester. The figure `five` is the
// count that recursive five-block cuts are known to reach.
std::vector<TRow> RunOneSuite(const TArguments& Arguments);

}  // namespace platenest::bench
