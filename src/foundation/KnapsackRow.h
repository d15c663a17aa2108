#pragma once

#include <cstdint>
#include <variant>
#include <vector>

#include "platenest/foundation/Types.h"

namespace platenest::detail {

// The table of a knapsack: cell c holds the best value of weight c or below. Passes run in place; each leaves one bit
// per cell that tells where it was taken, for the way back.
class TKnapsackRow {
 public:
  // No cell ever exceeds HighestValue, which is below 2^62. Narrow cells are taken where they hold it: they are faster.
  TKnapsackRow(Int64 Cells, Int64 HighestValue);

  // Sets the cells [From, To).
  void Fill(Int64 From, Int64 To, Int64 Value);
  // Adds the choice to take something once, or not: not, if both are worth the same. Weight is 1 .. cells - 1.
  void RunPass(Int64 Weight, Int64 Value);

  Int64 BestValue() const;
  // The first cell that holds BestValue.
  Int64 BestCell() const;
  bool Taken(int Pass, Int64 Cell) const;
  int PassCount() const { return Size(FTaken); }
  Int64 CellCount() const { return FCellCount; }

 private:
  Int64 FCellCount;
  std::variant<std::vector<std::int32_t>, std::vector<Int64>> FCells;
  std::vector<std::vector<std::uint64_t>> FTaken;
};

}  // namespace platenest::detail
