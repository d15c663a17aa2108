#include "ProgressView.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

#include "Files.h"
#include "Text.h"

namespace platenest {

namespace {

double NowMs() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::size_t TerminalColumns() {
  winsize size = {};
  return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

double Rounded(double Value, double PerUnit) {
  return std::nearbyint(Value * PerUnit) / PerUnit;
}

}  // namespace

std::string ProgressText(const Progress& AProgress) {
  if (AProgress.Phase == "nfp")  // no plates: pairs are done, or still to do
    return "nfp  " + Fixed(std::floor(AProgress.Seconds), 0) + " s  done " + Fixed(AProgress.Usage * 100, 1) +
           " %  left " + std::to_string(AProgress.Unplaced);
  std::string line = AProgress.Phase + "  " + Fixed(std::floor(AProgress.Seconds), 0) + " s  plates " +
                     std::to_string(AProgress.Plates) + "  use " + Fixed(AProgress.Usage * 100, 1) + " %";
  if (AProgress.BoundValue) line += "  bound " + Shortest(*AProgress.BoundValue);
  if (AProgress.LpValue) line += "  lp " + Fixed(*AProgress.LpValue, 2);
  return line + "  unplaced " + std::to_string(AProgress.Unplaced);
}

std::string ProgressJson(const Progress& AProgress) {
  std::string object =
      "{\"t\":" + Shortest(Rounded(AProgress.Seconds, 1000)) + ",\"phase\":" + nlohmann::json(AProgress.Phase).dump() +
      ",\"plates\":" + std::to_string(AProgress.Plates) + ",\"usage\":" + Shortest(Rounded(AProgress.Usage, 10000)) +
      ",\"unplaced\":" + std::to_string(AProgress.Unplaced);
  if (AProgress.BoundValue) object += ",\"bound\":" + Shortest(*AProgress.BoundValue);
  if (AProgress.LpValue) object += ",\"lp\":" + Shortest(Rounded(*AProgress.LpValue, 10000));
  if (AProgress.Estimate) object += ",\"estimate\":" + Shortest(Rounded(*AProgress.Estimate, 10000));
  return object + "}";
}

ProgressView::ProgressView(ProgressForm Form, Progress Start)
    : FForm(Form), FLatest(std::move(Start)), FLatestMs(NowMs()), FPace(FLatestMs) {
  if (FForm == ProgressForm::Terminal || FForm == ProgressForm::Json) {
    FBeat = std::jthread([this](const std::stop_token& stop) { Beat(stop); });
  }
}

void ProgressView::Show(const Progress& AProgress) {
  if (FForm == ProgressForm::None) return;
  const std::lock_guard guard(FLock);
  FLatest.Seconds = AProgress.Seconds;
  const bool isSeen = ProgressText(FLatest) != ProgressText(AProgress);
  FLatest = AProgress;
  FLatestMs = NowMs();
  FHasNews = true;
  if (FForm == ProgressForm::Lines) {
    if (isSeen) WriteLine();
  } else {
    WriteIfDue();
  }
}

void ProgressView::Finish() {
  if (FBeat.joinable()) {
    FBeat.request_stop();
    FBeat.join();
  }
  const std::lock_guard guard(FLock);
  if (FForm == ProgressForm::Json && FHasNews) WriteLine();
  if (FForm == ProgressForm::Terminal && FShownLength > 0) {
    std::string blank(FShownLength + 2, ' ');
    blank.front() = blank.back() = '\r';
    WriteAll(STDERR_FILENO, blank);
    FShownLength = 0;
  }
}

void ProgressView::Beat(const std::stop_token& Stop) {
  std::unique_lock lock(FLock);
  while (!Stop.stop_requested()) {
    FWake.wait_for(lock, Stop, std::chrono::milliseconds(50), [] { return false; });
    if (!Stop.stop_requested()) WriteIfDue();
  }
}

void ProgressView::WriteIfDue() {
  if (FPace.IsDue(NowMs(), FHasNews)) WriteLine();
}

void ProgressView::WriteLine() {
  const double now = NowMs();
  Progress shown = FLatest;
  shown.Seconds += (now - FLatestMs) / 1000;
  FHasNews = false;
  FPace.LastMs = now;
  if (FForm != ProgressForm::Terminal) {
    WriteAll(STDERR_FILENO, (FForm == ProgressForm::Json ? ProgressJson(shown) : ProgressText(shown)) + "\n");
    return;
  }
  std::string line = ProgressText(shown).substr(0, TerminalColumns() - 1);
  const std::size_t length = line.size();
  if (length < FShownLength) line.append(FShownLength - length, ' ');
  FShownLength = length;
  WriteAll(STDERR_FILENO, "\r" + line);
}

}  // namespace platenest
