#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platenest/foundation/Host.h"

namespace platenest {

// Keeps what one thread of the library tells the host, for its own lifetime.
class THostCapture {
 public:
  using TCall = std::pair<std::string, std::string>;  // name and text

  const std::vector<TCall>& Calls() const { return FCalls; }
  const std::vector<std::string>& Warnings() const { return FWarnings; }

 private:
  std::vector<TCall> FCalls;
  std::vector<std::string> FWarnings;
  THostProcScope FProc{[this](std::string_view Name, std::string_view Text) { FCalls.emplace_back(Name, Text); }};
  TWarningScope FSink{[this](std::string_view Line) { FWarnings.emplace_back(Line); }};
};

}  // namespace platenest
