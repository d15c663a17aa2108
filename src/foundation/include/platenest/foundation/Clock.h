#pragma once

#include <functional>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Types.h"

// Time for limits and statistics. All of it runs on one monotonic source that a test or a deterministic run may
// replace.
namespace platenest {

namespace Clock {
// Milliseconds since an arbitrary start; never runs backward.
PLATENEST_API double NowMs();
}  // namespace Clock

using TClockSource = std::function<double()>;

// Replaces the source of this thread for its own lifetime; scopes nest like brackets. Other threads keep theirs.
class PLATENEST_API TClockScope {
 public:
  explicit TClockScope(TClockSource Source);
  ~TClockScope();
  TClockScope(const TClockScope&) = delete;
  TClockScope& operator=(const TClockScope&) = delete;

 private:
  TClockSource FFormer;
};

// Starts stopped at 0. Elapsed time is the sum of all started spans.
class PLATENEST_API TStopwatch {
 public:
  static TStopwatch StartNew();
  void Start();  // no effect when running
  void Stop();   // no effect when stopped
  void Reset();  // stopped at 0
  bool IsRunning() const { return FRunning; }
  double ElapsedMs() const;

 private:
  double FElapsed = 0;
  double FStart = 0;
  bool FRunning = false;
};

}  // namespace platenest
