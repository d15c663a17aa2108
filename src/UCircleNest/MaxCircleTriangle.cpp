#include <algorithm>
#include <cmath>

#include "MaxCircleUnits.h"
#include "platenest/UCircleNest/MaxCirclePacking.h"
#include "platenest/foundation/Rounding.h"

// The box holds c + 1 hexagonal rows and a rest, too low for one row more. Blocks of the lattice stand side by side in
// turns on the floor and under the ceiling, each the rest higher or lower than its neighbour. Where two blocks meet,
// the circles of one row have the height of the rest between them, so that they touch at d = sqrt(1 - rest^2) < 1 along
// the row. The more such seams the better: triangles of c + 1 rows, on their base and on their tip, with c + 1 circles
// in the base.
//
//        b   b   b   b  c  d   d   d   d     a, c: on the floor, base below
//       a  b   b   b  c   c  d   d   d       b, d: under the ceiling, base above
//         a  b   b  c   c   c  d   d         The left edge cuts the first triangle, of (c / 2 + 1)^2 circles;
//       a   a  b  c   c   c   c  d           its base runs from 1/2 to c / 2 + 1/2.
//
// A seam shifts by half a pitch from row to row. Two triangles take c + 2 d of the length.
namespace platenest {

using detail::kHexStep;
using detail::kSqrt3;
using detail::kWholeTol;

namespace {

constexpr double kWallZone = 0.5;  // pitches from the edge that a wall column takes

// How the end of the box is used. A wall column takes away the last circle of each row that ends less than half a pitch
// from the edge, and stacks circles on the edge instead, as low as the rows' new ends let them.
//
//     o   o   o  |     o   o    o|     Rows end g and g + 1/2 from the edge in turns. On the edge a circle may come
//       o   o    |       o   o   |     as near as sqrt(1 - (g + 1/2)^2) to the height of the shorter rows, where rows
//     o   o   o  |     o   o    o|     are h apart. That and the rest may be room for one more, and with g near 1/2
//                |              o|     for a column of pitch 1.
//     -----------      ----------
enum TEndMode : std::uint8_t { emLattice = 1, emLatticeAndWall = 2, emNextTriangle = 3, emNextAndWall = 4 };

bool HasWallColumn(const TPlaceInfo& Info) {
  return Info.AddMode == emLatticeAndWall || Info.AddMode == emNextAndWall;
}

bool HasNextTriangle(const TPlaceInfo& Info) {
  return Info.AddMode == emNextTriangle || Info.AddMode == emNextAndWall;
}

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

