#include "platenest/UCircleNest/MaxCirclePacking.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "MaxCircleUnits.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

constexpr double kLeastLongSide = 2.0;  // pitches
constexpr double kLeastShortSide = 1.5;
constexpr double kLeastShearedSide = 3.0;
constexpr double kLeastStandSide = 3.0;
constexpr double kLeastTriangleLong = 4.47;
constexpr double kLeastTriangleShort = 2.8;
// Square pitches of the box. Counts stay far from the end of 32 bits, and the memory in use below 1 GiB.
constexpr double kMostPitches = 1e7;

constexpr double kCos15 = 0.965925826289;
constexpr double kSin15 = 0.2588190451025;
constexpr double kLeastFrac15 = 0.931851652578;  // 2 cos 15 degrees - 1

// What a layout may fall short of the distance and stick out of the box, in pitches. Counts round up by 1e-9 of a
// step, so patterns may be too tight by about as much.
constexpr double kStandTol = 1e-8;

// The box, or an empty one where radius, gap or plate cannot hold anything.
TPoint2D UnitBox(const TVRect2D& Rect, double Radius, double PlateGap, double CirGap) {
  const double pitch = 2 * Radius + CirGap;
  const TPoint2D box{(Rect.Width() - 2 * PlateGap + CirGap) / pitch, (Rect.Height() - 2 * PlateGap + CirGap) / pitch};
  const bool usable = Radius > 0 && pitch > 0 && std::isfinite(pitch) && std::isfinite(box.X) && std::isfinite(box.Y);
  return usable ? box : TPoint2D{};
}

// Says of points that come one by one whether each is a pitch away from all before. Cells are so small that two points
// in one of them are too near.
class TDistanceGrid {
 public:
  explicit TDistanceGrid(const TPoint2D& Box)
      : FWidth(CellOf(Box.X) + 5), FCells(Size(FWidth) * (CellOf(Box.Y) + 5), kEmpty) {}

  // Points lie in the box.
  bool Add(const TVPoint2DList& Points, int Index) {
    const TPoint2D& point = Points[Index];
    const std::size_t home = (CellOf(point.Y) + 2) * FWidth + CellOf(point.X) + 2;
    const std::size_t first = home - 2 * FWidth - 2;
    for (std::size_t row = first; row <= first + 4 * FWidth; row += FWidth)
      for (std::size_t cell = row; cell < row + 5; ++cell)
        if (FCells[cell] != kEmpty && TooNear(point, Points[FCells[cell]])) return false;
    FCells[home] = Index;
    return true;
  }

 private:
  static constexpr int kEmpty = -1;
  static constexpr double kCellsPerPitch = 1.4143;

  static std::size_t CellOf(double V) { return Trunc<std::size_t>(V * kCellsPerPitch); }
  static std::size_t Size(std::size_t V) { return V; }
  static bool TooNear(const TPoint2D& A, const TPoint2D& B) {
    const TPoint2D step = B - A;
    return step.DotMul(step) < (1 - kStandTol) * (1 - kStandTol);
  }

  std::size_t FWidth;
  std::vector<int> FCells;
};

}  // namespace

TMaxCirclePacking::TMaxCirclePacking(const TVRect2D& ARect, double ARadius, double PlateGap, double CirGap)
    : FBound(UnitBox(ARect, ARadius, PlateGap, CirGap)),
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
  if (FBound.X * FBound.Y > kMostPitches)
    throw TRangeError("[Error] TMaxCirclePacking.TryMaxFill: the plate holds too many circles");
  FIntX = Trunc<int>(FBound.X + detail::kWholeTol);
  FIntY = Trunc<int>(FBound.Y + detail::kWholeTol);
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
  if (Count <= FRunnersUp.back().Count) return;
  TRunnerUp trial{Count, FTempInfo};
  if (Count > FResult) {
    trial = {FResult, FPlaceInfo};
    TakePattern({Count, FTempInfo});
  }
  for (TRunnerUp& runnerUp : FRunnersUp)
    if (trial.Count > runnerUp.Count) std::swap(trial, runnerUp);
}

void TMaxCirclePacking::TryGrid() {
  FTempInfo = {};
  FResult2 = FIntX * FIntY;
  Offer(FResult2);
  if (!TryAddOne()) return;
  FTempInfo.AddMode = 1;
  Offer(++FResult2);
  if (FBound.X - FIntX < kLeastFrac15 || FBound.Y - FIntY < kLeastFrac15) return;
  FTempInfo.AddMode = 2;
  FResult2 += FIntX + FIntY - 1;
  Offer(FResult2);
}

bool TMaxCirclePacking::TryAddOne() {
  if (std::min(FBound.X, FBound.Y) < kLeastShearedSide) return false;
  const double c = 1 - detail::Leg(std::min(FFracX, 0.5));
  const double b = FFracY + 1;
  const double d = FFracX + 1;
  const double gapX = detail::Leg(std::min(c + b - 1, 1.0));
  const double gapY = std::min((2 - gapX + FFracX) / 2, (d * d + b * c + c * c) / 2 / d);
  if (b * b / 4 + gapY * gapY < 1) return false;
  FTempInfo.GapX = gapX;
  FTempInfo.GapY = gapY;
  return true;
}

