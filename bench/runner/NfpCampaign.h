#pragma once

#include <vector>

#include "Arguments.h"
#include "Report.h"

namespace platenest::bench {

// Random cases, one per seed from Arguments.Seed on, each in a process of its own; all faults are printed with their
// seed. Suite nfp-random: pairs of any two kinds. nfp-inside: parts in plates of every kind. nfp-jigsaw: parts in a
// hole of their own form, exact and grown, asked for around the plate with the hole and within the hole as a cavity.
std::vector<TRow> RunNfpCampaign(const TArguments& Arguments);

// Every piece of a perfect layout in the hole that the others leave in their square, exact and grown.
std::vector<TRow> RunLayoutCampaign(const TArguments& Arguments);

}  // namespace platenest::bench
