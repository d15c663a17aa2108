#pragma once

#include <vector>

#include "platenest/URectNest/RectRecords.h"

namespace platenest {

// Nests rectangles of several sizes on one plate by a best-fit greedy over maximal free rectangles, repeated under up
// to thirty forms of the fit function. FRAME: its owner completes comments and private members.
class PLATENEST_API TRectNestSmart {
 public:
  TRectNestSmart(const TVRect2D& Plate, const TNestRectList& PartRects, double Gap, double MinURate);
  // Parts that keep their turn, by position; shorter than the list means any turn for the rest. Call before OutNest.
  void LockTurns(std::vector<bool> Locked);
  // Returns the usage; Part.Idx of a placement is the position in PartRects.
  double OutNest(TNestedRects& ResultList, bool& Success);
};

}  // namespace platenest
