#pragma once

#include <string>

#include "platenest/job/Result.h"

namespace platenest {

// Copies of parts with a limit that found no place.
Int64 UnplacedCopies(const Result& AResult);

// What a person wants to know first, in at most nine lines; one more says where the files went.
std::string SummaryText(const Result& AResult);

}  // namespace platenest
