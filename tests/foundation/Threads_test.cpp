#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "platenest/foundation/EventTimer.h"
#include "platenest/foundation/Host.h"

namespace platenest {
namespace {

using namespace std::chrono_literals;

TEST(EventTimer, FiresOnceFromAThreadOfItsOwn) {
  for (const double seconds : {0.05, 0.0, -3.0, std::nan("")}) {
    const auto start = std::chrono::steady_clock::now();
    std::atomic<int> fired{0};
    std::promise<std::thread::id> thread;
    const TEventTimer timer(seconds, [&] {
      if (++fired == 1) thread.set_value(std::this_thread::get_id());
    });
    EXPECT_NE(thread.get_future().get(), std::this_thread::get_id());
    EXPECT_TRUE(seconds != 0.05 || std::chrono::steady_clock::now() - start >= 50ms);
    std::this_thread::sleep_for(5ms);
    EXPECT_EQ(fired, 1);
  }
}

TEST(EventTimer, DestructionCancelsWithoutWaitingForTheInterval) {
  const auto start = std::chrono::steady_clock::now();
  for (const double seconds : {3600.0, 1e18, HUGE_VAL}) const TEventTimer timer(seconds, [] { FAIL() << "cancelled"; });
  EXPECT_LT(std::chrono::steady_clock::now() - start, 60s);
}

// The plain counter is what the thread sanitizer watches: an event after the destructor would race with its reading.
TEST(EventTimer, NoEventRunsAfterTheDestructorOnRealTimeAndOnABoard) {
  TTimerBoard board;
  for (TTimerBoard* const place : {static_cast<TTimerBoard*>(nullptr), &board}) {
    const TTimerScope scope(place);
    int fired = 0;
    for (int i = 0; i < 300; ++i) {
      const int before = fired;
      std::jthread mover;
      {
        const TEventTimer timer(i % 3 * 1e-4, [&] { ++fired; });
        mover = std::jthread([&] { board.AdvanceSeconds(1); });
        if (i % 2 == 0) {
          mover.join();
          std::this_thread::sleep_for(std::chrono::microseconds(i));
        }
      }
      EXPECT_LE(fired - before, 1);
    }
    EXPECT_GT(fired, 0);
  }
}

TEST(EventTimer, DestroyedByItsOwnEventItLetsTheEventFinishAndWarnsOfWhatItRaises) {
  std::promise<void> created;
  std::promise<std::string> finished;
  std::promise<std::string> warning;
  const TWarningScope sink([&](std::string_view Line) { warning.set_value(std::string(Line)); });
  std::unique_ptr<TEventTimer> timer;
  const std::string text(100, 'x');
  timer = std::make_unique<TEventTimer>(0, [&finished, &timer, text, ready = created.get_future().share()] {
    ready.wait();
    timer.reset();
    finished.set_value(text);
    throw std::runtime_error("boom");
  });
  created.set_value();
  EXPECT_EQ(finished.get_future().get(), text) << "what the event holds outlives the timer";
  EXPECT_NE(warning.get_future().get().find("boom"), std::string::npos);
}

TEST(TimerBoard, FiresWhatIsDueInOrderAndNothingAfterItsTimerOrScope) {
  TTimerBoard board;
  std::string fired;
  std::optional<TTimerScope> scope(&board);
  const TEventTimer late(5, [&] { fired += 'l'; });
  const TEventTimer early(2, [&] { fired += 'e'; });
  auto cancelled = std::make_unique<TEventTimer>(3, [&] { fired += 'c'; });
  const TEventTimer twin(2, [&] {
    fired += 't';
    cancelled.reset();
  });
  std::unique_ptr<TEventTimer> self;
  self = std::make_unique<TEventTimer>(4, [&, text = std::string(100, 's')] {
    self.reset();
    fired += text[0];
  });
  const TEventTimer atOnce(0, [&] { fired += '0'; });
  board.AdvanceSeconds(1.5);
  EXPECT_EQ(fired, "0");
  EXPECT_EQ(board.Running(), 5);
  std::thread([&] { board.AdvanceSeconds(10); }).join();
  EXPECT_EQ(fired, "0etsl") << "at equal times the older one first";
  EXPECT_EQ(board.Running(), 0);
  scope.reset();
  EXPECT_EQ(CurrentTimerBoard(), nullptr);
}

}  // namespace
}  // namespace platenest
