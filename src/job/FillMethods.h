#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "FillSizes.h"
#include "platenest/URectNest/RectRecords.h"

// The nesters of many sizes behind one form: layouts in the units of TFillSizes on the plate less its margin, lower
// left corner at the origin, Part.Idx a position in TFillSizes::Parts.
namespace platenest::detail {

// One way to nest. It may place more than was asked for, or turn what must not turn; TidyLayout puts that right.
struct TFillMethod {
  std::string Name;
  std::shared_ptr<const TFillSizes> Sizes;
  std::function<TNestedRects()> Nest;  // raises TNestError where the nester fails
  double CountedMs = 1;                // about what it costs, for runs whose clock is counted
  bool FillsFreeBoxes = true;          // whether what it leaves is to be tried in the largest free rectangles
};

// Refuses with InputError what no method of that name can do.
void RequireFillMethod(const Job& AJob);

// The ways behind a method name, in the order in which they are to be tried, quick ones first. Where parts may turn,
// every way of the same job without turning is among those of auto.
std::vector<TFillMethod> FillMethods(const Job& AJob);

}  // namespace platenest::detail
