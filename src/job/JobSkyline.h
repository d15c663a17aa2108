#pragma once

#include <span>
#include <utility>
#include <vector>

#include "JobSizes.h"
#include "WholeUnits.h"
#include "platenest/URectNest/RectRecords.h"

// A quick fill of one plate, made to be called some ten thousand times a second.
namespace platenest::detail {

// A copy on a plate, in whole units and with the gap on its upper and right side.
struct TSkyPlaced {
  int Part = 0;  // position in TJobSizes::Parts
  bool IsTurned = false;
  double X = 0;  // lower left corner
  double Y = 0;
};

using TSkyLayout = std::vector<TSkyPlaced>;

// What a pass prefers.
struct TSkyTaste {
  std::span<const int> Order;    // parts to take, by falling key
  std::span<const double> Keys;  // by part
  double FitBonus = 0;           // added to a key for each side on which the copy fits exactly
  bool IsFlipped = false;        // columns from the left instead of rows from below
};

// Best-fit skyline placement (Burke, Kendall and Whitwell 2004; Wei, Zhang and Lim 2011): the lowest step of the
// outline takes the part with the best key, which is raised where the part fits the step exactly; a step that takes
// nothing is filled up to its lower neighbour. Turning locks are kept. Sizes are whole units, so exact fits are exact.
class TSkyline {
 public:
  explicit TSkyline(const TJobSizes& Sizes);

  // Adds to Layout, which is empty, as many copies as fit, no more than Left of each, and takes them off Left. A stop
  // ends it, but not before the first copies. Cost: parts in the order times copies placed, at the worst.
  void Fill(int Plate, const TSkyTaste& Taste, std::vector<int>& Left, TSkyLayout& Layout);
  TNestedRects LayoutOf(const TSkyLayout& Layout) const;
  bool Holds(int Plate, int Part) const;
  // Looks at parts since the last call.
  double TakeWork() { return std::exchange(FWork, 0.0); }

 private:
  struct TSize {
    double Width = 0;
    double Height = 0;
  };
  struct TStep {
    double X = 0;
    double Y = 0;
    double Width = 0;
  };
  // The room above a step and the walls beside it.
  struct TNiche {
    double Width = 0;
    double Height = 0;
    double LeftWall = 0;
    double RightWall = 0;
  };
  struct TChoice {
    int Part = -1;
    bool IsTurned = false;
    double Score = 0;
    TSize Extent;
  };

  int LowestStep() const;
  TNiche NicheAt(int Step, double PlateHeight) const;
  TChoice Choose(const TNiche& Niche, const TSkyTaste& Taste) const;
  void Lift(int Step, double Y);
  void Lay(int Step, bool AtRight, const TSize& Extent);
  void Join(int Step);

  const TJobSizes& FSizes;
  TWholeUnits FUnits;
  std::vector<TSize> FPlates;  // grown by the gap
  std::vector<TSize> FParts;
  std::vector<TStep> FSteps;
  std::vector<int> FOpen;
  mutable double FWork = 0;
};

}  // namespace platenest::detail
