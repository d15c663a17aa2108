#pragma once

#include <cstdint>
#include <vector>

#include "platenest/URectNest/Raster.h"
#include "platenest/URectNest/RectRecords.h"
#include "platenest/foundation/Clock.h"

namespace platenest {

namespace detail {
class TRasterBox;
struct TRskfTables;
}  // namespace detail

// Nests many sizes on one plate as a two-dimensional guillotine knapsack: sizes become whole units, the plate is
// reduced to raster points, and a dynamic program walks the raster row by row and keeps for each cell that pieces can
// reach the best value and the cut that gave it. Gilmore and Gomory (1966), Herz (1972), Scheithauer and Terno (1996),
// Russo, Sforza and Sterle (2013).
//
// Two passes exist. Where no amount binds, a cell needs its value only; the layout is nearly always the best that
// straight cuts from edge to edge can give, and never better. Where some amount is below what the plate could hold, a
// cell also counts the pieces that its best layout uses, and a cut is taken only if both sides together keep the
// amounts: one vector per cell, so a cell never trades its best layout for one that leaves more of a scarce piece, and
// with small amounts the value can be far from the best. What stays free is filled afterwards.
//
// Units: 10^Digit to a plate unit, fewer where the raster would be too large. Half the gap is rounded up to whole
// units, so a gap that is odd in the last digit costs room. A part below a twentieth of the plate's short side, gaps
// included, is laid in grids of several copies; a single copy of such a part is left to the filling.
//
// A part that is not finite and positive holds no copy, likewise a plate or a gap that is not finite and a plate
// without positive sides; none of them raises. TRangeError for a digit above 9, for a plate beyond an int of units and
// for values of which a layout could exceed 64 bits.
// One object for one thread at a time; objects are independent of each other.
class PLATENEST_API TRSKF {
 public:
  // ATimeLimit in seconds, 0 for none; five seconds are added to any other. WeightedProblem: a piece is worth its Area,
  // truncated to a whole number; otherwise the area of its box. Position of the plate plays no part.
  TRSKF(const TVRect2D& APlate, const TNestRectList& ARects, double AGap, double ATimeLimit, int Digit,
        bool WeightedProblem);
  ~TRSKF();
  TRSKF(const TRSKF&) = delete;
  TRSKF& operator=(const TRSKF&) = delete;

  // Both runs append their placements to the list. Part.Idx of a placement is the position in ARects, the same for all
  // fillings; a throw leaves the list as it is. Lengths count from the lower left corner of the plate.
  //
  // The units are made coarser, one step after the other, until the raster is small enough for the free memory
  // (FreePhysicalMemory, 1 GiB if it is not known), for 16-bit positions and, where amounts bind, for the time limit;
  // a plate that has less than one unit left on a side stays empty. Without binding amounts the tables of the accepted
  // raster take up to 12 bytes for each byte that is free.
  // The clock starts with the first run, runs on in later ones and is not read without a limit, except by the filling,
  // which searches longer where time allows. A pass that is stopped, by RectNestStopped or by the clock, gives nothing;
  // what is laid before it stays, and the list is valid.
  // ANormalPattern: all reachable positions instead of the reduced ones. Without ACanRotate the pass lays all boxes one
  // way: unturned on a plate that is not higher than wide, and turned on one that is, so it leaves out what fits
  // such a plate only unturned. Grids of tiny parts, the filling and the first block may turn whatever is said.
  // Cost: the number of cuts that improve a cell, for the bounded pass times the number of sizes.

  // The dynamic program, then a greedy filling of the best free rectangle above or beside the layout, unless that is
  // empty. Returns the share of the plate, grown by half the gap on each side, that the boxes of the whole list take,
  // with what stood in it before; whatever the parts are worth.
  double RunMultiRectNest(TNestedRects& AResultList, bool ACanRotate, bool ANormalPattern);
  // Lays a grid of the rectangle at position BigRect into the lower left corner, turned unless more fit unturned, and
  // nests the rest around it by unweighted runs of its own, which share the clock. Returns the area of the boxes that
  // it has placed, without what stood in the list before. TRangeError for a BigRect that is no position in ARects.
  double RunBigFirstNest(TNestedRects& AResultList, int BigRect, bool ACanRotate, bool ANormalPattern);

