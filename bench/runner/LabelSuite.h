#pragma once

#include <vector>

#include "Arguments.h"
#include "Report.h"

namespace platenest::bench {

// A label of an eighth of the extent in every part of the instances, without inner lines and with one from the lower
// left corner of the part's box to its centre. One row per instance and kind; Result is the mean share of the margin in
// the best one of the same orientation, Best and Bound 1; parts where no label of any margin fits are left out of it.
// Times are CPU times. Every place is judged by clipping the label, grown by its margin, with what surrounds the part
// and with the lines. Prints a table and the faults.
std::vector<TRow> RunLabelSuite(const TArguments& Arguments);

}  // namespace platenest::bench
