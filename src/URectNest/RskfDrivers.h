#pragma once

#include "platenest/URectNest/RectRecords.h"

// What the drivers of the raster program share.
namespace platenest::detail {

// A grid of copies along two axes.
struct TGridPair {
  int First = 0;
  int Second = 0;

  Int64 Copies() const { return Int64{First} * Second; }
};

// The full grid of MostFirst by MostSecond if Amount suffices for it, or else the grid within it of most copies that
// Amount suffices for; of equal ones that of the larger First. Cost: O(MostFirst).
TGridPair LargestGrid(int MostFirst, int MostSecond, int Amount);

// The sum of the boxes, whatever the parts in them are worth.
double PlacedArea(const TNestedRects& List);

}  // namespace platenest::detail
