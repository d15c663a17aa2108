#include "platenest/foundation/Compare.h"

#include <algorithm>

namespace platenest {

Int64 TMathUtils::Max(std::span<const Int64> List) {
  return List.empty() ? 0 : std::ranges::max(List);
}
Int64 TMathUtils::Min(std::span<const Int64> List) {
  return List.empty() ? 0 : std::ranges::min(List);
}
int TMathUtils::Max(std::span<const int> List) {
  return List.empty() ? 0 : std::ranges::max(List);
}
int TMathUtils::Min(std::span<const int> List) {
  return List.empty() ? 0 : std::ranges::min(List);
}

}  // namespace platenest
