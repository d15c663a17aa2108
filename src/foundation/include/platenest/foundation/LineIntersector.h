#pragma once

#include <limits>
#include <vector>

#include "platenest/foundation/Line2D.h"

namespace platenest {

// Where two lines of a list meet.
struct TLineHit {
  int Line1 = -1;  // positions in the list, Line1 < Line2
  int Line2 = -1;
  TPoint2D Point;
};

// All crossings among segments, by a sweep from left to right (Bentley and Ottmann 1979). The ends are first rounded to
// 1e-7 drawing units (to the 2^-40th part of the extent where that is coarser); from there on every decision is made in
// exact integers, so that verticals, overlaps and many lines through one point are no special danger.
//
// Without IncludeEndpoints only crossings count where both lines go on beyond the point: a line that ends on another
// one, shared ends and overlapping pieces of parallel lines are no hits. With it, every end point that lies on another
// line is a hit as well; lines that overlap are told by the ends that lie within. Lines whose rounded ends are one
// point take no part.
//
// A NaN or infinite coordinate raises TRangeError. Cost: O((n + k) log n) for n lines and k hits, where a point that m
// lines share counts as m * m hits.
class PLATENEST_API TLineIntersector {
 public:
  TLineIntersector(TVLine2DList Lines, bool IncludeEndpoints);

  // With MostHits it stops as soon as there are so many: some of all, not the first ones of the order below. One point
  // may bring more than one of them.
  void FindInterSect(int MostHits = std::numeric_limits<int>::max());
  // Sorted by Line1, then Line2, then along the sweep: from left to right, upward at one x.
  const std::vector<TLineHit>& Intersections() const { return FIntersections; }

 private:
  TVLine2DList FLines;
  bool FIncludeEndpoints;
  std::vector<TLineHit> FIntersections;
};

}  // namespace platenest
