#pragma once

#include <string>
#include <vector>

#include "Arguments.h"
#include "Report.h"

namespace platenest::bench {

// Ordered pairs of the parts of each instance at every quality, those at ntComplete judged by the oracle; with Inside
// also every part in its strip, or in every plate that the instance has. One row per instance and quality: Result
// counts the requests without fault and delivered as asked, Best and Bound all requests. Prints tables and faults.
std::vector<TRow> RunNfpSuite(const TArguments& Arguments);

}  // namespace platenest::bench
