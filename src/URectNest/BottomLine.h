#pragma once

#include <vector>

#include "JostleBlock.h"
#include "platenest/foundation/Line2D.h"

namespace platenest::detail {

// The skyline that blocks fall on, downward (horizontal line) or to the left (vertical line). All lengths in drawing
// units; blocks reach half a gap beyond their box on every side.
//
//     height |     +----+
//            |-----+    |           Step i reaches from FWidths[i] to FWidths[i + 1]; the last height ends the line
//            |          +-----      and is no step of its own.
//            +----------------- position along the line
class TBottomLine {
 public:
  TBottomLine(const TVLine2D& ALine, double AGap, bool IsHorizontal);

  // Moves the block onto the highest step under it and raises the line there. Positions within ATol are one position:
  // blocks that share less than that of the line pass each other. A block that reaches beyond the end of the line makes
  // it longer. TAssertionError for one that begins before the line or after it, or lies within ATol of one position.
  // Cost: O(log n + steps under the block), and the shift of the steps behind it.
  void DropBlock(TJostleBlock& ABlock, double ATol);

 private:
  struct TRange {
    int Low;
    int High;
  };

  TRange SearchIdx(double Start, double End, double Tolerance) const;
  int LastUpTo(double Position, int From, double Tolerance) const;
  double HeightUnder(const TRange& Range, double End, double Tolerance) const;
  void Raise(TRange Range, double Start, double End, double Height, double Tolerance);
  void Cut(int Index, double Position);

  double FGap;
  bool FIsHorizontal;
  std::vector<double> FWidths;  // ascending
  std::vector<double> FHeights;
};

}  // namespace platenest::detail
