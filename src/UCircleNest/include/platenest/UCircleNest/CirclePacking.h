#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "platenest/foundation/EventTimer.h"
#include "platenest/foundation/Export.h"
#include "platenest/foundation/Point2D.h"
#include "platenest/foundation/Rect2D.h"
#include "platenest/foundation/Types.h"

namespace platenest {

// A circle on the plate.
struct TCornerPlacement {
  int CircleIdx = 0;  // position in the size lists
  TPoint2D Center;

  TCornerPlacement() = default;
  TCornerPlacement(int Idx, double X, double Y) : CircleIdx(Idx), Center{X, Y} {}
  TCornerPlacement(int Idx, const TPoint2D& Point) : CircleIdx(Idx), Center(Point) {}
};

using TCircleNestRst = std::vector<TCornerPlacement>;

// A corner position and its hole degree.
struct TPosibleCP {
  TCornerPlacement CP;
  double Value = 0;

  TPosibleCP() = default;
  TPosibleCP(const TCornerPlacement& ACP, double AValue) : CP(ACP), Value(AValue) {}
};

using TPosibleCPList = std::vector<TPosibleCP>;

// Two circles in the bottom corners.
struct TInitConfig {
  TCornerPlacement CP1;
  TCornerPlacement CP2;
};

struct TCircleConnectedInfo {
  int First = 0;
  int Second = 0;

  TCircleConnectedInfo() = default;
  TCircleConnectedInfo(int A, int B) : First(A), Second(B) {}
};

// Ends all packings of the process; belongs to the host.
inline std::atomic<bool> FClassStop{false};

// FRAME: header comment by the owner.
class PLATENEST_API TCirclePacking {
 public:
  TCirclePacking(const TVRect2D& ARect, double Gap, std::vector<double> CircleRadiusList,
                 std::vector<int> CircleNumList);
  TCirclePacking(const TCirclePacking& Other);
  TCirclePacking& operator=(const TCirclePacking&) = delete;
  ~TCirclePacking();

  void Packing(int PackingLevel, int TimePerPlate);
  const TCircleNestRst& ResultTranslation();
  void StopPacking() noexcept { FStopFlag.store(true, std::memory_order_relaxed); }

  double OccuRate() const { return FOccuRate; }
  const TCircleNestRst& PackingResult() const { return FPackingResult; }

  // Most threads that carry workers, 1 to 4; 4 by default. Fewer threads make fewer workers, but for runs with a step
  // limit, where the workers are as many as ever and take turns on the threads.
  void SetThreadLimit(int Most) { FThreadLimit = Most; }
  // Ends each worker, and what follows them on the caller's thread, after so many tried positions, whatever the clock
  // says; then the answer does not depend on clock and threads. 0, the default, for no limit.
  void SetStepLimit(Int64 Steps) { FStepLimit = Steps; }

 protected:
  // A worker on one thread; defined in PackingThread.h of this folder.
  class TMyPackingThread;

  void GenerateInitConfig();
  static int GetCircleCenter(double R, double R1, double R2, const TPoint2D& P1, const TPoint2D& P2, TPoint2D& I1,
                             TPoint2D& I2);
  TPosibleCPList GeneratePosibleCP(const std::vector<int>& Idx, const std::vector<int>& Remaining,
                                   const TCircleNestRst& Rst, bool WithCorners) const;
  void UpdatePosibleCP(const std::vector<int>& Idx, const std::vector<int>& Remaining, const TCircleNestRst& Rst,
                       TPosibleCPList& CPs) const;
  double GreedyPacking(const std::vector<int>& Idx, std::vector<int>& Remaining, TCircleNestRst& Rst, double Occu,
                       TPosibleCPList& CPs) const;
  double GreedyPackingEx(const std::vector<int>& Idx, std::vector<int>& Remaining, TCircleNestRst& Rst, double Occu,
                         double Threshold, TPosibleCPList& CPs) const;
  void UpdateResult(double Occu, const TCircleNestRst& Rst);
  void TailRePack();
  void FillRest(TCircleNestRst& Rst);
  static void SortByY(TCircleNestRst& Rst);
  void LargePlateNest();
  void CheckLastPlate();
  void PackingMultiThread(double Param, int ThreadNum, int MainStrategy);
  double PackingWithY(const std::vector<int>& Idx, std::vector<int>& Remaining, TCircleNestRst& Rst) const;
  double BinaryPacking(const std::vector<int>& Idx, const std::vector<int>& Remaining, TCircleNestRst& Rst,
                       const TPosibleCPList& CPs, double Occu, double High, double Low);
  // Time, the object's flag, the process-wide flag or the token of the run on this thread.
  bool Stopped() const noexcept;
  void StartTimer(int Milliseconds);

 private:
  TVRect2D FRect;
  double FGap = 0;
  double FOccuRate = 0;
  std::vector<double> FCircleRadiusList;
  std::vector<int> FCircleNumList;
  std::vector<int> FCircleIdxList;
  std::vector<double> FCircleAreaList;
  int FCircleAmount = 0;
  int FRstCntEvaluate = 0;
  std::vector<TInitConfig> FInitConfigList;
  TCircleNestRst FPackingResult;
  int FTimeLimit = 0;
  std::atomic<bool> FStopFlag{false};
  std::unique_ptr<TEventTimer> FTimerThread;
  bool FIsChanged = false;
  int FThreadLimit = 4;
  Int64 FStepLimit = 0;
};

}  // namespace platenest
