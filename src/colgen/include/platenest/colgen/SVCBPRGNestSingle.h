#pragma once

#include <vector>

#include "platenest/URectNest/Raster.h"

namespace platenest {

// Work done by a strip-value nest.
struct TStripValueCounts {
  Int64 Passes = 0;     // whole plate first, then the corner that each pass leaves
  Int64 Knapsacks = 0;  // one for each strip width
  Int64 Strips = 0;     // kept for some length
  Int64 States = 0;     // that tried all strips
};

// Fills one plate with rectangles of greatest total value by a dynamic program over strips: bands of one width, filled
// by bounded knapsacks, laid along the left or the lower edge of what remains. Rectangles lie either way. What is left
// beyond the best corner is filled by the same program again. A heuristic: it keeps one layout for each corner.
// Gilmore and Gomory, Multistage Cutting Stock Problems of Two and More Dimensions, 1965; Hifi, Exact Algorithms for
// Large-Scale Unconstrained Two and Three Staged Cutting Problems, 2001.
//
// Lengths are plate units and count to three decimals, plate and gap included: a part of 33.3334 is laid out as
// 33.333, so that true parts may come nearer than the gap, or reach beyond the plate, by 0.0005 a side. Within, they
// are tenths as long as the plate has no more than 3162 raster points along its longer side and, gap included, is no
// longer than 200000; otherwise whole units, parts with their gap rounded up and the plate rounded down.
//
// Without SpecificValue a copy is worth a hundredth of its area, in tenths or units squared; with it, the Area given.
// Values are cut to whole numbers, and a copy worth less than 1 is never placed. The first 100 sizes that still have
// copies take part in a pass.
//
// A part without finite positive sides or amount is not placed. A plate that is not finite and positive, one with a
// side above 2 million or more than 60 million states, and a gap that is not finite hold nothing. Nothing raises.
// Polls RectNestStopped; after a stop the layout is what stands and valid. Different objects on any thread.
// Cost: for p by q raster points, w widths (at most two a size) and c chunks (sizes times log of the amounts)
// O(w c p + p q w); 16 bytes a state, which is 72 MB on 3000 by 1500 in whole units.
class PLATENEST_API TSVCBPRGNestSingle {
 public:
  TSVCBPRGNestSingle(const TVRect2D& APlate, const TNestRectList& ARects, double AGap, bool SpecificValue);

  // Adds the layout. Part is the record given, but for Idx, which is its position in the list, and its box, which
  // begins at the origin and has three decimals; without SpecificValue also for Area, the value used.
  void NestSinglePlate(TNestedRects& ANestResult);

  int Amt() const { return FAmt; }                             // raster units to a plate unit: 10 or 1
  const TStripValueCounts& Counts() const { return FCounts; }  // of the last run

 private:
  // Thousandths of a plate unit.
  struct TSize {
    Int64 Width = 0;
    Int64 Height = 0;
  };
  // Raster units.
  struct TMyPlate {
    int X = 0;
    int Y = 0;
  };

  Int64 UnitSize() const { return 1000 / FAmt; }
  int Slot(Int64 Side) const;
  TMyPlate MyPlate() const;
  bool Usable(const TNestRect& Rect, const TSize& RectSize) const;
  void ChooseScale();
  TIntBox IntBox(int Position, int Amount) const;
  double ValueOf(int Position) const;
  TIntBoxList GenerateMyNestRects(const std::vector<int>& Amounts, const TMyPlate& Plate) const;
  TNestedRect Placed(int Position, bool IsRotate, bool IsTurnedPass, Int64 X, Int64 Y) const;

  bool FIsRotated = false;  // the plate was taller than wide and was turned
  int FAmt = 1;
  TSize FPlateIn;
  Int64 FGapIn = 0;  // thousandths
  bool HasValue;
  TNestRectList FRectsIn;  // amounts of what cannot be placed are 0
  std::vector<TSize> FSizes;
  TRaster FRaster;  // of the whole plate; without points where nothing is placed
  TStripValueCounts FCounts;
};

}  // namespace platenest
