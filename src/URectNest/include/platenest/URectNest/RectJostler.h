#pragma once

#include "platenest/URectNest/RectRecords.h"

namespace platenest {

// Tightens a finished layout toward the lower left corner of its plate, without turning or losing a rectangle.
class PLATENEST_API TRectJostler {
 public:
  TRectJostler() = delete;

  // Fills NewRects with the rectangles of OriRects as they lie after all blocks have dropped to the left, then down,
  // and both once more. True when NewRects has as many of them, which is always so but for an empty OriRects: then
  // the result is false and NewRects stays as it is. The two lists may be one.
  //
  // AlignSameHor: neighbours of one Part.Idx and turn in a row, up to 0.1 further apart than AGap, close up and move
  // as one block. AlignSameVert: likewise rows, or single rectangles, above each other with equal left and right
  // sides. Rectangles that share an Idx must have one size. A rectangle thinner than 0.1 that lies in a hole of a
  // block is pushed out of it, and with it what lies beyond. The order of
  // NewRects is that of the last drop, by the bottom of the blocks.
  //
  // Lengths in plate units. OriRects lies relative to the lower left corner of APlate, whose position plays no part,
  // and keeps AGap; an AGap of 0 or below means that rectangles may touch. Two sides within ATol count as being in
  // line: afterwards rectangles are apart by AGap - 1e-5, less twice ATol at worst, and none ends further right or
  // higher by more than ATol. 1e-4 is a good ATol. It must be above the rounding errors of the coordinates, and no
  // distance that sides really have: such a pair may be in line with one block and out of line with the next, which is
  // then pushed outward. Ten gaps fall short by 1e-4, so with an AGap above 0 take 9.5e-5 or the like.
  //
  // TArgumentError for numbers that are not finite, sizes that are not above 0, a plate without an inside and an ATol
  // below 0; TAssertionError for a rectangle that begins below the plate by more than ATol or lies above it, and for
  // one that is pushed off the plate, where OriRects did not keep the gap or ATol was ill chosen. NewRects is unchanged
  // then. What sticks out at the top or lies beside the plate is dropped like the rest.
  // No state; safe on any thread. Cost: O(n log n), and for n blocks O(n * steps of the skyline under a block).
  static bool TryJostle(const TNestedRects& OriRects, TNestedRects& NewRects, const TVRect2D& APlate, double AGap,
                        bool AlignSameHor, bool AlignSameVert, double ATol);
};

}  // namespace platenest
