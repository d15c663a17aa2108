#include "platenest/URectNest/RecursiveFiveblockNest.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "FiveblockDrawing.h"
#include "FiveblockPoints.h"
#include "FiveblockRules.h"
#include "FiveblockSearch.h"
#include "platenest/URectNest/BarnesBound.h"
#include "platenest/URectNest/RectJostler.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

using namespace detail;

namespace {

constexpr int kNoLimit = std::numeric_limits<int>::max();

[[noreturn]] void RaiseSizeError() {
  throw TRangeError("板材大小超出整数范围，请检查有效位数");
}

// A whole number of units.
int Units(double Whole, double Least, double Most) {
  if (!(Whole >= Least && Whole <= Most)) RaiseSizeError();
  return Trunc<int>(Whole);
}

int PowerOfTen(int Digit) {
  int power = 1;
  for (int i = 0; i < Digit; ++i) {
    if (power > kMostUnits / 10) RaiseSizeError();
    power *= 10;
  }
  return power;
}

int SecondsOf(int ALevel) {
  return static_cast<int>(std::clamp<Int64>(ALevel * kSecondsPerLevel + kSecondsAtLevelZero, kLeastSeconds, kNoLimit));
}

// The table has one row more than there are points, behind the last one.
Int64 CellsOf(const TFiveblockPoints& Points) {
  return (Int64{Points.Rows()} + 1) * Points.Columns();
}

bool IsTooLarge(Int64 Cells, int TimeLimit) {
  const double cells = static_cast<double>(Cells);
  return TimeLimit <= cells * cells * kSecondsPerSquaredCell || Cells > kMostCells;
}

}  // namespace

TRecursiveFiveblockNest::TRecursiveFiveblockNest(const TVRect2D& Plate, const TNestRect& PartRect, double Gap,
                                                 int Digit)
    : FAmp(PowerOfTen(Digit)), FRect(PartRect), FOriPlate(Plate.Translate({-Plate.Left, -Plate.Bottom})) {
  const TVRect2D grown = Plate.Inflate(Gap / 2).Translate({Gap / 2, Gap / 2});
  FProblem.L = Units(std::floor(std::max(grown.Width() * FAmp, 0.0)), 0, kMostUnits);
  FProblem.W = Units(std::floor(std::max(grown.Height() * FAmp, 0.0)), 0, kMostUnits);
  const double halfGap = RoundHalfEven(FAmp * Gap / 2);
  if (!(std::fabs(halfGap) <= kMostUnits)) RaiseSizeError();
  FGap = Round<int>(halfGap);
  FRotate = FProblem.L < FProblem.W;
  if (FRotate) std::swap(FProblem.L, FProblem.W);
  const auto unitsOf = [&](double side) {
    const double units =
        FGap == 0 ? std::ceil(RoundTo(side, kSizeDigit) * FAmp) : RoundHalfEven(side * FAmp + 2.0 * FGap);
    return Units(units, 1, kMostRectUnits);
  };
  FProblem.A = unitsOf(PartRect.BoundBox.Width());
  FProblem.B = unitsOf(PartRect.BoundBox.Height());
}

int TRecursiveFiveblockNest::SingleNest(TNestedRects& AResultList, int AMaxDepth, int ALevel) const {
  TNestedRects drawn;
  const int count = SolveBD(drawn, AMaxDepth > 0 ? AMaxDepth : kNoLimit, SecondsOf(ALevel));
  if (FGap > kMostJostledGap)
    AResultList.AddRange(drawn);
  else
    TRectJostler::TryJostle(drawn, AResultList, FOriPlate, 0, true, true, kJostleTol);
  return count;
}

Int64 TRecursiveFiveblockNest::BarnesUpbound(double L, double W, double A, double B) {
  return platenest::BarnesUpbound(L, W, A, B);
}

int TRecursiveFiveblockNest::SolveBD(TNestedRects& List, int NMax, int TimeLimit) const {
  const auto& [L, W, A, B] = FProblem;
  const TFiveblockPoints points(L, W, A, B);
  TFiveblockBudget budget(TimeLimit);
  const auto draw = [&](Int64 count, const TCutOf& cutOf) {
    if (count > kNoLimit) throw TRangeError("[Error] TRecursiveFiveblockNest: more rectangles than can be counted");
    List.clear();
    List.reserve(static_cast<std::size_t>(count));
    const int width = FRotate ? points.W() : points.L();
    const int height = FRotate ? points.L() : points.W();
    DrawFiveblock(width, height, points, {A, B, FGap, FAmp, FRect}, cutOf, List);
    return static_cast<int>(count);
  };

  if (IsTooLarge(CellsOf(points), TimeLimit)) {
    const auto best = SolveByOneGuillotineCut(points, A, B, budget);
    if (!best) return 0;
    return draw(best->Count, [&](int l, int w) {
      const bool isPlate = l == points.L() && w == points.W();
      return isPlate ? best->Cut : TCutPoint(0, 0, 0, 0, 1);
    });
  }

  budget.Start();
  TFiveblockSearch search(points, A, B, NMax, budget);
  const TCutOf cutOf = [&search](int l, int w) { return search.CutOf(l, w); };
  const std::optional<int> first = search.Solve(NMax);
  if (!first || budget.IsTimeOver()) return 0;
  int count = draw(*first, cutOf);
  if (RectNestStopped() || *first == search.UpperBound() || NMax == 1) return count;
  const std::optional<int> second = search.Solve(1);
  if (second && !budget.IsTimeOver()) count = draw(*second, cutOf);
  return count;
}

}  // namespace platenest
