// R-tree and queue at the sizes of large jobs.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <thread>
#include <vector>

#include "platenest/foundation/Fifo.h"
#include "platenest/foundation/RTree.h"

namespace {

using namespace platenest;

// Boxes of 1 to 10 units, one per 10 by 10 cell of the plane on average.
std::vector<TVRect2D> RandomBoxes(int Count, unsigned Seed) {
  std::mt19937 random(Seed);
  const double side = 10 * std::sqrt(Count);
  std::uniform_real_distribution<double> place(0, side);
  std::uniform_real_distribution<double> size(1, 10);
  std::vector<TVRect2D> boxes;
  for (int i = 0; i < Count; ++i)
    boxes.push_back(TVRect2D::FromSize(size(random), size(random)).Translate({place(random), place(random)}));
  return boxes;
}

// As many queries as boxes: the boxes themselves, grown by half a unit.
void RTreeInsertAndSearch(benchmark::State& State) {
  const std::vector<TVRect2D> boxes = RandomBoxes(static_cast<int>(State.range(0)), 1);
  std::vector<int> hits;
  double found = 0;
  for (auto _ : State) {
    TRTree<int> tree(8);
    for (int i = 0; i < Size(boxes); ++i) tree.Insert(i, boxes[i]);
    found = 0;
    for (const TVRect2D& box : boxes) {
      hits.clear();
      tree.Search(box.Inflate(0.5), hits, 1e-6);
      found += Size(hits);
    }
  }
  State.counters["hits"] = found;
}
BENCHMARK(RTreeInsertAndSearch)->Arg(1000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void RTreeInsertAndRemove(benchmark::State& State) {
  const std::vector<TVRect2D> boxes = RandomBoxes(static_cast<int>(State.range(0)), 1);
  for (auto _ : State) {
    TRTree<int> tree(8);
    for (int i = 0; i < Size(boxes); ++i) tree.Insert(i, boxes[i]);
    for (int i = 0; i < Size(boxes); ++i) tree.Remove(i);
  }
}
BENCHMARK(RTreeInsertAndRemove)->Arg(100'000)->Unit(benchmark::kMillisecond);

// One thread pushes, the other pops; "misses" counts the pops that found the queue empty, which depend on the weather.
void FifoOnTwoThreads(benchmark::State& State) {
  const std::intptr_t count = State.range(0);
  double misses = 0;
  for (auto _ : State) {
    TFifo<std::intptr_t> fifo;
    std::thread producer([&] {
      for (std::intptr_t i = 1; i <= count; ++i) fifo.Push(i);
    });
    std::intptr_t item = 0;
    for (std::intptr_t popped = 0; popped < count;) {
      if (fifo.Pop(item))
        ++popped;
      else
        ++misses;
    }
    producer.join();
  }
  State.counters["pairs"] = static_cast<double>(count);
  State.counters["misses"] = benchmark::Counter(misses, benchmark::Counter::kAvgIterations);
}
BENCHMARK(FifoOnTwoThreads)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();

void FifoOnOneThread(benchmark::State& State) {
  for (auto _ : State) {
    TFifo<std::intptr_t> fifo;
    std::intptr_t item = 0;
    for (std::intptr_t i = 1; i <= State.range(0); ++i) {
      fifo.Push(i);
      fifo.Pop(item);
    }
    benchmark::DoNotOptimize(item);
  }
}
BENCHMARK(FifoOnOneThread)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
