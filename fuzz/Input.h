#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace platenest {

inline void Require(bool Condition) {
  if (!Condition) std::abort();
}

// The bytes of a fuzz input one by one, zeros behind its end and behind the first Most.
class TInput {
 public:
  TInput(const std::uint8_t* Data, std::size_t Count, std::size_t Most)
      : FNext(Data), FEnd(Data + std::min(Count, Most)) {}
  bool Empty() const { return FNext == FEnd; }
  int Next() { return Empty() ? 0 : *FNext++; }

 private:
  const std::uint8_t* FNext;
  const std::uint8_t* FEnd;
};

// Of any bits, those of infinity and of no number included.
inline double AnyDouble(TInput& In) {
  std::uint64_t bits = 0;
  for (int i = 0; i < 8; ++i) bits = bits << 8 | static_cast<std::uint64_t>(In.Next());
  return std::bit_cast<double>(bits);
}

}  // namespace platenest
