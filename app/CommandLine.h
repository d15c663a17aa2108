#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CommandTable.h"
#include "platenest/job/JobErrors.h"

namespace platenest {

// Wrong options; exit status 2. The place of a fault is the option's name.
class OptionError : public JobError {
 public:
  using JobError::JobError;
  const char* ClassName() const noexcept override { return "OptionError"; }
};

// The words of the command line, sorted but not yet understood.
struct CommandLine {
  std::optional<Command> Id;  // nothing: the program's own help or version was asked for
  bool Help = false;
  bool Version = false;
  std::vector<std::string> Positionals;
  std::map<std::string_view, std::string> Values;  // by option name; a flag has an empty value
};

// Raises OptionError for an unknown command or option, a missing value, an option given twice, and a wrong number of
// files. A word behind "--" is never an option.
CommandLine ParseCommandLine(const std::vector<std::string>& Words);

}  // namespace platenest
