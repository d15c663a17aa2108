#pragma once

#include "platenest/foundation/Types.h"

// A limit of work that counts tried positions instead of time, so that an answer does not depend on the machine.
namespace platenest::detail {

// Tried positions that the work on this thread may still spend; below 0 once they are spent, nullptr without a limit.
inline thread_local Int64* stepsLeft = nullptr;

// Gives this thread a budget of its own for the lifetime of the scope; scopes nest like brackets. 0: no limit.
class TStepScope {
 public:
  explicit TStepScope(Int64 Limit) noexcept : FLeft(Limit), FFormer(stepsLeft) {
    stepsLeft = Limit > 0 ? &FLeft : nullptr;
  }
  ~TStepScope() { stepsLeft = FFormer; }
  TStepScope(const TStepScope&) = delete;
  TStepScope& operator=(const TStepScope&) = delete;

 private:
  Int64 FLeft;
  Int64* FFormer;
};

inline void SpendSteps(Int64 Tried) noexcept {
  if (stepsLeft != nullptr) *stepsLeft -= Tried;
}

inline bool StepsSpent() noexcept {
  return stepsLeft != nullptr && *stepsLeft <= 0;
}

}  // namespace platenest::detail
