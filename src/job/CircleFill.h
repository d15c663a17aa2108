#pragma once

#include <span>
#include <vector>

#include "CircleSizes.h"

// Circles of several sizes on one plate, size by size, each at the free corner position that is farthest to the left.
namespace platenest::detail {

// Which way a plate fills up; positions that are equal that way go by the other axis.
enum class TFillSide : std::uint8_t { Left, Bottom };

// Adds up to Left copies of each part, largest first, to the circles that stand on the plate. A corner position touches
// two out of the circles that stand and the plate's edges, so that holes between large circles are found for small
// ones. Stops early, with what stands, where this thread's stop token says so. Cost: near linear in the circles on the
// plate for each size.
void FillPlate(const TCircleSizes& Sizes, int Plate, std::span<const int> Left, TFillSide Side, TCircleSpots& Spots);

}  // namespace platenest::detail
