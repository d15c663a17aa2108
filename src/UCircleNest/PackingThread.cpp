#include "PackingThread.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "CornerPlacement.h"

namespace platenest {

namespace {
constexpr int kMostWorkers = 4;
}

TCirclePacking::TMyPackingThread::TMyPackingThread(bool CreateSuspended, const TCirclePacking& Packing, int StartIdx,
                                                   double Param, int ThreadNum, TMainStrategy MainStrategy)
    : FPacking(Packing),
      FStartIdx(StartIdx),
      FPackingParam(Param),
      FThreadNum(ThreadNum),
      FMainStrategy(MainStrategy),
      FToken(CurrentStopToken()),
      FTimers(CurrentTimerBoard()) {
  if (!CreateSuspended) Start();
}

void TCirclePacking::TMyPackingThread::Start() {
  if (FStarted) return;
  FStarted = true;
  FThread = std::jthread([this] { Carry(); });
}

void TCirclePacking::TMyPackingThread::WaitFor() {
  if (FThread.joinable()) FThread.join();
}

void TCirclePacking::TMyPackingThread::RaiseAgain() const {
  if (FRaised) std::rethrow_exception(FRaised);
}

void TCirclePacking::TMyPackingThread::Carry() noexcept {
  const TStopTokenScope token(FToken);
  const TTimerScope timers(FTimers);
  const detail::TStepScope steps(FPacking.FStepLimit);
  try {
    Execute();
  } catch (...) {
    FRaised = std::current_exception();
  }
}

void TCirclePacking::TMyPackingThread::Execute() {
  switch (FMainStrategy) {
    case TMainStrategy::SingleResult:
      return PackingWithSingleCircleResult();
    case TMainStrategy::InitConfig:
      return PackingWithInitConfig();
    case TMainStrategy::InitConfigStrip:
      return PackingWithInitConfigSPP();
    case TMainStrategy::SingleResultStrip:
      return PackingWithSingleResultSPP();
    case TMainStrategy::BinarySearchStrip:
      return BinarySearchPackingSPP();
  }
}

double TCirclePacking::TMyPackingThread::PackingWithPreResult(std::vector<int>& Remaining, TCircleNestRst& Rst,
                                                              double Occu) const {
  TPosibleCPList candidates = FPacking.GeneratePosibleCP(FPacking.FCircleIdxList, Remaining, Rst, false);
  return FPacking.GreedyPackingEx(FPacking.FCircleIdxList, Remaining, Rst, Occu, FPackingParam, candidates);
}

double TCirclePacking::TMyPackingThread::PackingWithPreResultSPP(const std::vector<int>& Remaining,
                                                                 TCircleNestRst& Rst) const {
  return FPacking.PackingWithY(FPacking.FCircleIdxList, Remaining, Rst);
}

void TCirclePacking::TMyPackingThread::KeepDenser(double Occu, const TCircleNestRst& Rst) {
  if (!(Occu > FOccuRate)) return;
  FOccuRate = Occu;
  FPackingResult = Rst;
}

void TCirclePacking::TMyPackingThread::KeepShorter(double Length, const TCircleNestRst& Rst) {
  if (!(Length < FLenSPP) || Size(Rst) != FPacking.FCircleAmount) return;
  FLenSPP = Length;
  FPackingResult = Rst;
}

void TCirclePacking::TMyPackingThread::PackingWithInitConfig() {
  for (int i = FStartIdx; i < Size(FPacking.FInitConfigList); i += FThreadNum) {
    TStart start = FPacking.StartAt(i);
    const double occu = PackingWithPreResult(start.Remaining, start.Rst, start.Occu);
    KeepDenser(occu, start.Rst);
    if (Size(start.Rst) == FPacking.FCircleAmount || FPacking.Stopped()) return;
  }
}

void TCirclePacking::TMyPackingThread::PackingWithSingleCircleResult() {
  TStart start = FPacking.StartFrom(FPacking.FPackingResult);
  const double occu = PackingWithPreResult(start.Remaining, start.Rst, FPacking.FOccuRate);
  KeepDenser(occu, start.Rst);
}

// A packing with all circles may still be longer than that of the next pair, so nothing but a stop ends the walk.
void TCirclePacking::TMyPackingThread::PackingWithInitConfigSPP() {
  for (int i = FStartIdx; i < Size(FPacking.FInitConfigList); i += FThreadNum) {
    TStart start = FPacking.StartAt(i);
    const double length = PackingWithPreResultSPP(start.Remaining, start.Rst);
    KeepShorter(length, start.Rst);
    if (FPacking.Stopped()) return;
  }
}

void TCirclePacking::TMyPackingThread::PackingWithSingleResultSPP() {
  TStart start = FPacking.StartFrom(FPacking.FPackingResult);
  const double length = PackingWithPreResultSPP(start.Remaining, start.Rst);
  KeepShorter(length, start.Rst);
}

// The bisection moves the top of the plate, hence the copy; its clock starts here, whatever is left of the packing's.
void TCirclePacking::TMyPackingThread::BinarySearchPackingSPP() {
  if (FPacking.FInitConfigList.empty()) return;
  TCirclePacking own(FPacking);
  own.FTimeLimit = kBisectionMilliseconds;
  own.StartTimer(own.FTimeLimit);
  const std::vector<int>& idx = own.FCircleIdxList;
  TStart first = FPacking.StartAt(0);
  // A fill never leaves the plate, but leaves out what finds no place: then it may end below any height that holds all.
  const double high = own.PackingWithY(idx, first.Remaining, first.Rst);
  if (own.FRect.Height() < high) return;
  const double low = own.HeightByArea();
  for (int i = FStartIdx; i < Size(own.FInitConfigList); i += FThreadNum) {
    TStart start = FPacking.StartAt(i);
    const TPosibleCPList candidates = own.GeneratePosibleCP(idx, start.Remaining, start.Rst, false);
    const double length = own.BinaryPacking(idx, start.Remaining, start.Rst, candidates, start.Occu, high, low);
    KeepShorter(length, start.Rst);
    if (own.Stopped()) return;
  }
}

TCirclePacking::TStart TCirclePacking::StartFrom(TCircleNestRst Rst) const {
  TStart start{std::move(Rst), FCircleNumList, 0};
  for (const TCornerPlacement& circle : start.Rst) --start.Remaining[circle.CircleIdx];
  start.Occu = Occupancy(start.Rst);
  return start;
}

TCirclePacking::TStart TCirclePacking::StartAt(int Config) const {
  const TInitConfig& pair = FInitConfigList[Config];
  return StartFrom({pair.CP1, pair.CP2});
}

int TCirclePacking::WorkerCount() const {
  const int most = FStepLimit > 0 ? kMostWorkers : std::clamp(FThreadLimit, 1, kMostWorkers);
  return std::min(Size(FInitConfigList), most);
}

// Without a step limit each worker has its thread. With one the workers share the threads allowed: each starts when an
// earlier one has ended, and as none knows of the others, the answers are those of as many threads as workers.
TCirclePacking::TWorkers TCirclePacking::RunWorkers(double Param, int ThreadNum, TMainStrategy MainStrategy) {
  const int atOnce = FStepLimit > 0 ? std::clamp(FThreadLimit, 1, ThreadNum) : ThreadNum;
  TWorkers workers;
  for (int k = 0; k < ThreadNum; ++k) {
    if (k >= atOnce) workers[k - atOnce]->WaitFor();
    workers.push_back(std::make_unique<TMyPackingThread>(false, *this, k, Param, ThreadNum, MainStrategy));
  }
  for (const auto& worker : workers) worker->WaitFor();
  for (const auto& worker : workers) worker->RaiseAgain();
  return workers;
}

void TCirclePacking::PackingMultiThread(double Param, int ThreadNum, int MainStrategy) {
  const TMainStrategy strategy{MainStrategy};
  const TWorkers first = RunWorkers(kNoLookAhead, ThreadNum, strategy);
  const TWorkers second = RunWorkers(Param, ThreadNum, strategy);
  for (const TWorkers* stage : {&first, &second})
    for (const auto& worker : *stage) UpdateResult(worker->OccuRate(), worker->PackingResult());
}

}  // namespace platenest
