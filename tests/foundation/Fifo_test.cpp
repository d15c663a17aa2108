#include "platenest/foundation/Fifo.h"

#include <gmock/gmock.h>

#include <thread>
#include <vector>

namespace platenest {
namespace {

// Remembers what Clear throws away.
class TWitness : public TFifo<int> {
 public:
  std::vector<int> Cleared;  // guarded by the locks that Clear holds

 protected:
  void NotifyDelete(int& Item) override { Cleared.push_back(Item); }
};

TEST(Fifo, DeliversInOrderButEnumeratesTheLastSlotOfABlockAsNothing) {
  TWitness fifo;
  int item = 7;
  EXPECT_FALSE(fifo.Pop(item) || fifo.Peek(item));
  EXPECT_EQ(item, 7) << "an empty queue leaves the argument alone";
  for (int i = 0; i <= 130; ++i) fifo.Enqueue(i);
  fifo.Pop(item);
  int place = 1;
  for (const int listed : fifo) {
    EXPECT_EQ(listed, place == 63 || place == 127 ? 0 : place);
    ++place;
  }
  EXPECT_EQ(place, 131);
  for (int i = 1; i < 129; ++i) {
    ASSERT_TRUE(fifo.Peek(item) && item == i);
    ASSERT_TRUE(fifo.Dequeue(item) && item == i);
  }
  fifo.Clear(0);
  EXPECT_TRUE(fifo.Empty());
  EXPECT_THAT(fifo.Cleared, testing::ElementsAre(129, 130));
}

struct TMortal {
  ~TMortal() { ++Deaths; }
  static inline int Deaths = 0;
};

TEST(Fifo, ABlockDiesOneStepAfterItsLastItem) {
  TFifo<TMortal> fifo;
  TMortal item;
  for (int i = 0; i < 65; ++i) fifo.Push({});
  const int before = TMortal::Deaths;
  for (int i = 0; i < 64; ++i) fifo.Pop(item);
  EXPECT_EQ(TMortal::Deaths, before) << "the spent node of slot 63 still stands at the head";
  fifo.Pop(item);
  EXPECT_EQ(TMortal::Deaths, before + TFifo<TMortal>::kBlockSize);
}

// Four threads push and pop, and a fifth clears: every item leaves exactly once.
TEST(Fifo, EveryItemLeavesOnceUnderPushPopAndClear) {
  constexpr int kSides = 4;
  constexpr int kItems = 10'000;
  TWitness fifo;
  std::vector<int> taken[kSides + 1];
  std::vector<std::thread> threads;
  for (int side = 0; side < kSides; ++side)
    threads.emplace_back([&fifo, side, &mine = taken[side]] {
      int item = 0;
      for (int i = 0; i < kItems; ++i) {
        fifo.Push(kSides * i + side);
        if (!fifo.Empty() && fifo.Pop(item)) mine.push_back(item);  // asks while others free nodes
      }
    });
  for (int i = 0; i < 100; ++i) fifo.Clear();
  for (std::thread& thread : threads) thread.join();
  fifo.Clear();
  taken[kSides] = fifo.Cleared;
  std::vector<char> seen(kSides * kItems);
  for (const auto& list : taken) {
    std::vector<int> last(kSides, -1);
    for (const int item : list) {
      EXPECT_GT(item, last[item % kSides]) << "items of one producer stay in order";
      last[item % kSides] = item;
      ++seen[item];
    }
  }
  EXPECT_THAT(seen, testing::Each(1));
}

}  // namespace
}  // namespace platenest
