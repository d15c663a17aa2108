#pragma once

#include <algorithm>
#include <vector>

#include "platenest/URectNest/RectRecords.h"

namespace platenest::detail {

// How often a layout can be used: AtMost is the limit, and what each part has left. Takes that off the amounts.
// Part.Idx is a position in Work.
inline int Repeat(const TNestedRects& Layout, int AtMost, TNestRectList& Work) {
  std::vector<int> used(Work.size());
  for (const TNestedRect& item : Layout) ++used[static_cast<std::size_t>(item.Part.Idx)];
  int times = AtMost;
  for (std::size_t i = 0; i < used.size(); ++i) {
    if (used[i] > 0) times = std::min(times, Work[i].Amount / used[i]);
  }
  for (std::size_t i = 0; i < used.size(); ++i) Work[i].Amount -= times * used[i];
  return times;
}

}  // namespace platenest::detail
