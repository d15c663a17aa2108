#include "Guards.h"

#include "TextOf.h"
#include "platenest/foundation/Errors.h"

namespace platenest::detail {

namespace {

[[noreturn]] void Raise(std::string_view Function, std::string_view Text) {
  throw TArgumentError(TextOf("[Error] LayoutCheck.", Function, ": ", Text));
}

}  // namespace

void RequireProper(std::span<const TPlacedBox> Boxes, std::string_view Function) {
  for (std::size_t i = 0; i < Boxes.size(); ++i)
    if (!Boxes[i].IsProper()) Raise(Function, TextOf("box ", i, " is not a proper box"));
}

void RequireProper(const TPlacedBox& Box, std::string_view Function, std::string_view What) {
  if (!Box.IsProper()) Raise(Function, TextOf(What, " is not a proper box"));
}

void RequireFinite(double Value, std::string_view Function, std::string_view What) {
  if (!std::isfinite(Value)) Raise(Function, TextOf(What, " is not finite"));
}

}  // namespace platenest::detail
