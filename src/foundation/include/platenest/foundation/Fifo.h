#pragma once

#include <array>
#include <atomic>
#include <concepts>
#include <cstddef>
#include <iterator>
#include <memory>
#include <mutex>
#include <type_traits>
#include <utility>

namespace platenest {

// First-in first-out queue of object references (pointers, smart pointers, small records) for any number of threads.
// Producers meet at one lock and consumers at another, so a push never waits for a pop: the two-lock queue of Michael
// and Scott (1996). Items stand in blocks of 64 slots. The queue keeps one spent node at its head; a block dies with
// the node of its last slot, one step after its last item was popped. Cost: one small allocation per item and one per
// 64 items. T must be default constructible, that value meaning "nothing", and its moves must not throw.
template <class T>
class TFifo {
  static_assert(std::is_nothrow_default_constructible_v<T> && std::is_nothrow_move_assignable_v<T>);

 public:
  static constexpr int kBlockSize = 64;  // items

 private:
  using TBlock = std::array<T, kBlockSize>;
  // Block and Index never change once the node is linked; Next is written by producers and read by consumers.
  struct TNode {
    TBlock* Block = nullptr;
    int Index = -1;  // slot of the node's item
    std::atomic<TNode*> Next{nullptr};
  };
  using PNode = TNode*;

 public:
  TFifo() : FHead(new TNode), FTail(FHead.load()) {}
  // Clears, but a derived class that overrides NotifyDelete is gone by now: it calls Clear in its own destructor.
  virtual ~TFifo();
  TFifo(const TFifo&) = delete;
  TFifo& operator=(const TFifo&) = delete;

  // On a failed allocation the queue stays as it was.
  void Push(T Value);
  void Enqueue(T Value) { Push(std::move(Value)); }
  // False on an empty queue, which leaves Value alone.
  bool Pop(T& Value);
  bool Dequeue(T& Value) { return Pop(Value); }
  // The item that Pop would deliver next; it stays in the queue.
  bool Peek(T& Value) const requires std::copyable<T>;
  // Compares the two ends without a lock and without a look into their nodes. Only a hint while other threads push or
  // pop: an item may be announced here a moment before Pop can deliver it.
  bool Empty() const { return FHead.load(std::memory_order_acquire) == FTail.load(std::memory_order_acquire); }
  // Pops everything while nobody else can push or pop, and hands each item to NotifyDelete.
  void Clear();
  void Clear(int /*dummy*/) { Clear(); }

  // Walks over the queue without a lock: pushes may go on meanwhile, pops may not. An item in the last slot of a block
  // reads as nothing here, although Pop delivers it: whoever gathers items this way misses every 64th.
  class TEnumerator {
   public:
    explicit TEnumerator(const TNode* Head) : FNode(Head) {}
    bool MoveNext();
    const T& Current() const;

   private:
    const TNode* FNode;
  };
  TEnumerator GetEnumerator() const { return TEnumerator(FHead.load(std::memory_order_acquire)); }

  // The enumerator for range-based loops.
  class TIterator {
   public:
    explicit TIterator(TEnumerator Start) : FAt(Start), FValid(FAt.MoveNext()) {}
    const T& operator*() const { return FAt.Current(); }
    TIterator& operator++() {
      FValid = FAt.MoveNext();
      return *this;
    }
    bool operator==(std::default_sentinel_t) const { return !FValid; }

   private:
    TEnumerator FAt;
    bool FValid;
  };
  TIterator begin() const { return TIterator(GetEnumerator()); }
  std::default_sentinel_t end() const { return {}; }

 protected:
  // Called by Clear for each item thrown away, in the order of the queue and under both locks: an override must not
  // throw, and must not call back into this queue.
  virtual void NotifyDelete(T& /*Item*/) {}

 private:
  bool PopUnlocked(T& Value);

  // Apart by more than a cache line, so that the two sides do not slow each other down.
  static constexpr std::size_t kCacheLine = 64;  // bytes
  alignas(kCacheLine) mutable std::mutex FCSHead;
  std::atomic<PNode> FHead;
  alignas(kCacheLine) std::mutex FCSTail;
  std::atomic<PNode> FTail;
};

template <class T>
TFifo<T>::~TFifo() {
  Clear();
  const PNode last = FHead.load(std::memory_order_relaxed);
  delete last->Block;
  delete last;
}

template <class T>
void TFifo<T>::Push(T Value) {
  auto node = std::make_unique<TNode>();
  const std::lock_guard lock(FCSTail);
  const PNode tail = FTail.load(std::memory_order_relaxed);
  node->Block = tail->Block;
  node->Index = tail->Index + 1;
  if (node->Block == nullptr || node->Index >= kBlockSize) {
    node->Block = new TBlock{};
    node->Index = 0;
  }
  (*node->Block)[node->Index] = std::move(Value);
  const PNode linked = node.release();
  FTail.store(linked, std::memory_order_release);       // first, so that FTail never names a node that is gone
  tail->Next.store(linked, std::memory_order_release);  // from here on a consumer may free tail
}

template <class T>
bool TFifo<T>::Pop(T& Value) {
  const std::lock_guard lock(FCSHead);
  return PopUnlocked(Value);
}

template <class T>
bool TFifo<T>::Peek(T& Value) const requires std::copyable<T> {
  const std::lock_guard lock(FCSHead);
  const PNode next = FHead.load(std::memory_order_relaxed)->Next.load(std::memory_order_acquire);
  if (next == nullptr) return false;
  Value = (*next->Block)[next->Index];
  return true;
}

template <class T>
void TFifo<T>::Clear() {
  const std::lock_guard tailLock(FCSTail);
  const std::lock_guard headLock(FCSHead);
  for (T item{}; PopUnlocked(item);) NotifyDelete(item);
}

// Under FCSHead.
template <class T>
bool TFifo<T>::PopUnlocked(T& Value) {
  const PNode spent = FHead.load(std::memory_order_relaxed);
  const PNode next = spent->Next.load(std::memory_order_acquire);
  if (next == nullptr) return false;
  FHead.store(next, std::memory_order_release);
  Value = std::move((*next->Block)[next->Index]);
  if (spent->Index >= kBlockSize - 1) delete spent->Block;
  delete spent;
  return true;
}

template <class T>
bool TFifo<T>::TEnumerator::MoveNext() {
  const PNode next = FNode->Next.load(std::memory_order_acquire);
  if (next == nullptr) return false;
  FNode = next;
  return true;
}

template <class T>
const T& TFifo<T>::TEnumerator::Current() const {
  static const T kNothing{};
  return FNode->Block != nullptr && FNode->Index < kBlockSize - 1 ? (*FNode->Block)[FNode->Index] : kNothing;
}

}  // namespace platenest
