#pragma once

#include <functional>
#include <string>
#include <utility>

namespace platenest::detail {

// What failed on the way to an answer, kept in case nothing is found at all.
class TTrouble {
 public:
  // Runs what may fail; errors of the nesters and of memory are kept, those of the job pass through.
  void Try(const std::function<void()>& Step);
  void Note(std::string Fault) { FText = std::move(Fault); }
  // Raises what was kept, the lack of memory first; returns if there was nothing.
  void Raise() const;

 private:
  std::string FText;
  bool FLacksMemory = false;
};

}  // namespace platenest::detail
