#pragma once

#include "OneSizeBounds.h"
#include "platenest/URectNest/RectRecords.h"

namespace platenest::detail {

// The layout of the recursive five-block nest, lower left corner at the origin, at most Part.Amount copies: the
// leftmost ones are kept. Empty where the nest was stopped before its first answer.
//
// It runs on whole numbers at which half the gap is whole too: exactly where the sizes are decimal fractions that give
// a plate of at most a million units; elsewhere with the plate rounded down and rectangle and gap rounded up.
TNestedRects NestByFiveblock(const TOneSize& Sizes, const TNestRect& Part);

}  // namespace platenest::detail
