#pragma once

#include "platenest/URectNest/RectRecords.h"
#include "platenest/foundation/Clock.h"

namespace platenest {

// Nests many sizes on one plate as a two-dimensional guillotine knapsack over raster points. FRAME: its owners complete
// comments and private members.
class PLATENEST_API TRSKF {
 public:
  // ATimeLimit in seconds, 0 for none.
  TRSKF(const TVRect2D& APlate, const TNestRectList& ARects, double AGap, double ATimeLimit, int Digit,
        bool WeightedProblem);
  ~TRSKF();
  TRSKF(const TRSKF&) = delete;
  TRSKF& operator=(const TRSKF&) = delete;

  // Part.Idx of a placement is the position in ARects.
  double RunMultiRectNest(TNestedRects& AResultList, bool ACanRotate, bool ANormalPattern);
  double RunBigFirstNest(TNestedRects& AResultList, int BigRect, bool ACanRotate, bool ANormalPattern);

 private:
  // The child form: shares the caller's stopwatch and budget in milliseconds; unweighted.
  TRSKF(const TVRect2D& APlate, const TNestRectList& ARects, double AGap, double ABudgetMs, TStopwatch& ASW, int Digit);
};

}  // namespace platenest
