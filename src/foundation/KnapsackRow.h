#pragma once

#include <cstdint>
#include <variant>
#include <vector>

#include "platenest/foundation/Types.h"

namespace platenest::detail {

// What the cells of a row hold: the value, plus Slope for every unit of weight that is left free, less Lowest. No piece
// that is still to come is worth less than Slope per unit, so passes never lower a cell, and where all are worth about
// that much the numbers stay small. With the free units counted, Highest is never exceeded, and what falls short of
// Lowest cannot win: it counts as Lowest.
struct TKnapsackScale {
  Int64 Slope = 0;
  Int64 Lowest = 0;
  Int64 Highest = 0;
};

// The table of a knapsack: cell c stands for the best value of weight c or below. Passes run in place; each leaves one
// bit per cell that tells where it was taken, for the way back.
class TKnapsackRow {
 public:
  // Narrow cells are taken where the scale fits them: they are faster.
  TKnapsackRow(Int64 Cells, const TKnapsackScale& Scale);

  // Sets the value of the cells [From, To).
  void Fill(Int64 From, Int64 To, Int64 Value);
  // Adds the choice to take something once, or not: not, if both are worth the same. Weight is 1 .. cells - 1.
  void RunPass(Int64 Weight, Int64 Value);

  // That of the last cell. It is real only where it can win, see TKnapsackScale.
  Int64 BestValue() const;
  // The first cell of that value.
  Int64 BestCell() const;
  bool Taken(int Pass, Int64 Cell) const;
  int PassCount() const { return Size(FTaken); }
  Int64 CellCount() const { return FCellCount; }

 private:
  Int64 ValueOf(Int64 Cell, Int64 Content) const {
    return Content + FScale.Lowest - FScale.Slope * (FCellCount - 1 - Cell);
  }

  Int64 FCellCount;
  TKnapsackScale FScale;
  std::variant<std::vector<std::int32_t>, std::vector<Int64>> FCells;
  std::vector<std::vector<std::uint64_t>> FTaken;
};

}  // namespace platenest::detail
