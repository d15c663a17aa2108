#pragma once

#include <functional>

#include "NfpCase.h"

namespace platenest::bench {

// What a case hands from its process to the campaign: plain bytes.
struct TCaseRecord {
  TNfpFault Fault = TNfpFault::None;
  TNFPType Quality = ntNone;
  int Rung = 0;
  int Ladder = 0;
  int Retries = 0;
  int TrailHits = 0;
  bool Found = false;
  double Ms = 0;
  char Text[200] = {};
};

TCaseRecord RecordOf(const TNfpAnswer& Answer, const TNfpVerdict& Verdict);

// Runs the work in a process of its own, so that a crash or a hang is counted and not suffered. A record that never
// came tells TNfpFault::Crash or, after that many seconds, TNfpFault::Hang.
TCaseRecord RunIsolated(const std::function<TCaseRecord()>& Work, unsigned Seconds);

}  // namespace platenest::bench
