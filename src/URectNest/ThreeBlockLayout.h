#pragma once

#include <span>
#include <vector>

#include "ThreeBlockScan.h"
#include "platenest/URectNest/RectRecords.h"

// Lays candidates of a three-block scan out.
namespace platenest::detail {

struct TTrial {
  TNestedRects List;
  double Dec = 0;  // minus the worth of the copies that the scan counted on and that are not in the list
};

class TThreeBlockLayout {
 public:
  // Parts are the rectangles as they are, by position. Allowance is what the scan's sizes lack of the part with its
  // whole gap, on either axis. Scan and Parts must outlive the layout.
  TThreeBlockLayout(const TThreeBlockScan& Scan, const TNestRectList& Parts, double Allowance)
      : FScan(Scan), FParts(Parts), FAllowance(Allowance) {}

  // With all that the scan counted on, each block in its corner between the cuts. Both operations raise TRangeError for
  // more than kMostPlacements copies.
  TNestedRects LayOut(const TRectInfo& Info) const;
  // With at most Demand copies of each size. A stack that runs out of demand stays shorter, and the second and third
  // block move up against what was really placed, though never past the cuts.
  TTrial AddParts(const TRectInfo& Info, std::vector<int> Demand) const;

 private:
  // What is still to be placed and what was.
  struct TProgress {
    std::vector<int> Demand;
    TNestedRects List;
    double FDecAera = 0;  // of all blocks so far
  };

  void Reserve(std::span<const TBlock> Blocks, TProgress& Progress) const;
  // Returns the upper right corner of what was placed, the gap included.
  TPoint2D LayBlock(const TBlock& Block, TPoint2D Corner, TProgress& Progress) const;
  TNestedRect Placed(TStackCode Code, TPoint2D Corner) const;

  const TThreeBlockScan& FScan;
  const TNestRectList& FParts;
  double FAllowance;
};

}  // namespace platenest::detail
