#pragma once

#include <memory>

#include "platenest/URectNest/RectRecords.h"
#include "platenest/uBCPBase/BCPSolution.h"
#include "platenest/uBCPBase/BCPVariable.h"

namespace platenest {

// One plate layout as a column of the cutting-stock LP: how many copies of each size it holds, at the price of a plate.
// Lengths are plate units. No state outside the object; one thread at a time while it is edited.
class PLATENEST_API TRectPattern : public TBCPVariable {
 public:
  // Part.Idx of every item is a row of the main problem. TArgumentError for one below 0.
  TRectPattern(TNestedRects ANestedRects, const TVRect2D& APlate);
  ~TRectPattern() override;

  // A pattern without plate, layout and column: what a pricing solver returns that has found none.
  static std::unique_ptr<TRectPattern> CreateEmpty();

  const TNestedRects& NestedRects() const { return FNestedRects; }
  // For callers that edit the layout; they call UpdateUsage afterwards.
  TNestedRects& NestedRects() { return FNestedRects; }
  const TVRect2D& Plate() const { return FPlate; }
  double TotalArea() const { return FTotalArea; }  // of the items' boxes, summed in the order of the list
  // TotalArea over the area of the plate, the gap left out; 0 on a plate without area.
  double Usage() const { return FUsage; }
  // Copies by row, up to the highest row in the layout; one 0 for an empty layout.
  const TDoubleDynArray& Column() const { return FColumn; }

  // Computes area, usage and column anew from the layout. On an error only these may be old.
  void UpdateUsage();

  // Built anew from layout and plate.
  std::unique_ptr<TBCPVariable> Clone() const override;
  double GetObjCoeff() const override;    // 1: every pattern costs a plate
  double GetActualCost() const override;  // Usage
  // The same copies of every size on a plate of the same size, turned by a quarter or not, with usages less than 0.001
  // apart. Where the items lie plays no part. Here and in Compare TAssertionError for another kind of column.
  bool IsSameWith(const TBCPVariable& AVar) const override;
  // Descending usage, so that the emptiest plate is the last one of a merged solution.
  int Compare(const TBCPVariable& Left, const TBCPVariable& Right) const override;
  // TAssertionError for an AVecSize below the length of Column.
  TDoubleDynArray GetColumn(int AVecSize) const override;

 private:
  TRectPattern() = default;
  void CalcUsage();
  void ConstructColumn();

  TNestedRects FNestedRects;
  TVRect2D FPlate;
  double FTotalArea = 0;
  double FUsage = 0;
  TDoubleDynArray FColumn;
};

using TRectSolution = TBCPSolution<TRectPattern>;

extern template class PLATENEST_API TBCPSolution<TRectPattern>;

}  // namespace platenest
