#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "platenest/uBCPBase/BCPTypes.h"

namespace platenest {

// A coefficient other than 0 of a column.
struct TColumnEntry {
  int Row = 0;
  double Value = 0;
};

// The columns of a matrix one behind the other in one list, zeros left out: patterns fill few of many rows, and a
// search adds and reads whole columns. The entries of a column stand by ascending row. Adding costs the length of the
// column, taking one out the number of entries behind it. On a throw nothing is changed. One thread at a time.
class TSparseColumns {
 public:
  int Count() const { return Size(FEnds); }
  bool Empty() const { return FEnds.empty(); }
  // Column AIdx, from 0 to Count() - 1; valid until the matrix changes.
  std::span<const TColumnEntry> operator[](int AIdx) const {
    return std::span(FEntries).subspan(Begin(AIdx), FEnds[AIdx] - Begin(AIdx));
  }

  void Append(std::span<const TColumnEntry> AColumn) {
    if (FEnds.size() == FEnds.capacity()) FEnds.reserve(2 * FEnds.size() + kFirstRoom);
    FEntries.insert(FEntries.end(), AColumn.begin(), AColumn.end());
    FEnds.push_back(FEntries.size());
  }

  // Later columns move down by one.
  void Erase(int AIdx) {
    const std::size_t begin = Begin(AIdx);
    const std::size_t length = FEnds[AIdx] - begin;
    FEntries.erase(FEntries.begin() + begin, FEntries.begin() + begin + length);
    FEnds.erase(FEnds.begin() + AIdx);
    for (std::size_t i = AIdx; i < FEnds.size(); ++i) FEnds[i] -= length;
  }

  // Column AIdx with its zeros, ARowCount entries.
  TDoubleDynArray Dense(int AIdx, int ARowCount) const {
    TDoubleDynArray column(ARowCount);
    for (const TColumnEntry& entry : (*this)[AIdx]) column[entry.Row] = entry.Value;
    return column;
  }

  // The whole matrix row first, ARowCount rows.
  TDoubleMatrix DenseRows(int ARowCount) const {
    TDoubleMatrix rows(ARowCount, TDoubleDynArray(FEnds.size()));
    for (int k = 0; k < Count(); ++k)
      for (const TColumnEntry& entry : (*this)[k]) rows[entry.Row][k] = entry.Value;
    return rows;
  }

  static std::vector<TColumnEntry> Compress(std::span<const double> AColumn) {
    std::vector<TColumnEntry> entries;
    entries.reserve(AColumn.size() - std::count(AColumn.begin(), AColumn.end(), 0.0));
    for (int row = 0; row < Size(AColumn); ++row)
      if (AColumn[row] != 0) entries.push_back({row, AColumn[row]});
    return entries;
  }

 private:
  static constexpr std::size_t kFirstRoom = 16;
  std::size_t Begin(int AIdx) const { return AIdx == 0 ? 0 : FEnds[AIdx - 1]; }

  std::vector<TColumnEntry> FEntries;
  std::vector<std::size_t> FEnds;
};

}  // namespace platenest
