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

// The plates offered to a nester. All orders are descending and stable.
class PLATENEST_API TNestSpaceList : public TListOf<TNestSpace> {
 public:
  using TListOf::TListOf;

  // The mean ratio of the items up to EndIndex, which is clamped to the last one; ties to even. 0 if there is none.
  int AvgRatio(int EndIndex) const;
  Int64 TotalRatio() const;
  // Some kind of plate exists more than once; user-defined plates count only with IncludeUdf.
  bool HasMultiRatio(bool IncludeUdf) const;
  bool HasUdf() const;
  void InsertBegin(const TNestSpaceList& AList);
  // Joins items of one size within 1e-6. The joined item stands at the place of the first of them, has the plate and
  // the IsUdf of the last, and the sum of the ratios. Cost: O(n * sizes).
  TNestSpaceList MergeSameSize() const;
  void MergeSameSizeInPlace();

  void SortByArea() { Sort(CompareByArea); }
  void SortByTotalArea() { Sort(CompareByTotalArea); }
  void SortByValuedArea() { Sort(CompareByValuedArea); }

  static int CompareByArea(const TNestSpace& Left, const TNestSpace& Right);
  static int CompareByTotalArea(const TNestSpace& Left, const TNestSpace& Right);
  // By area to the power 1.2 times the square root of the ratio, which prefers a few large plates to many small ones.
  // Values within 0.001 of each other, and any ratio below 1, leave the decision to the plain area.
  static int CompareByValuedArea(const TNestSpace& Left, const TNestSpace& Right);
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

// What a single-size strip nest makes of one remaining plate.
struct TPlateNestInfo {
  std::vector<bool> NestArr;  // the strips to lay, in order: false along the left edge, true along the bottom edge
  int Amt = -1;               // the rectangles they hold, -1 while unknown
};

// A cut of a plate into five blocks around a centre block, or the mark of a plain grid.
struct TCutPoint {
  int X1 = 0;
  int X2 = 0;
  int Y1 = 0;
  int Y2 = 0;
  int Homo = 0;  // 1: no cut, the block is one homogeneous grid

  TCutPoint() = default;
  TCutPoint(int AX1, int AX2, int AY1, int AY2, int AHomo) : X1(AX1), X2(AX2), Y1(AY1), Y2(AY2), Homo(AHomo) {}
};

// A rectangle in the whole units of a raster nester.
struct TIntBox {
  int A = 0;  // extent along the length axis
  int B = 0;  // extent along the width axis
  Int64 Area = 0;
  int Amount = 0;
  int Idx = 0;  // of the source TNestRect
  bool Rotate = false;
  bool SmallGroup = false;

  TIntBox() = default;
  // Stores A times B for an area of 0 or below.
  TIntBox(int AA, int AB, int AIdx, int AAmount, Int64 AArea)
      : A(AA), B(AB), Area(AArea > 0 ? AArea : Int64{AA} * AB), Amount(AAmount), Idx(AIdx) {}
};

using TIntBoxList = std::vector<TIntBox>;

// Stop flags of the process, written by the host from any thread and only read here. The first stops every rectangle
// nester at its next check, which returns what it has; the second stops column generation only. Exported,
// so that a shared build and its host have the same ones.
PLATENEST_API inline std::atomic<bool> RectNestTerminated{false};
PLATENEST_API inline std::atomic<bool> ColumnGenerationTerminated{false};

// What a rectangle nester polls: the process flag and the token of the run on this thread.
inline bool RectNestStopped() noexcept {
  return RectNestTerminated.load(std::memory_order_relaxed) || RunStopRequested();
}

}  // namespace platenest
