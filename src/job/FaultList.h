#pragma once

#include <functional>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "platenest/job/JobErrors.h"

namespace platenest::detail {

// Gathers the faults of one reading, at most one about each place. Limits are kept apart: they come last, and alone
// they make another kind of error.
class FaultList {
 public:
  void AddInput(std::string_view Code, std::string Place, std::string Text);
  void AddLimit(std::string Place, std::string Text);
  // The object at Place lacks a member. Later faults about this member are dropped.
  void AddMissing(const std::string& Place, std::string_view Member);

  // True if a fault about Place or something around it is known, so that its value says nothing.
  bool Knows(std::string_view Place) const;
  // True when one run reports no more.
  bool Full() const { return FInput.size() >= JobError::kMaxFaults; }

  // Puts other places into the faults so far.
  void Rename(const std::function<std::string(const std::string&)>& NewPlace);

  // Raises InputError or LimitError if there is a fault.
  void Raise() const;

 private:
  void Add(std::vector<Fault>& List, std::string_view Code, std::string Place, std::string Text, std::string About);

  std::vector<Fault> FInput;
  std::vector<Fault> FLimits;
  std::vector<std::string> FKnown;
};

// Runs Read and turns want of memory into a MemoryError.
template <class Function>
auto WithMemoryError(Function Read) {
  try {
    return Read();
  } catch (const std::bad_alloc&) {
    throw MemoryError(Fault{"memory", "", "there is not enough memory for this input", ""});
  }
}

}  // namespace platenest::detail
