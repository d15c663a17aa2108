#include "platenest/UCircleNest/MaxCirclePacking.h"

#include <algorithm>

#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

// Quotients that are whole but for rounding count as whole: a plate of exactly n pitches holds n.
constexpr double kWholeTol = 1e-9;
constexpr double kLeastLongSide = 2.0;  // pitches
constexpr double kLeastShortSide = 1.5;
constexpr double kLeastStandSide = 3.0;
constexpr double kLeastTriangleLong = 4.47;
constexpr double kLeastTriangleShort = 2.8;

}  // namespace

TMaxCirclePacking::TMaxCirclePacking(const TVRect2D& ARect, double ARadius, double PlateGap, double CirGap)
    : FBound{(ARect.Width() - 2 * PlateGap + CirGap) / (2 * ARadius + CirGap),
             (ARect.Height() - 2 * PlateGap + CirGap) / (2 * ARadius + CirGap)},
      FRatio(2 * ARadius + CirGap),
      FTrans{PlateGap - CirGap * 0.5, PlateGap - CirGap * 0.5} {}

int TMaxCirclePacking::TryMaxFill() {
  if (std::max(FBound.X, FBound.Y) < kLeastLongSide || std::min(FBound.X, FBound.Y) < kLeastShortSide) return 0;
  BeginTrials();
  TryGrid();
  TrySquareBlocks();
  TryCornerBlocks();
  if (std::min(FBound.X, FBound.Y) >= kLeastStandSide) TryMethodNew();
  if (std::max(FBound.X, FBound.Y) >= kLeastTriangleLong && std::min(FBound.X, FBound.Y) >= kLeastTriangleShort)
    TriangleDivide();
  ShapeResultPt();
  return Size(FResultPt);
}

void TMaxCirclePacking::BeginTrials() {
  FIntX = Trunc<int>(FBound.X + kWholeTol);
  FIntY = Trunc<int>(FBound.Y + kWholeTol);
  FFracX = std::max(FBound.X - FIntX, 0.0);
  FFracY = std::max(FBound.Y - FIntY, 0.0);
  FResult = 0;
  FPlaceInfo = {};
  FTempInfo = {};
  FRunnersUp = {};
  FResultPt.clear();
  FFallbackCount = 0;
}

void TMaxCirclePacking::Offer(int Count) {
  TRunnerUp trial{Count, FTempInfo};
  if (Count > FResult) {
    trial = {FResult, FPlaceInfo};
    FResult = Count;
    FPlaceInfo = FTempInfo;
  }
  for (TRunnerUp& runnerUp : FRunnersUp)
    if (trial.Count > runnerUp.Count) std::swap(trial, runnerUp);
}

void TMaxCirclePacking::ShapeResultPt() {
  FMayAddOne = false;
  switch (FPlaceInfo.SquareMode) {
    case 1:
      Add2();
      break;
    case 2:
      Add3();
      break;
    case 3:
      Add4();
      break;
    case 4:
      Add5();
      break;
    default:
      Add1();
  }
  for (TPoint2D& point : FResultPt) point = point * FRatio + FTrans;
}

void TMaxCirclePacking::AddSqu(int Nx, int Ny, double Dx, double Dy) {
  for (int i = 0; i < Nx; ++i)
    for (int j = 0; j < Ny; ++j) AddPoint(i + 0.5 + Dx, j + 0.5 + Dy);
}

// FRAME
void TMaxCirclePacking::TryGrid() {}
bool TMaxCirclePacking::TryAddOne() {
  return false;
}
void TMaxCirclePacking::Add1() {}

}  // namespace platenest
