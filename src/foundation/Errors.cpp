#include "platenest/foundation/Errors.h"

#include <utility>

namespace platenest {

TNestError::TNestError(std::string Text) : FText(std::move(Text)) {}
TNestError::~TNestError() = default;
TArgumentError::~TArgumentError() = default;
TRangeError::~TRangeError() = default;
TAssertionError::~TAssertionError() = default;

const char* TNestError::ClassName() const noexcept {
  return "TNestError";
}
const char* TArgumentError::ClassName() const noexcept {
  return "TArgumentError";
}
const char* TRangeError::ClassName() const noexcept {
  return "TRangeError";
}
const char* TAssertionError::ClassName() const noexcept {
  return "TAssertionError";
}

void NestAssert(bool Condition, std::string_view Text) {
  if (!Condition) throw TAssertionError(std::string(Text));
}

}  // namespace platenest
