#pragma once

#include "Arguments.h"
#include "Messages.h"
#include "Program.h"

namespace platenest {

// Does what the arguments ask for and returns the exit code of success, 0 or 1. Every failure is raised: JobError kinds
// or std::bad_alloc.
int RunCommand(const Arguments& Args, Messages& Out, const Runner& Run);

}  // namespace platenest
