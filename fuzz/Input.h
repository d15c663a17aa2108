#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace platenest {

inline void Require(bool Condition) {
  if (!Condition) std::abort();
}

// Whether the call ends without an error of this class, which it may raise; no other may come out.
template <class TError, class F>
bool Try(F Call) {
  try {
    Call();
    return true;
  } catch (const TError&) {
    return false;
  }
}

inline std::string_view TextOf(const std::uint8_t* Data, std::size_t Count) {
  return {reinterpret_cast<const char*>(Data), Count};
}

// The bytes of a fuzz input one by one, zeros behind its end and behind the first Most.
class TInput {
 public:
  TInput(const std::uint8_t* Data, std::size_t Count, std::size_t Most)
      : FNext(Data), FEnd(Data + std::min(Count, Most)) {}
  bool Empty() const { return FNext == FEnd; }
  int Next() { return Empty() ? 0 : *FNext++; }

  // From 0 to Count - 1, in the form that the makers of random cases ask for.
  int operator()(int Count) {
    const int high = Next();
    return (Count > 256 ? high << 8 | Next() : high) % Count;
  }

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
