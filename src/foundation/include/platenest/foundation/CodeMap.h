#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platenest/foundation/Types.h"

namespace platenest {

// Map from 64-bit codes to indices from 0 on, by open addressing with linear probing: one probe is mostly one cache
// line, and nothing is allocated between two growths. Entries are only added. One code may stand for several indices,
// which the caller tells apart when it looks one up. There is no way to walk the map, so nothing can depend on its
// order. One thread at a time.
class TCodeMap {
 public:
  static constexpr int kNone = -1;

  TCodeMap() = default;

  int Count() const { return FCount; }
  // Room for Count entries without growth on the way.
  void Reserve(int Count) {
    if (Count > Limit()) Rehash(SlotsFor(Count));
  }
  // Drops all entries and makes room for Count, in the memory that is there as far as it goes.
  void Restart(int Count) {
    FSlots.assign(SlotsFor(Count), {});
    FShift = 64 - std::countr_zero(FSlots.size());
    FCount = 0;
  }

  // The first index entered for Code that Accept(index) takes, kNone if there is none.
  template <class Predicate>
  int Find(Int64 Code, Predicate Accept) const {
    if (FSlots.empty()) return kNone;
    for (std::size_t slot = Home(Code); FSlots[slot].Index != kNone; slot = Next(slot))
      if (FSlots[slot].Code == Code && Accept(FSlots[slot].Index)) return FSlots[slot].Index;
    return kNone;
  }
  int Find(Int64 Code) const {
    return Find(Code, [](int) { return true; });
  }

  // Adds an entry; earlier ones of the same code stay in front of it. Index must be 0 or above.
  void Add(Int64 Code, int Index) {
    if (FCount >= Limit()) Rehash(FSlots.empty() ? kSmallest : 2 * FSlots.size());
    Place({Code, Index});
    ++FCount;
  }

 private:
  struct TSlot {
    Int64 Code = 0;
    int Index = kNone;
  };
  static constexpr std::size_t kSmallest = 16;

  static std::size_t SlotsFor(int Count) {
    return std::max(kSmallest, std::bit_ceil((static_cast<std::size_t>(Count) * 8 + 4) / 5));
  }
  // Five eighths of the slots: longer probe sequences cost more than the memory.
  int Limit() const { return static_cast<int>(FSlots.size() / 8 * 5); }
  std::size_t Next(std::size_t Slot) const { return (Slot + 1) & (FSlots.size() - 1); }
  // The product carries every bit of the code into its highest bits (Knuth 1973, multiplicative hashing).
  std::size_t Home(Int64 Code) const {
    const std::uint64_t bits = static_cast<std::uint64_t>(Code);
    return static_cast<std::size_t>(((bits ^ (bits >> 32)) * 0x9E3779B97F4A7C15u) >> FShift);
  }
  void Place(const TSlot& Entry) {
    std::size_t slot = Home(Entry.Code);
    while (FSlots[slot].Index != kNone) slot = Next(slot);
    FSlots[slot] = Entry;
  }
  void Rehash(std::size_t SlotCount) {
    std::vector<TSlot> former(SlotCount);
    former.swap(FSlots);
    FShift = 64 - std::countr_zero(FSlots.size());
    // Starting behind a free slot meets every run of neighbours from its front, which keeps equal codes in order.
    std::size_t start = 0;
    while (start < former.size() && former[start].Index != kNone) ++start;
    for (std::size_t i = 0; i < former.size(); ++i) {
      const TSlot& entry = former[(start + i) & (former.size() - 1)];
      if (entry.Index != kNone) Place(entry);
    }
  }

  std::vector<TSlot> FSlots;  // a power of two of them, never full
  int FShift = 64;
  int FCount = 0;
};

}  // namespace platenest
