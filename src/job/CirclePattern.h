#pragma once

#include <span>

#include "CircleSizes.h"
#include "platenest/foundation/Polyline.h"

// Patterns of equal circles on a plate.
namespace platenest::detail {

// The centres of as many circles as a pattern of the closed forms, or a zigzag along either side, brings onto a box of
// this size with its lower left corner at the origin. The zigzag lays what no pattern is tried for: in a strip no
// higher than 1.866 pitches, where each circle touches the two beside it, no layout has more (Furedi 1991). Empty where
// no circle fits.
TVPoint2DList PatternPoints(double Width, double Height, double Radius, double Gap);

// Fills a plate with circles of the one size that Left asks for, by a pattern. Where the pattern has more, a shorter
// one or a part of it that leaves the largest strip of the plate free.
TCircleSpots NestPattern(const TCircleSizes& Sizes, int Plate, std::span<const int> Left);

// Blocks of patterns beside each other along the plate's longer side, one for each size, largest first, each no longer
// than what is left of its size needs.
TCircleSpots NestBlocks(const TCircleSizes& Sizes, int Plate, std::span<const int> Left);

}  // namespace platenest::detail
