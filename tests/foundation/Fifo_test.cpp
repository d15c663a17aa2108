#include "platenest/foundation/Fifo.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

namespace platenest {
namespace {

// Remembers what Clear throws away.
class TWitness : public TFifo<int*> {
 public:
  std::vector<int> Deleted;

 protected:
  void NotifyDelete(int*& Item) override { Deleted.push_back(*Item); }
};

std::vector<int> Numbers(int Count) {
  std::vector<int> result(Count);
  for (int i = 0; i < Count; ++i) result[i] = i;
  return result;
}

TEST(Fifo, ClearHandsEachItemOverInOrder) {
  std::vector<int> numbers = Numbers(200);
  TWitness fifo;
  for (int& number : numbers) fifo.Enqueue(&number);
  fifo.Clear(0);
  EXPECT_EQ(fifo.Deleted, numbers);
  int* item = nullptr;
  fifo.Push(&numbers[5]);
  EXPECT_TRUE(fifo.Pop(item) && item == &numbers[5] && fifo.Empty());
}

TEST(Fifo, DeliversInOrderButEnumeratesTheLastSlotOfABlockAsNothing) {
  std::vector<int> numbers = Numbers(130);
  TFifo<int*> fifo;
  int* item = &numbers[7];
  EXPECT_FALSE(fifo.Pop(item) || fifo.Peek(item));
  EXPECT_EQ(item, &numbers[7]) << "an empty queue leaves the argument alone";
  for (int& number : numbers) fifo.Push(&number);
  fifo.Pop(item);
  int place = 1;
  for (int* const listed : fifo) {
    EXPECT_EQ(listed, place == 63 || place == 127 ? nullptr : &numbers[place]) << place;
    ++place;
  }
  EXPECT_EQ(place, 130);
  for (int i = 1; i < 130; ++i) {
    ASSERT_TRUE(fifo.Peek(item) && *item == i);
    ASSERT_TRUE(fifo.Dequeue(item) && *item == i);
  }
  EXPECT_TRUE(fifo.Empty());
}

struct TCounted {
  TCounted() noexcept { ++Alive; }
  TCounted(const TCounted&) noexcept { ++Alive; }
  TCounted& operator=(const TCounted&) noexcept = default;
  ~TCounted() { --Alive; }
  static inline int Alive = 0;
};

TEST(Fifo, ABlockDiesOneStepAfterItsLastItem) {
  {
    TFifo<TCounted> fifo;
    TCounted item;
    const auto slots = [] { return TCounted::Alive - 1; };
    EXPECT_EQ(slots(), 0) << "no block before the first item";
    for (int i = 0; i < 65; ++i) fifo.Push({});
    EXPECT_EQ(slots(), 128);
    for (int i = 0; i < 64; ++i) fifo.Pop(item);
    EXPECT_EQ(slots(), 128) << "the spent node of slot 63 still stands at the head";
    fifo.Pop(item);
    EXPECT_EQ(slots(), 64);
  }
  EXPECT_EQ(TCounted::Alive, 0);
}

// Two producers, two consumers, and a third party that clears: every item leaves exactly once.
class TCountingFifo : public TFifo<std::intptr_t> {
 public:
  std::vector<std::intptr_t> Cleared;  // guarded by the locks that Clear holds

 protected:
  void NotifyDelete(std::intptr_t& Item) override { Cleared.push_back(Item); }
};

TEST(Fifo, EveryItemLeavesOnceUnderPushPopAndClear) {
  constexpr int kItems = 20'000;
  TCountingFifo fifo;
  std::atomic<int> producing{2};
  std::vector<std::intptr_t> taken[2];
  std::vector<std::thread> threads;
  for (int side = 0; side < 2; ++side) {
    threads.emplace_back([&fifo, &producing, side] {
      for (std::intptr_t i = 0; i < kItems; ++i) fifo.Push(2 * i + side);
      --producing;
    });
    threads.emplace_back([&fifo, &producing, &mine = taken[side]] {
      std::intptr_t item = 0;
      for (bool last = false; !last;) {
        last = producing == 0;
        while (!fifo.Empty()) {  // asks while the other consumer frees nodes
          if (fifo.Pop(item)) mine.push_back(item);
        }
      }
    });
  }
  while (producing > 0) {
    fifo.Clear();
    std::this_thread::yield();
  }
  for (std::thread& thread : threads) thread.join();
  std::vector<char> seen(2 * kItems);
  for (const auto* list : {&taken[0], &taken[1], &fifo.Cleared}) {
    std::intptr_t last[2] = {-1, -1};
    for (const std::intptr_t item : *list) {
      EXPECT_GT(item, last[item % 2]) << "items of one producer stay in order";
      last[item % 2] = item;
      ++seen[static_cast<std::size_t>(item)];
    }
  }
  EXPECT_THAT(seen, testing::Each(1));
}

}  // namespace
}  // namespace platenest
