#pragma once

#include <span>
#include <string_view>

#include "platenest/layoutcheck/PlacedBox.h"

namespace platenest::detail {

// Raise TArgumentError with the name of the public function.
void RequireProper(std::span<const TPlacedBox> Boxes, std::string_view Function);
void RequireProper(const TPlacedBox& Box, std::string_view Function, std::string_view What);
void RequireFinite(double Value, std::string_view Function, std::string_view What);

}  // namespace platenest::detail
