#pragma once

#include <string>

#include "CommandTable.h"

namespace platenest {

std::string OverviewHelp();           // the commands, the exit codes, the placement convention
std::string CommandHelp(Command Id);  // what it does, its options, two examples, the placement convention

}  // namespace platenest
