#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "StripTable.h"

namespace platenest::detail {

// A box in its slot: Slot lies at (X, Y), and holds the box as it is or turned by a quarter.
struct TStripPlacement {
  int Box = 0;
  bool IsRotate = false;
  int X = 0;
  int Y = 0;
};

// The dynamic program over corner positions: at a state everything left of it and everything below it is laid out, and
// the next strip goes
//
//      +--+-----------+            +--+-----------+
//      |  |##|        |            |  |           |
//      |  |##|        |     or     |  |-----------+   each over the whole remaining height or length.
//      |  *##|        |            |  *###########|
//      +--------------+            +--------------+
//
// Strips laid side by side in one direction go in non-increasing widths, which leaves out mere exchanges of order. A
// state that is worth no more than the one before it on either axis spreads nothing. The table's value of a strip is
// only a filter: it does not know which copies are used up on the way, so each promising strip is counted again with
// what is left. The program keeps one way to each state and is a heuristic therefore.
//
// 16 bytes a state and up to 32 MB for the copies left at recent states. Cost: O(points * points * strips); the stop
// flag is polled for each column of states.
class TStripStates {
 public:
  // ATable and ABoxes stand on ARaster, which ends at the length and the width of the plate.
  TStripStates(const TIntBoxList& ABoxes, const TRaster& ARaster, const TStripTable& ATable);

  // After a stop the best state is the best that had been reached.
  void Run();
  // States that were worth more than their neighbours and tried all strips.
  Int64 Spread() const { return FSpread; }

  // Where the first state of the highest value is, by column, then by row.
  int BestX() const { return FRaster.RasterL[static_cast<std::size_t>(FBest / SizeW())]; }
  int BestY() const { return FRaster.RasterW[static_cast<std::size_t>(FBest % SizeW())]; }
  // The boxes on the way to the best state, last strip first. Copies beyond the amount of a box are left out, wherever
  // in the chain they turn up last.
  std::vector<TStripPlacement> GenerateNestedRects() const;

 private:
  // How a state was reached.
  struct TStep {
    int From;
    int Strip;
  };

  int SizeW() const { return FRaster.SizeW; }
  void FindBest();
  bool MakeReady(int LastColumn);
  // The first column not left of X, the last one beyond the plate.
  int ColumnAt(Int64 X) const {
    return FRaster.IndexL[static_cast<std::size_t>(std::min<Int64>(X, FRaster.RasterL.back()))];
  }
  void Visit(int I, int J);
  void SpreadVertical(int At, int I, int J, int MostWidth);
  void SpreadHorizontal(int At, int I, int J, int MostWidth);
  void Raise(int At, int Target, int Strip);
  Int64 TrueValue(int At, const TStrip& Strip);
  void CountWhatIsLeft(int At);
  std::size_t CachePlace(int At) const {
    return static_cast<unsigned>(At) % static_cast<unsigned>(FCachedState.size());
  }
  void DrawStrip(int At, std::vector<int>& Left, std::vector<TStripPlacement>& Placed) const;

  const TIntBoxList& FBoxes;
  const TRaster& FRaster;
  const TStripTable& FTable;
  // By column, then by row. Columns are made ready as strips come to reach them, so that a stop is never far away.
  std::unique_ptr<Int64[]> FValues;
  std::unique_ptr<TStep[]> FSteps;
  int FReady = 0;                 // columns
  int FReach = 0;                 // the greatest width of a strip
  std::vector<int> FLengthRight;  // by column: the raster index of the longest strip that fits to the right
  std::vector<int> FLengthUp;     // by row: the same upward
  std::vector<int> FAmounts;
  std::vector<int> FLeft;  // copies of each box left at state FLeftAt
  int FLeftAt = -1;
  std::vector<int> FChain;
  std::unique_ptr<int[]> FCached;  // the same as FLeft for some states, place by place
  std::vector<int> FCachedState;   // whose counts a place holds, -1 for none
  int FBest = 0;
  Int64 FSpread = 0;
};

}  // namespace platenest::detail
