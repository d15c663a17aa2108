#pragma once

#include <vector>

#include "Arguments.h"
#include "Report.h"

namespace platenest::bench {

// The lattices of every part of the instances: free, along one axis, along both. One row per instance; Result is the
// mean density of the free lattices, Best that of the lattices of a plain search, Bound 1. Times are CPU times of one
// call with the no-fit polygon given. Every lattice, also those of turned and mirrored copies and of prescribed
// directions, is judged by clipping its copies from -3 to 3; prints a table and the faults.
std::vector<TRow> RunArraySuite(const TArguments& Arguments);

}  // namespace platenest::bench
