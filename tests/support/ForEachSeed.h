#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace platenest {

namespace detail {

inline unsigned FromEnvironment(const char* Name, unsigned Otherwise) {
  const char* const text = std::getenv(Name);
  return text == nullptr ? Otherwise : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

}  // namespace detail

// Runs F(seed) for Count seeds, up to the first that fails a test; its number stands in the failure's trace. The seeds
// are the same in every run. PLATENEST_SEED is added to each, so that it names the first one, and PLATENEST_ROUNDS
// multiplies their count.
template <class Function>
void ForEachSeed(unsigned Count, Function F) {
  const unsigned first = detail::FromEnvironment("PLATENEST_SEED", 0);
  const unsigned rounds = detail::FromEnvironment("PLATENEST_ROUNDS", 1);
  const bool failedBefore = testing::Test::HasFailure();
  for (unsigned i = 0; i < Count * rounds && testing::Test::HasFailure() == failedBefore; ++i) {
    const unsigned seed = first + i;
    SCOPED_TRACE("repeat with PLATENEST_SEED=" + std::to_string(seed));
    F(seed);
  }
}

}  // namespace platenest
