#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platenest/URectNest/RectRecords.h"

// The records of the strip nesters.
namespace platenest {

// Copies of one rectangle within a strip.
struct TStripItem {
  int Key = 0;    // position of the rectangle in the nester's list
  int Value = 0;  // copies side by side

  friend bool operator==(const TStripItem&, const TStripItem&) = default;
};

class TBasicStrip : public TListOf<TStripItem> {
 public:
  using TListOf::TListOf;

  double Value = 0;
  double Height = 0;
  int GroupId = 0;

  TBasicStrip Clone() const { return *this; }
};

// Strips that belong to another list, which must outlive this one.
using TBasicStripList = std::vector<TBasicStrip*>;

// Strips that live as long as some owning list holds them.
class TBasicStrips : public TListOf<std::shared_ptr<TBasicStrip>> {
 public:
  using TListOf::TListOf;

  // Descending; equal values keep their order.
  void SortByValue() { Sort(CompareByValue); }
  static int CompareByValue(const std::shared_ptr<TBasicStrip>& Left, const std::shared_ptr<TBasicStrip>& Right) {
    return Sign(Right->Value, Left->Value);
  }
};

// A strip of its own at a position.
struct TLocatedStrip {
  double Left = 0;
  double Bottom = 0;
  bool AlignX = true;
  TBasicStrip Strip;

  explicit TLocatedStrip(const TBasicStrip& AStrip) : Strip(AStrip.Clone()) {}
};

// Located strips and the single placements that go with them. An owning list keeps its strips alive; any other only
// refers to them, and whoever owns them must outlive it.
class TLocatedStripsWithNested {
 public:
  explicit TLocatedStripsWithNested(bool AOwnsObjects) : FOwnsObjects(AOwnsObjects) {}

  TNestedRects Nested;

  bool OwnsObjects() const { return FOwnsObjects; }
  void Add(std::shared_ptr<TLocatedStrip> Strip) {
    TLocatedStrip* const strip = Strip.get();
    FItems.push_back(FOwnsObjects ? std::move(Strip) : std::shared_ptr<TLocatedStrip>(std::shared_ptr<void>(), strip));
  }
  int Count() const { return Size(FItems); }
  bool empty() const { return FItems.empty(); }
  TLocatedStrip& At(int Index) { return *FItems.At(Index); }
  const TLocatedStrip& At(int Index) const { return *FItems.At(Index); }
  void clear() { FItems.clear(); }

 private:
  bool FOwnsObjects;
  TListOf<std::shared_ptr<TLocatedStrip>> FItems;
};

}  // namespace platenest
