#include <algorithm>
#include <cmath>

#include "MaxCircleUnits.h"
#include "platenest/UCircleNest/MaxCirclePacking.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

using detail::kHexStep;
using detail::kSqrt3;
using detail::kWholeTol;
using detail::Leg;

namespace {

constexpr double kLeastSpecFrac = 0.35;
constexpr double kLeastRowStep = 0.5;  // every other row stands above this one

double& StepAlong(TPlaceInfo& Info, bool AlongX) {
  return AlongX ? Info.GapX : Info.GapY;
}

double& StepAcross(TPlaceInfo& Info, bool AlongX) {
  return AlongX ? Info.GapY : Info.GapX;
}

double Along(const TPoint2D& P, bool AlongX) {
  return AlongX ? P.X : P.Y;
}

double Across(const TPoint2D& P, bool AlongX) {
  return AlongX ? P.Y : P.X;
}

// Circles of a lattice that takes every other one of its positions, the first included.
int HalfOf(int Rows, int Columns) {
  return (Rows * Columns + 1) / 2;
}

int WholeSteps(double Length, double Step) {
  return Trunc<int>(Length / Step + kWholeTol);
}

// Where position Index of a row lies from its start. Up to half a pitch a step is the shift between neighbouring rows,
// which themselves run at whole pitches.
double PositionAlong(int Index, double Step) {
  return Step > 0.5 ? Index * Step : Index / 2 + (Index % 2) * Step;
}

}  // namespace

void TMaxCirclePacking::TrySquareBlocks() {
  FTempInfo = {};
  FTempInfo.SquareMode = 1;
  FBoundNew.Y = FBound.Y;
  const bool specColumns = FIntY == 2 && FFracY > kLeastSpecFrac && FIntX >= 3;
  for (int i = 0; i < FIntX; ++i) {
    FTempInfo.SquareNum = i;
    FAdded = i * FIntY;
    FBoundNew.X = FBound.X - i;
    TryBothDirections(/*AlongX=*/true, specColumns);
  }
  FBoundNew.X = FBound.X;
  const bool specRows = FIntX == 2 && FFracX > kLeastSpecFrac && FIntY >= 3;
  for (int j = 0; j < FIntY; ++j) {
    FTempInfo.SquareNum = -j;
    FAdded = j * FIntX;
    FBoundNew.Y = FBound.Y - j;
    TryBothDirections(/*AlongX=*/false, specRows);
  }
}

// Rows across the block's axis first, then rows along it. With two rows in the block and enough slack, the block moves
// to the middle between the outer rows of the lattice, which so come nearer to it.
void TMaxCirclePacking::TryBothDirections(bool AlongX, bool MaySpec) {
  FTempInfo.Spec = false;
  FTempInfo.MayTryShape5 = MaySpec && FTempInfo.SquareNum == 0;
  TryPlace(!AlongX);
  if (MaySpec && FTempInfo.SquareNum != 0) {
    FTempInfo.SPecAdj = (AlongX ? FFracY : FFracX) / 2;
    (AlongX ? FBoundNew.X : FBoundNew.Y) += 1 - Leg(FTempInfo.SPecAdj);
    FTempInfo.Spec = true;
  }
  TryPlace(AlongX);
}

void TMaxCirclePacking::TryPlace(bool Flag) {
  FHaveAdjust = false;
  FResult2 = Flag ? CalNum1() : CalNum2();
  if (Flag) {
    TryIncXAndDecY1();
    TryIncYAndDecX1();
  } else {
    TryIncYAndDecX2();
    TryIncXAndDecY2();
  }
  if (!FHaveAdjust && FTempInfo.Columns > 2 && !FTempInfo.MayTryShape5) SpreadSlack(Flag);
  FTempInfo.NewState = false;
  FTempInfo.ShapeMethod5 = false;
  if (FTempInfo.SquareNum == 0) {
    TryRestStrip(Flag);
    TryTwoRowsPlusOne(Flag);
  }
  Offer(FResult2);
}

int TMaxCirclePacking::CalNum(bool AlongX) {
  const double along = Along(FBoundNew, AlongX);
  const double across = Across(FBoundNew, AlongX);
  const int kind = AlongX ? 0 : 1;
  const int rows = Trunc<int>(2 * along + kWholeTol) - 1;
  const int columns = WholeSteps(2 * (across - 1), kSqrt3) + 1;
  const double restAlong = std::max(along - (rows + 1) / 2.0, 0.0);
  const double restAcross = std::max(across - kSqrt3 * (columns - 1) / 2 - 1, 0.0);
  FRows[kind] = rows;
  FCols[kind] = columns;
  FResX[kind] = AlongX ? restAlong : restAcross;
  FResY[kind] = AlongX ? restAcross : restAlong;
  FTempInfo.Direct = AlongX;
  FTempInfo.Rows = rows;
  FTempInfo.Columns = columns;
  StepAlong(FTempInfo, AlongX) = 0.5;
  StepAcross(FTempInfo, AlongX) = kHexStep;
  return HalfOf(rows, columns) + FAdded;
}

