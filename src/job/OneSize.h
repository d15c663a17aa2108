#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "OneSizeBounds.h"
#include "platenest/URectNest/RectRecords.h"

namespace platenest::detail {

// A layout in the nester's units on the plate less its margin, lower left corner at the origin.
struct TOneSizeAnswer {
  TNestedRects Layout;
  std::string Method;
  std::string Remark;  // for the result's warnings; empty if there is nothing to say
};

// The methods behind a method name, best first; a later one stands in when an earlier answer fails the check. Amount is
// the demand; more copies than that are never placed.
std::vector<std::function<TOneSizeAnswer()>> OneSizeMethods(const std::string& Method, const TOneSize& Sizes,
                                                            int Amount);

}  // namespace platenest::detail
