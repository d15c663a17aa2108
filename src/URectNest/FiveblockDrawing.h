#pragma once

#include <functional>

#include "FiveblockPoints.h"
#include "platenest/URectNest/RectRecords.h"

namespace platenest::detail {

// The rectangle of a drawing, in units with the gap included, and what a placement carries.
struct TFiveblockPart {
  int A;    // width
  int B;    // height
  int Gap;  // half the gap: a copy sits in the middle of its grown cell
  int Amp;  // units per plate unit
  const TNestRect& Rect;
};

// The cut of a plate L by W, L >= W, both points.
using TCutOf = std::function<TCutPoint(int L, int W)>;

// Appends the rectangles of the division that CutOf tells, plate P by Q in the axes of the placements. Blocks are drawn
// in their order, one within the other; of two equal grids the one of turned rectangles is taken.
void DrawFiveblock(int P, int Q, const TFiveblockPoints& Points, const TFiveblockPart& Part, const TCutOf& CutOf,
                   TNestedRects& List);

}  // namespace platenest::detail
