#pragma once

#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "platenest/foundation/Export.h"

namespace platenest {

class TTimerBoard;

// A one-shot timer: calls its event once, from a thread of its own, when the time has run out.
// - Destroying it cancels: the destructor does not wait for the interval, only for an event that already runs; after it
//   no event runs any more. Destroyed by its own event it cannot wait for it: the event runs to its end on its thread,
//   and what it was created with stays alive until then.
// - A time of 0 or less, or NaN, is over at once; times above thirty years are cut there.
// - What the event raises goes to the warning channel as one line and no further.
// - Time runs on the system's monotonic clock, whatever a TClockScope says, but for timers that are created under a
//   TTimerScope.
class PLATENEST_API TEventTimer {
 public:
  TEventTimer(double Seconds, std::function<void()> Event);
  ~TEventTimer();
  TEventTimer(const TEventTimer&) = delete;
  TEventTimer& operator=(const TEventTimer&) = delete;

 private:
  TTimerBoard* FBoard;
  std::jthread FThread;  // not started under a board
};

// Holds timers whose time is moved by hand, for tests. All timers on one board share its time, which starts at 0 and
// never runs by itself; a timer starts no thread, its event runs on the thread that moves the time, and a timer of 0
// seconds fires while it is created. Usable from several threads at once; the board must outlive its timers.
class PLATENEST_API TTimerBoard {
 public:
  // Fires what is due, the earliest first, at equal times the older one. A time of 0 or less, or NaN, does nothing.
  void AdvanceSeconds(double Seconds);
  // Timers that have neither fired nor been destroyed.
  int Running() const;

  // For timers only.
  void Add(const TEventTimer* Timer, double Seconds, std::function<void()> Event);
  void Remove(const TEventTimer* Timer);

 private:
  struct TEntry {
    const TEventTimer* Timer;
    double Due;
    std::function<void()> Event;
  };
  bool FireOne();

  mutable std::recursive_mutex FLock;  // held while an event runs, so that destroying its timer elsewhere waits for it
  std::vector<TEntry> FEntries;        // oldest first
  double FNow = 0;
};

// The board of this thread, nullptr if timers run on real time.
PLATENEST_API TTimerBoard* CurrentTimerBoard() noexcept;

// Puts the timers that this thread creates on Board for the lifetime of the scope, nullptr for real time; scopes nest
// like brackets. Worker threads of a packing take over the board of the thread that started them.
class PLATENEST_API TTimerScope {
 public:
  explicit TTimerScope(TTimerBoard* Board) noexcept;
  ~TTimerScope();
  TTimerScope(const TTimerScope&) = delete;
  TTimerScope& operator=(const TTimerScope&) = delete;

 private:
  TTimerBoard* FFormer;
};

}  // namespace platenest
