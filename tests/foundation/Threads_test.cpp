#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <future>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platenest/foundation/EventTimer.h"
#include "platenest/foundation/GeometryLog.h"
#include "platenest/foundation/Host.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

using namespace std::chrono_literals;

TEST(EventTimer, FiresOnceFromAThreadOfItsOwn) {
  for (const double seconds : {0.01, 0.0, -3.0, std::nan("")}) {
    std::atomic<int> fired{0};
    std::promise<std::thread::id> thread;
    const TEventTimer timer(seconds, [&] {
      if (++fired == 1) thread.set_value(std::this_thread::get_id());
    });
    EXPECT_NE(thread.get_future().get(), std::this_thread::get_id());
    std::this_thread::sleep_for(5ms);
    EXPECT_EQ(fired, 1);
  }
}

TEST(EventTimer, WaitsForItsTime) {
  const auto start = std::chrono::steady_clock::now();
  std::promise<void> fired;
  const TEventTimer timer(0.05, [&] { fired.set_value(); });
  fired.get_future().get();
  EXPECT_GE(std::chrono::steady_clock::now() - start, 50ms);
}

TEST(EventTimer, DestructionCancelsWithoutWaitingForTheInterval) {
  bool fired = false;
  for (const double seconds : {3600.0, 1e18, HUGE_VAL}) {
    const auto start = std::chrono::steady_clock::now();
    {
      const TEventTimer timer(seconds, [&] { fired = true; });
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 60s);
  }
  EXPECT_FALSE(fired);
}

// The plain counter is what the thread sanitizer watches: an event after the destructor would race with its reading.
TEST(EventTimer, NoEventRunsAfterTheDestructor) {
  int fired = 0;
  for (int i = 0; i < 300; ++i) {
    const int before = fired;
    {
      const TEventTimer timer(i % 3 * 1e-4, [&] { ++fired; });
      if (i % 2 == 0) std::this_thread::sleep_for(std::chrono::microseconds(i));
    }
    EXPECT_LE(fired - before, 1);
  }
  EXPECT_GT(fired, 0);
}

TEST(EventTimer, WhatTheEventRaisesBecomesAWarning) {
  std::promise<std::string> warning;
  const TWarningScope sink([&](std::string_view Line) { warning.set_value(std::string(Line)); });
  const TEventTimer timer(0, [] { throw std::runtime_error("boom"); });
  EXPECT_NE(warning.get_future().get().find("boom"), std::string::npos);
}

TEST(EventTimer, DestroyedByItsOwnEventItLetsTheEventFinish) {
  std::promise<void> created;
  std::promise<std::string> finished;
  std::unique_ptr<TEventTimer> timer;
  const std::string text(100, 'x');
  timer = std::make_unique<TEventTimer>(0, [&finished, &timer, text, ready = created.get_future().share()] {
    ready.wait();
    timer.reset();
    finished.set_value(text);
  });
  created.set_value();
  EXPECT_EQ(finished.get_future().get(), text) << "what the event holds outlives the timer";
}

TEST(Threads, LogNumbersAreDistinct) {
  std::vector<std::set<Int64>> drawn(2);
  {
    std::vector<std::jthread> threads;
    for (auto& numbers : drawn)
      threads.emplace_back([&numbers] {
        for (int i = 0; i < 100000; ++i) numbers.insert(TGeometryLog::GetLogUID());
      });
  }
  EXPECT_EQ(drawn[0].size(), 100000u);
  drawn[0].merge(drawn[1]);
  EXPECT_EQ(drawn[0].size(), 200000u);
}

TEST(Threads, EachHasARandomSequenceOfItsOwn) {
  const TRandomScope former;
  SetSeed(5);
  std::vector<int> here;
  std::vector<int> there;
  for (int i = 0; i < 100; ++i) here.push_back(Random(1000));
  SetSeed(5);
  std::jthread([&there] {
    SetSeed(5);
    for (int i = 0; i < 100; ++i) there.push_back(Random(1000));
  }).join();
  EXPECT_EQ(here, there);
  EXPECT_EQ(Random(1000), here[0]) << "the other thread drew from its own";
}

}  // namespace
}  // namespace platenest
