#pragma once

#include "FillSizes.h"
#include "platenest/URectNest/RectRecords.h"

// What follows every nest of many sizes. Part.Idx is a position in TFillSizes::Parts.
namespace platenest::detail {

// Takes away copies beyond the demand, the last ones first, and copies that are turned and must not be; a square comes
// back unturned in its place.
void TidyLayout(const TFillSizes& Sizes, TNestedRects& Layout);

// Fills the largest free rectangle again and again with what is left, until nothing goes in, by the better of the
// free-rectangle nest and a grid of one size. A stop ends it early.
void FillFreeBoxes(const TFillSizes& Sizes, TNestedRects& Layout);

}  // namespace platenest::detail
