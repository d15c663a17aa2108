#pragma once

#include <array>
#include <atomic>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Types.h"

namespace platenest {

// Whether outer convolutions of moderate size are checked against the union of all their closed trails. On from the
// start; without it the searched circuits alone decide.
inline PLATENEST_API std::atomic<bool> NfpTrailCheckEnabled{true};

// What the no-fit polygon kernel has done on this thread. Counters only; nothing depends on them. A host sets them back
// by assigning {}.
struct TNfpStatistics {
  Int64 Convolutions = 0;
  Int64 Chips = 0;                // laid, those of dropped attempts included
  Int64 Circuits = 0;             // found, likewise
  Int64 Retries = 0;              // on lighter loops because a search was too heavy
  std::array<Int64, 6> Rungs{};   // results accepted: [0] without a fallback, [1] to [5] on that rung
  Int64 Failures = 0;             // convolutions that gave up
  Int64 Recollected = 0;          // chip lists laid again with strict tests since the first one did not close
  Int64 TrailChecks = 0;          // convolutions whose closed trails were united
  Int64 TrailHits = 0;            // those where the trails' polygon took the place of the circuits' one
  std::array<Int64, 5> Ladder{};  // outer pairs that gave up at first: [1] to [4] the step that gave the answer
};
inline thread_local TNfpStatistics NfpStatistics;

}  // namespace platenest