  double LastX() const { return First + (Count - 1); }
};

double RowY(const TPlaceInfo& Info, int Triangle, int RowFromFloor) {
  return 0.5 + RowFromFloor * kHexStep + (Triangle % 2 == 1 ? 0.0 : Info.RestWid);
}

// The part of a row, counted from the floor, that belongs to a triangle. Last is the rightmost centre in the box. The
// triangle that the edge cuts goes on to the edge if none follows it.
TRowPart PartOfRow(const TPlaceInfo& Info, int Triangle, int RowFromFloor, double Last) {
  if (Triangle > Info.SquareNum && !HasNextTriangle(Info)) return {};
  const int row = Triangle % 2 == 1 ? RowFromFloor : Info.Columns - RowFromFloor;
  const double end = Reach(Info, Triangle) - row * 0.5;
  TRowPart part{end - (Info.Columns - row), Info.Columns + 1 - row};
  if (Triangle == 1) {
    part.Count = CountUpTo(end, 0.5);
    part.First = end - (part.Count - 1);
  }
  const int upToEdge = CountUpTo(Last, part.First);
  part.Count = Triangle == Info.SquareNum && !HasNextTriangle(Info) ? upToEdge : std::min(part.Count, upToEdge);
  if (HasWallColumn(Info) && part.Count > 0 && Last - part.LastX() < kWallZone) --part.Count;
  return part;
}

// Lowest height from Y on at which a circle may stand on the edge, as far as the rows are concerned.
double LiftOverRows(const TPlaceInfo& Info, double Last, double Y) {
  for (double lifted = Y;; Y = lifted) {
    const int low = std::max(Floor((Y - 1.5 - Info.RestWid) / kHexStep), 0);
    const int high = std::min(Floor((Y + 0.5) / kHexStep) + 1, Info.Columns);
    for (int row = low; row <= high; ++row)
      for (int triangle = Info.SquareNum - 1; triangle <= Info.SquareNum + 1; ++triangle) {
        const TRowPart part = PartOfRow(Info, triangle, row, Last);
        const double away = Last - part.LastX();
        if (part.Count == 0 || away >= 1) continue;
        const double rowY = RowY(Info, triangle, row);
        const double clear = std::sqrt(1 - away * away);
        if (Y > rowY - clear + kWholeTol && Y < rowY + clear) lifted = std::max(lifted, rowY + clear);
      }
    if (lifted == Y) return Y;
  }
}

// Calls Put with the height of each circle of the wall column, from below.
template <class TPut>
void ForWallColumn(const TPlaceInfo& Info, double Last, double Height, TPut Put) {
  if (!HasWallColumn(Info)) return;
  for (double y = LiftOverRows(Info, Last, 0.5); y <= Height - 0.5 + kWholeTol; y = LiftOverRows(Info, Last, y + 1))
    Put(y);
}

// Circles of the triangle that the edge cuts, of its two neighbours, and on the edge.
int CountEnd(const TPlaceInfo& Info, double Last, double Height) {
  int count = 0;
  for (int row = 0; row <= Info.Columns; ++row)
    for (int triangle = Info.SquareNum - 1; triangle <= Info.SquareNum + 1; ++triangle)
      count += PartOfRow(Info, triangle, row, Last).Count;
  ForWallColumn(Info, Last, Height, [&count](double) { ++count; });
  return count;
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
  FTempInfo.GapY = kHexStep;
  FTempInfo.SquareNum = 1;
  const double last = FBound.X - 0.5;
  while (Reach(FTempInfo, FTempInfo.SquareNum) <= last + kWholeTol) ++FTempInfo.SquareNum;
  if (FTempInfo.SquareNum > 1) TryTriangleEnds(last);
  if (!FTempInfo.Direct) std::swap(FBound.X, FBound.Y);
}

void TMaxCirclePacking::TryTriangleEnds(double Last) {
  TPlaceInfo& info = FTempInfo;
  const int whole = (info.Columns + 2) * (info.Columns + 1) / 2;
  const int first = (info.Rows + 1) * (info.Rows + 1);
  const int before = info.SquareNum == 2 ? 0 : (info.SquareNum - 3) * whole + first;
  info.SquareNum2 = CountUpTo(Last, Reach(info, info.SquareNum) - info.Columns);
  for (const std::uint8_t mode : {emLattice, emNextTriangle, emLatticeAndWall, emNextAndWall}) {
    info.AddMode = mode;
    Offer(before + CountEnd(info, Last, FBound.Y));
  }
}

void TMaxCirclePacking::Add5() {
  const TPlaceInfo& info = FPlaceInfo;
  const double last = (info.Direct ? FBound.X : FBound.Y) - 0.5;
  const double height = info.Direct ? FBound.Y : FBound.X;
  const std::size_t begin = FResultPt.size();
  for (int triangle = 1; triangle <= info.SquareNum + 1; ++triangle)
    for (int row = 0; row <= info.Columns; ++row) {
      const TRowPart part = PartOfRow(info, triangle, row, last);
      for (int i = 0; i < part.Count; ++i) AddPoint(part.First + i, RowY(info, triangle, row));
    }
  ForWallColumn(info, last, height, [&](double Y) { AddPoint(last, Y); });
  if (info.Direct) return;
  for (std::size_t i = begin; i < FResultPt.size(); ++i) FResultPt[i] = FResultPt[i].MirrorByX().RotateCcw90();
}

}  // namespace platenest