// One position more in every row: neighbouring rows shift by the slack only, and stand further apart.
void TMaxCirclePacking::TryLongerRows(bool AlongX) {
  const int kind = AlongX ? 0 : 1;
  if (FRows[kind] % 2 == 0) return;
  const int rows = FRows[kind] + 1;
  const double room = Across(FBoundNew, AlongX) - 1;
  const double step = Leg(AlongX ? FResX[kind] : FResY[kind]);
  const int columns = WholeSteps(room, step) + 1;
  const int count = HalfOf(rows, columns) + FAdded;
  if (count <= FResult2) return;
  FResult2 = count;
  FHaveAdjust = true;
  FTempInfo.Rows = rows;
  FTempInfo.Columns = columns;
  const double across = FTempInfo.Spec && columns >= 2 ? std::min(room / (columns - 1), 1.0) : step;
  StepAcross(FTempInfo, AlongX) = across;
  StepAlong(FTempInfo, AlongX) = Leg(across);
}

// One row more: rows stand nearer, and so the circles of a row further apart.
void TMaxCirclePacking::TryMoreRows(bool AlongX) {
  const int kind = AlongX ? 0 : 1;
  const double across = (Across(FBoundNew, AlongX) - 1) / FCols[kind];
  if (across < kLeastRowStep) return;
  const double along = Leg(across);
  const int columns = FCols[kind] + 1;
  const int rows = WholeSteps(Along(FBoundNew, AlongX) - 1, along) + 1;
  const int count = HalfOf(rows, columns) + FAdded;
  if (count <= FResult2) return;
  FResult2 = count;
  FHaveAdjust = true;
  FTempInfo.Rows = rows;
  FTempInfo.Columns = columns;
  StepAlong(FTempInfo, AlongX) = along;
  StepAcross(FTempInfo, AlongX) = across;
}

void TMaxCirclePacking::SpreadSlack(bool AlongX) {
  const double rest = AlongX ? FResY[0] : FResX[1];
  double& across = StepAcross(FTempInfo, AlongX);
  across = std::min(rest / (FTempInfo.Columns - 1) + across, 1.0);
  StepAlong(FTempInfo, AlongX) = Leg(across);
}

// In the strip that is left beyond the ends of the rows, the end of every fourth row gives way to two circles at the
// wall. Rows along Y subtract the step along X from the strip's width too, not their own step: they reject some strips
// that rows along X take, so a plate and the same plate turned may get different patterns.
void TMaxCirclePacking::TryRestStrip(bool AlongX) {
  const double along = StepAlong(FTempInfo, AlongX);
  const double across = StepAcross(FTempInfo, AlongX);
  const double length = Along(FBound, AlongX);
  const int rows = FTempInfo.Rows;
  const double width = along <= 0.5 ? length - rows / 2 - (rows % 2) * along : length - 1 - (rows - 2) * along;
  const double u = std::min(width - FTempInfo.GapX, 1.0);
  FTempInfo.RestWid = std::min(width, 1.0);
  FTempInfo.RestDel = std::max(Leg(FTempInfo.RestWid), Leg(u) - across);
  FTempInfo.NewState = 2 * across >= 2 * FTempInfo.RestDel + 1 && FTempInfo.Columns > 4;
  if (FTempInfo.NewState) FResult2 += FTempInfo.Columns / 4;
}

void TMaxCirclePacking::TryTwoRowsPlusOne(bool AlongX) {
  if (!FTempInfo.MayTryShape5 || (AlongX ? FIntX : FIntY) != 2) return;
  const double across = StepAcross(FTempInfo, AlongX);
  const double rest = Across(FBound, AlongX) - 1 - (FTempInfo.Columns - 1) * across;
  const double high = 2 * across + rest - 1;
  const double wide = (AlongX ? FFracX : FFracY) + 1;
  if (rest <= 0.5 || high * high + wide * wide < 4) return;
  FTempInfo.ShapeMethod5 = true;
  ++FResult2;
}

