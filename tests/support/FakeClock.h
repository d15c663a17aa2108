#pragma once

#include "platenest/foundation/Clock.h"

namespace platenest {

// The clock of this thread, moved by hand, for its own lifetime.
class TFakeClock {
 public:
  void AdvanceMs(double Ms) { FNowMs += Ms; }
  // From now on each reading moves it as well: time for code that polls the clock and does not return in between.
  void AdvanceAtEachReading(double Ms) { FStepMs = Ms; }

 private:
  double FNowMs = 0;
  double FStepMs = 0;
  TClockScope FScope{[this] { return FNowMs += FStepMs; }};
};

}  // namespace platenest
