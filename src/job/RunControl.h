#pragma once

#include <atomic>
#include <optional>

#include "platenest/foundation/Clock.h"
#include "platenest/foundation/EventTimer.h"
#include "platenest/foundation/Host.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/job/Run.h"

namespace platenest::detail {

// Time and stop of one run: the deadline's watchdog, the run's stop token below the caller's, the memory cap and, in a
// deterministic run, a counted clock. Everything it sets on this thread is put back when it goes.
class TRunControl {
 public:
  TRunControl(const Options& AOptions, const RunHooks& Hooks);
  ~TRunControl();
  TRunControl(const TRunControl&) = delete;
  TRunControl& operator=(const TRunControl&) = delete;

  bool StoppedByCaller() const;
  const TStopToken* CallersToken() const { return FHooks.Stop; }
  bool OutOfTime() const { return FOutOfTime.load(std::memory_order_relaxed); }
  // Whether to begin nothing new: stopped, or past the limit by the run's clock, counted or not.
  bool IsOver();
  // Out of time from now on, ahead of the limit: what is left of it goes into writing the answer.
  void EndForTime() { FOutOfTime.store(true, std::memory_order_relaxed); }
  // Counts what is about to be done as this many milliseconds in a deterministic run, whose limit no watchdog keeps.
  // False, and out of time from now on, where it would pass the limit.
  bool Affords(double Ms);
  // How the run ends now, if it is to end.
  std::optional<ResultStatus> Interruption() const;
  double Seconds() const;
  // Tells the caller of an improvement; a refusal stops the run and is the last report.
  void Report(Progress Now);

 private:
  const RunHooks& FHooks;
  TStopToken FToken;
  std::atomic<bool> FOutOfTime{false};
  std::atomic<bool> FRefused{false};
  double FStart;    // real milliseconds, whatever the run's clock is
  double FLimitMs;  // 0 for none
  TStopTokenScope FTokenScope;
  TFreeMemoryScope FMemoryScope;
  std::optional<TClockScope> FClockScope;
  double FClockStart;     // milliseconds of the run's clock
  double FCountedMs = 0;  // beside the looks at the clock
  std::optional<TEventTimer> FDeadline;
};

// Makes a status of a search that ended with less than all, and its reasons, tell what ended it.
void NoteInterruption(const TRunControl& Control, Result& AResult);

}  // namespace platenest::detail
