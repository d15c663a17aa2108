#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "CuttingStock1D.h"
#include "platenest/uBCPBase/BCPTree.h"

namespace platenest {
namespace {

TEST(BCPThreads, ThePoolTakesColumnsFromManyThreadsOnce) {
  TVarPool<TBarPattern> pool({9, 9}, {1, 1});
  std::vector<std::thread> threads;
  for (int side = 0; side < 3; ++side)
    threads.emplace_back([&pool] {
      bool exists = false;
      for (int i = 0; i < 600; ++i) pool.AddVar(TBarPattern({i % 20, i % 7}, 0), exists);
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(pool.Count(), 140);
}

TEST(BCPThreads, OutsideSolutionsAndTheStopArriveDuringASearch) {
  const TBarProblem rolls = ChvatalRolls();
  auto manager = BarSolvers(rolls);
  TBCPTree<TBarPattern>::TSolutionFifo fifo;
  std::atomic<bool> stop = false, priced = false;
  manager.AddSubProblemSolver([&](const auto&, bool&, double&) -> std::unique_ptr<TBarPattern> {
    priced = true;
    while (!stop) std::this_thread::yield();
    return nullptr;
  });
  std::thread feeder([&] {
    for (int i = 0; i < 200; ++i) {
      TBarSolution solution;
      CutGreedily(rolls, solution);
      fifo.Push(std::move(solution));
    }
    while (!priced) std::this_thread::yield();
    stop = true;
  });
  TBCPTree<TBarPattern> tree(&manager, &fifo, true, 0);
  EXPECT_TRUE(rolls.CheckSolution(tree.Solve(stop)));
  priced = true;
  feeder.join();
}

}  // namespace
}  // namespace platenest
