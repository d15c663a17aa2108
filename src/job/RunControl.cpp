#include "RunControl.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace platenest::detail {

namespace {

// In a deterministic run each look at the clock counts as this many milliseconds.
constexpr double kMsPerLook = 0.01;

double RealMs() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace

TRunControl::TRunControl(const Options& AOptions, const RunHooks& Hooks)
    : FHooks(Hooks),
      FToken(Hooks.Stop),
      FStart(RealMs()),
      FLimitMs(AOptions.TimeLimit * 1000),
      FTokenScope(&FToken),
      FMemoryScope([free = FreePhysicalMemory(), limit = AOptions.MemoryLimit] {
        return free > 0 ? std::min(free, limit) : limit;  // 0: the system does not tell
      }) {
  if (AOptions.Deterministic)
    FClockScope.emplace([looks = Int64{0}]() mutable { return static_cast<double>(++looks) * kMsPerLook; });
  FClockStart = Clock::NowMs();
  if (!AOptions.Deterministic && AOptions.TimeLimit > 0) {
    FDeadline.emplace(AOptions.TimeLimit, [this] {
      FOutOfTime.store(true, std::memory_order_relaxed);
      FToken.RequestStop();
    });
  }
}

TRunControl::~TRunControl() = default;

bool TRunControl::StoppedByCaller() const {
  return FRefused || (FHooks.Stop != nullptr && FHooks.Stop->StopRequested());
}

bool TRunControl::IsOver() {
  if (FLimitMs > 0 && !OutOfTime() && Clock::NowMs() - FClockStart + FCountedMs >= FLimitMs) FOutOfTime = true;
  return StoppedByCaller() || OutOfTime();
}

bool TRunControl::Affords(double Ms) {
  if (!FClockScope) return true;
  FCountedMs += Ms;
  return !IsOver();
}

std::optional<ResultStatus> TRunControl::Interruption() const {
  if (StoppedByCaller()) return ResultStatus::Stopped;
  return OutOfTime() ? std::optional(ResultStatus::TimeLimit) : std::nullopt;
}

double TRunControl::Seconds() const {
  return (RealMs() - FStart) / 1000;
}

void TRunControl::Report(Progress Now) {
  if (!FHooks.OnProgress || FRefused) return;
  Now.Seconds = Seconds();
  if (FHooks.OnProgress(Now)) return;
  FRefused = true;
  FToken.RequestStop();
}

void NoteInterruption(const TRunControl& Control, Result& AResult) {
  if (AResult.Status == ResultStatus::Complete) return;
  const std::optional<ResultStatus> cut = Control.Interruption();
  if (!cut) return;
  AResult.Status = *cut;
  for (PartUse& part : AResult.Parts)
    if (part.Reason == "left_by_method") part.Reason = "time";
}

}  // namespace platenest::detail
