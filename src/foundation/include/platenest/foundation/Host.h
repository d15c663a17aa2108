#pragma once

#include <functional>
#include <string_view>
#include <type_traits>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Types.h"

// What the library asks of, or tells, the world around it. Each door has a sink or source that a host or a test may
// replace; the scope objects put the former one back. Doors are process-wide and may be used from any thread, sinks
// must be ready for that. None of them throws.
namespace platenest {

// The host's hook: a command name and its text, e.g. ("CmdLogln", line). Without a sink nothing happens.
namespace AppSys {
PLATENEST_API void CallProc(std::string_view Name, std::string_view Text) noexcept;
}

// The warning channel: one line for the person who runs the host. It never fails and never stops the caller.
class TCerr {
 public:
  TCerr() = delete;
  static PLATENEST_API void W(std::string_view Message) noexcept;
  // Arguments as printf takes them: numbers and const char*.
  template <class Arg, class... Args>
  static void W(const char* Format, Arg First, Args... Rest) noexcept {
    static_assert((kIsPrintable<Arg> && ... && kIsPrintable<Args>), "numbers and const char* only");
    Print(Format, First, Rest...);
  }

 private:
  template <class T>
  static constexpr bool kIsPrintable = std::is_arithmetic_v<T> || std::is_convertible_v<T, const char*>;

  static PLATENEST_API void Print(const char* Format, ...) noexcept;
};

using THostProc = std::function<void(std::string_view Name, std::string_view Text)>;
using TWarningSink = std::function<void(std::string_view Line)>;
using TFreeMemorySource = std::function<Int64()>;

// Free physical memory in bytes: what the system has available, or what a replaced source says. 0 if it cannot be read.
PLATENEST_API Int64 FreePhysicalMemory() noexcept;

// Installs a sink or source for its own lifetime; scopes nest like brackets. A call that is under way on another thread
// when the scope ends may still finish in the sink.
class PLATENEST_API THostProcScope {
 public:
  explicit THostProcScope(THostProc Proc);
  ~THostProcScope();
  THostProcScope(const THostProcScope&) = delete;
  THostProcScope& operator=(const THostProcScope&) = delete;

 private:
  THostProc FFormer;
};

class PLATENEST_API TWarningScope {
 public:
  explicit TWarningScope(TWarningSink Sink);
  ~TWarningScope();
  TWarningScope(const TWarningScope&) = delete;
  TWarningScope& operator=(const TWarningScope&) = delete;

 private:
  TWarningSink FFormer;
};

// For this thread only.
class PLATENEST_API TFreeMemoryScope {
 public:
  explicit TFreeMemoryScope(TFreeMemorySource Source);
  ~TFreeMemoryScope();
  TFreeMemoryScope(const TFreeMemoryScope&) = delete;
  TFreeMemoryScope& operator=(const TFreeMemoryScope&) = delete;

 private:
  TFreeMemorySource FFormer;
};

}  // namespace platenest
