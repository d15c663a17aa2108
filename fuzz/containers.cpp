// Drives a container with operations read from the input, beside a model that is too simple to be wrong.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "platenest/foundation/Collection.h"
#include "platenest/foundation/Fifo.h"
#include "platenest/foundation/MinHeap.h"
#include "platenest/foundation/RTree.h"

namespace {

using namespace platenest;

constexpr std::size_t kMaxBytes = 1024;

void Require(bool Condition) {
  if (!Condition) std::abort();
}

// The bytes of the input one by one, zeros behind its end.
class TInput {
 public:
  TInput(const std::uint8_t* Data, std::size_t Count) : FNext(Data), FEnd(Data + std::min(Count, kMaxBytes)) {}
  bool Empty() const { return FNext == FEnd; }
  int Next() { return Empty() ? 0 : *FNext++; }

 private:
  const std::uint8_t* FNext;
  const std::uint8_t* FEnd;
};

void RequireHeapOrder(const TMinHeap<int>& Heap) {
  for (int i = 1; i < Heap.Count(); ++i) Require(Heap.Compare(Heap.Datas()[(i - 1) / 2], Heap.Datas()[i]) <= 0);
}

void FuzzHeap(TInput In) {
  const bool byComparer = In.Next() % 2 == 0;
  std::multiset<int> model;
  std::vector<int> start(In.Next() % 32);
  for (int& data : start) data = In.Next();
  TMinHeap<int> heap;
  if (byComparer) {
    heap = TMinHeap<int>(start, Sign<int>);
    model.insert(start.begin(), start.end());
  }
  while (!In.Empty()) {
    const int data = In.Next();
    if (data % 3 != 0) {
      heap.Add(data, byComparer ? -data : data);
      model.insert(data);
    } else if (!model.empty()) {
      Require(heap.Top() == *model.begin());
      Require(heap.Pop() == *model.begin());
      model.erase(model.begin());
    }
    Require(heap.Count() == Size(model));
    RequireHeapOrder(heap);
  }
}

void RequireSame(const TFifo<int*>& Fifo, const std::deque<int>& Model, int Popped) {
  std::size_t place = 0;
  for (int* const item : Fifo) {
    const bool isLastSlot = (static_cast<std::size_t>(Popped) + place) % 64 == 63;
    Require(isLastSlot ? item == nullptr : *item == Model[place]);
    ++place;
  }
  Require(place == Model.size());
}

// Slots are counted from the first item on; Clear pops, so it does not reset them.
void FuzzFifo(TInput In) {
  std::vector<int> items(kMaxBytes * 8);
  std::deque<int> model;
  TFifo<int*> fifo;
  int pushed = 0;
  int popped = 0;
  while (!In.Empty()) {
    const int code = In.Next();
    for (int i = 0; i < code % 16 / 2; ++i) {
      int* item = nullptr;
      if (code % 2 == 0) {
        items[pushed] = pushed;
        model.push_back(pushed);
        fifo.Push(&items[pushed++]);
        continue;
      }
      Require(fifo.Peek(item) == !model.empty());
      if (!fifo.Pop(item)) continue;
      Require(*item == model.front());
      model.pop_front();
      ++popped;
    }
    if (code == 255) {
      fifo.Clear();
      popped = pushed;
      model.clear();
    }
    Require(fifo.Empty() == model.empty());
    if (code >= 128) RequireSame(fifo, model, popped);
  }
}

void FuzzRTree(TInput In) {
  const int maxChildCount = 2 + In.Next() % 9;
  TRTree<int> tree(maxChildCount);
  std::map<int, TVRect2D> model;
  const auto nextBox = [&In](double Unit) {
    const TPoint2D corner{Unit * In.Next(), Unit * In.Next()};
    return TVRect2D(corner, corner + TPoint2D{Unit * (In.Next() % 32), Unit * (In.Next() % 32)});
  };
  while (!In.Empty()) {
    const int code = In.Next();
    const int key = In.Next() % 64;
    if (code % 8 < 4) {
      model.insert_or_assign(key, nextBox(code % 2 == 0 ? 1 : 0.1));
      tree.Insert(key, model.at(key));
    } else if (code % 8 < 6) {
      tree.Remove(key);
      model.erase(key);
    } else {
      const TVRect2D region = nextBox(1);
      std::vector<int> found = tree.Search(region, 1e-6);
      std::sort(found.begin(), found.end());
      std::vector<int> expected;
      for (const auto& [data, box] : model) {
        if (box.RelationWithRectangle(region, 1e-6) != rrDisjoint) expected.push_back(data);
      }
      Require(found == expected);
      Require(tree.MayIntersect(region) == !expected.empty());
    }
    Require(tree.Count() == Size(model) && (tree.Root() == nullptr) == model.empty());
  }
}

using TSet = TCollection<int>;

struct TAlgebra {
  void (TSet::*InPlace)(const TSet&);
  TSet (TSet::*ToNew)(const TSet&) const;
  bool (*Keeps)(bool InFirst, bool InSecond);
};
constexpr TAlgebra kAlgebra[] = {
    {&TSet::Union, &TSet::UnionTo, [](bool A, bool B) { return A || B; }},
    {&TSet::Intersection, &TSet::IntersectionTo, [](bool A, bool B) { return A && B; }},
    {&TSet::Difference, &TSet::DifferenceTo, [](bool A, bool B) { return A && !B; }},
    {&TSet::ExclusiveOr, &TSet::ExclusiveOrTo, [](bool A, bool B) { return A != B; }},
};

void Combine(const TAlgebra& Algebra, TSet& First, const TSet& Second, std::set<int>& Model1,
             const std::set<int>& Model2) {
  std::set<int> result;
  for (const std::set<int>* model : {&std::as_const(Model1), &Model2}) {
    for (const int value : *model) {
      if (Algebra.Keeps(Model1.contains(value), Model2.contains(value))) result.insert(value);
    }
  }
  Model1 = result;
  const TSet fresh = (First.*Algebra.ToNew)(Second);
  (First.*Algebra.InPlace)(Second);
  Require(First.Equals(&fresh));
}

void FuzzCollection(TInput In) {
  TSet sets[2];
  std::set<int> models[2];
  while (!In.Empty()) {
    const int code = In.Next();
    const int value = In.Next() % 64;
    const int side = code % 2;
    if (code < 128) {
      Require(sets[side].Add(value) == models[side].insert(value).second);
    } else if (code < 192) {
      sets[side].Remove(value);
      models[side].erase(value);
    } else {
      const int other = value % 8 == 0 ? side : 1 - side;
      const std::set<int> operand = models[other];
      Combine(kAlgebra[code / 2 % 4], sets[side], sets[other], models[side], operand);
    }
    for (int i = 0; i < 2; ++i) {
      Require(std::set<int>(sets[i].begin(), sets[i].end()) == models[i]);
      Require(sets[i].Count() == Size(models[i]));
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Count) {
  constexpr void (*kTargets[])(TInput) = {FuzzHeap, FuzzFifo, FuzzRTree, FuzzCollection};
  TInput input(Data, Count);
  kTargets[input.Next() % 4](input);
  return 0;
}
