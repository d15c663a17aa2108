#include "platenest/foundation/Clock.h"

#include <chrono>
#include <utility>

namespace platenest {

namespace {
thread_local TClockSource clockSource;
}

double Clock::NowMs() {
  if (clockSource) return clockSource();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

TClockScope::TClockScope(TClockSource Source) : FFormer(std::exchange(clockSource, std::move(Source))) {}
TClockScope::~TClockScope() {
  clockSource = std::move(FFormer);
}

TStopwatch TStopwatch::StartNew() {
  TStopwatch watch;
  watch.Start();
  return watch;
}

void TStopwatch::Start() {
  if (FRunning) return;
  FStart = Clock::NowMs();
  FRunning = true;
}

void TStopwatch::Stop() {
  FElapsed = ElapsedMs();
  FRunning = false;
}

void TStopwatch::Reset() {
  *this = TStopwatch();
}

double TStopwatch::ElapsedMs() const {
  return FRunning ? FElapsed + (Clock::NowMs() - FStart) : FElapsed;
}

}  // namespace platenest
