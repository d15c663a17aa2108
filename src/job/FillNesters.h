#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "FillSizes.h"
#include "platenest/URectNest/RectRecords.h"

// One run of one nester of many sizes on a plate: layouts in the units of TFillSizes, lower left corner at the origin,
// Part.Idx a position in TFillSizes::Parts. They raise TNestError where the nester fails, and poll RectNestStopped.
namespace platenest::detail {

// A part as a record, with its true size.
TNestRect RecordOf(const TFillSizes& Sizes, int Index, int Amount);

// Sizes times the copies that about fit.
double WorkOf(const TFillSizes& Sizes);

std::vector<int> AllOffered(const TFillSizes& Sizes);
// So many copies of the parts that are worth most for their area that they could cover the plate Share times.
std::vector<int> DenseAmounts(const TFillSizes& Sizes, double Share);

// A number in [0, 1) that depends on its three arguments alone, so that equal runs draw equally and every way of a job
// draws as the same way without turning does. The finalizer of Steele, Lea and Flood 2014.
double Drawn(std::uint64_t Seed, int Round, int Position);
// The same job with worths moved by up to a share of their own, for nesters that would find the same layout again.
TFillSizes Shaken(TFillSizes Sizes, double Share, std::uint64_t Seed, int Round);

// The free-rectangle nest, which keeps turning locks: of the given copies of each part on a plate or on a piece of one;
// of all that is offered; and of the densest parts.
TNestedRects NestSmart(const TFillSizes& Sizes, std::span<const int> Amounts, double Width, double Height);
TNestedRects NestAll(const TFillSizes& Sizes);
TNestedRects NestDense(const TFillSizes& Sizes, double Share);

// Three blocks of stacks; turns all parts.
TNestedRects NestRaster(const TFillSizes& Sizes);

// The raster program, turning all parts or none. Where only some parts must not turn, NestWithTwins lets the program
// turn none, but shows it each of the others as two, one of them turned by hand, and both with the whole demand.
TNestedRects NestProgram(const TFillSizes& Sizes, bool MayTurn, bool IsNormal);
TNestedRects NestUnturned(const TFillSizes& Sizes, bool IsNormal);
TNestedRects NestWithTwins(const TFillSizes& Sizes, bool IsNormal);

// The parts whose grid in a corner of the plate is worth most, best first, and the raster program around such a grid.
std::vector<int> BigRects(const TFillSizes& Sizes);
TNestedRects NestBigFirst(const TFillSizes& Sizes, int BigRect, bool IsNormal);

}  // namespace platenest::detail
