#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/Types.h"
#include "platenest/layoutcheck/PlacedBox.h"

namespace platenest::detail {

struct TKeyed {
  double Key;
  int Index;
};

// Ascending; equal keys keep their order. Lists of layouts often come in order, which costs one look.
inline void SortKeyed(std::vector<TKeyed>& Items) {
  const auto isBefore = [](const TKeyed& A, const TKeyed& B) { return A.Key < B.Key; };
  if (std::is_sorted(Items.begin(), Items.end(), isBefore)) return;
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

// The boxes that meet strips of one height across all of them, a box that meets several in each.
class TStrips {
 public:
  // Boxes that come nearer than Reach on the y axis have a strip in common. Nothing where that takes too many entries.
  static std::optional<TStrips> Of(std::span<const TPlacedBox> Boxes, double Reach) {
    TStrips strips;
    return strips.Lay(Boxes, Reach) && strips.Fill(Boxes) ? std::optional(std::move(strips)) : std::nullopt;
  }

  int Count() const { return Size(FStarts) - 1; }
  // Ascending by the left edge.
  const std::vector<TKeyed>& At(int Strip, std::span<const TPlacedBox> Boxes) {
    FStrip.clear();
    for (int i = FStarts[Strip]; i < FStarts[Strip + 1]; ++i) FStrip.push_back({Boxes[FEntries[i]].Left, FEntries[i]});
    SortKeyed(FStrip);
    return FStrip;
  }

 private:
  static constexpr Int64 kMostEntries = 4;  // for each box

  bool Lay(std::span<const TPlacedBox> Boxes, double Reach) {
    double top = -std::numeric_limits<double>::infinity();
    double bottom = -top;
    double heights = 0;
    for (const TPlacedBox& box : Boxes) {
      top = std::max(top, box.Top);
      bottom = std::min(bottom, box.Bottom);
      heights += box.Height();
    }
    FHeight = 2 * heights / Size(Boxes) + Reach;
    // Above what rounding takes off.
    FReach = Reach + 1e-9 * FHeight + 1e-15 * std::max(std::fabs(bottom), std::fabs(top));
    FBottom = bottom - FReach;
    const double count = (top - FBottom) / FHeight + 1;
    if (!(count <= Size(Boxes) + 2.0)) return false;
    FStarts.assign(Floor<int>(count) + 2, 0);
    return true;
  }

  int StripOf(double Y) const { return Floor<int>((Y - FBottom) / FHeight); }

  bool Fill(std::span<const TPlacedBox> Boxes) {
    Int64 entries = 0;
    for (const TPlacedBox& box : Boxes) {
      const int first = StripOf(box.Bottom - FReach);
      const int last = StripOf(box.Top);
      entries += last - first + 1;
      if (entries > kMostEntries * Size(Boxes)) return false;
      for (int strip = first; strip <= last; ++strip) ++FStarts[strip + 1];
    }
    std::partial_sum(FStarts.begin(), FStarts.end(), FStarts.begin());
    FEntries.resize(entries);
    std::vector<int> next(FStarts.begin(), FStarts.end() - 1);
    for (int i = 0; i < Size(Boxes); ++i)
      for (int strip = StripOf(Boxes[i].Bottom - FReach); strip <= StripOf(Boxes[i].Top); ++strip)
        FEntries[next[strip]++] = i;
    return true;
  }

  double FHeight = 0;
  double FReach = 0;
  double FBottom = 0;
  std::vector<int> FStarts;
  std::vector<int> FEntries;
  std::vector<TKeyed> FStrip;
};

enum class TSweepEnd : std::uint8_t { Done, Stopped, GaveUp };

// Shows the pairs of SweepNearPairs in another order and some of them more than once, with all data close together.
// Gives up before it has looked at more than a few boxes for each one, as where heights differ much. Cost: O(n log n)
// comparisons at most, of which few are made for layouts in rows.
template <class Visitor>
TSweepEnd SweepStrips(std::span<const TPlacedBox> Boxes, double& Reach, Visitor Visit) {
  constexpr Int64 kMostLooks = 32;
  std::optional<TStrips> strips = TStrips::Of(Boxes, Reach);
  if (!strips) return TSweepEnd::GaveUp;
  Int64 looks = kMostLooks * Size(Boxes);
  std::vector<int> open;
  for (int strip = 0; strip < strips->Count(); ++strip) {
    open.clear();
    for (const auto& [left, index] : strips->At(strip, Boxes)) {
      const TPlacedBox& box = Boxes[index];
      if ((looks -= Size(open)) < 0) return TSweepEnd::GaveUp;
      std::erase_if(open, [&](int other) { return left - Boxes[other].Right >= Reach; });
      for (const int other : open) {
        const TPlacedBox& b = Boxes[other];
        const bool isNear = b.Bottom - box.Top < Reach && box.Bottom - b.Top < Reach;
        if (isNear && Visit(other, index)) return TSweepEnd::Stopped;
      }
      open.push_back(index);
    }
  }
  return TSweepEnd::Done;
}

}  // namespace platenest::detail
