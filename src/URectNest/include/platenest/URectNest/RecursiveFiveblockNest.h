#pragma once

#include "platenest/URectNest/RectRecords.h"

namespace platenest {

// Fills one plate with copies of one rectangle, turned or not, as fully as recursive cuts into two blocks or into five
// around a centre block can, which includes the pinwheels that no straight cut from edge to edge divides:
//
//        +----+---------+
//        |    |         |
//        |    +-----+---+     Most plates get the largest count possible at all; Barnes' bound proves it where the
//        +----+     |   |     two meet.
//        |    +-----+   |
//        |          |   |     Morabito and Morales (1998), Birgin, Morabito and Nishihara (2005).
//        +----------+---+
//
// It counts in whole units, 10^Digit to a plate unit. The plate is grown by Gap and rounded down; the rectangle is
// rounded up without a gap and to nearest with one. Half the gap is rounded to whole units first, ties to even: Gap 1
// at Digit 0 becomes 0, so that copies touch although a gap was asked, and Gap 3 becomes 4, which costs room. Choose a
// Digit at which half the gap is whole.
class PLATENEST_API TRecursiveFiveblockNest {
 public:
  // Position of the plate plays no part but for rounding: sides that are whole units at the origin may fall short of
  // them elsewhere and lose one, as 7 does between 1.2 and 8.2. A Digit of 0 and below means whole plate units.
  // TRangeError, with a text that asks to check the digits, where a size is no number, where the plate is beyond 1e9
  // units or the rectangle beyond 32 bits, and where the rectangle with its gap is less than one unit. A plate without
  // positive sides holds nothing.
  TRecursiveFiveblockNest(const TVRect2D& Plate, const TNestRect& PartRect, double Gap, int Digit);

  // Returns how many copies fit, whatever the amount is, and adds them to AResultList, relative to the lower left
  // corner of the plate. Without a gap, after rounding, the layout is jostled to that corner, with sides within 1e-4
  // taken for one, and replaces what stood in the list. Where sides really are that close and not in line, as sizes of
  // four and more decimals or rectangles thinner than that make them, copies may end over each other or off the plate,
  // or TAssertionError is raised and the list stays as it was: scale such sizes to whole numbers first.
  // With a gap it begins half a gap in from the left and the lower edge, and may end half a gap beyond the other
  // two: shift it back by half a gap.
  //
  // AMaxDepth is the most levels of cuts, 0 and below for no limit. ALevel sets the time: 4 seconds, and 2 more per
  // level, at least 1. A plate whose search is expected to take longer, or 1.2 GB, gets the best of one guillotine cut.
  // Otherwise a first pass tries the cuts of one level, a second one searches the blocks as well; a pass that the time
  // or a stop request cuts short is dropped, and 0 is returned when not even the first was finished.
  //
  // The result depends on nothing but the arguments and, when time runs out, on the clock. TRangeError for more copies
  // than an int can count. One object may serve several threads.
  // Cost: O(units of the plate's length) and, for c pairs of raster points, 36 bytes and in practice far less than c
  // cuts each.
  int SingleNest(TNestedRects& AResultList, int AMaxDepth, int ALevel) const;

  // See BarnesUpbound(); its scale of 100 does not depend on any digit.
  static Int64 BarnesUpbound(double L, double W, double A, double B);

 private:
  // In units, the gap included. L >= W.
  struct TProblem {
    int L = 0;
    int W = 0;
    int A = 0;
    int B = 0;
  };

  int SolveBD(TNestedRects& List, int NMax, int TimeLimit) const;

  int FGap = 0;  // half the gap, in units
  int FAmp = 1;  // units per plate unit
  TNestRect FRect;
  TVRect2D FOriPlate;    // at the origin
  bool FRotate = false;  // L runs along y
  TProblem FProblem;
};

}  // namespace platenest
