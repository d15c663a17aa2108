#pragma once

#include <cstdint>
#include <limits>

namespace platenest {

using Int64 = std::int64_t;
using TExtended = long double;

static_assert(sizeof(int) == 4, "record fields of type int hold 32 bits");
static_assert(std::numeric_limits<double>::is_iec559, "doubles are IEEE 754");

// Number of elements as an int, the type of every index and count in this library.
template <class C>
constexpr int Size(const C& Container) {
  return static_cast<int>(Container.size());
}

}  // namespace platenest
