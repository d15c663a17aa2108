#include "platenest/foundation/Random.h"

#include <atomic>
#include <bit>
#include <chrono>

namespace platenest {

namespace {

std::uint64_t NextOfSplitMix(std::uint64_t& State) {
  State += 0x9e3779b97f4a7c15;
  std::uint64_t z = State;
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
  z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
  return z ^ (z >> 31);
}

TRandomState StateOf(std::uint64_t Seed) {
  TRandomState state;
  for (std::uint64_t& word : state) word = NextOfSplitMix(Seed);
  return state;
}

constexpr std::uint64_t kFirstSeed = 0x706c6174656e6573;  // of every thread; a change changes unseeded answers

TRandomState& ThreadState() {
  thread_local TRandomState state = StateOf(kFirstSeed);
  return state;
}

std::uint64_t Next(TRandomState& S) {
  const std::uint64_t result = std::rotl(S[1] * 5, 7) * 9;
  const std::uint64_t shifted = S[1] << 17;
  S[2] ^= S[0];
  S[3] ^= S[1];
  S[1] ^= S[2];
  S[0] ^= S[3];
  S[2] ^= shifted;
  S[3] = std::rotl(S[3], 45);
  return result;
}

}  // namespace

int Random(int Count) {
  if (Count <= 1) return 0;
  const auto count = static_cast<std::uint32_t>(Count);
  const std::uint32_t rejected = (0 - count) % count;  // low words below it would favour small numbers
  TRandomState& state = ThreadState();
  while (true) {
    const std::uint64_t product = (Next(state) >> 32) * count;
    if (static_cast<std::uint32_t>(product) >= rejected) return static_cast<int>(product >> 32);
  }
}

void SetSeed(std::uint64_t Seed) {
  ThreadState() = StateOf(Seed);
}

void Randomize() {
  static std::atomic<std::uint64_t> calls{0};
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  std::uint64_t ticks = static_cast<std::uint64_t>(now.count());
  SetSeed(NextOfSplitMix(ticks) ^ ++calls);
}

TRandomScope::TRandomScope() : FFormer(ThreadState()) {}
TRandomScope::TRandomScope(std::uint64_t Seed) : TRandomScope() {
  SetSeed(Seed);
}
TRandomScope::~TRandomScope() {
  ThreadState() = FFormer;
}

}  // namespace platenest
