#pragma once

#include <algorithm>
#include <bit>
#include <limits>
#include <span>
#include <vector>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/Types.h"
#include "platenest/layoutcheck/PlacedBox.h"

namespace platenest::detail {

struct TKeyed {
  double Key;
  int Index;
};

// Ascending; equal keys keep their order.
inline void SortKeyed(std::vector<TKeyed>& Items) {
  SortBy(Items, [](const TKeyed& A, const TKeyed& B) { return Sign(A.Key, B.Key); });
}

template <class KeyOf>
std::vector<TKeyed> OrderBy(std::span<const TPlacedBox> Boxes, KeyOf Key) {
  std::vector<TKeyed> order(Boxes.size());
  for (int i = 0; i < Size(Boxes); ++i) order[i] = {Key(Boxes[i]), i};
  SortKeyed(order);
  return order;
}

// Values at fixed places, a search for the next place above a limit in O(log n).
class TMaxTree {
 public:
  explicit TMaxTree(int Count) : FLeaves(std::bit_ceil(static_cast<unsigned>(std::max(Count, 1)))) {
    FValues.assign(2 * FLeaves, kEmpty);
  }

  void Set(int Place, double Value) {
    std::size_t node = FLeaves + Place;
    for (FValues[node] = Value; node > 1;) {
      node /= 2;
      FValues[node] = std::max(FValues[2 * node], FValues[2 * node + 1]);
    }
  }
  void Clear(int Place) { Set(Place, kEmpty); }

  // The first place at or behind From with a value above Limit; the number of leaves if there is none.
  int FirstAbove(int From, double Limit) const {
    if (From >= Leaves()) return Leaves();
    std::size_t node = FLeaves + From;
    while (!(FValues[node] > Limit)) {
      while (node & 1) node /= 2;
      if (node == 0) return Leaves();
      ++node;
    }
    while (node < FLeaves) node = FValues[2 * node] > Limit ? 2 * node : 2 * node + 1;
    return static_cast<int>(node - FLeaves);
  }

 private:
  static constexpr double kEmpty = -std::numeric_limits<double>::infinity();
  int Leaves() const { return static_cast<int>(FLeaves); }

  std::size_t FLeaves;
  std::vector<double> FValues;  // a heap: node k holds the maximum of nodes 2k and 2k + 1
};

// Shows every pair of boxes that comes nearer than Reach on both axes to Visit(first, second), once, until Visit
// returns true. With a Reach of 0 these are the boxes that overlap. Visit may lower Reach as it goes, never raise it.
// Cost: O(n log n) and O(log n) for each pair shown.
template <class Visitor>
void SweepNearPairs(std::span<const TPlacedBox> Boxes, double& Reach, Visitor Visit) {
  const std::vector<TKeyed> byLeft = OrderBy(Boxes, [](const TPlacedBox& B) { return B.Left; });
  const std::vector<TKeyed> byRight = OrderBy(Boxes, [](const TPlacedBox& B) { return B.Right; });
  const std::vector<TKeyed> byBottom = OrderBy(Boxes, [](const TPlacedBox& B) { return B.Bottom; });
  std::vector<int> placeOf(Boxes.size());
  for (int place = 0; place < Size(byBottom); ++place) placeOf[byBottom[place].Index] = place;

  TMaxTree tops(Size(Boxes));
  std::size_t gone = 0;
  for (const auto& [left, index] : byLeft) {
    const TPlacedBox& box = Boxes[index];
    while (gone < byRight.size() && left - byRight[gone].Key >= Reach) tops.Clear(placeOf[byRight[gone++].Index]);
    for (int place = tops.FirstAbove(0, box.Bottom - Reach);
         place < Size(byBottom) && byBottom[place].Key - box.Top < Reach;
         place = tops.FirstAbove(place + 1, box.Bottom - Reach))
      if (Visit(byBottom[place].Index, index)) return;
    // A box without width may have left the queue of right edges already; it is near no later box.
    if (left - box.Right < Reach) tops.Set(placeOf[index], box.Top);
  }
}

}  // namespace platenest::detail
