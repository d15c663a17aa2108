#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Polyline.h"
#include "platenest/foundation/Rect2D.h"

namespace platenest {

// The complete description of a pattern of equal circles, in units of one pitch.
struct TPlaceInfo {
  std::uint8_t SquareMode = 0;  // layout family
  std::uint8_t AddMode = 0;     // variant within the family
  int SquareNum = 0;            // columns of the square part; below 0 rows of it
  int SquareNum2 = 0;
  double GapX = 0;  // lattice steps
  double GapY = 0;
  bool Direct = false;        // rows along X, else along Y
  bool Spec = false;          // special form: stretched or with a knapsack stack
  bool NewState = false;      // extra circles in the rest strip
  bool ShapeMethod5 = false;  // two rows plus one
  bool MayTryShape5 = false;
  double SPecAdj = 0;   // beside a block how far it moves in; in a stack the height of a row kind
  double SPecAdj2 = 0;  // in a stack how far the row between is moved
  double RestWid = 0;   // rest strip
  double RestDel = 0;
  int Rows = 0;  // of the lattice
  int Columns = 0;
  std::array<int, 4> ChooseTypeNum{};  // pieces of each row kind of a stack
};

// How many circles of one size a plate takes by regular patterns, and where: no search, the counts are closed forms.
// First the best count over all patterns is found, then its circles are laid out, once.
//
// The patterns live in a box whose unit is one pitch, 2 * ARadius + CirGap: circles have diameter 1 there and touch at
// distance 1. Neighbours keep CirGap; the edge of the plate keeps PlateGap, so that with PlateGap 0 circles touch it.
//
//   0  square grid, also        1  square block and          2  square block in a      3  rows of two or three
//      sheared for one circle      hexagonal lattice, its       corner, strips on         kinds in a stack, chosen
//      more, or with its far       steps stretched to           its two free sides        by a knapsack; circles at
//      corner turned by 15         fill the box                                           the wall push rows apart
//      degrees
//      o  o  o  o                  o o  o   o   o               o o o o o o o             o   o   o   o
//      o  o  o  o                  o o    o   o   o              o o o o o o                o   o   o   e
//      o  o  o  o                  o o  o   o   o               o o o  o   o              o   o   o   o
//      o  o  o  o                  o o    o   o   o             o o o    o   o            o   o   o     e
//                                  o o  o   o   o               o o o  o   o                o   o   o
//
//   4  triangles of a hexagonal lattice, in turns on the floor and under the ceiling of the box:
//                  b b b b b b c  d d
//                  a  b b b b c c c  d
//                  a a  b b c c c c c
//                  a a a  c c c c c c c
//
// Family 1 tries every width of the block on the left and, as rows, at the bottom, with lattice rows along X and along
// Y: with the steps of the hexagonal lattice; with one position more in every row, which moves the rows apart; with one
// row more, which spreads the circles of a row; in the strip beyond the rows of a plain lattice, with two circles for
// every fourth row's last one. A block of two rows may stand half way between the outer rows of its lattice, which so
// comes nearer. The first of equal counts stays.
//
// Turning the plate may change the count: the sheared grid has different limits along X and Y, as has the strip beyond
// the rows. On 3.39677 by 3.35558 pitches there are ten circles, but nine on 3.35558 by 3.39677. No such plate is known
// where the strip makes the difference.
//
// Never more circles than Groemer and Oler allow in a box of W by H pitches, 2 / sqrt(3) (W - 1) (H - 1) + W + H - 1
// (Oler, An inequality in the geometry of numbers, Acta Mathematica 105, 1961). The counts of quotients that are whole
// up to 1e-9 round up, so neighbours may be nearer by a few 1e-9 pitches.
//
// Degenerate input: a box whose longer side is below 2 pitches or whose shorter one is below 1.5 holds nothing, even
// where a row of circles would fit. A radius or pitch that is not positive, and a plate or gap that is not finite, hold
// nothing. Negative gaps are passed through. Errors: TRangeError by TryMaxFill if the box is larger than 1e7 square
// pitches; the object stays as it was. Cost: one step for each size of a corner block, width times height of the box,
// and then linear in the circles: 1000 by 1000 pitches take some 10 ms to count and 30 to lay out and verify. No shared
// state; one object per thread.
class PLATENEST_API TMaxCirclePacking {
 public:
  // All lengths in drawing units. Only the size of ARect matters.
  TMaxCirclePacking(const TVRect2D& ARect, double ARadius, double PlateGap, double CirGap);
  TMaxCirclePacking(const TVRect2D& ARect, double ARadius) : TMaxCirclePacking(ARect, ARadius, 0, 0) {}

  // The count; the centres are then in ResultPt, relative to the lower left corner of the plate. May be called again.
  int TryMaxFill();
  const TVPoint2DList& ResultPt() const { return FResultPt; }
  TVPoint2DList TakeResultPt() { return std::move(FResultPt); }
  // Patterns of the last run whose layout did not hold what they count, so that the next best took their place. Always
  // 0 unless the library is at fault; a debug build raises TAssertionError instead.
  int FallbackCount() const { return FFallbackCount; }

 protected:
  // Whole pitches and fractions of the box, and no pattern yet. What a probe calls before it tries one family alone.
  void BeginTrials();
  // Takes FTempInfo with Count circles as the best pattern if it has more than all before; keeps two runners-up.
  void Offer(int Count);

