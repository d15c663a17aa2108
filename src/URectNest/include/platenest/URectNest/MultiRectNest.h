#pragma once

#include "platenest/URectNest/RectRecords.h"

namespace platenest {

// Nests several sizes in a three-block layout of whole stacks of equal rectangles. FRAME: its owner completes comments
// and private members.
class PLATENEST_API TMultiRectNest {
 public:
  TMultiRectNest(const TVRect2D& Plate, const TNestRectList& PartRects, double Gap, double MinURate, bool ConstArea);
  ~TMultiRectNest();
  // Status: 0 good, 1 poor, 2 nothing was tried. Part.Idx of a placement is the position in PartRects.
  double ShapeRectNestWithAmt(TNestedRects& ResultList, int& Status);
  double ShapeRectNest(TNestedRects& ResultList, bool& Success);
};

}  // namespace platenest
