#pragma once

#include <cstddef>
#include <vector>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Types.h"

// One object for one thread at a time, different ones on any thread.
namespace platenest {

// A table in one piece of memory, row after row, value-initialised. Indices are not checked.
// Raises TArgumentError for a negative size, TRangeError for a table of more than a tebibyte, before memory is taken.
template <class T>
class TGrid {
 public:
  TGrid() = default;
  TGrid(int Rows, int Columns)
      : FCells(CellsOf(Rows, Columns)), FRows(Rows), FColumns(static_cast<std::size_t>(Columns)) {}

  int Rows() const { return FRows; }
  int Columns() const { return static_cast<int>(FColumns); }
  // A row is contiguous: hoist this out of loops along it.
  T* Row(int Index) { return FCells.data() + static_cast<std::size_t>(Index) * FColumns; }
  const T* Row(int Index) const { return FCells.data() + static_cast<std::size_t>(Index) * FColumns; }
  T& At(int Row, int Column) { return FCells[static_cast<std::size_t>(Row) * FColumns + Column]; }
  const T& At(int Row, int Column) const { return FCells[static_cast<std::size_t>(Row) * FColumns + Column]; }

 private:
  static std::size_t CellsOf(int Rows, int Columns) {
    constexpr Int64 most = (Int64{1} << 40) / Int64{sizeof(T)};
    if (Rows < 0 || Columns < 0) throw TArgumentError("[Error] TGrid.Create: negative size");
    const Int64 cells = Int64{Rows} * Columns;
    if (cells > most) throw TRangeError("[Error] TGrid.Create: too many cells");
    return static_cast<std::size_t>(cells);
  }

  std::vector<T> FCells;
  int FRows = 0;
  std::size_t FColumns = 0;
};

}  // namespace platenest
