#pragma once

#include <string>

#include "platenest/foundation/Paths.h"
#include "platenest/job/Job.h"

namespace platenest::detail {

// The checker's verdict on one answer of the stated quality, empty if it is right. Reduced qualities may lose places.
std::string PairVerdict(const Job& AJob, int Fixed, int Moving, const TPaths& Paths, NfpQuality Quality);

}  // namespace platenest::detail
