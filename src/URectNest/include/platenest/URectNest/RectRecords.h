#pragma once

#include <atomic>
#include <vector>

#include "platenest/foundation/ListOf.h"
#include "platenest/foundation/Rect2D.h"
#include "platenest/foundation/StopToken.h"

// The records that every rectangle nester takes and returns. Lengths are plate units as doubles, y up.
//
// A rectangle is stored once, unturned; a placement carries it onto the plate by an optional quarter turn
// counter-clockwise about the origin and then a translation. For a rectangle that begins at the origin this makes Trans
//
//        +-----------+            +-----+
//        |  unturned |            |     |
//        |           |            |turn-|
//        *-----------+            | ed  |
//      Trans                      +-----*
//                                     Trans
//
// the lower left corner of an unturned and the lower right corner of a turned rectangle.
namespace platenest {

// The demand for one rectangle size.
struct TNestRect {
  int Amount = 0;     // copies wanted
  int Idx = 0;        // the caller's index; a nester may renumber its working copy by list position and says so
  TVRect2D BoundBox;  // only width and height count, except in TNestedRects::BoundBox
  double Area = 0;    // worth of one copy as the caller states it; a part may be smaller than its box

  TNestRect() = default;
  TNestRect(int AAmount, int AIdx, const TVRect2D& ABoundBox) : Amount(AAmount), Idx(AIdx), BoundBox(ABoundBox) {}
};

using TNestRectList = std::vector<TNestRect>;

// One plate kind offered to a nester.
struct TNestSpace {
  TVRect2D Space;
  int Ratio = 1;       // how many such plates exist
  bool IsUdf = false;  // a remnant or similar plate that the host defined, as against a stock plate

  TNestSpace() = default;
  // Stores 1 for any ratio below 2.
  TNestSpace(const TVRect2D& ASpace, int ARatio, bool AIsUdf)
      : Space(ASpace), Ratio(ARatio < 2 ? 1 : ARatio), IsUdf(AIsUdf) {}

  PLATENEST_API double TotalArea() const;
};

// One placed copy.
struct TNestedRect {
  TNestRect Part;
  bool IsRotate = false;  // turned a quarter turn counter-clockwise
  TPoint2D Trans;

  TNestedRect() = default;
  TNestedRect(const TNestRect& APart, bool AIsRotate, const TPoint2D& ATrans)
      : Part(APart), IsRotate(AIsRotate), Trans(ATrans) {}

  // The placed rectangle, from the size of Part.BoundBox alone: its position is ignored.
  PLATENEST_API TVRect2D BoundBox() const;
};

class PLATENEST_API TNestedRects : public TListOf<TNestedRect> {
 public:
  using TListOf::TListOf;

  // The box of all placements, each from Part.BoundBox with its position, unlike TNestedRect::BoundBox.
  // InvalidRect for an empty list.
  TVRect2D BoundBox() const;
};

// Stop flags of the process, written by the host from any thread and only read here. The first stops every rectangle
// nester at its next check, which returns what it has; the second stops column generation only.
inline std::atomic<bool> RectNestTerminated{false};
inline std::atomic<bool> ColumnGenerationTerminated{false};

// What a rectangle nester polls: the process flag and the token of the run on this thread.
inline bool RectNestStopped() noexcept {
  return RectNestTerminated.load(std::memory_order_relaxed) || RunStopRequested();
}

}  // namespace platenest
