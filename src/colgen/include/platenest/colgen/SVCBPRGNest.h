#pragma once

#include <vector>

#include "platenest/colgen/RectPattern.h"
#include "platenest/uBCPBase/BCPStopWatch.h"

namespace platenest {

// Whole jobs plate by plate: each plate is filled by TSVCBPRGNestSingle with what remains and the layout repeated as
// often as demand and plates allow. The whole run is repeated with values corrected by the run before it (sequential
// value correction), and the best run is the answer. See TSVCBPRGNestSingle for units, decimals and limits.
//
// Plates of one size within 1e-6 count as one kind, in the order of their first appearance; each kind is used until its
// stock is out or it takes nothing more. Part.Idx of every item is the position in ARects. A part that cannot be
// placed, and an amount below 0, keep every run from meeting the demand.
//
// ATimeLimit in seconds, 0 or less for none, and RectNestStopped are looked at between plates, the latter within one
// too. TRangeError for more plates of one size than an int can count; otherwise nothing raises. Different objects on
// any thread. Cost: AG runs, each one fill for each pattern of its solution.
class PLATENEST_API TSVCBPRGNest {
 public:
  // SpecificValue: the Area of a part is the worth of a copy; otherwise its area to the power 1.05. AG runs are made.
  TSVCBPRGNest(TNestSpaceList APlates, TNestRectList ARects, double AGap, double ATimeLimit, bool SpecificValue,
               int AG);

  // The best run that met the demand exactly: fewest plates, then the emptiest last pattern, the first of equals. It
  // replaces what is in ASolution if that is empty or worse by the same measure; without such a run ASolution stays.
  void Nest(TRectSolution& ASolution) const;
  // Adds the solutions of all runs, in their order. The last one may leave demand open: it ends the runs.
  void NestAllRes(std::vector<TRectSolution>& ANestResultAll) const;

 protected:
  // AAll may be null.
  void NestMultiPlatesSVC(TRectSolution& ABest, std::vector<TRectSolution>* AAll, bool AKeepAll) const;

 private:
  TNestRectList WorkList() const;
  TRectSolution FillPlates(const TNestSpaceList& Spaces, TNestRectList& Work, const TBCPStopWatch& Watch) const;
  bool IsBetter(const TRectSolution& Solution, const TRectSolution& Best) const;

  TNestSpaceList FPlatesIn;
  TNestRectList FRectsIn;
  double FGapIn;
  double FTimeLimit;
  bool HasValue;
  int FGIn;
};

}  // namespace platenest
