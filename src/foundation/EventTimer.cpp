#include "platenest/foundation/EventTimer.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <stop_token>
#include <utility>

#include "platenest/foundation/Host.h"

namespace platenest {

namespace {

thread_local TTimerBoard* currentBoard = nullptr;

constexpr double kLongestSeconds = 1e9;  // keeps the end of the time inside the clock's range

using TDeadline = std::chrono::steady_clock::time_point;

TDeadline DeadlineAfter(double Seconds) {
  const double seconds = Seconds > 0 ? std::min(Seconds, kLongestSeconds) : 0;
  return std::chrono::steady_clock::now() +
         std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(seconds));
}

// False if the timer was cancelled first.
bool WaitUntil(TDeadline Deadline, const std::stop_token& Cancelled) {
  std::mutex mutex;
  std::condition_variable_any wake;
  std::unique_lock lock(mutex);
  wake.wait_until(lock, Cancelled, Deadline, [] { return false; });
  return !Cancelled.stop_requested();
}

void Fire(const std::function<void()>& Event) noexcept {
  try {
    if (Event) Event();
  } catch (const std::exception& error) {
    TCerr::W("[Error] TEventTimer: the event raised: %s", error.what());
  } catch (...) {
    TCerr::W("[Error] TEventTimer: the event raised");
  }
}

}  // namespace

TEventTimer::TEventTimer(double Seconds, std::function<void()> Event) : FBoard(CurrentTimerBoard()) {
  if (FBoard != nullptr) {
    FBoard->Add(this, Seconds, std::move(Event));
    return;
  }
  FThread =
      std::jthread([deadline = DeadlineAfter(Seconds), event = std::move(Event)](const std::stop_token& cancelled) {
        if (WaitUntil(deadline, cancelled)) Fire(event);
      });
}

TEventTimer::~TEventTimer() {
  if (FBoard != nullptr) FBoard->Remove(this);
  // Otherwise the thread is told to stop and joined; it cannot join itself.
  if (FThread.get_id() == std::this_thread::get_id()) FThread.detach();
}

void TTimerBoard::Add(const TEventTimer* Timer, double Seconds, std::function<void()> Event) {
  const std::lock_guard lock(FLock);
  const double seconds = Seconds > 0 ? Seconds : 0;
  FEntries.push_back({Timer, FNow + seconds, std::move(Event)});
  while (FireOne()) {
  }
}

void TTimerBoard::Remove(const TEventTimer* Timer) {
  const std::lock_guard lock(FLock);
  std::erase_if(FEntries, [Timer](const TEntry& entry) { return entry.Timer == Timer; });
}

void TTimerBoard::AdvanceSeconds(double Seconds) {
  const std::lock_guard lock(FLock);
  if (Seconds > 0) FNow += Seconds;
  while (FireOne()) {
  }
}

int TTimerBoard::Running() const {
  const std::lock_guard lock(FLock);
  return static_cast<int>(FEntries.size());
}

// False if nothing is due. The event may create and destroy timers, its own too.
bool TTimerBoard::FireOne() {
  const auto first = std::ranges::min_element(FEntries, {}, &TEntry::Due);
  if (first == FEntries.end() || first->Due > FNow) return false;
  const std::function<void()> event = std::move(first->Event);
  FEntries.erase(first);
  Fire(event);
  return true;
}

TTimerBoard* CurrentTimerBoard() noexcept {
  return currentBoard;
}

TTimerScope::TTimerScope(TTimerBoard* Board) noexcept : FFormer(std::exchange(currentBoard, Board)) {}

TTimerScope::~TTimerScope() {
  currentBoard = FFormer;
}

}  // namespace platenest
