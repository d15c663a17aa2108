#pragma once

#include <memory>

#include "platenest/colgen/RectPattern.h"
#include "platenest/uBCPBase/BCPProblem.h"

namespace platenest {

extern template class PLATENEST_API TBCPProblem<TRectPattern>;

// Cutting stock on one kind of plate: a row for each size, at least Amount copies of it, as few plates as can be.
// Gilmore and Gomory, Multistage Cutting Stock Problems of Two and More Dimensions, 1965. Lengths are plate units.
class PLATENEST_API TRectNestProblem : public TBCPProblem<TRectPattern> {
 public:
  // The main problem. It keeps the rectangles with an amount above 0 that are smaller than the plate on both sides by
  // more than 1e-6, turned or not: one that equals the plate in a side is left out on purpose, and what calls this
  // places it by other means. Idx of a row is its position in ARects, which is its row number only as long as nothing
  // was left out.
  TRectNestProblem(const TNestRectList& ARects, const TVRect2D& APlate, double AGap);
  // The sub-problem over the rows ARowDict of ARects with the demand ANumVec; rows without demand vanish. A row keeps
  // its Idx. TAssertionError for vectors of different lengths and for a row that does not exist.
  TRectNestProblem(const TNestRectList& ARects, const TVRect2D& APlate, double AGap, const TIntegerDynArray& ARowDict,
                   const TIntegerDynArray& ANumVec);
  ~TRectNestProblem() override;

  // The rows: Amount is the demand, Area the worth of one copy once SetDualCost has run.
  const TNestRectList& Rects() const { return FRects; }
  const TVRect2D& Plate() const { return FPlate; }
  double Gap() const { return FGap; }

  // A row with a dual of 1e-5 or less becomes worth 1.0, whatever Amp is, so that nesters go on filling a plate with
  // it. With an Amp below 1e5 this is more than what a dual just above 1e-5 gives. TAssertionError unless there is a
  // dual for each row.
  void SetDualCost(const TDoubleDynArray& AWVec, double Amp) override;
  // The area of the box. TAssertionError for a row that does not exist.
  double GetDefaultDualCost(int AIdx) const override;
  using TBCPProblem<TRectPattern>::GetSubBCPProblem;
  std::unique_ptr<TBCPProblem<TRectPattern>> GetSubBCPProblem(const TIntegerDynArray& ARowDict,
                                                              const TIntegerDynArray& ANumVec) const override;

 private:
  TRectNestProblem(TNestRectList ARows, const TVRect2D& APlate, double AGap, bool IsMainProb);

  TNestRectList FRects;
  TVRect2D FPlate;
  double FGap;
};

}  // namespace platenest
