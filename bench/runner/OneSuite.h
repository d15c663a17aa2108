#pragma once

#include <string>
#include <vector>

#include "Report.h"

namespace platenest::bench {

// Every job of a pallet file (rows of plate, part, best known, bound) by the single-size strip nest.
std::vector<TRow> RunOneSuite(const std::string& File, int Repeat, int MostRows);

}  // namespace platenest::bench
