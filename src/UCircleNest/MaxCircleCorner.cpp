#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <span>

#include "MaxCircleUnits.h"
#include "platenest/UCircleNest/MaxCirclePacking.h"
#include "platenest/foundation/Rounding.h"

// A square block of i columns and j rows in the lower left corner, hexagonal strips on its two free sides. The lines of
// a strip run along the block. Local coordinates have their origin in the block's upper right circle O. The strip to
// the right is told; the one above is its mirror image at the diagonal. h = sqrt(3)/2 is the step of hexagonal lines.
//
// Plain: line 1, at x = h, interlocks with the block and has j - 1 circles, at y = -1/2, -3/2, ...; line 2, at x = 2h,
// has j circles, at y = 0, -1, ...; and so on. C, D and A, B are the ends next to the corner beyond O, which stays
// empty.
//
//     o     o     o     D
//        o     o     C
//     o     o     o     O          B
//                             A
//     o     o     o     o          o
//                             o
//     o     o     o     o          o
//
// Loose: a strip that is 1 - h wider than its lines need. Line 1 stands a whole pitch off O and touches neither the
// block nor the other strip, which ends at x = 0. So all lines run over the full height; line 1 has the larger share of
// its half-pitch positions.
//
//     o     o     o     D     o
//        o     o     C             o
//     o     o     o     O     o
//                                  o
//     o     o     o     o     o
//
// Stretched: lines stand at x = v k, v = width / lines, beside the block, and at x = 1 + g (k - 1), g < h, above it,
// where they keep clear of the other strip. Half rows of the part above are step = sqrt(1 - g^2) > 1/2 apart.
//
//                                  o         y = w + s + step, and so on
//                             o        o     y = w + s, odd lines
//                                  o         y = w + s - step, even lines: the first half row of the part above
//                            o         o     y = w = sqrt(1 - v^2), odd lines: the last half row of the part below
//     o     o     o     O         o          y = 0, even lines, in line with the rows of the block
//                            o         o
//     o     o     o     o         o
//
// s >= 1 + step - w puts the even lines above a whole pitch over those below. s^2 + (3v - 1)^2 >= 4 keeps the odd
// circle at x = 1, y = w + s two pitches from the one at x = 3v, y = w (and all other such pairs, which are further
// apart): what touches the one does not overlap the other.
namespace platenest {

using detail::kHexStep;
using detail::kSqrt3;
using detail::kWholeTol;

namespace {

// Width, in line steps, that a strip must have beyond its lines to be loose: (1 - h) / h.
constexpr double kLooseShare = 0.15470053837916972;
// Up to so many lines on both sides the corner beyond the block is packed by hand.
constexpr int kMostHandLines = 3;

enum TCornerMode : std::uint8_t {
  cmHand = 0,
  cmLooseX = 10,
  cmLooseY = 20,
  cmPlainOrStretchedX = 30,
  cmStretchedY = 40
};

// Circles of the corner beyond O in local coordinates, for strips with no more lines at the right than above. There the
// odd lines above hold one circle more than plain ones: they end at x = 1/2, the even ones at D.
//
// Two lines on both sides: both lines above go on by one circle. The lower one would stand at (1.5, h), 0.1 too near to
// B, and gives way.
constexpr TPoint2D kCorner22[] = {{kSqrt3, 1.0}, {1.0508, kSqrt3}};
// Two lines at the right, three above: the same once more.
constexpr TPoint2D kCorner23[] = {{kSqrt3, 1.0}, {1.0, kSqrt3}, {1.5, 3 * kHexStep}};
// Three lines on both sides: each line above goes on by two circles. The first of the lowest line gives way to B
// upwards, the second one goes down beside it to the edge, and the second one of the middle line stands at the edge
// between that and the end of the upper line. All keep 0.0001 or more to spare.
constexpr TPoint2D kCorner33[] = {{1.68, 0.9987},         {3 * kHexStep, 0.6022}, {1.0, kSqrt3},
                                  {3 * kHexStep, 1.6025}, {1.5, 3 * kHexStep},    {2.5, 3 * kHexStep}};

// Writes in the local coordinates of a block's upper right circle, of the strip at the right or of its mirror image.
struct TCornerPen {
  TVPoint2DList& Points;
  TPoint2D Origin;
  bool Mirror = false;

