#include <algorithm>
#include <limits>
#include <string>

#include "RskfBoxes.h"
#include "RskfDrivers.h"
#include "platenest/URectNest/RSKF.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

using namespace detail;

namespace {

struct TBigBlock {
  TNestedRects Copies;
  TPoint2D Corner;  // upper right, half a gap beyond the copies
};

int CopiesAlong(double Length, double Side) {
  return Trunc<int>(std::min(Length / Side, 1.0 * std::numeric_limits<int>::max()));
}

// The block of copies in the lower left corner of a plate that reaches half a gap beyond it, turned unless more fit
// unturned.
TBigBlock BigBlockOf(const TNestRect& Rect, const TVRect2D& Plate, double Gap) {
  TBigBlock block{{}, Plate.GetBottomLeft()};
  const double w = Rect.BoundBox.Width() + Gap;
  const double h = Rect.BoundBox.Height() + Gap;
  const bool isProper = Rect.BoundBox.Width() > 0 && Rect.BoundBox.Height() > 0 && w > 0 && h > 0;
  if (!isProper) return block;

  const int amount = std::max(Rect.Amount, 0);
  const TGridPair straight = LargestGrid(CopiesAlong(Plate.Width(), w), CopiesAlong(Plate.Height(), h), amount);
  const TGridPair turned = LargestGrid(CopiesAlong(Plate.Height(), w), CopiesAlong(Plate.Width(), h), amount);
  if (straight.Copies() > turned.Copies()) {
    for (int i = 0; i < straight.First; ++i)
      for (int j = 0; j < straight.Second; ++j) block.Copies.emplace_back(Rect, false, TPoint2D{i * w, j * h});
    block.Corner = {straight.First * w - Gap / 2, straight.Second * h - Gap / 2};
    return block;
  }
  for (int i = 0; i < turned.Second; ++i)
    for (int j = 0; j < turned.First; ++j) block.Copies.emplace_back(Rect, true, TPoint2D{(i + 1) * h - Gap, j * w});
  block.Corner = {turned.Second * h - Gap / 2, turned.First * w - Gap / 2};
  return block;
}

}  // namespace

TGridPair detail::LargestGrid(int MostFirst, int MostSecond, int Amount) {
  if (Amount >= Int64{MostFirst} * MostSecond) return {MostFirst, MostSecond};
  TGridPair best;
  for (int a = std::min(MostFirst, Amount); best.Copies() < Amount && Int64{a} * MostSecond > best.Copies(); --a) {
    const TGridPair grid{a, std::min(MostSecond, Amount / a)};
    if (grid.Copies() > best.Copies()) best = grid;
  }
  return best;
}

double TRSKF::RunBigFirstNest(TNestedRects& AResultList, int BigRect, bool ACanRotate, bool ANormalPattern) {
  if (BigRect < 0 || BigRect >= Size(FRects))
    throw TRangeError("[Error] TRSKF.RunBigFirstNest: rectangle " + std::to_string(BigRect) + " out of range");
  if (FTimeLimit > 0) FSW->Start();

  TBigBlock block = BigBlockOf(FRects[BigRect], FPlate, FGap);
  const int count = block.Copies.Count();
  TNestedRects rest;
  const double restArea = NestLShape(block.Corner, BigRect, count, ACanRotate, ANormalPattern, rest);
  block.Copies.AddRange(rest);
  AResultList.AddRange(block.Copies);
  // What the filling adds is lost: free areas that only it would use stay empty.
  TryFilling(rest);
  return FRects[BigRect].BoundBox.Area() * count + restArea;
}

//      first split       second split
//     +---+------+      +----------+
//     | A |      |      |    B     |
//     |   |  B   |      |          |
//     +---P      |      +---P------+
//     |   |      |      |   |  A   |
//     +---+------+      +---+------+
double TRSKF::NestLShape(const TPoint2D& Corner, int BigRect, int Count, bool ACanRotate, bool ANormalPattern,
                         TNestedRects& List) {
  const auto nestSplit = [&](const TVRect2D& a, const TVRect2D& b) {
    TNestRectList rects = FRects;
    rects[BigRect].Amount -= Count;
    TNestedRects list;
    NestArea(a.Inflate(-FGap / 2), rects, ACanRotate, ANormalPattern, list);
    NestArea(b.Inflate(-FGap / 2), rects, ACanRotate, ANormalPattern, list);
    return list;
  };
  const TVRect2D above(FPlate.GetTopLeft(), Corner);
  const TNestedRects first = nestSplit(above, {above.GetTopRight(), FPlate.GetBottomRight()});
  const TVRect2D beside(Corner, FPlate.GetBottomRight());
  const TNestedRects second = nestSplit(beside, {beside.GetTopRight(), FPlate.GetTopLeft()});
  const double firstArea = PlacedArea(first);
  const double secondArea = PlacedArea(second);
  const bool isFirstBetter = firstArea > secondArea;
  List.AddRange(isFirstBetter ? first : second);
  return isFirstBetter ? firstArea : secondArea;
}

void TRSKF::NestArea(const TVRect2D& Area, TNestRectList& Rects, bool ACanRotate, bool ANormalPattern,
                     TNestedRects& List) const {
  if (!(Area.Width() > 0 && Area.Height() > 0) || RectNestStopped()) return;
  TNestedRects nested;
  TRSKF(Area, Rects, FGap, FTimeLimit, *FSW, FDigit).RunMultiRectNest(nested, ACanRotate, ANormalPattern);
  for (TNestedRect& item : nested) {
    item.Trans = item.Trans + Area.GetBottomLeft();
    --Rects[item.Part.Idx].Amount;
  }
  List.AddRange(nested);
}

}  // namespace platenest
