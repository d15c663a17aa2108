#pragma once

#include <cstdint>
#include <vector>

namespace platenest {

// Array of Booleans by id, false at first. Clearing all of them at once takes constant time on average: a byte counts
// as true only while it holds the stamp of the present epoch. An id outside the array is undefined. One thread at a
// time.
class TBoolArray {
 public:
  explicit TBoolArray(int Count = 0) : FStamps(static_cast<std::size_t>(Count), kNever) {}

  int Count() const { return static_cast<int>(FStamps.size()); }
  // All false, with room for Count ids.
  void Reset(int Count) {
    FStamps.assign(static_cast<std::size_t>(Count), kNever);
    FEpoch = kFirst;
  }
  // All false.
  void Clear() {
    if (FEpoch == kLast)
      Reset(Count());
    else
      ++FEpoch;
  }
  bool operator[](int Id) const { return FStamps[static_cast<std::size_t>(Id)] == FEpoch; }
  void Set(int Id, bool Value = true) { FStamps[static_cast<std::size_t>(Id)] = Value ? FEpoch : kNever; }

 private:
  static constexpr std::uint8_t kNever = 0;
  static constexpr std::uint8_t kFirst = 1;
  static constexpr std::uint8_t kLast = 255;

  std::vector<std::uint8_t> FStamps;
  std::uint8_t FEpoch = kFirst;
};

}  // namespace platenest
