#include "KnapsackRow.h"

#include <algorithm>
#include <array>
#include <limits>
#include <ranges>
#include <type_traits>

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

// Count cells, at most a word's worth. The sources lie below the targets and may overlap them, so all are read before
// any is written. Three plain loops over signs, because vector units of the baseline cannot compare 64-bit cells.
template <class Cell>
std::uint64_t TakeWhereBetter(const Cell* Source, Cell Value, Cell* Target, int Count) {
  using Bits = std::make_unsigned_t<Cell>;
  constexpr int signBit = std::numeric_limits<Cell>::digits;
  std::array<Cell, kWordBits> loss;
  std::array<std::uint8_t, kWordBits> flags{};
  for (int i = 0; i < Count; ++i) loss[i] = Target[i] - (Source[i] + Value);
  for (int i = 0; i < Count; ++i) Target[i] -= loss[i] & -static_cast<Cell>(static_cast<Bits>(loss[i]) >> signBit);
  for (int i = 0; i < Count; ++i) flags[i] = static_cast<std::uint8_t>(static_cast<Bits>(loss[i]) >> signBit);
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

TKnapsackRow::TKnapsackRow(Int64 Cells, const TKnapsackScale& Scale) : FCellCount(Cells), FScale(Scale) {
  if (Scale.Highest - Scale.Lowest <= std::numeric_limits<std::int32_t>::max() / 2)
    FCells.emplace<0>(Cells);
  else
    FCells.emplace<1>(Cells);
}

void TKnapsackRow::Fill(Int64 From, Int64 To, Int64 Value) {
  std::visit(
      [&]<class Cell>(std::vector<Cell>& cells) {
        for (Int64 cell = From; cell < To; ++cell)
          cells[cell] = static_cast<Cell>(std::max<Int64>(0, Value - ValueOf(cell, 0)));
      },
      FCells);
}

void TKnapsackRow::RunPass(Int64 Weight, Int64 Value) {
  std::vector<std::uint64_t>& taken = FTaken.emplace_back((FCellCount + kWordBits - 1) / kWordBits);
  const Int64 gain = Value - FScale.Slope * Weight;
  std::visit([&]<class Cell>(std::vector<Cell>& cells) { RunPassOn(cells, Weight, static_cast<Cell>(gain), taken); },
             FCells);
}

Int64 TKnapsackRow::BestValue() const {
  return std::visit([&](const auto& cells) { return ValueOf(FCellCount - 1, cells.back()); }, FCells);
}

Int64 TKnapsackRow::BestCell() const {
  const Int64 best = BestValue();
  const auto isBelow = [&](const auto& cells) { return [&](Int64 cell) { return ValueOf(cell, cells[cell]) < best; }; };
  const auto all = std::views::iota(Int64{0}, FCellCount);
  return std::visit([&](const auto& cells) { return *std::ranges::partition_point(all, isBelow(cells)); }, FCells);
}

bool TKnapsackRow::Taken(int Pass, Int64 Cell) const {
  return (FTaken[Pass][Cell / kWordBits] >> (Cell % kWordBits) & 1) != 0;
}

}  // namespace platenest::detail
