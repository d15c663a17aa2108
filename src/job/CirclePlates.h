#pragma once

#include <functional>
#include <span>
#include <vector>

#include "CircleAnswer.h"
#include "CircleSizes.h"

// From circles on one plate to a whole answer.
namespace platenest::detail {

// Fills a plate with copies of those that are left; no more of a part than that.
using TCircleNest = std::function<TCircleSpots(int Plate, std::span<const int> Left)>;

// Orders in which kinds of plates are used up, remnants first: by cost for the area, then each other kind ahead.
std::vector<std::vector<int>> PlateOrders(const TCircleSizes& Sizes);

// Fills a plate, repeats the layout as often as demand and stock allow, and so on, until all is placed, stock ends or
// nothing more is placed. What ends up on a last plate goes onto a cheaper one that takes all of it. Once stopped it
// keeps the layouts that it has, at least one.
TCircleLayouts FillPlates(const TCircleSizes& Sizes, std::span<const int> Order, const TCircleNest& Nest);

}  // namespace platenest::detail
