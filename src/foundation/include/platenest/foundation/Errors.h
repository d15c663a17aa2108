#pragma once

#include <exception>
#include <string>
#include <string_view>

#include "platenest/foundation/Export.h"

namespace platenest {

// Base of everything this library raises. The text is UTF-8, in English or Chinese.
class PLATENEST_API TNestError : public std::exception {
 public:
  explicit TNestError(std::string Text);
  ~TNestError() override;
  const char* what() const noexcept override { return FText.c_str(); }
  const std::string& Text() const noexcept { return FText; }
  virtual const char* ClassName() const noexcept;

 private:
  std::string FText;
};

// An argument that no reading of the operation allows: not finite, negative where a size is meant.
class PLATENEST_API TArgumentError : public TNestError {
 public:
  using TNestError::TNestError;
  ~TArgumentError() override;
  const char* ClassName() const noexcept override;
};

// An index outside its list, or a number that does not fit the integer type it must become.
class PLATENEST_API TRangeError : public TNestError {
 public:
  using TNestError::TNestError;
  ~TRangeError() override;
  const char* ClassName() const noexcept override;
};

// A broken invariant of the library itself.
class PLATENEST_API TAssertionError : public TNestError {
 public:
  using TNestError::TNestError;
  ~TAssertionError() override;
  const char* ClassName() const noexcept override;
};

// Throws TAssertionError when Condition is false, in every build type.
PLATENEST_API void NestAssert(bool Condition, std::string_view Text = "Assertion failure");

}  // namespace platenest

// A check for debug builds only, on hot paths where NestAssert would cost.
#ifdef NDEBUG
#define PLATENEST_DCHECK(Condition) static_cast<void>(0)
#else
#define PLATENEST_DCHECK(Condition) ::platenest::NestAssert((Condition), "Check failed: " #Condition)
#endif
