#pragma once

#include <utility>
#include <vector>

#include "platenest/URectNest/RectRecords.h"

namespace platenest {

// Nests rectangles of several sizes on one plate by a best-fit greedy over maximal free rectangles, repeated under up
// to thirty forms of the fit function; the best layout wins. Lengths are plate units, y up; the plate counts from its
// lower left corner, wherever it lies.
//
// One pass puts a rectangle at a time where it fits a free rectangle best, into the corner with the longest contact,
// and pushes all to the left in the end. Nothing whose fit is 0 or below is ever placed, so a pass may leave out what
// would fit. The thresholds of the free rectangles are in absolute units (0.0001, 0.01 and a whole unit of overhang
// given away), so jobs should be scaled to sizes of at least tens.
//
// Nothing raises. A rectangle whose sides are not finite and positive, with and without the gap, is left alone; on a
// plate that is not finite and positive, or with a gap that is not finite, the layout is empty. A gap below 0 lets
// rectangles overlap by that much. A stop (RectNestStopped) is obeyed between placements and passes and leaves the best
// layout so far, which is valid.
// One object for one thread at a time, different ones on any thread.
// Cost of a placement: O(p * s + p * f + n) for p new and f free rectangles, s sizes and n placed ones.
// Related: Huang, Chen and Xu (2007), placements that occupy corners, rated by a degree of fit.
class PLATENEST_API TRectNestSmart {
 public:
  // Amounts below 0 have no end. More than 100 copies of a part whose larger side is below a twentieth of the plate's
  // smaller side are left out altogether, not only those above 100. MinURate: the usage that counts as success.
  TRectNestSmart(const TVRect2D& Plate, const TNestRectList& PartRects, double Gap, double MinURate);

  // Parts that keep their turn, by position; shorter than the list means any turn for the rest. Call before OutNest.
  void LockTurns(std::vector<bool> Locked) { FLocked = std::move(Locked); }

  // Replaces ResultList by the best layout, in ascending order of left sides as they were before the last push, and
  // returns its usage: the share of the plate under rectangles, both grown by half the gap on each side. Part.Idx of a
  // placement is the position in PartRects. Success: the usage reaches MinURate. Of equal usages within 1e-6 the layout
  // with the smaller bounding box wins.
  // Between passes the clock decides whether another one is worth it: the worse the layout so far, the longer the
  // search goes on, up to 50 s for the first twelve and 7.5 s for the rest. A pass itself reads no clock. From the
  // fourth on passes run only while the usage is at most 0.985. Equal jobs give equal answers as long as time does not
  // cut them. A second call starts afresh.
  double OutNest(TNestedRects& ResultList, bool& Success);

 private:
  TNestRectList FInitPart;  // numbered by position
  std::vector<bool> FLocked;
  TVRect2D FPlate;  // grown and moved to the origin
  double FGap;
  double FRate;
  double FMin = 999999.0;  // smallest side of all grown rectangles, the left-out ones included
  bool FUsable = false;
};

}  // namespace platenest
