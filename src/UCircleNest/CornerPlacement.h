#pragma once

#include <span>
#include <vector>

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
