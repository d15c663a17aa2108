#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "platenest/job/Run.h"

namespace platenest {

enum class ProgressForm : std::uint8_t {
  None,
  Terminal,  // one line, rewritten
  Lines,     // a line at each improvement that it shows
  Json,      // one object a line
};

// When the next line is due, in milliseconds of one clock: news at most 4 times a second, so that the last news at the
// end makes it 5 at most, and without news the former line again before 2 seconds are over.
struct ProgressPace {
  static constexpr double kNewsMs = 250;
  static constexpr double kRepeatMs = 1800;

  // The first news after the start are due at once.
  explicit ProgressPace(double StartMs) : LastMs(StartMs - kNewsMs) {}
  bool IsDue(double NowMs, bool HasNews) const { return NowMs - LastMs >= (HasNews ? kNewsMs : kRepeatMs); }

  double LastMs;
};

std::string ProgressText(const Progress& AProgress);  // "cg  12 s  plates 8  use 91.4 %  bound 8  unplaced 0"
std::string ProgressJson(const Progress& AProgress);  // {"t":1.25,"phase":"cg","plates":8,"usage":0.914,...}

// Shows how a run goes on standard error, from its construction to Finish().
class ProgressView {
 public:
  // Start is what is shown until the first improvement.
  ProgressView(ProgressForm Form, Progress Start);
  ~ProgressView() { Finish(); }
  ProgressView(const ProgressView&) = delete;
  ProgressView& operator=(const ProgressView&) = delete;

  void Show(const Progress& AProgress);

  // Writes news that are still held back and leaves the terminal line empty. No line comes later.
  void Finish();

 private:
  void Beat(const std::stop_token& Stop);
  void WriteIfDue();
  void WriteLine();

  const ProgressForm FForm;
  std::mutex FLock;  // over all fields below
  std::condition_variable_any FWake;
  Progress FLatest;
  double FLatestMs;
  bool FHasNews = false;
  ProgressPace FPace;
  std::size_t FShownLength = 0;
  std::jthread FBeat;
};

}  // namespace platenest
