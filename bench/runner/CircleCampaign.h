#pragma once

#include <vector>

#include "Arguments.h"
#include "Report.h"

namespace platenest::bench {

// Random lists of circles through the packer itself, on plates anywhere, with sizes that fit nowhere and amounts of 0
// among them: under a limit of steps on one thread and on four, which must give one answer, and with a budget that is
// over at once. Every packing passes the checker at 1e-5, and its occupancy is that of its circles.
std::vector<TRow> RunCircleCampaign(const TArguments& Arguments);

}  // namespace platenest::bench
