#pragma once

#include <atomic>
#include <memory>
#include <optional>
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

enum class TMainStrategy : int;  // defined in PackingThread.h of this folder

// Ends all packings of the process; belongs to the host.
inline std::atomic<bool> FClassStop{false};

// How StripPacking looks for the shortest packing.
enum class TStripMethod : int {
  BottomLeft,  // bottom-left fill from every start pair
  Bisection,   // corner greedy under bisection of the length, from every start pair
  Best,        // both, the shorter one
};

// FRAME: header comment by the owner.
class PLATENEST_API TCirclePacking {
 public:
  TCirclePacking(const TVRect2D& ARect, double Gap, std::vector<double> CircleRadiusList,
                 std::vector<int> CircleNumList);
  TCirclePacking(const TCirclePacking& Other);
  TCirclePacking& operator=(const TCirclePacking&) = delete;
  ~TCirclePacking();

  void Packing(int PackingLevel, int TimePerPlate);
  // Places all circles on the shortest piece of the plate's width, as on a strip of the plate's height, and returns the
  // length used, from the plate's edge to the far side of the last circle; nothing if no method places them all, or if
  // no size or no start pair is in play.
  // - Choose the plate wide: bisection ends at once where the bottom-left fill of the first start pair does not stay
  //   within it, and a width of twice the expected length costs nothing.
  // - TimePerPlate in milliseconds, exact; the bisection of one worker ends after ten seconds even so. StopPacking does
  //   not reach a bisection, a run token and FClassStop do.
  // - Lengths are found to one drawing unit by bisection: scale small plates up.
  std::optional<double> StripPacking(int TimePerPlate, TStripMethod Method);
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
  // Two stages of ThreadNum workers with the strategy of this number, the first without look-ahead, the second with the
  // threshold Param; the densest packing of all becomes the result if it is denser. Strip workers report a length and
  // no occupancy: they leave the result alone here, see TakeShortest. Raises what a worker raised, once all have ended;
  // the result is then unchanged.
  void PackingMultiThread(double Param, int ThreadNum, int MainStrategy);
  // One stage of strip workers without look-ahead. The shortest packing with all circles becomes the result, whatever
  // its occupancy, if it is shorter than Best; returns its used height, else Best.
  double TakeShortest(int ThreadNum, int MainStrategy, double Best);
  // The workers that a run starts: one for each start pair, four at most, fewer under a thread limit.
  int WorkerCount() const;
  // The greatest centre Y plus working radius; 0 for no circle.
  double UsedHeight(const TCircleNestRst& Rst) const;
  // The height that the circles in play would fill without loss.
  double HeightByArea() const;
  // Bottom-left fill, size by size in the order of Idx: each circle goes to the candidate with the least Y, then the
  // least X; what finds no candidate is left out. Appends to Rst and returns the used height. Ends by itself only; a
  // stop flag keeps candidates from it, so that a stopped fill is short.
  double PackingWithY(const std::vector<int>& Idx, const std::vector<int>& Remaining, TCircleNestRst& Rst) const;
  // Bisects the height of the plate between Low and High down to one drawing unit: greedy runs from Rst and its
  // candidates CPs; Rst becomes the last one that placed all circles and else stays. Returns the used height of Rst,
  // -4294967295.0 if it is empty. The candidates are those of the full height, so that a circle may stand above the
  // height tried: what counts is the height returned. The plate's height is restored on every way out; nothing else may
  // use this object meanwhile.
  double BinaryPacking(const std::vector<int>& Idx, const std::vector<int>& Remaining, TCircleNestRst& Rst,
                       const TPosibleCPList& CPs, double Occu, double High, double Low);
  // Time, the object's flag, the process-wide flag or the token of the run on this thread.
  bool Stopped() const noexcept;
  void StartTimer(int Milliseconds);

 private:
  using TWorkers = std::vector<std::unique_ptr<TMyPackingThread>>;
  TWorkers RunWorkers(double Param, int ThreadNum, TMainStrategy MainStrategy);

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
