#pragma once

#include <string>

#include "Arguments.h"
#include "platenest/NfpAlgorithmSet/NfpStatistics.h"
#include "platenest/NfpAlgorithmSet/NfpTypes.h"
#include "platenest/foundation/Polyline.h"

namespace platenest::bench {

// One request to the calculator: the moving part around a fixed one, or in a plate.
struct TNfpRequest {
  TVHPolygon Moving;
  TVHPolygon Fixed;
  bool Inside = false;
  TNFPType Required = ntComplete;
};

struct TNfpAnswer {
  TPaths Paths;
  TNFPType Quality = ntNone;
  double Ms = 0;  // median of the repetitions
  TNfpStatistics Statistics;
  std::string Error;  // what was raised
};

// The ceiling of all requests is lifted to ntExact for the call.
TNfpAnswer Ask(const TNfpRequest& Request, int Repeat = 1);

// 0: without a fallback. 1 to 5: the highest rung that gave a result. -1: a convolution gave up, see Ladder.
int RungOf(const TNfpStatistics& Statistics);
// 0, or the highest step of the ladder for outer pairs that gave up.
int LadderOf(const TNfpStatistics& Statistics);

enum class TNfpFault {
  None,
  Error,    // raised
  Overlap,  // allows overlap, deeper than cleaning may
  Shallow,  // differs at a sampled place by more than the band, but by no more than cleaning of parts and results may
  Lost,     // forbids free places: sampled ones, or more than the share of the area
  Refused,  // an empty inner-fit region although the part fits
  Crash,
  Hang,
};
inline constexpr int kNfpFaultCount = 8;

const char* NameOf(TNfpFault Fault);
// Cleaning is by rule: what it may have done is told, but no failure.
constexpr bool IsFailure(TNfpFault Fault) {
  return Fault != TNfpFault::None && Fault != TNfpFault::Shallow;
}

struct TNfpVerdict {
  TNfpFault Fault = TNfpFault::None;
  std::string Text;
  bool AreaCompared = false;
  double Relative = 0;  // what the regions do not share, against the exact area
};

// Compares with the exact region by sampling and by area; results below ntComplete on the safe side only. The area
// is left out where its exact computation would take too long.
TNfpVerdict Judge(const TNfpRequest& Request, const TNfpAnswer& Answer, TOracle Oracle, unsigned Seed);

Int64 EdgesOf(const TVHPolygon& Part);

}  // namespace platenest::bench
