#pragma once

#include "platenest/URectNest/RectRecords.h"

namespace platenest {

namespace detail {
class TStripLayout;
}

// Fills one plate with copies of one rectangle, turned or not, by guillotine strips whose thickness is the long side of
// the rectangle: along the left edge of what remains
//
//        +----+-----------+
//        |----|           |        or along its bottom edge, whichever leaves the larger count.
//        |----|           |
//        |----|  remains  |
//        +----+-----------+
//
// Problems of 600 strips and more take the better of the two plain grids. The plate runs from (0, 0); the least
// distance between two copies is Gap, less 1e-9 for gaps from 1.0 on, so that whole copies on whole sizes fit exactly.
//
// A plate, a rectangle or a gap that is not finite, a plate or a rectangle without positive sides, and a gap that
// leaves nothing of the rectangle hold no copy and raise nothing; an amount below 0 counts as 0. TRangeError is raised
// when there are more copies than an int can count. Objects are independent of each other and may be used from several
// threads at once.
// Cost: O(n) for n placements, and below 600 strips O(strips^2) for the table of remaining plates, a bit for each.
class PLATENEST_API TRectangleNest {
 public:
  TRectangleNest(const TVRect2D& Plate, const TNestRect& PartRect, double Gap);

  // Adds the placements, each with the rectangle as given, and returns their count; 0 and IsFull for a rectangle that
  // does not fit. IsFull: the plate was the limit; otherwise Amount was, and copies were held back.
  //
  // ResultList is meant to be empty: entries already in it count toward Amount, and below 600 strips they are sorted
  // and cut with the rest, and turned ones are moved once more.
  // Below 600 strips the placements ascend by right edge, then by y, and the leftmost are kept when Amount is the
  // limit. On the grid they stand row by row; there IsFull is false also when Amount is exactly what the plate takes,
  // Amount 0 leaves the full grid in the list though the count is 0, and turned copies stand one gap further to the
  // right, so that the last column may reach beyond the plate by the gap.
  int SingleNest(TNestedRects& ResultList, bool& IsFull) const;

  // What SingleNest makes of an empty list, without building it where that can be avoided.
  struct TSummary {
    int Count = 0;     // as SingleNest returns it
    int Placed = 0;    // length of the list; differs from Count on the grid with Amount 0
    double Right = 0;  // right edge of the last placement: its Trans.X if turned, else Trans.X plus the width
  };
  TSummary Summary() const;

  // Area of the copies over area of the plate, each side counted with one gap; 1 for a perfect tiling.
  static double NestUsageRatio(const TVRect2D& Plate, const TNestRect& PartRect, double Gap);

 private:
  struct TGrid {
    Int64 Columns;
    Int64 Rows;
    double PitchX;
    double PitchY;
    bool Turned;
  };

  double W() const { return FPlate.Width(); }
  double H() const { return FPlate.Height(); }
  detail::TStripLayout PlanStrips() const;
  TGrid PlanGrid() const;
  TPoint2D GridTrans(const TGrid& Grid, Int64 Column, Int64 Row) const;
  int NestOnGrid(TNestedRects& ResultList, bool& IsFull) const;
  int NestByStrips(TNestedRects& ResultList, bool& IsFull) const;
  TSummary GridSummary() const;
  TSummary StripSummary() const;

  TVRect2D FPlate;      // grown by the gap to the right and to the top
  TNestRect FInitPart;  // as given
  bool FUsable = false;
  bool FPlainGrid = false;
  bool FIsvertical = false;  // the rectangle is higher than wide
  double FPartX = 0;         // long side of the grown rectangle: the thickness of a strip
  double FPartY = 0;         // short side: the pitch within a strip
  int FMaxAmount = 0;
};

// Looks for the shortest part of the plate, along x, whose use is best once the plate is full, and delivers that layout
// in ResultList, which is overwritten. Lengths of a third of the plate and below are not tried.
//
// Returns the ratio that was computed last, which need not be that of the layout delivered; it counts the gap around
// the copies but not around the plate and may exceed 1.
// Raises TRangeError when nothing fits, when no X value is left, which happens when all copies share one that lies
// beyond a third of the plate, and when a trial plate holds nothing. ResultList is unchanged then.
// A stop request ends the search with the best layout so far.
// Cost: one strip table per distinct right edge.
PLATENEST_API double DynamicSingleRectNest(const TNestRect& PartRect, double PlateHeight, double PlateWidth, double Gap,
                                           TNestedRects& ResultList);

}  // namespace platenest
