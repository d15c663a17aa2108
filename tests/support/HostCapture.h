#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platenest/foundation/Host.h"

namespace platenest {

// Keeps what the library tells the host, from any thread, for its own lifetime.
class THostCapture {
 public:
  struct TCall {
    std::string Name;
    std::string Text;

    friend bool operator==(const TCall&, const TCall&) = default;
  };

  std::vector<TCall> Calls() const {
    const std::lock_guard lock(FMutex);
    return FCalls;
  }
  std::vector<std::string> Warnings() const {
    const std::lock_guard lock(FMutex);
    return FWarnings;
  }

 private:
  mutable std::mutex FMutex;
  std::vector<TCall> FCalls;
  std::vector<std::string> FWarnings;
  THostProcScope FProc{[this](std::string_view Name, std::string_view Text) {
    const std::lock_guard lock(FMutex);
    FCalls.push_back({std::string(Name), std::string(Text)});
  }};
  TWarningScope FSink{[this](std::string_view Line) {
    const std::lock_guard lock(FMutex);
    FWarnings.emplace_back(Line);
  }};
};

}  // namespace platenest
