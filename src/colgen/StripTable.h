#pragma once

#include <span>
#include <vector>

#include "platenest/URectNest/Raster.h"

namespace platenest::detail {

// So many copies of one box in a strip.
struct TStripPart {
  int Box = 0;
  int Count = 0;
};

// A band of boxes side by side, each of them reaching across no more than Width.
struct TStrip {
  Int64 Value = 0;
  int Width = 0;
  int Content = 0;
};

// The best strips of every length on the raster and every width: bounded knapsacks, one for each width and all lengths
// at once (Gilmore and Gomory 1965; Hifi 2001). Of two widths with the same value only the smaller one stays. Only
// values and lists of what lies in a strip are stored, shared by all lengths for which the same strip is best.
// Cost: O(widths * chunks * points), where a box of amount n is log2(n) chunks; 16 bytes a strip, and while one width
// is computed 4 bytes per chunk and point.
class TStripTable {
 public:
  // L is the last raster point. Polls the stop flag before each width; widths from there on have no strips.
  TStripTable(const TIntBoxList& ABoxes, const TRaster& ARaster, const std::vector<int>& AWidths);

  // Positions of the strips of one length: widths ascend and so do the values, all above 0.
  int First(int LengthIdx) const { return FFirst[static_cast<std::size_t>(LengthIdx)]; }
  int Past(int LengthIdx) const { return FFirst[static_cast<std::size_t>(LengthIdx) + 1]; }
  const TStrip& operator[](int Strip) const { return FStrips[static_cast<std::size_t>(Strip)]; }
  // In the order of the boxes, each box once.
  std::span<const TStripPart> Parts(const TStrip& Strip) const {
    const int first = FContentFirst[static_cast<std::size_t>(Strip.Content)];
    const int past = FContentFirst[static_cast<std::size_t>(Strip.Content) + 1];
    return {FParts.data() + first, static_cast<std::size_t>(past - first)};
  }

  int Count() const { return Size(FStrips); }
  int Knapsacks() const { return FKnapsacks; }

 private:
  // Some copies of a box, taken together or not at all.
  struct TChunk {
    int Length = 0;
    Int64 Value = 0;
    TStripPart Part;
  };

  void CalMultiKnapsack(int AWidth);
  std::vector<TChunk> ChunksFor(int AWidth) const;
  void FillRow(const std::vector<TChunk>& Chunks);
  int AddContent(const std::vector<TChunk>& Chunks, int Index);
  void Compact(const std::vector<std::vector<TStrip>>& ByWidth);

  const TIntBoxList& FBoxes;
  const TRaster& FRaster;
  std::vector<TStrip> FStrips;
  std::vector<int> FFirst;         // by length index, and one more
  std::vector<TStripPart> FParts;  // of all contents
  std::vector<int> FContentFirst;  // by content, and one more
  std::vector<Int64> FRow;         // best value of what ends at each point
  std::vector<Int64> FNextRow;
  std::vector<int> FFrom;        // by chunk and point: where the chunk taken begins, -1 if it is not taken
  std::vector<TStrip> FOfWidth;  // by length index
  int FKnapsacks = 0;
};

}  // namespace platenest::detail
