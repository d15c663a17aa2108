#pragma once

#include <span>
#include <vector>

#include "CircleAnswer.h"
#include "CircleSearch.h"
#include "CircleSizes.h"

// Mixes of plate kinds that cost less than filling one kind after the other.
namespace platenest::detail {

// How many plates of each kind, all remnants among them, hold Need at least cost, of equal ones the fewest, where each
// plate of a kind holds as much as Each says. Empty where remnants alone hold it, where the stock does not, and where
// looking for it would take long. Cost: plate kinds times Need times a logarithm of the stock.
std::vector<int> CheapestMix(const TCircleSizes& Sizes, std::span<const int> Each, int Need);

// The cheapest mix of plates for circles of one size, each plate with the circles of a pattern.
void MixPatterns(TCircleSearch& Search);

// Fills mixes that cost less than the answer, the cheapest first and each next one with more area, until one takes all
// circles. Returns those that leave some, least area first.
std::vector<TCircleLayouts> MixFills(TCircleSearch& Search);

}  // namespace platenest::detail