void TMaxCirclePacking::ShapeResultPt() {
  WritePattern();
  for (std::size_t next = 0; !Stands(FResult); ++next) {
    PLATENEST_DCHECK(!"a pattern must lay out what it counts");
    ++FFallbackCount;
    TakePattern(next < FRunnersUp.size() ? FRunnersUp[next] : TRunnerUp{FIntX * FIntY, {}});
    WritePattern();
    if (next == FRunnersUp.size()) break;
  }
  for (TPoint2D& point : FResultPt) point = point * FRatio + FTrans;
}

void TMaxCirclePacking::TakePattern(const TRunnerUp& Pattern) {
  FResult = Pattern.Count;
  FPlaceInfo = Pattern.Info;
}

void TMaxCirclePacking::WritePattern() {
  FResultPt.clear();
  FResultPt.reserve(FResult);
  if (FResult == 0) return;
  switch (FPlaceInfo.SquareMode) {
    case 1:
      return Add2();
    case 2:
      return Add3();
    case 3:
      return Add4();
    case 4:
      return Add5();
    default:
      return Add1();
  }
}

bool TMaxCirclePacking::Stands(int Count) const {
  if (Size(FResultPt) != Count) return false;
  const double low = 0.5 - kStandTol;
  const auto inBox = [&](const TPoint2D& P) {
    return P.X >= low && P.Y >= low && P.X <= FBound.X - low && P.Y <= FBound.Y - low;
  };
  if (!std::all_of(FResultPt.begin(), FResultPt.end(), inBox)) return false;
  TDistanceGrid grid(FBound);
  for (int i = 0; i < Count; ++i)
    if (!grid.Add(FResultPt, i)) return false;
  return true;
}

void TMaxCirclePacking::AddSqu(int Nx, int Ny, double Dx, double Dy) {
  for (int i = 0; i < Nx; ++i)
    for (int j = 0; j < Ny; ++j) AddPoint(i + 0.5 + Dx, j + 0.5 + Dy);
}

void TMaxCirclePacking::Add1() {
  if (FPlaceInfo.AddMode == 1)
    AddShearedGrid();
  else if (FPlaceInfo.AddMode == 2)
    AddFifteenDegrees();
  else
    AddSqu(FIntX, FIntY);
}

// The hole for one circle E more lies between the first two columns and the second and third rows, counted from below.
// The first column splits there by the whole slack of Y. On the right of it the second row sinks by c, since the row
// below steps aside by a; so does the third row from the third column on, and then its second circle Q finds room to
// the right, lower than which its neighbour R lies.
//
//     o      o  o         upper rows: flush with the far edges
//     o        Q          Q and R touch: GapX apart along X
//         E       R       E: GapY from the first column, half way up the split
//     o      o  o
//     o     o  o          bottom row: a aside
void TMaxCirclePacking::AddShearedGrid() {
  const double a = std::min(FFracX, 0.5);
  const double c = 1 - detail::Leg(a);
  const double right = FFracX + 0.5;
  const double up = FFracY + 0.5;
  AddSqu(1, 2);
  AddSqu(1, FIntY - 2, 0, 2 + FFracY);
  for (int i = 1; i < FIntX; ++i) {
    AddPoint(i + right - a, 0.5);
    AddPoint(i + right, 1.5 - c);
    if (i > 1) AddPoint(i + right, 2.5 - c);
    for (int j = 3; j < FIntY; ++j) AddPoint(i + right, j + up);
  }
  AddPoint(2 - FPlaceInfo.GapX + right, 2 + up);
  AddPoint(0.5 + FPlaceInfo.GapY, 2 + FFracY / 2);
}

// Three squares turned by 15 degrees and more meet in the far corner; steps of (cos, sin) and back make two rows take
// 2 cos 15 degrees.
//
//     o   o   .   K       K: the far corner
//      o   o  c           c: two circles between the extra row and column, and K
//               c
//     o   o   o   o       extra column: kSin15 higher than the grid
//     o   o   o   o
void TMaxCirclePacking::AddFifteenDegrees() {
  const int nx = FIntX - 1;
  const int ny = FIntY - 1;
  const TPoint2D last{nx - 0.5, ny - 0.5};
  const TPoint2D far = FBound - TPoint2D{0.5, 0.5};
  AddSqu(nx, ny);
  for (int j = 0; j < ny; ++j) {
    AddPoint(last.X + kCos15, j + 0.5 + kSin15);
    AddPoint(far.X, j + 0.5);
  }
  for (int i = 0; i < nx; ++i) {
    AddPoint(i + 0.5 + kSin15, last.Y + kCos15);
    AddPoint(i + 0.5, far.Y);
  }
  AddPoint(last.X + kCos15, last.Y + 2 * kCos15 - kSin15);
  AddPoint(last.X + 2 * kCos15 - kSin15, last.Y + kCos15);
  AddPoint(far.X, far.Y);
}

}  // namespace platenest
