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

TEventTimer::TEventTimer(double Seconds, std::function<void()> Event)
    : FThread([deadline = DeadlineAfter(Seconds), event = std::move(Event)](const std::stop_token& cancelled) {
        if (WaitUntil(deadline, cancelled)) Fire(event);
      }) {}

TEventTimer::~TEventTimer() {
  // Otherwise the thread is told to stop and joined; it cannot join itself.
  if (FThread.get_id() == std::this_thread::get_id()) FThread.detach();
}

}  // namespace platenest