void TMaxCirclePacking::AddAlong(double AlongRows, double AcrossRows) {
  if (FPlaceInfo.Direct)
    AddPoint(AlongRows, AcrossRows);
  else
    AddPoint(AcrossRows, AlongRows);
}

void TMaxCirclePacking::Add2() {
  if (FPlaceInfo.Spec)
    AddSpecBlock();
  else if (FPlaceInfo.SquareNum >= 0)
    AddSqu(FPlaceInfo.SquareNum, FIntY);
  else
    AddSqu(FIntX, -FPlaceInfo.SquareNum);
  AddLattice();
}

// Two rows of the block between the outer rows of the lattice: each circle of the last column lies SPecAdj above or
// below the nearest circle of the lattice's first one, in which every other row begins.
//
//     two rows        three rows      four rows
//     o o   o         o o  o          . .   o
//     o o  o          . .   o         o o  o
//                     o o  o          . .   o
//                                     o o  o
void TMaxCirclePacking::AddSpecBlock() {
  const double last = Across(FBound, FPlaceInfo.Direct) - 0.5;
  const double low = 0.5 + FPlaceInfo.SPecAdj;
  const double high = FPlaceInfo.Columns == 4 ? low + 2 * RowStep() : last - FPlaceInfo.SPecAdj;
  for (int i = 0; i < std::abs(FPlaceInfo.SquareNum); ++i) {
    AddAlong(i + 0.5, low);
    AddAlong(i + 0.5, high);
  }
}

// Beside a block of the special form the outer rows always lie at the edges.
double TMaxCirclePacking::RowStep() const {
  if (FPlaceInfo.Spec && FPlaceInfo.Columns > 1)
    return (Across(FBound, FPlaceInfo.Direct) - 1) / (FPlaceInfo.Columns - 1);
  return FPlaceInfo.Direct ? FPlaceInfo.GapY : FPlaceInfo.GapX;
}

// Where rest strips are used, these are the last circles of every fourth row, each between two rows that end a step
// earlier:
//
//     o   o          |           o   o          |
//       o   o   o    |             o   o      e |    e: RestDel above and below the short rows
//     o   o          |    ->     o   o        e |
void TMaxCirclePacking::AddLattice() {
  const bool alongX = FPlaceInfo.Direct;
  const double step = alongX ? FPlaceInfo.GapX : FPlaceInfo.GapY;
  const TPoint2D start{0.5 + std::max(FPlaceInfo.SquareNum, 0), 0.5 + std::max(-FPlaceInfo.SquareNum, 0)};
  const double nearer = FPlaceInfo.Spec ? 1 - Leg(FPlaceInfo.SPecAdj) : 0;
  const double wall = Along(FBound, alongX) - 0.5;
  const int firstLong = FPlaceInfo.Rows % 2 == 0 ? 1 : 2;
  const int lastLong = FPlaceInfo.NewState ? 4 * (FPlaceInfo.Columns / 4) : 0;
  const int columns = FPlaceInfo.Columns - (FPlaceInfo.ShapeMethod5 ? 2 : 0);
  for (int j = 0; j < columns; ++j) {
    const double y = Across(start, alongX) + j * RowStep();
    const bool givesWay = j < lastLong && j % 4 == firstLong;
    for (int i = j % 2; i < FPlaceInfo.Rows - (givesWay ? 1 : 0); i += 2)
      AddAlong(Along(start, alongX) - nearer + PositionAlong(i, step), y);
    if (!givesWay) continue;
    AddAlong(wall, y - RowStep() + FPlaceInfo.RestDel);
    AddAlong(wall, y + RowStep() - FPlaceInfo.RestDel);
  }
  if (FPlaceInfo.ShapeMethod5) AddTwoRowsPlusOne();
}

// Rows of two: the last two of them become two, one and two. Never beside a rest strip: where that would be wide
// enough, the height over the last row already lets the lattice take one row more.
//
//     o   o          o    o
//       o   o          o
//     o   o    ->    o    o
//       o   o          o   o
void TMaxCirclePacking::AddTwoRowsPlusOne() {
  const double wall = Along(FBound, FPlaceInfo.Direct) - 0.5;
  const double top = Across(FBound, FPlaceInfo.Direct) - 0.5;
  const double low = 1.5 + (FPlaceInfo.Columns - 3) * RowStep();
  AddAlong(0.5, low);
  AddAlong(wall, low);
  AddAlong((wall + 0.5) / 2, (low + top) / 2);
  AddAlong(0.5, top);
  AddAlong(wall, top);
}

}  // namespace platenest
