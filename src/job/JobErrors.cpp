#include "platenest/job/JobErrors.h"

#include <utility>

#include "Texts.h"

namespace platenest {

namespace {

std::string Headline(const std::vector<Fault>& Faults) {
  if (Faults.empty()) return "unknown fault";
  const Fault& first = Faults.front();
  return first.Place.empty() ? first.Text : detail::Joined(first.Place, ": ", first.Text);
}

std::vector<Fault> FirstOnes(std::vector<Fault> Faults) {
  if (Faults.size() > JobError::kMaxFaults) Faults.resize(JobError::kMaxFaults);
  return Faults;
}

}  // namespace

JobError::JobError(std::vector<Fault> Faults) : TNestError(Headline(Faults)), FFaults(FirstOnes(std::move(Faults))) {}
JobError::JobError(Fault Single) : JobError(std::vector<Fault>{std::move(Single)}) {}

JobError::~JobError() = default;
InputError::~InputError() = default;
LimitError::~LimitError() = default;
FileError::~FileError() = default;
MemoryError::~MemoryError() = default;
StoppedError::~StoppedError() = default;
CheckError::~CheckError() = default;

const char* JobError::ClassName() const noexcept {
  return "JobError";
}
const char* InputError::ClassName() const noexcept {
  return "InputError";
}
const char* LimitError::ClassName() const noexcept {
  return "LimitError";
}
const char* FileError::ClassName() const noexcept {
  return "FileError";
}
const char* MemoryError::ClassName() const noexcept {
  return "MemoryError";
}
const char* StoppedError::ClassName() const noexcept {
  return "StoppedError";
}
const char* CheckError::ClassName() const noexcept {
  return "CheckError";
}

}  // namespace platenest
