#pragma once

#include <initializer_list>
#include <list>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platenest/foundation/Types.h"

namespace platenest {

// Set of hashable values with set algebra. As a set it has no order; walking over it meets the elements in the order
// in which they came in, so that no result ever hangs on a hash. Add, Remove and Contains take constant time on
// average, an operation with another set time linear in the operands. A set may be its own operand. One thread at a
// time.
template <class T>
class TCollection {
 public:
  using value_type = T;
  using const_iterator = typename std::list<T>::const_iterator;

  TCollection() = default;
  TCollection(std::initializer_list<T> Datas) { AddRange(Datas); }
  explicit TCollection(const std::vector<T>& Datas) { AddRange(Datas); }
  TCollection(const TCollection& Other) { AddRange(Other); }
  TCollection(TCollection&& Other) noexcept { Swap(Other); }
  TCollection& operator=(TCollection Other) noexcept {
    Swap(Other);
    return *this;
  }
  ~TCollection() = default;
  TCollection Clone() const { return *this; }
  void CopyFrom(const TCollection& Source, bool ClearFirst);

  const_iterator begin() const { return FOrder.begin(); }
  const_iterator end() const { return FOrder.end(); }
  int Count() const { return Size(FData); }
  bool Contains(const T& Value) const { return FData.contains(Value); }
  // Same elements, in whatever order; false for nullptr.
  bool Equals(const TCollection* Obj) const;

  // True if Value was new.
  bool Add(const T& Value);
  template <class Range>
  void AddRange(const Range& Values) {
    for (const T& value : Values) Add(value);
  }
  // No effect if Value is absent.
  void Remove(const T& Value);
  void Clear();

  void Union(const TCollection& Collection) { AddRange(Collection); }
  void Intersection(const TCollection& Collection) { RemoveWhere(Collection, false); }
  void Difference(const TCollection& Collection) { RemoveWhere(Collection, true); }
  // Keeps what stands in exactly one of the two.
  void ExclusiveOr(const TCollection& Collection);

  TCollection UnionTo(const TCollection& Collection) const { return With(&TCollection::Union, Collection); }
  TCollection IntersectionTo(const TCollection& Collection) const {
    return With(&TCollection::Intersection, Collection);
  }
  TCollection DifferenceTo(const TCollection& Collection) const { return With(&TCollection::Difference, Collection); }
  TCollection ExclusiveOrTo(const TCollection& Collection) const { return With(&TCollection::ExclusiveOr, Collection); }

 private:
  void RemoveWhere(const TCollection& Other, bool Contained);
  TCollection With(void (TCollection::*Operation)(const TCollection&), const TCollection& Other) const {
    TCollection result = *this;
    (result.*Operation)(Other);
    return result;
  }
  void Swap(TCollection& Other) noexcept {
    FOrder.swap(Other.FOrder);
    FData.swap(Other.FData);
  }

  std::list<T> FOrder;
  std::unordered_map<T, typename std::list<T>::iterator> FData;
};

template <class T>
void TCollection<T>::CopyFrom(const TCollection& Source, bool ClearFirst) {
  if (&Source == this) return;
  if (ClearFirst) Clear();
  AddRange(Source);
}

template <class T>
bool TCollection<T>::Equals(const TCollection* Obj) const {
  if (Obj == nullptr || Obj->Count() != Count()) return false;
  for (const T& value : *Obj) {
    if (!Contains(value)) return false;
  }
  return true;
}

template <class T>
bool TCollection<T>::Add(const T& Value) {
  if (Contains(Value)) return false;
  std::list<T> element{Value};
  FData.emplace(Value, element.begin());
  FOrder.splice(FOrder.end(), element);
  return true;
}

template <class T>
void TCollection<T>::Remove(const T& Value) {
  const auto found = FData.find(Value);
  if (found == FData.end()) return;
  const auto place = found->second;
  FData.erase(found);
  FOrder.erase(place);  // last, Value may be a reference to this very element
}

template <class T>
void TCollection<T>::Clear() {
  FData.clear();
  FOrder.clear();
}

template <class T>
void TCollection<T>::ExclusiveOr(const TCollection& Collection) {
  if (&Collection == this) return Clear();
  for (const T& value : Collection) {
    if (!Add(value)) Remove(value);
  }
}

// Collects the victims first: neither set may change while it is walked.
template <class T>
void TCollection<T>::RemoveWhere(const TCollection& Other, bool Contained) {
  std::vector<T> victims;
  for (const T& value : *this) {
    if (Other.Contains(value) == Contained) victims.push_back(value);
  }
  for (const T& victim : victims) Remove(victim);
}

}  // namespace platenest
