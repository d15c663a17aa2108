#pragma once

#include <functional>
#include <thread>

#include "platenest/foundation/Export.h"

namespace platenest {

// A one-shot timer: calls its event once, from a thread of its own, when the time has run out.
// - Destroying it cancels: the destructor does not wait for the interval, only for an event that already runs; after it
//   no event runs any more. Destroyed by its own event it cannot wait for it: the event runs to its end on its thread,
//   and what it was created with stays alive until then.
// - A time of 0 or less, or NaN, is over at once; times above thirty years are cut there.
// - What the event raises goes to the warning channel as one line and no further.
// - Time runs on the system's monotonic clock, whatever a TClockScope says.
class PLATENEST_API TEventTimer {
 public:
  TEventTimer(double Seconds, std::function<void()> Event);
  ~TEventTimer();
  TEventTimer(const TEventTimer&) = delete;
  TEventTimer& operator=(const TEventTimer&) = delete;

 private:
  std::jthread FThread;
};

}  // namespace platenest
