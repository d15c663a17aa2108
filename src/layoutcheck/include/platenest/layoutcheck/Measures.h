#pragma once

#include <optional>
#include <span>

#include "platenest/foundation/Compare.h"
#include "platenest/layoutcheck/PlacedBox.h"

// What can be measured on a layout of axis-parallel boxes, in plate units. Every function raises TArgumentError for a
// box that is not proper (TPlacedBox::IsProper), keeps no state and is safe on any thread.
namespace platenest {

// The box around all boxes; nothing for none.
PLATENEST_API std::optional<TPlacedBox> UsedBox(std::span<const TPlacedBox> Boxes);

// The sum of the areas, in list order.
PLATENEST_API double TotalArea(std::span<const TPlacedBox> Boxes);

// The least distance between two of the boxes as the crow flies: 0 when two touch or overlap, nothing for fewer than
// two boxes. It is measured, so a layout with a gap of 4 may well show 3.9999999999999996. Cost: O(n log n): a
// sweep over strips across the layout, whose neighbours lie close in memory, with the distance of neighbours in the
// list to start from; where heights differ too much for strips, the sweep for closest pairs (Hinrichs, Nievergelt,
// Schorn 1988) carried over to boxes.
PLATENEST_API std::optional<double> LeastClearance(std::span<const TPlacedBox> Boxes);

// True when straight cuts, each from edge to edge of the piece at hand, can part all boxes from one another. Boxes may
// overlap by Tol. A cut has no width here: parts that touch can be parted. True for fewer than two boxes.
// No order of cuts needs to be searched: any possible cut leaves pieces that can be parted if the whole can.
// Cost: O(n log n) for layouts that a few turns of cuts along both axes part, O(n log^2 n) for others: both ends of
// both axes are searched for a cut in step, so a cut costs no more than its smaller side.
PLATENEST_API bool IsEdgeToEdge(std::span<const TPlacedBox> Boxes, double Tol = kDefaultTol);

// The largest axis-parallel rectangle in Area that keeps Clearance to every box on at least one axis, which is the
// offcut worth keeping: one that lies clear of every box grown by Clearance on all four sides. It may touch the sides
// of Area, so give the plate less its margin. Boxes may overlap and stick out of Area. Exact, not a heuristic: no
// rectangle has more area. Of several largest ones the same list always gives the same one. Nothing when no rectangle
// is wider and higher than Tol. Raises TArgumentError when Area is not proper, or Clearance or Tol are not finite or
// below 0. Cost: O(n log n) for layouts as nesters make them, O(n log^4 n) at the very worst: median cuts over the
// vertical edges (after Chazelle, Drysdale, Lee 1986), where the largest rectangle across a cut comes from the free
// depths to its two sides by a second halving with monotone row maxima (Aggarwal, Suri 1987). What cannot beat the best
// so far is skipped. Boxes that follow each other in the list and join to one box, as in rows and grids, are one to the
// search.
PLATENEST_API std::optional<TPlacedBox> LargestFreeBox(std::span<const TPlacedBox> Boxes, const TPlacedBox& Area,
                                                       double Clearance, double Tol = kDefaultTol);

// All of it in one call.
struct TLayoutMeasures {
  double PartArea = 0;
  double Usage = 0;  // part area over plate area
  std::optional<TPlacedBox> Used;
  std::optional<double> MinClearance;
  bool EdgeToEdge = true;
  std::optional<TPlacedBox> Free;
};

// Plate is the whole plate, which Usage refers to; FreeArea the part of it where an offcut may lie, at Gap from the
// parts. Raises TArgumentError also when the plate has no area.
PLATENEST_API TLayoutMeasures MeasureLayout(std::span<const TPlacedBox> Boxes, const TPlacedBox& Plate,
                                            const TPlacedBox& FreeArea, double Gap);

}  // namespace platenest
