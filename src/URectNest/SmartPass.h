#pragma once

#include <vector>

#include "FreeRectangles.h"
#include "SmartFit.h"
#include "platenest/URectNest/RectRecords.h"

// One best-fit greedy over maximal free rectangles. Placed boxes carry half the gap on each side and so does the plate:
// boxes that touch keep exactly the gap between the real rectangles, and these may lie on the real edge of the plate.
// In a pass Trans is the lower left corner of a placement, turned or not.
namespace platenest::detail {

// Half of Gap wider on all sides, with the lower left corner at the origin.
TVRect2D SmartGrown(const TVRect2D& Box, double Gap);

// A real rectangle on the plate, from a placement whose Trans is its lower left corner.
TVRect2D SmartPlaced(const TNestedRect& Item);

// How far A may move left up to B, before the gap; kSmartFarAway when they do not face each other up to Gap.
inline constexpr double kSmartFarAway = 99999.0;
double CanLeftDis(const TVRect2D& A, const TVRect2D& B, double Gap);

// Moves placements left one after the other, in ascending Trans.X, each up to Gap from those that it faces among the
// earlier ones, or to 0. With any earlier one that it does not face, none moves by more than kSmartFarAway less Gap.
// Cost: O(n log n) for n placements, times those that lie side by side.
void ShiftLeft(TNestedRects& List, double Gap);

class TSmartPass {
 public:
  // Least: the smallest side of all grown boxes. Plate is grown, too, and begins at the origin. A part with an amount
  // below 0 has no end; parts whose Locked is set are never turned. The list must outlive the pass.
  TSmartPass(const TNestRectList& Parts, const std::vector<bool>& Locked, const TVRect2D& Plate, double Gap,
             double Least);

  // Fills ResultList anew by the fit of Form; returns the share of the grown plate under grown boxes. Each call starts
  // from the empty plate and the full amounts. A stop ends it at the next placement.
  double Nest(int Form, TNestedRects& ResultList);

  // Free rectangles looked at by all calls of Nest so far: the lists' lengths, added up over the placements.
  Int64 FreeSeen() const { return FFreeSeen; }

  // Sets Box, which begins at the origin and fits, into the corner of Free with the most contact; the first of equals
  // up to 1e-6 wins.
  struct TLean {
    TPoint2D Point;  // its lower left corner
    int Corner = 0;  // opposite to the one it stands in, as TFreeRectangles::Place counts
  };
  TLean ChooseLean(const TVRect2D& Free, const TVRect2D& Box);

 private:
  struct TPlacement {
    int Part = 0;
    bool IsRotate = false;
    TPoint2D Point;
  };

  void Reset(int Form);
  TVRect2D WorkBox(int Part, bool IsRotate) const;
  int BestFree();
  bool ChoosePartAndPlate(TPlacement& Placement);
  void TakeOne(int Part);
  double GetLength(const TVRect2D& Box) const;

  const TNestRectList& FParts;
  const std::vector<bool>& FLocked;
  TVRect2D FPlate;
  double FGap;
  double FLeast;
  TSmartFit FFit;
  std::vector<TVRect2D> FBoxes;  // grown, at the origin
  std::vector<int> FAmounts;
  std::vector<TSmartTrial> FTrials;  // of the parts that are left, in their order, unturned first
  TFreeRectangles FFree;
  Int64 FFreeSeen = 0;
  std::vector<TVRect2D> FPlaced;  // the real rectangles of this pass
  std::vector<TVRect2D> FNear;    // those of them that touch the free rectangle at hand
};

}  // namespace platenest::detail
