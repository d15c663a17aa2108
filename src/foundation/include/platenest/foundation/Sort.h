#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

// No state; safe on any thread.
namespace platenest {

// Stable merge sort over a three-way comparer (negative, zero, positive). Defined for every comparer: tolerant ones are
// no strict order, for which the standard sorts are undefined; here they only decide which neighbours change places,
// and the result is the same on every machine. Equal elements keep their order. Cost: O(n log n) comparisons, one
// buffer of n. If the comparer throws, the list holds its elements in an unspecified order, some of them moved from.
template <class List, class Comparer>
void SortBy(List& Items, Comparer Compare) {
  using T = typename std::iterator_traits<decltype(std::begin(Items))>::value_type;
  const std::size_t count = Items.size();
  if (count < 2) return;
  if (count == 2) {
    const auto first = std::begin(Items);
    const auto second = std::next(first);
    if (Compare(std::as_const(*second), std::as_const(*first)) < 0) std::iter_swap(first, second);
    return;
  }
  std::vector<T> source(std::make_move_iterator(std::begin(Items)), std::make_move_iterator(std::end(Items)));
  std::vector<T> target(count);
  for (std::size_t width = 1; width < count; width *= 2) {
    for (std::size_t begin = 0; begin < count; begin += 2 * width) {
      const std::size_t middle = std::min(begin + width, count);
      const std::size_t end = std::min(begin + 2 * width, count);
      std::size_t left = begin;
      std::size_t right = middle;
      std::size_t place = begin;
      while (left < middle && right < end) {
        // Which side comes next is as good as random, so it is told by sums and not by branches.
        const bool takesRight = Compare(std::as_const(source[right]), std::as_const(source[left])) < 0;
        target[place++] = std::move(source[takesRight ? right : left]);
        right += std::size_t{takesRight};
        left += std::size_t{!takesRight};
      }
      while (left < middle) target[place++] = std::move(source[left++]);
      while (right < end) target[place++] = std::move(source[right++]);
    }
    source.swap(target);
  }
  std::move(source.begin(), source.end(), std::begin(Items));
}

}  // namespace platenest
