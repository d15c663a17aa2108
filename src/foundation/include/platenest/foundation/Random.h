#pragma once

#include <array>
#include <cstdint>

#include "platenest/foundation/Export.h"

// Random integers from a generator of our own, so that equal seeds give equal numbers on every machine: xoshiro256**
// (Blackman and Vigna 2021), seeded through SplitMix64 (Steele, Lea and Flood 2014). Every thread has its generator;
// all start from one fixed seed until SetSeed or Randomize. Not for secrets.
namespace platenest {

// Uniform in [0, Count), without bias (Lemire 2019). Count of 1 or less gives 0.
PLATENEST_API int Random(int Count);

// Restarts the generator of this thread; equal seeds give equal sequences.
PLATENEST_API void SetSeed(std::uint64_t Seed);

// Seeds the generator of this thread from the clock; calls within one tick still get different seeds, on any thread.
PLATENEST_API void Randomize();

using TRandomState = std::array<std::uint64_t, 4>;

// Puts the generator of this thread back to where it was, on every way out; scopes nest like brackets.
class PLATENEST_API TRandomScope {
 public:
  TRandomScope();
  explicit TRandomScope(std::uint64_t Seed);  // also seeds the generator for its own lifetime
  ~TRandomScope();
  TRandomScope(const TRandomScope&) = delete;
  TRandomScope& operator=(const TRandomScope&) = delete;

 private:
  TRandomState FFormer;
};

}  // namespace platenest
