#pragma once

#include <cstdint>
#include <vector>

#include "RskfRules.h"
#include "RskfTables.h"
#include "platenest/URectNest/Raster.h"
#include "platenest/URectNest/RectRecords.h"
#include "platenest/foundation/Clock.h"

namespace platenest::detail {

// What a pass works on. All of it belongs to the caller.
struct TRskfProblem {
  const TRaster& Raster;
  const TIntBoxList& Boxes;
  const std::vector<std::uint16_t>& Z;  // see TRskfPieceRows
  const std::vector<std::vector<std::uint16_t>>& U;
  const std::vector<std::vector<std::uint16_t>>& T;
};

struct TRskfCell {
  int Column = 0;
  int Row = 0;
};

// Whether a pass must end. The walk looks once per row, per column and twice more per cell; one look in kLooksPerPoll
// reads the flags, and the clock if there is a limit, which keeps a stop below a millisecond and its price unnoticed.
class TRskfBudget {
 public:
  // Limit in milliseconds, 0 for none.
  TRskfBudget(const TStopwatch& Stopwatch, double Limit) : FStopwatch(Stopwatch), FLimit(Limit) {}

  bool IsSpent() {
    if (--FLooks > 0) return false;
    FLooks = kLooksPerPoll;
    return RectNestStopped() || (FLimit > 0 && FStopwatch.ElapsedMs() >= FLimit);
  }

 private:
  const TStopwatch& FStopwatch;
  double FLimit;
  int FLooks = 1;  // the first look is real
};

// Fill the tables and find the cell of the best value; false when the budget was spent on the way.
// Cost, for c cells that can be reached: O(c * cuts tried), 12 bytes per cell; the bounded one adds a piece vector to
// each cell of the rows that can be reached, at most two bytes and a bit per box.
bool RunUnboundedPass(const TRskfProblem& Problem, TRskfBudget& Budget, TRskfTables& Tables, TRskfCell& Best);
bool RunBoundedPass(const TRskfProblem& Problem, TRskfBudget& Budget, TRskfTables& Tables, TRskfCell& Best);

}  // namespace platenest::detail