  // The stair-shaped outline of a layout.
  class TLStair;

 protected:
  // The child form: shares the caller's stopwatch, which must outlive it, and its budget in milliseconds; unweighted.
  TRSKF(const TVRect2D& APlate, const TNestRectList& ARects, double AGap, double ABudgetMs, TStopwatch& ASW, int Digit);

  // Makes the integer plate and boxes anew: Amp units to a plate unit if positive, -Amp plate units to a unit if
  // negative.
  void CreateAmplifiedRectInfo(int Amp);
  // Sets FAmountLimit.
  void CheckAmountLimit();
  // Merges boxes of one size, once per set of boxes.
  void CombineCongruentRects(bool ACanRotate);
  // Fills Z, U and T. The boxes must have been merged.
  void GenerateRectInfowithRaster(const TRaster& Raster, bool ACanRotate);
  // The two passes, over the pieces of the last GenerateRectInfowithRaster. Tables are made anew. False, and nothing of
  // use in the tables, when stopped by flag or budget.
  bool RSkfCoreAlg(const TRaster& Raster, int& BestCol, int& BestRow, detail::TRskfTables& Tables);
  bool URSKFCoreAlg(const TRaster& Raster, int& BestCol, int& BestRow, detail::TRskfTables& Tables);
  // Adds the layout of a cell to the list, or nothing and returns false when it has more copies than demanded. Takes
  // the copies out of the boxes.
  bool GetNestResult(int BestCol, int BestRow, const detail::TRskfTables& Tables, const TRaster& Raster,
                     TNestedRects& List);
  // Some size is placed more often than demanded.
  bool CheckExcess(const TNestedRects& List) const;

  // Builds a raster that memory and time allow, coarsening the units until they do, and what depends on it. False when
  // nothing of the plate is left or the run is stopped.
  bool PrepareRaster(TRaster& Raster, bool ACanRotate, bool ANormalPattern);
  // Nests the L-shaped rest around a block at the lower left that ends at Corner, in two ways; the area of the better.
  double NestLShape(const TPoint2D& Corner, int BigRect, int Count, bool ACanRotate, bool ANormalPattern,
                    TNestedRects& List);
  // Nests Area and takes what it places out of the amounts of Rects. An area without an inside stays empty.
  void NestArea(const TVRect2D& Area, TNestRectList& Rects, bool ACanRotate, bool ANormalPattern,
                TNestedRects& List) const;
  // Fills the best free rectangle beside or above the placements with what remains of the demand.
  void TryFilling(TNestedRects& List);
  // A box that fits beside or above the cell still has copies.
  // After a bounded pass.
  bool CheckResidual(const TRaster& Raster, int BestCol, int BestRow) const;

 private:
  void NestOnRaster(const TRaster& Raster, TNestedRects& List);
  bool IsStopped() const;
  TRSKF(const TVRect2D& APlate, const TNestRectList& ARects, double AGap, int Digit, bool WeightedProblem);

  int FDigit;
  bool FCongruent = false;                    // the boxes have been merged
  std::vector<std::uint16_t> Demands;         // after a bounded pass: how many of each box the best layout uses
  std::vector<std::uint16_t> Z;               // positions in RasterW of the rows that hold a piece, ascending
  std::vector<std::vector<std::uint16_t>> U;  // for each of them: positions in RasterL of its pieces, ascending
  std::vector<std::vector<std::uint16_t>> T;  // and their boxes
  bool FWeightedProblem;
  TStopwatch FOwnSW;
  TStopwatch* FSW = &FOwnSW;  // FOwnSW or that of the nester that made this one
  double FTimeLimit = 0;      // in milliseconds, 0 for none
  bool FAmountLimit = false;  // some box has fewer copies than the plate could hold
  bool FPlateRotate = false;  // L runs along y
  int FL = 0;                 // the plate with its gap, in units, FL >= FW
  int FW = 0;
  double FGap;
  int FIntGap = 0;  // half the gap, in units
  int FAmp = 1;     // units per plate unit, or minus plate units per unit
  TNestRectList FRects;
  TIntBoxList FIntRects;
  TVRect2D FPlate;                               // at the origin, grown by half the gap on every side
  std::vector<detail::TRasterBox> FRasterBoxes;  // the pieces behind each box
};

}  // namespace platenest
