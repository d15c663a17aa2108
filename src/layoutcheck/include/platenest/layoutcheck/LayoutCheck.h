#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platenest/URectNest/RectRecords.h"
#include "platenest/foundation/Compare.h"
#include "platenest/layoutcheck/PlacedBox.h"

// Verifies layouts with code that shares nothing with the nesters but the records. Nothing here keeps state; every
// function is safe on any thread.
namespace platenest {

struct TLayoutCheckOptions {
  double Tol = kDefaultTol;              // see CheckTolerance
  bool NegativeAmountIsNoLimit = false;  // an amount below 0 lets any number of copies pass; otherwise it counts as 0
};

// The first thing wrong with a layout as one English sentence that names the placement by its position in the list, or
// an empty text when the layout is valid:
//   - every number is finite and every placed size positive;
//   - Part.Idx is the Idx of an entry of Demand and the size, unturned, is that entry's size within the tolerance;
//   - no entry has more copies than its Amount; entries that share an Idx are one demand with the sum of their amounts;
//   - every box, computed from size, IsRotate and Trans, lies within Plate, wherever the plate itself lies;
//   - Clearance of any two boxes is at least Gap, the tolerance taken off. It is measured as the crow flies, so parts
//     may come nearer than Gap on both axes when they meet at corners only. A Gap below 0 allows overlap of that depth.
// Placements are looked at one by one first, pairs after that. An empty layout is valid, whatever plate and gap are.
// Cost: O(n log n) for n placements. With a Gap below 0 add the number of pairs that overlap.
PLATENEST_API std::string CheckRectLayout(const TNestedRects& Layout, const TVRect2D& Plate, double Gap,
                                          const TNestRectList& Demand, const TLayoutCheckOptions& Options = {});

// The placed box of a record: with size w x h and Trans (x, y) it is [x, y, x + w, y + h] unturned and
// [x - h, y, x, y + w] turned. The position of Part.BoundBox plays no part.
PLATENEST_API TPlacedBox PlacedBoxOf(const TNestedRect& Item);
PLATENEST_API std::vector<TPlacedBox> PlacedBoxesOf(const TNestedRects& Layout);

// What Tol means on a plate: Tol itself as long as doubles are much finer than that. At coordinates of 1e6 they hold
// 1e-10 and the promise of 1e-6 is kept to the letter; only above 5e8 does 8 units in the last place of the largest
// plate coordinate take over, since nothing finer can be said there.
PLATENEST_API double CheckTolerance(const TPlacedBox& Plate, double Tol = kDefaultTol);

// The position of the first box that is not a proper box within Plate, up to CheckTolerance(Plate, Tol) outside.
// Every box counts as outside a plate that is not a proper box itself.
PLATENEST_API std::optional<int> FirstOutside(std::span<const TPlacedBox> Boxes, const TPlacedBox& Plate,
                                              double Tol = kDefaultTol);

struct TBoxPair {
  int First = 0;  // positions in the list, First < Second
  int Second = 0;
  double Clearance = 0;
};

// Some pair whose Clearance is below Gap - Tol, always the same one for the same list; nothing if there is none.
// Raises TArgumentError for a box that is not proper and for a Gap or Tol that is not finite.
// Cost: O(n log n); it stops at the first pair. Strips across the layout mostly show that there is none. Where there is
// one or heights differ too much, a sweep over the left edges with the boxes at hand in a tree of maxima
// over their bottoms: as long as all boxes so far keep the distance, only a handful of others can be near a new one.
PLATENEST_API std::optional<TBoxPair> FirstTooClose(std::span<const TPlacedBox> Boxes, double Gap,
                                                    double Tol = kDefaultTol);

}  // namespace platenest
