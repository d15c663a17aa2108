#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/Types.h"

// One object for one thread at a time, different ones on any thread.
namespace platenest {

// A vector under the standard names, the base of lists with operations of their own. Copies are deep, an index outside
// the list raises TRangeError from At, First and Last and is unchecked in operator[].
template <class T>
class TListOf {
 public:
  using value_type = T;
  using iterator = typename std::vector<T>::iterator;
  using const_iterator = typename std::vector<T>::const_iterator;

  TListOf() = default;
  TListOf(std::initializer_list<T> Items) : FItems(Items) {}
  explicit TListOf(std::vector<T> Items) : FItems(std::move(Items)) {}

  iterator begin() { return FItems.begin(); }
  iterator end() { return FItems.end(); }
  const_iterator begin() const { return FItems.begin(); }
  const_iterator end() const { return FItems.end(); }
  std::size_t size() const { return FItems.size(); }
  int Count() const { return Size(FItems); }
  bool empty() const { return FItems.empty(); }
  T& operator[](std::size_t Index) { return FItems[Index]; }
  const T& operator[](std::size_t Index) const { return FItems[Index]; }
  T& At(int Index) { return FItems[Checked(Index)]; }
  const T& At(int Index) const { return FItems[Checked(Index)]; }
  T& First() { return At(0); }
  const T& First() const { return At(0); }
  T& Last() { return At(Count() - 1); }
  const T& Last() const { return At(Count() - 1); }
  T* data() { return FItems.data(); }
  const T* data() const { return FItems.data(); }
  T& back() { return FItems.back(); }
  const T& back() const { return FItems.back(); }
  T& front() { return FItems.front(); }
  const T& front() const { return FItems.front(); }

  void push_back(const T& Item) { FItems.push_back(Item); }
  void push_back(T&& Item) { FItems.push_back(std::move(Item)); }
  template <class... Args>
  T& emplace_back(Args&&... Arguments) {
    return FItems.emplace_back(std::forward<Args>(Arguments)...);
  }
  void pop_back() { FItems.pop_back(); }
  void clear() { FItems.clear(); }
  void reserve(std::size_t Count) { FItems.reserve(Count); }
  void resize(std::size_t Count) { FItems.resize(Count); }
  iterator erase(const_iterator From, const_iterator To) { return FItems.erase(From, To); }
  iterator erase(const_iterator Place) { return FItems.erase(Place); }
  iterator insert(const_iterator Place, const T& Item) { return FItems.insert(Place, Item); }
  template <class Range>
  void AddRange(const Range& Items) {
    FItems.insert(FItems.end(), std::begin(Items), std::end(Items));
  }
  void Reverse() { std::reverse(FItems.begin(), FItems.end()); }
  // Stable, by a three-way comparer; see SortBy.
  template <class Comparer>
  void Sort(Comparer Compare) {
    SortBy(FItems, Compare);
  }

 private:
  std::size_t Checked(int Index) const {
    if (Index < 0 || Index >= Size(FItems))
      throw TRangeError("[Error] list index " + std::to_string(Index) + " out of range");
    return static_cast<std::size_t>(Index);
  }

  std::vector<T> FItems;
};

}  // namespace platenest
