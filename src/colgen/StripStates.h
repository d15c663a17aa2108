#pragma once

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
// 16 bytes a state. Cost: O(points * points * strips); the stop flag is polled for each column of states.
class TStripStates {
 public:
  // ATable and ABoxes stand on ARaster, which ends at the length and the width of the plate.
  TStripStates(const TIntBoxList& ABoxes, const TRaster& ARaster, const TStripTable& ATable);

  void Run();
  // States that were worth more than their neighbours and tried all strips.
  Int64 Spread() const { return FSpread; }

  // The first state of the highest value, by column, then by row. Complete also after a stop.
  void FindBest();
  int BestX() const { return FRaster.RasterL[static_cast<std::size_t>(FBest / SizeW())]; }
  int BestY() const { return FRaster.RasterW[static_cast<std::size_t>(FBest % SizeW())]; }
  // The boxes on the way to the best state, last strip first. Copies beyond the amount of a box are left out, wherever
  // in the chain they turn up last.
  std::vector<TStripPlacement> GenerateNestedRects() const;

 private:
  struct TState {
    Int64 Value = 0;
    int From = -1;
    int Strip = -1;
  };

  int SizeW() const { return FRaster.SizeW; }
  void Visit(int I, int J);
  void SpreadVertical(int At, int I, int J, int MostWidth);
  void SpreadHorizontal(int At, int I, int J, int MostWidth);
  void Raise(int At, int Target, int Strip);
  Int64 TrueValue(int At, const TStrip& Strip);
  void CountWhatIsLeft(int At);
  void DrawStrip(int At, std::vector<int>& Left, std::vector<TStripPlacement>& Placed) const;

  const TIntBoxList& FBoxes;
  const TRaster& FRaster;
  const TStripTable& FTable;
  std::vector<TState> FStates;    // by column, then by row
  std::vector<int> FLengthRight;  // by column: the raster index of the longest strip that fits to the right
  std::vector<int> FLengthUp;     // by row: the same upward
  std::vector<int> FLeft;         // copies left at state FLeftAt
  int FLeftAt = -1;
  int FBest = 0;
  Int64 FSpread = 0;
};

}  // namespace platenest::detail
