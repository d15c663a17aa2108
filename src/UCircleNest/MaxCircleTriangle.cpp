#include <algorithm>
#include <cmath>

#include "platenest/UCircleNest/MaxCirclePacking.h"
#include "platenest/foundation/Rounding.h"

// The box holds c + 1 hexagonal rows and a rest, too low for one row more. Blocks of the lattice stand side by side in
// turns on the floor and under the ceiling, each the rest higher or lower than its neighbour. Where two blocks meet,
// the circles of one row have the height of the rest between them, so that they touch at d = sqrt(1 - rest^2) < 1 along
// the row. The more such seams the better: triangles of c + 1 rows, on their base and on their tip, with c + 1 circles
// in the base.
//
//     ceiling   . b b b b b b c . d d         a, c: on the floor, base below      rest: one row of a lies
//               a . b b b b c c c . d         b, d: under the ceiling, base above  lower than the same row of b
//               a a . b b c c c c c .         '.' is a seam, d < 1 wide
//               a a a . c c c c c c c         the first triangle is cut through its tip by the left edge:
//     floor    -----------------------        (c / 2 + 1)^2 circles, base from 1/2 to c / 2 + 1/2
//
// A seam shifts by half a pitch from row to row. Two triangles take c + 2 d of the length.
namespace platenest {

namespace {

constexpr double kWholeTol = 1e-9;
constexpr double kSqrt3 = 1.732050807569;
constexpr double kLine = 0.8660254037845;

// How the last triangle and the seam behind it use the end of the box.
enum TEndMode : std::uint8_t { emLattice = 1, emNextTriangle = 3 };

// Centre of the last circle in the base of a triangle, counted from 1.
double Reach(const TPlaceInfo& Info, int Triangle) {
  const double pairs = Triangle / 2 * (Info.Columns + 2 * Info.RestDel);
  if (Triangle % 2 == 1) return Info.Rows + 0.5 + pairs;
  return pairs - Info.RestDel + (Info.Columns % 2 == 0 ? 0.5 : 0.0);
}

// Circles at From, From + 1, ... up to To.
int CountUpTo(double To, double From) {
  return std::max(Floor(To - From + kWholeTol) + 1, 0);
}

struct TRowPart {
  double First = 0;  // centre of its first circle
  int Count = 0;
};

// The part of a row, counted from the base of the triangle, that belongs to it; Last is the rightmost centre.
TRowPart PartOfRow(const TPlaceInfo& Info, int Triangle, int Row, double Last) {
  const double end = Reach(Info, Triangle) - Row * 0.5;
  TRowPart part{end - (Info.Columns - Row), Info.Columns + 1 - Row};
  if (Triangle == 1) {
    part.Count = CountUpTo(end, 0.5);
    part.First = end - (part.Count - 1);
  }
  part.Count = std::min(part.Count, CountUpTo(Last, part.First));
  return part;
}

}  // namespace

void TMaxCirclePacking::TriangleDivide() {
  FTempInfo = {};
  FTempInfo.SquareMode = 4;
  FTempInfo.Direct = FBound.X >= FBound.Y;
  if (!FTempInfo.Direct) std::swap(FBound.X, FBound.Y);
  FTempInfo.Columns = Trunc<int>(2 * (FBound.Y - 1) / kSqrt3 + kWholeTol);
  FTempInfo.RestWid = std::max(FBound.Y - kSqrt3 * FTempInfo.Columns / 2 - 1, 0.0);
  FTempInfo.RestDel = std::sqrt(1 - FTempInfo.RestWid * FTempInfo.RestWid);
  FTempInfo.Rows = FTempInfo.Columns / 2;
  FTempInfo.GapX = 0.5;
  FTempInfo.GapY = kLine;
  FTempInfo.SquareNum = 1;
  const double last = FBound.X - 0.5;
  while (Reach(FTempInfo, FTempInfo.SquareNum) <= last + kWholeTol) ++FTempInfo.SquareNum;
  if (FTempInfo.SquareNum > 1) TryTriangleEnds(last);
  if (!FTempInfo.Direct) std::swap(FBound.X, FBound.Y);
}

void TMaxCirclePacking::TryTriangleEnds(double Last) {
  TPlaceInfo& info = FTempInfo;
  const int whole =
      (info.SquareNum - 2) * (info.Columns + 2) * (info.Columns + 1) / 2 + (info.Rows + 1) * (info.Rows + 1);
  const double start = Reach(info, info.SquareNum) - info.Columns;
  info.SquareNum2 = CountUpTo(Last, start);
  int lattice = 0;
  int next = 0;
  for (int row = 0; row <= info.Columns; ++row) {
    lattice += CountUpTo(Last, start + row * 0.5);
    next += PartOfRow(info, info.SquareNum, row, Last).Count;
    next += PartOfRow(info, info.SquareNum + 1, info.Columns - row, Last).Count;
  }
  info.AddMode = emLattice;
  Offer(whole + lattice);
  info.AddMode = emNextTriangle;
  Offer(whole + next);
}

void TMaxCirclePacking::Add5() {
  const TPlaceInfo& info = FPlaceInfo;
  const double last = (info.Direct ? FBound.X : FBound.Y) - 0.5;
  const std::size_t begin = FResultPt.size();
  const int triangles = info.AddMode == emNextTriangle ? info.SquareNum + 1 : info.SquareNum;
  for (int triangle = 1; triangle <= triangles; ++triangle) {
    const bool onFloor = triangle % 2 == 1;
    for (int row = 0; row <= info.Columns; ++row) {
      TRowPart part = PartOfRow(info, triangle, row, last);
      if (triangle == triangles && info.AddMode == emLattice) part.Count = CountUpTo(last, part.First);
      const double y = 0.5 + (onFloor ? row * kLine : (info.Columns - row) * kLine + info.RestWid);
      for (int i = 0; i < part.Count; ++i) AddPoint(part.First + i, y);
    }
  }
  if (info.Direct) return;
  for (std::size_t i = begin; i < FResultPt.size(); ++i) FResultPt[i] = FResultPt[i].MirrorByX().RotateCcw90();
}

}  // namespace platenest
