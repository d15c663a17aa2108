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
  double SPecAdj = 0;
  double SPecAdj2 = 0;
  double RestWid = 0;  // rest strip
  double RestDel = 0;
  int Rows = 0;  // of the lattice
  int Columns = 0;
  std::array<int, 4> ChooseTypeNum{};  // pieces of each row kind of a stack
};

// FRAME: header comment by the owner.
class PLATENEST_API TMaxCirclePacking {
 public:
  TMaxCirclePacking(const TVRect2D& ARect, double ARadius, double PlateGap, double CirGap);
  TMaxCirclePacking(const TVRect2D& ARect, double ARadius) : TMaxCirclePacking(ARect, ARadius, 0, 0) {}

  int TryMaxFill();
  const TVPoint2DList& ResultPt() const { return FResultPt; }
  TVPoint2DList TakeResultPt() { return std::move(FResultPt); }
  // Patterns whose layout did not stand, so that the next best took their place.
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
  // The layout of FPlaceInfo in the unit box, appended to FResultPt.
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
  bool FMayAddOne = false;
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

// FRAME
PLATENEST_API double DynamicSinglCircleNest(double Radius, double ExtentY, double ExtentX, double Gap,
                                            TVPoint2DList& Points);

}  // namespace platenest