  void Add(double X, double Y) const { Points.push_back(Origin + (Mirror ? TPoint2D{Y, X} : TPoint2D{X, Y})); }
  // Count circles from (X, Y) downwards.
  void AddLine(double X, double Y, int Count) const {
    for (int i = 0; i < Count; ++i) Add(X, Y - i);
  }
};

// Lines that interlock with a block of Length circles. With Over the odd ones hold as many, half a pitch beyond O.
void AddPlainStrip(const TCornerPen& Pen, int Lines, int Length, bool Over) {
  for (int line = 1; line <= Lines; ++line) {
    const bool odd = line % 2 == 1;
    Pen.AddLine(kHexStep * line, odd ? (Over ? 0.5 : -0.5) : 0.0, odd && !Over ? Length - 1 : Length);
  }
}

// Lines over the whole extent of the box, which has Halves half-pitch positions.
void AddLooseStrip(const TCornerPen& Pen, int Lines, int Length, int Halves) {
  for (int line = 1; line <= Lines; ++line) {
    const int count = line % 2 == 1 ? (Halves + 1) / 2 : Halves / 2;
    const double lowest = line % 2 == 1 ? 1.0 - Length : 1.5 - Length;
    Pen.AddLine(1 + kHexStep * (line - 1), lowest + count - 1, count);
  }
}

std::span<const TPoint2D> HandCorner(int Least, int Most) {
  if (Least == 1) return {};
  if (Most == 2) return kCorner22;
  return Least == 2 ? std::span<const TPoint2D>(kCorner23) : std::span<const TPoint2D>(kCorner33);
}

}  // namespace

TMaxCirclePacking::TCornerStrip TMaxCirclePacking::MeasureStrip(double Width) {
  TCornerStrip strip;
  strip.Width = Width;
  const double lines = 2 * Width / kSqrt3;
  strip.Lines = Trunc<int>(lines + kWholeTol);
  strip.Loose = lines - strip.Lines > kLooseShare;
  strip.Rise = std::numeric_limits<double>::infinity();
  if (strip.Loose || strip.Lines < 2) return strip;
  const double spread = Width / strip.Lines;
  const double first = std::sqrt(1 - spread * spread);
  const double across = 3 * spread - 1;
  strip.Gap = (Width - 1) / (strip.Lines - 1);
  strip.Step = std::sqrt(1 - strip.Gap * strip.Gap);
  strip.Rise = first + std::max(1 + strip.Step - first, std::sqrt(4 - across * across));
  return strip;
}

void TMaxCirclePacking::TryCornerBlocks() {
  FHalvesX = Trunc<int>(2 * FBound.X + kWholeTol) - 1;
  FHalvesY = Trunc<int>(2 * FBound.Y + kWholeTol) - 1;
  FStripsX.clear();
  FStripsY.clear();
  for (int i = 0; i <= FIntX; ++i) FStripsX.push_back(MeasureStrip(std::max(FBound.X - i, 0.0)));
  for (int j = 0; j <= FIntY; ++j) FStripsY.push_back(MeasureStrip(std::max(FBound.Y - j, 0.0)));
  for (int i = 2; i <= FIntX; ++i)
    for (int j = 2; j <= FIntY; ++j) TryMethod2(i, j);
}

void TMaxCirclePacking::TryMethod2(int I, int J) {
  FResNumX = FStripsX[I].Lines;
  FResNumY = FStripsY[J].Lines;
  const auto [least, most] = std::minmax({FResNumX, FResNumY});
  if (least == 0) return;
  FAdded = I * J;
  FTempInfo.Spec = false;
  if (most > kMostHandLines && least > 1) {
    FResult2 = ProcessRest(I, J, FTempInfo.AddMode) + FAdded;
  } else if (most <= kMostHandLines) {
    const int corner = least == 1 ? -1 : (FResNumX - 1) * (FResNumY - 1);
    FTempInfo.AddMode = cmHand;
    FResult2 = corner + I * FResNumY + J * FResNumX + FAdded;
  } else {
    return;
  }
  if (FResult2 <= FRunnersUp.back().Count) return;
  FTempInfo.ShapeMethod5 = false;
  FTempInfo.NewState = false;
  FTempInfo.SquareMode = 2;
  FTempInfo.SquareNum = I;
  FTempInfo.SquareNum2 = J;
  FTempInfo.Rows = FResNumX;
  FTempInfo.Columns = FResNumY;
  const bool mirror = FTempInfo.AddMode == cmStretchedY;
  const TCornerStrip& strip = mirror ? FStripsY[J] : FStripsX[I];
  FTempInfo.GapX = FTempInfo.Spec ? (mirror ? strip.Step : strip.Gap) : kHexStep;
  FTempInfo.GapY = FTempInfo.Spec ? (mirror ? strip.Gap : strip.Step) : kHexStep;
  Offer(FResult2);
}

int TMaxCirclePacking::ProcessRest(int I, int J, std::uint8_t& AddMode) {
  const TCornerStrip& right = FStripsX[I];
  const TCornerStrip& above = FStripsY[J];
  const int inRight = (2 * J - 1) * right.Lines / 2;
  const int inAbove = (2 * I - 1) * above.Lines / 2;
  AddMode = cmPlainOrStretchedX;
  int count = inRight + inAbove;
  if (right.Loose) {
    AddMode = cmLooseX;
    count = (right.Lines * FHalvesY + 1) / 2 + inAbove;
  }
  if (above.Loose && (above.Lines * FHalvesX + 1) / 2 + inRight > count) {
    AddMode = cmLooseY;
    count = (above.Lines * FHalvesX + 1) / 2 + inRight;
  }
  if (AddMode != cmPlainOrStretchedX) return count;
  if (right.Rise + (FHalvesY - 2 * J - 2) * right.Step <= above.Width + kWholeTol) {
    FTempInfo.Spec = true;
    count = right.Lines * FHalvesY / 2 + inAbove;
  }
  if (above.Lines * FHalvesX / 2 + inRight > count &&
      above.Rise + (FHalvesX - 2 * I - 2) * above.Step <= right.Width + kWholeTol) {
    AddMode = cmStretchedY;
    FTempInfo.Spec = true;
    count = above.Lines * FHalvesX / 2 + inRight;
  }
  return count;
}

void TMaxCirclePacking::Add3() {
  const TPlaceInfo& info = FPlaceInfo;
  const TPoint2D origin{info.SquareNum - 0.5, info.SquareNum2 - 0.5};
  const TCornerPen right{FResultPt, origin, false};
  const TCornerPen above{FResultPt, origin, true};
  AddSqu(info.SquareNum, info.SquareNum2);
  switch (info.AddMode) {
    case cmHand: {
      const bool mirror = info.Rows > info.Columns;
      AddPlainStrip(right, info.Rows, info.SquareNum2, mirror);
      AddPlainStrip(above, info.Columns, info.SquareNum, !mirror);
      const auto [least, most] = std::minmax({info.Rows, info.Columns});
      for (const TPoint2D& point : HandCorner(least, most)) (mirror ? above : right).Add(point.X, point.Y);
      break;
    }
    case cmLooseX:
      AddLooseStrip(right, info.Rows, info.SquareNum2, FHalvesY);
      AddPlainStrip(above, info.Columns, info.SquareNum, false);
      break;
    case cmLooseY:
      AddLooseStrip(above, info.Columns, info.SquareNum, FHalvesX);
      AddPlainStrip(right, info.Rows, info.SquareNum2, false);
      break;
    default:
      AddStretchedCorner();
  }
}

// The strip at the right stretched, or with cmStretchedY the one above, or none; the other one plain.
void TMaxCirclePacking::AddStretchedCorner() {
  const TPlaceInfo& info = FPlaceInfo;
  const TPoint2D origin{info.SquareNum - 0.5, info.SquareNum2 - 0.5};
  const bool mirror = info.AddMode == cmStretchedY;
  const TCornerPen along{FResultPt, origin, mirror};
  const TCornerPen across{FResultPt, origin, !mirror};
  const int lines = mirror ? info.Columns : info.Rows;
  const int length = mirror ? info.SquareNum : info.SquareNum2;
  AddPlainStrip(across, mirror ? info.Rows : info.Columns, mirror ? info.SquareNum2 : info.SquareNum, false);
  if (!info.Spec) return AddPlainStrip(along, lines, length, false);

  const TCornerStrip strip = MeasureStrip(mirror ? FBound.Y - info.SquareNum2 : FBound.X - info.SquareNum);
  const double spread = strip.Width / lines;
  const double first = std::sqrt(1 - spread * spread);
  for (int line = 1; line <= lines; ++line) along.AddLine(spread * line, line % 2 == 1 ? first : 0.0, length);
  const int halvesAbove = (mirror ? FHalvesX : FHalvesY) - 2 * length;
  for (int half = 0; half < halvesAbove; ++half)
    for (int line = half % 2 == 0 ? 2 : 1; line <= lines; line += 2)
      along.Add(1 + strip.Gap * (line - 1), strip.Rise + strip.Step * (half - 1));
}

}  // namespace platenest
