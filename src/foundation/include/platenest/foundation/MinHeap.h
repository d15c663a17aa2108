#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Types.h"

namespace platenest {

template <class T>
struct THeapNode {
  T Data{};
  double Key = 0;
};

// Binary heap in an array, the smallest element at index 0. It orders by a three-way comparer over T, then keys are
// kept but not looked at, or without a comparer by the keys. Elements that compare equal leave in an order that is
// fixed by the sequence of operations, but is not that of their arrival. The heap owns its copies of T and nothing that
// they refer to; T may be move-only. One thread at a time. Add and Pop cost O(log n). Should the comparer throw, no
// element is lost, but their order is that of a heap no more.
template <class T>
class TMinHeap {
 public:
  using TComparer = std::function<int(const T&, const T&)>;

  TMinHeap() = default;
  explicit TMinHeap(TComparer Comparer) : FComparer(std::move(Comparer)) {}
  // All items at once with key 0, O(n log n) at worst. TArgumentError without a comparer: every key would be equal.
  TMinHeap(std::vector<T> Datas, TComparer Comparer);

  // The smallest element; TNestError on an empty heap.
  const T& Top() const { return RootOf("Top").Data; }
  double TopKey() const { return RootOf("Top").Key; }  // its error speaks of Top, the operation that hosts know
  const THeapNode<T>& TopNode() const { return RootOf("TopNode"); }
  int Count() const { return Size(FDatas); }
  void Clear() { FDatas.clear(); }
  // The array itself, for those who look at each element: the children of index i stand at 2i + 1 and 2i + 2.
  const std::vector<THeapNode<T>>& Datas() const { return FDatas; }

  void Add(T Data, double Key);
  // Adds each item with key 0; TNestError in a heap that orders by key.
  void AddRange(std::vector<T> Datas);
  // Removes the smallest element; TNestError on an empty heap.
  T Pop();

  // Negative, zero or positive, as Node1 stands before, level with or behind Node2.
  int Compare(const THeapNode<T>& Node1, const THeapNode<T>& Node2) const {
    return FComparer ? FComparer(Node1.Data, Node2.Data) : Sign(Node1.Key, Node2.Key);
  }

 private:
  const THeapNode<T>& RootOf(const char* Operation) const;
  bool Raise(int Index);
  void SiftUp(int Index);
  void SiftDown(int Index, int End);

  std::vector<THeapNode<T>> FDatas;
  TComparer FComparer;
};

template <class T>
TMinHeap<T>::TMinHeap(std::vector<T> Datas, TComparer Comparer) : FComparer(std::move(Comparer)) {
  if (!FComparer) throw TArgumentError("[Error] TMinHeap.Create: a heap over a list needs a comparer");
  FDatas.reserve(Datas.size());
  for (T& data : Datas) FDatas.push_back({std::move(data), 0});
  // One raise per index, not a sift-down of the inner nodes: both give a heap, but of another order among equals.
  for (int i = Count() - 1; i >= 0; --i) Raise(i);
}

template <class T>
void TMinHeap<T>::Add(T Data, double Key) {
  FDatas.push_back({std::move(Data), Key});
  SiftUp(Count() - 1);
}

template <class T>
void TMinHeap<T>::AddRange(std::vector<T> Datas) {
  if (!FComparer) throw TNestError("[Error] TMinHeap.AddRange: 只有通过函数比较才可调用本方法");
  for (T& data : Datas) Add(std::move(data), 0);
}

template <class T>
T TMinHeap<T>::Pop() {
  RootOf("Pop");
  const int last = Count() - 1;
  std::swap(FDatas.front(), FDatas.back());
  SiftDown(0, last);
  T data = std::move(FDatas.back().Data);
  FDatas.pop_back();
  return data;
}

template <class T>
const THeapNode<T>& TMinHeap<T>::RootOf(const char* Operation) const {
  if (FDatas.empty()) throw TNestError(std::string("[Error] TMinHeap.") + Operation + ": 堆中没有元素");
  return FDatas.front();
}

// Changes places with the parent if that one is greater; what came down may have to go deeper. False if nothing moved.
template <class T>
bool TMinHeap<T>::Raise(int Index) {
  if (Index == 0) return false;
  const int parent = (Index - 1) / 2;
  if (Compare(FDatas[Index], FDatas[parent]) >= 0) return false;
  std::swap(FDatas[Index], FDatas[parent]);
  SiftDown(Index, Count());
  return true;
}

template <class T>
void TMinHeap<T>::SiftUp(int Index) {
  while (Index > 0 && Raise(Index)) Index = (Index - 1) / 2;
}

// Among the first End places. Of two equal children the left one rises, and a child equal to its parent stays.
template <class T>
void TMinHeap<T>::SiftDown(int Index, int End) {
  for (int child = 2 * Index + 1; child < End; child = 2 * Index + 1) {
    if (child + 1 < End && Compare(FDatas[child], FDatas[child + 1]) > 0) ++child;
    if (Compare(FDatas[child], FDatas[Index]) >= 0) return;
    std::swap(FDatas[child], FDatas[Index]);
    Index = child;
  }
}

}  // namespace platenest
