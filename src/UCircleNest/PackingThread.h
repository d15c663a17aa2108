#pragma once

#include <exception>
#include <thread>
#include <vector>

#include "platenest/UCircleNest/CirclePacking.h"
#include "platenest/foundation/StopToken.h"

namespace platenest {

// What a worker does with the start configurations.
enum class TMainStrategy : int {
  SingleResult = 0,       // goes on from the shared result
  InitConfig = 1,         // best occupancy over the configurations
  InitConfigStrip = 2,    // least used height over the configurations, bottom-left
  SingleResultStrip = 3,  // least used height from the shared result
  BinarySearchStrip = 4,  // least used height by bisection on the plate's height
};

// The look-ahead threshold that no hole degree lies below: the greedy never looks ahead.
inline constexpr double kNoLookAhead = -4294967295.0;
// The used height of a strip worker that has no packing.
inline constexpr double kNoLength = 4294967295.0;
// What a bisection may take, whatever the time of the packing.
inline constexpr int kBisectionMilliseconds = 10000;

// One worker: takes the start configurations StartIdx, StartIdx + ThreadNum, ... of a shared problem and keeps the best
// packing in fields of its own.
// - Reads the problem and writes nothing of it, so that any number of workers run beside each other; nobody may change
//   the problem while they run, but for its stop flag.
// - Runs under the run token and the timer board of the thread that created it, and with a step budget of its own.
// - What it raises is kept for the caller's thread.
class TCirclePacking::TMyPackingThread final {
 public:
  // Starts at once unless created suspended. The problem must outlive the worker.
  TMyPackingThread(bool CreateSuspended, const TCirclePacking& Packing, int StartIdx, double Param, int ThreadNum,
                   TMainStrategy MainStrategy);
  // Waits for the thread.
  ~TMyPackingThread() = default;
  TMyPackingThread(const TMyPackingThread&) = delete;
  TMyPackingThread& operator=(const TMyPackingThread&) = delete;

  void Start();             // for a worker created suspended; no effect on a started one
  void WaitFor();           // returns at once if not started
  void RaiseAgain() const;  // what the worker raised, after WaitFor; nothing if it ended well

  // The answer, after WaitFor.
  const TCircleNestRst& PackingResult() const { return FPackingResult; }
  double LenSPP() const { return FLenSPP; }
  double OccuRate() const { return FOccuRate; }

 private:
  void Carry() noexcept;
  void Execute();
  void PackingWithSingleCircleResult();
  void PackingWithInitConfig();
  void PackingWithInitConfigSPP();
  void PackingWithSingleResultSPP();
  void BinarySearchPackingSPP();
  double PackingWithPreResult(std::vector<int>& Remaining, TCircleNestRst& Rst, double Occu) const;
  double PackingWithPreResultSPP(const std::vector<int>& Remaining, TCircleNestRst& Rst) const;
  void KeepDenser(double Occu, const TCircleNestRst& Rst);
  void KeepShorter(double Length, const TCircleNestRst& Rst);

  const TCirclePacking& FPacking;
  int FStartIdx;
  double FPackingParam;
  TCircleNestRst FPackingResult;
  double FLenSPP = kNoLength;
  double FOccuRate = 0;
  int FThreadNum;
  TMainStrategy FMainStrategy;
  const TStopToken* FToken;
  TTimerBoard* FTimers;
  bool FStarted = false;
  std::exception_ptr FRaised;
  std::jthread FThread;  // last: joined before the fields that it writes go
};

}  // namespace platenest
