#include "KnapsackRow.h"

#include <algorithm>
#include <array>
#include <limits>

namespace platenest::detail {

namespace {

constexpr int kWordBits = 64;

// Bit i of the word is byte i, which is 0 or 1. The product moves the eight bytes of a group into its topmost byte.
std::uint64_t PackFlags(const std::array<std::uint8_t, kWordBits>& Flags) {
  std::uint64_t word = 0;
  for (int group = 0; group < kWordBits; group += 8) {
    std::uint64_t bytes = 0;
    for (int i = 0; i < 8; ++i) bytes |= std::uint64_t{Flags[group + i]} << (8 * i);
    word |= (bytes * 0x0102040810204080U >> 56) << group;
  }
  return word;
}

// Count cells, at most a word's worth. The sources lie below the targets and may overlap them, so they are copied
// first.
template <class Cell>
std::uint64_t TakeWhereBetter(const Cell* Source, Cell Value, Cell* Target, int Count) {
  std::array<Cell, kWordBits> source;
  std::array<std::uint8_t, kWordBits> flags{};
  std::copy_n(Source, Count, source.data());
  for (int i = 0; i < Count; ++i) {
    const Cell taken = source[i] + Value;
    flags[i] = taken > Target[i] ? 1 : 0;
    Target[i] = std::max(Target[i], taken);
  }
  return PackFlags(flags);
}

// From the highest cells down, so that every cell is read before the pass has changed it.
template <class Cell>
void RunPassOn(std::vector<Cell>& Cells, Int64 Weight, Cell Value, std::vector<std::uint64_t>& Taken) {
  const Int64 cells = std::ssize(Cells);
  for (Int64 word = std::ssize(Taken) - 1; word >= Weight / kWordBits; --word) {
    const Int64 begin = std::max(word * kWordBits, Weight);
    const int count = static_cast<int>(std::min((word + 1) * kWordBits, cells) - begin);
    Cell* const target = Cells.data() + begin;
    const std::uint64_t bits = count == kWordBits ? TakeWhereBetter(target - Weight, Value, target, kWordBits)
                                                  : TakeWhereBetter(target - Weight, Value, target, count);
    Taken[word] = bits << (begin - word * kWordBits);
  }
}

}  // namespace

TKnapsackRow::TKnapsackRow(Int64 Cells, Int64 HighestValue) : FCellCount(Cells) {
  if (HighestValue <= std::numeric_limits<std::int32_t>::max() / 2)
    FCells.emplace<0>(Cells);
  else
    FCells.emplace<1>(Cells);
}

void TKnapsackRow::Fill(Int64 From, Int64 To, Int64 Value) {
  std::visit(
      [&]<class Cell>(std::vector<Cell>& cells) {
        std::fill(cells.begin() + From, cells.begin() + To, static_cast<Cell>(Value));
      },
      FCells);
}

void TKnapsackRow::RunPass(Int64 Weight, Int64 Value) {
  std::vector<std::uint64_t>& taken = FTaken.emplace_back((FCellCount + kWordBits - 1) / kWordBits);
  std::visit([&]<class Cell>(std::vector<Cell>& cells) { RunPassOn(cells, Weight, static_cast<Cell>(Value), taken); },
             FCells);
}

Int64 TKnapsackRow::BestValue() const {
  return std::visit([](const auto& cells) { return static_cast<Int64>(cells.back()); }, FCells);
}

Int64 TKnapsackRow::BestCell() const {
  return std::visit(
      [](const auto& cells) -> Int64 { return std::ranges::lower_bound(cells, cells.back()) - cells.begin(); }, FCells);
}

bool TKnapsackRow::Taken(int Pass, Int64 Cell) const {
  return (FTaken[Pass][Cell / kWordBits] >> (Cell % kWordBits) & 1) != 0;
}

}  // namespace platenest::detail
