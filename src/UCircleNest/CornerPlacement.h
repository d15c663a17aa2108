#pragma once

#include <algorithm>
#include <cmath>

#include "platenest/UCircleNest/CirclePacking.h"

// Geometry of corner positions. All radii are working radii, all positions are centres, in working coordinates.
namespace platenest::detail {

// Up to two centres.
struct TCenters {
  int Count = 0;
  TPoint2D Points[2];
};

// The line that the centre of a circle follows along one edge of the plate, x or y fixed at Level. Forward is 1 where
// the line runs in the direction of its axis, -1 against it, 0 where it is a mere point and gives no direction.
struct TOffsetLine {
  double Level = 0;
  int Forward = 1;
  bool Horizontal = true;
};

// The lines of a circle of this radius along bottom, left, right and top, in this order.
struct TOffsetLines {
  TOffsetLine Lines[4];
  TOffsetLines(const TVRect2D& Rect, double Radius);
};

// Centres on Line at distance Reach from Center, in the direction of the line; one where the line touches within 1e-6.
TCenters CentersOnLine(const TOffsetLine& Line, const TPoint2D& Center, double Reach);

// Two placed circles, and the centres of circles that touch both.
struct TCirclePair {
  TPoint2D P1;
  TPoint2D Between;  // from the first centre to the second
  double R1 = 0;
  double R2 = 0;
  double Distance = 0;
  double Inverse = 0;
  double Slope = 0;

  TCirclePair() = default;
  TCirclePair(double AR1, double AR2, const TPoint2D& AP1, const TPoint2D& AP2)
      : P1(AP1), Between(AP2 - AP1), R1(AR1), R2(AR2), Distance(Between.Mag()) {
    Inverse = 1 / Distance;
    Slope = (R1 - R2) * 0.5 * Inverse * Inverse;
  }

  // Centres of circles of radius R: none where the two are too far apart or in one place, one where they are a diameter
  // apart within 1e-6, else two, the first left of the way from the first circle to the second.
  TCenters Centers(double R) const {
    const double span = 2 * R + R1 + R2;
    if (fGreat(Distance, span) || !(Distance > 0)) return {};
    const double reach = (R + R1) * Inverse;
    if (fEqual(Distance, span)) return {1, {P1 + Between * reach, {}}};
    // Foot of both centres on the line of the circles, and the half chord, in units of the distance.
    const double foot = 0.5 + Slope * span;
    const double half = std::sqrt(std::max(0.0, (reach - foot) * (reach + foot)));
    const TPoint2D middle = P1 + Between * foot;
    const TPoint2D left = Between.RotateCcw90() * half;
    return {2, {middle + left, middle - left}};
  }
};

// Tried positions of the run on this thread, against a limit; see TStepScope.
class TStepCount {
 public:
  explicit TStepCount(Int64 Limit) noexcept : FLimit(Limit) {}
  void Add(Int64 Steps) noexcept { FDone += Steps; }
  bool Spent() const noexcept { return FLimit > 0 && FDone >= FLimit; }
  Int64 Done() const noexcept { return FDone; }

 private:
  Int64 FLimit;
  Int64 FDone = 0;
};

// While it lives, the corner search on this thread counts each tried position, and counts as stopped once Limit of them
// are done; a Limit of 0 or less only counts. Scopes nest, the innermost counts. One per worker.
class TStepScope {
 public:
  explicit TStepScope(Int64 Limit) noexcept;
  ~TStepScope();
  TStepScope(const TStepScope&) = delete;
  TStepScope& operator=(const TStepScope&) = delete;
  Int64 Done() const noexcept { return FCount.Done(); }

 private:
  TStepCount FCount;
  TStepCount* FFormer;
};

// The innermost count of this thread, nullptr if there is none.
TStepCount* CurrentStepCount() noexcept;

}  // namespace platenest::detail
