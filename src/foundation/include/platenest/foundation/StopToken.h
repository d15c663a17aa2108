#pragma once

#include <atomic>

#include "platenest/foundation/Export.h"

// Stop requests come from two sides: process-wide flags that belong to the host, and the token of one run. Loops of the
// library poll both where they poll at all; a relaxed read may lag a moment behind, which only delays the stop.
namespace platenest {

// Set once, from any thread or from a signal handler; never reset while a run may poll it. A token may stand below
// another one, which must outlive it, and then counts as set as soon as either is.
class TStopToken {
 public:
  explicit TStopToken(const TStopToken* Parent = nullptr) noexcept : FParent(Parent) {}
  void RequestStop() noexcept { FStop.store(true, std::memory_order_relaxed); }
  bool StopRequested() const noexcept {
    return FStop.load(std::memory_order_relaxed) || (FParent != nullptr && FParent->StopRequested());
  }

 private:
  const TStopToken* FParent;
  std::atomic<bool> FStop{false};
};

// The token of the run on this thread, nullptr if there is none. Worker threads of a run set the same one.
PLATENEST_API const TStopToken* CurrentStopToken() noexcept;

// Makes Token the one of this thread for the lifetime of the scope. The caller owns the token, which must outlive it.
class PLATENEST_API TStopTokenScope {
 public:
  explicit TStopTokenScope(const TStopToken* Token) noexcept;
  ~TStopTokenScope();
  TStopTokenScope(const TStopTokenScope&) = delete;
  TStopTokenScope& operator=(const TStopTokenScope&) = delete;

 private:
  const TStopToken* FFormer;
};

// True when the run on this thread was asked to stop.
inline bool RunStopRequested() noexcept {
  const TStopToken* token = CurrentStopToken();
  return token != nullptr && token->StopRequested();
}

}  // namespace platenest
