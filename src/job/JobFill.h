#pragma once

#include <functional>
#include <span>
#include <vector>

#include "FillSizes.h"
#include "JobAnswer.h"
#include "JobSizes.h"

// Whole answers out of fills of one plate.
namespace platenest::detail {

// What may still be placed, as the sizes of one plate: parts that it holds and of which some are left, worth their
// area. Position is that in TJobSizes::Parts.
TFillSizes FillSizesOf(const TJobSizes& Sizes, int Plate, std::span<const int> Left);
// The same of the parts in a list.
TFillSizes FillSizesOf(const TJobSizes& Sizes, int Plate, std::span<const int> Parts, std::span<const int> Left);
// A layout of such sizes as one of the whole job.
TNestedRects FromFill(const TJobSizes& Sizes, const TFillSizes& Fill, const TNestedRects& Nested);

double AreaOf(const TJobSizes& Sizes, const TNestedRects& Nested);

// The demand as it stands, copies without limit left out or alone.
std::vector<int> AskedCopies(const TJobSizes& Sizes);
bool IsAllPlaced(std::span<const int> Left);

// Plates in stock less those that layouts use.
std::vector<int> StockLeft(const TJobSizes& Sizes, const TJobLayouts& Layouts);

// A plate of the given kind filled with no more than Left of each.
using TPlateNest = std::function<TNestedRects(int Plate, std::span<const int> Left)>;

// Remnants in the order of Sizes, then the others by cost for their area, the larger ones first.
std::vector<int> PlateOrder(const TJobSizes& Sizes);
// That one first, then the same with each other kind, up to a few, in front of those that are no remnants.
std::vector<std::vector<int>> PlateOrders(const TJobSizes& Sizes);

// Fills plates in the given order of kinds, each layout as often as demand and stock allow, until nothing is left or
// nothing fits; takes what it places off Left and what it uses off Stock. A stop ends it between two plates. The last
// plate of an ordered walk is one of the cheapest kind that takes all of the rest by the same nest.
TJobLayouts FillPlates(const TJobSizes& Sizes, std::span<const int> Order, std::vector<int>& Left,
                       std::vector<int>& Stock, const TPlateNest& Nest);

// Places what layouts leave of the demand, copies without limit at last: into the largest free rectangles of the
// layouts, then on plates in stock by the given nest.
void PlaceLeftOver(const TJobSizes& Sizes, TJobLayouts& Layouts, const TPlateNest& Nest);

}  // namespace platenest::detail
