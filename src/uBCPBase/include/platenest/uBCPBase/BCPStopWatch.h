#pragma once

#include "platenest/foundation/Clock.h"

namespace platenest {

// A stopwatch with a limit. It runs on the replaceable clock of its thread; copies run on from where they were taken.
class TBCPStopWatch {
 public:
  // ATimeLimit in seconds; 0, below 0 and NaN mean none. The watch is stopped.
  explicit TBCPStopWatch(double ATimeLimit) : FTimeLimit(ATimeLimit * 1000.0) {}

  void Start() { FSW.Start(); }
  void Stop() { FSW.Stop(); }
  void Reset() { FSW.Reset(); }
  bool IsRunning() const { return FSW.IsRunning(); }
  // From 0 again, running, under the same limit.
  void StartNew() { FSW = TStopwatch::StartNew(); }

  // The limit has passed on a running watch. Never true without a limit or while the watch stands.
  bool TimeOver() const { return FTimeLimit > 0 && FSW.IsRunning() && FSW.ElapsedMs() > FTimeLimit; }

 private:
  TStopwatch FSW;
  double FTimeLimit;  // ms
};

}  // namespace platenest
