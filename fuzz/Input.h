#pragma once

#include <algorithm>
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

}  // namespace platenest