  void TryGrid();
  bool TryAddOne();
  void TrySquareBlocks();
  void TryPlace(bool Flag);
  int CalNum1() { return CalNum(true); }
  int CalNum2() { return CalNum(false); }
  void TryIncXAndDecY1() { TryLongerRows(true); }
  void TryIncYAndDecX1() { TryMoreRows(true); }
  void TryIncXAndDecY2() { TryMoreRows(false); }
  void TryIncYAndDecX2() { TryLongerRows(false); }
  void TryCornerBlocks();
  void TryMethod2(int I, int J);
  int ProcessRest(int I, int J, std::uint8_t& AddMode);
  void TryMethodNew();
  void TryDirectX();
  void TryDirectY();
  void TryDirect(bool IsX);
  int CalcStandMode(double Length, bool IsX);
  static double CalcRef(double M, double F);
  void TriangleDivide();
  void TryTriangleEnds(double Last);

  // Lays FPlaceInfo out, in plate coordinates; a pattern that does not stand gives way to the next best.
  void ShapeResultPt();
  // The layout of FPlaceInfo in the unit box, appended to FResultPt: families 0 to 4.
  void Add1();
  void Add2();
  void Add3();
  void Add4();
  void Add5();
  void AddSqu(int Nx, int Ny) { AddSqu(Nx, Ny, 0, 0); }
  void AddSqu(int Nx, int Ny, double Dx, double Dy);
  void AddPoint(double X, double Y) { FResultPt.push_back({X, Y}); }

  int Result() const { return FResult; }
  const TPlaceInfo& PlaceInfo() const { return FPlaceInfo; }
  const TPoint2D& Bound() const { return FBound; }

 private:
  struct TRunnerUp {
    int Count = 0;
    TPlaceInfo Info;
  };

  void TryBothDirections(bool AlongX, bool MaySpec);
  // The steps of TryPlace for rows along X or along Y; "along" and "across" are meant towards the rows.
  int CalNum(bool AlongX);
  void TryLongerRows(bool AlongX);
  void TryMoreRows(bool AlongX);
  void SpreadSlack(bool AlongX);
  void TryRestStrip(bool AlongX);
  void TryTwoRowsPlusOne(bool AlongX);
  // The writers of Add1 and Add2.
  void AddShearedGrid();
  void AddFifteenDegrees();
  void AddSpecBlock();
  void AddLattice();
  void AddTwoRowsPlusOne();
  void AddAlong(double AlongRows, double AcrossRows);
  double RowStep() const;
  // Count circles, all in the box, all pairs at distance 1 at least.
  bool Stands(int Count) const;
  void TakePattern(const TRunnerUp& Pattern);
  void WritePattern();

  int FResult = 0;
  int FResult2 = 0;
  int FAdded = 0;
  bool FHaveAdjust = false;
  int FIntX = 0;
  int FIntY = 0;
  double FFracX = 0;
  double FFracY = 0;
  TPoint2D FBound;
  TPoint2D FBoundNew;
  int FResNumX = 0;
  int FResNumY = 0;
  std::array<double, 2> FResX{};
  std::array<double, 2> FResY{};
  std::array<int, 2> FRows{};
  std::array<int, 2> FCols{};
  double FRatio = 0;
  TPoint2D FTrans;
  TPlaceInfo FTempInfo;
  TPlaceInfo FPlaceInfo;
  std::array<TRunnerUp, 2> FRunnersUp{};
  TVPoint2DList FResultPt;
  int FFallbackCount = 0;

  // What lies between a corner block and the far edge of the box on one of its sides, and what a stretched strip takes
  // there (see MaxCircleCorner.cpp). Depends on one size of the block only.
  struct TCornerStrip {
    double Width = 0;
    int Lines = 0;       // lattice lines along the block
    bool Loose = false;  // wide enough for lines that do not interlock with the block
    double Gap = 0;      // from line to line of the stretched part
    double Step = 0;     // from half row to half row of it
    double Rise = 0;     // from the block's last row to the second half row of it
  };
  static TCornerStrip MeasureStrip(double Width);
  void AddStretchedCorner();
  std::vector<TCornerStrip> FStripsX;  // by columns of the block
  std::vector<TCornerStrip> FStripsY;  // by rows of the block
  int FHalvesX = 0;                    // half-pitch positions along the box
  int FHalvesY = 0;
};

// Circles of one size on the plate from (0, 0) to (ExtentX, ExtentY), on as much of its X extent as is densest: the
// whole plate, the plate without its last columns of circles, or a shorter plate packed anew between the ends of two
// columns. What lies in the first third of the plate always stays. Points become the centres; Gap is kept between
// circles, not to the edges.
//
// Returns the density, circles grown by Gap / 2 against the used part of the plate grown by Gap in both extents. Of
// densities that are equal but for rounding the first stays: the longest use of the plate. Note that ExtentY comes
// before ExtentX.
//
// Where no pattern fits (see TMaxCirclePacking, also for errors) it returns 0 and no points; Points are unchanged when
// it throws. Cost: one run of TMaxCirclePacking for each column that is dropped; 300 by 300 pitches take 0.7 s.
PLATENEST_API double DynamicSinglCircleNest(double Radius, double ExtentY, double ExtentX, double Gap,
                                            TVPoint2DList& Points);

}  // namespace platenest
