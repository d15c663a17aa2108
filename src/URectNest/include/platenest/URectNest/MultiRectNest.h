#pragma once

#include <memory>
#include <vector>

#include "platenest/URectNest/RectRecords.h"

namespace platenest {

namespace detail {
class TThreeBlockScan;
struct TBlockCounts;
struct TStackRect;
}  // namespace detail

// Fills one plate with several sizes in three blocks of whole stacks of equal rectangles: fast and coarse.
//
//     +--------+----------+
//     |        |  third   |     One cut across the plate, along either axis, and one across what it leaves. Each block
//     | first  +----------+     holds rows or columns, as many copies each as fit side by side, which a bounded
//     |        |  second  |     knapsack chooses. Cuts stand at reduced raster points (Scheithauer and Terno 1996),
//     +--------+----------+     thinned to 40 and fewer on the longer side.
//
// Lengths are plate units; blocks and stacks are measured in whole ones, so that sizes with a fraction lose the rest to
// the next unit. Choose units in which parts are hundreds long.
//
// A plate that is not finite and positive, a gap that is not finite and a gap below 0 that eats the plate up hold
// nothing. A rectangle that is not finite and positive, or whose worth is not finite where it counts, has an amount of
// 0, as has one with an amount below 0.
//
// One object per problem, and one thread at a time; objects are independent of each other. Blocks are remembered as
// long as the object lives, under the demand of the run that met them first: a second run repeats what the first one
// found or works with its blocks, and may differ from the run of a fresh object.
class PLATENEST_API TMultiRectNest {
 public:
  // MinURate is the usage below which a result is poor; below 0.88 it acts as 0.88, above there is no limit to it.
  // ConstArea: a copy is worth its Area; otherwise, the area of its box with the gap. Worths below 0 are never taken,
  // sums of them are rounded up to whole ones within a stack, and layouts within 2.5e-5 of the plate's area in worth
  // count as equal, so stated worths should be of the order of areas: a whole layout worth less than that is not found.
  // Cost: linear.
  TMultiRectNest(const TVRect2D& Plate, const TNestRectList& PartRects, double Gap, double MinURate, bool ConstArea);
  ~TMultiRectNest();

  // Both runs replace ResultList and return the usage: what the placed copies are worth, divided by the area of the
  // plate with its gap. Part of a placement is the rectangle given, with its position in the list as Idx. Copies keep
  // Gap, less at most 2e-6 where a size with its gap misses the room that it is given by no more than that.
  // RectNestTerminated and the stop token of the thread end a scan, and what was found so far is laid out.
  //
  // TRangeError, with the arguments unchanged, for a plate above 1e9, worths beyond 2^61 on it and knapsacks of more
  // than 1 GiB. Cost: that of the raster in the first run, and two knapsacks for each distinct block, of which there
  // are at most four for each pair of raster points.

  // At most Amount copies of each. Status: 0 good; 1 poor; 2 for a demand that covers less than nine tenths of the
  // plate, where nothing is tried and the list is empty. 1 is a success for those who price patterns: the usage of
  // stated worths means nothing. The list can be empty with every status. A worth counts as the scan saw it, so stacks
  // of fractional worth make the usage a little too high.
  // Raises "Error In FUNC[TMultiRectNest.ShapeRectNestWithAmt]", with the cause nested in it and the arguments
  // unchanged, when no layout can be made of what the scan found: out of memory or above ten million copies.
  double ShapeRectNestWithAmt(TNestedRects& ResultList, int& Status);
  // Whatever the amounts are, though at most 99999 copies of a size in a block. Success: not poor. TRangeError also for
  // more than ten million copies.
  double ShapeRectNest(TNestedRects& ResultList, bool& Success);

  // The work done so far, for benchmarks.
  const detail::TBlockCounts& Counts() const;

 private:
  void AddRect(const TNestRect& Rect, double Gap, bool ConstArea);
  void PrepareScan();
  double TryCandidates(TNestedRects& Best) const;
  bool IsPoor(double Usage) const { return Usage < FMinRate; }

  double FMinRate;
  double FL;  // the plate with its gap
  double FW;
  double FAllowance;  // what the grown sides lack of the whole gap
  double FTotalArea = 0;
  TNestRectList FInitRect;
  std::vector<detail::TStackRect> FRect;           // the same with the gap; empty where nothing fits
  std::vector<int> FDemand;                        // of each size, 0 for what cannot be placed
  std::vector<int> FUnlimited;                     // the same where amounts do not count
  std::unique_ptr<detail::TThreeBlockScan> FScan;  // made by the first run that needs it
};

}  // namespace platenest
