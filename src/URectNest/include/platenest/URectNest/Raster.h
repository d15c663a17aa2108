#pragma once

#include <vector>

#include "platenest/URectNest/RectRecords.h"

namespace platenest {

// The positions on a plate at which a cut or an edge of a box can make sense, for both axes: the normal patterns of
// Herz (1972) and Christofides and Whitlock (1977), or the reduced raster points of Scheithauer and Terno (1996). All
// lengths are whole units; L is the length axis, W the width axis. The points ascend, the first is 0 and the last is
// the plate size.
//
// Without rotation the width axis also carries the sums of sides A from 4 up to the smaller of L and W: they are spare
// points which cost time but lose no layout, and callers depend on the list as it is. Copies of a box are limited by
// the length axis on both axes, so the raster is meant for L not below W.
//
// Cost: O((L + W) / 64) per copy of a box up to about fifty copies, O(L + W) for more; 4 bytes per unit of L and W.
struct PLATENEST_API TRaster {
  int SizeL = 0;  // number of points
  int SizeW = 0;
  std::vector<int> IndexL;     // IndexL[x]: position in RasterL of the smallest point not below x, for x from 0 to L
  std::vector<int> IndexInvL;  // IndexInvL[i] = IndexL[L - RasterL[i]]
  std::vector<int> IndexInvW;
  std::vector<int> IndexW;
  std::vector<int> RasterL;
  std::vector<int> RasterW;

  TRaster() = default;
  TRaster(int L, int W, const TIntBoxList& Boxes, bool AllowRotate, bool UseNormal) {
    Initialize(L, W, Boxes, AllowRotate, UseNormal);
  }

  // UseNormal: all reachable sums; otherwise the reduced points. A box with a side of 0 or below adds nothing.
  // Raises TArgumentError for a negative L or W, TRangeError for one above 1e9.
  void Initialize(int L, int W, const TIntBoxList& Boxes, bool AllowRotate, bool UseNormal);

  // The lengths up to L and W that are sums of box sides, each box used at most Amount times; 0 always and the plate
  // size always among them.
  static void ConstructConeCombinationWithAmt(int L, int W, const TIntBoxList& Boxes, std::vector<int>& ListL,
                                              std::vector<int>& ListW, bool AllowRotate);
  // Entry i, from 0 to Size, is the largest member of the ascending List, which begins with 0, that is not above i.
  static std::vector<int> ConstructNormalList(int Size, const std::vector<int>& List);
  // Writes to Out, from its start, for each member of List up to position HighIndex the largest reachable length in
  // what the member leaves of Size, ascending and each once; 0 comes first. Returns how many. Out must have room for
  // one more than the members.
  static int ConstructReducedRaster(int Size, const std::vector<int>& List, int HighIndex, std::vector<int>& Out,
                                    const std::vector<int>& Normal);

  void ConstructNormalPattern(const std::vector<int>& ListL, const std::vector<int>& ListW);
  // Both expect rasters that end at L and W.
  void ConstructIndex(int L, int W);
  void ConstructInvIndex(int L, int W);
};

}  // namespace platenest
