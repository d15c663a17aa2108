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

// Ends all packings of the process; belongs to the host. Exported, so that a shared build and its host have the same
// one.
PLATENEST_API inline std::atomic<bool> FClassStop{false};

// How StripPacking looks for the shortest packing.
enum class TStripMethod : int {
  BottomLeft,  // bottom-left fill from every start pair
  Bisection,   // corner greedy under bisection of the length, from every start pair, then with look-ahead below it
  Best,        // both, the shorter one
};

// Packs circles of several sizes, each with a demanded count, on one rectangular plate: as many and as dense as the
// time allows. A circle only ever stands at a corner position, where it touches two of the plate's edges and the
// circles already there; of all corner positions the one with the highest hole degree comes next, that is the one with
// the least gap, measured in radii, to the nearest thing that it does not touch. Above it stand a look-ahead by one
// step, start configurations and up to four workers.
//
// - Units: drawing units; areas are their squares; times are milliseconds. Coordinates count from the plate's own
//   left and bottom corner, wherever the plate lies.
// - The plate is worked on turned by a quarter: x runs along its height, y along its width. It grows by the gap and
// each
//   radius by half of it, so that to touch means to keep the gap. Between circles the gap stands; towards the plate's
//   edge nothing stays free. ResultTranslation() turns the answer back.
// - A host makes the object, calls Packing() once and then ResultTranslation(); counts are read from the result, and
// what
//   is missing there did not fit. CircleIdx names positions in the caller's lists.
// - Degenerate input raises nothing. A radius that is not finite and positive, with or without half the gap, counts as
//   amount 0, as do amounts below 0 and those that the caller left out. Sizes wider than the plate by more than 1e-6
//   are out. A plate that is not finite and positive holds nothing; a gap that is not finite gives an empty result.
//   Where no two sizes make a start pair in the bottom corners, a single circle for instance, the result stays empty
//   too.
// - Time is counted in whole seconds: a budget below 1000 is over at once and leaves a start pair at most.
// - StopPacking(), FClassStop and the stop token of the calling thread end a run at its next check, that is after at
//   most one greedy pass; the best so far stands. They may be set from any thread. All else belongs to one thread at a
//   time; different objects are independent.
// - Cost: a greedy step takes time in proportion to the circles and candidates there are; a look-ahead one greedy pass
//   for each candidate.
//
// Source: corner placement with maximum hole degree and its look-ahead: W. Q. Huang, Y. Li, H. Akeb, C. M. Li, Greedy
// algorithms for packing unequal circles into a rectangular container, Journal of the Operational Research Society 56,
// 2005.
class PLATENEST_API TCirclePacking {
 public:
  TCirclePacking(const TVRect2D& ARect, double Gap, std::vector<double> CircleRadiusList,
                 std::vector<int> CircleNumList);
  TCirclePacking(const TCirclePacking& Other);
  TCirclePacking& operator=(const TCirclePacking&) = delete;
  ~TCirclePacking();

  // PackingLevel has no effect. TimePerPlate in milliseconds, cut to whole seconds.
  void Packing(int PackingLevel, int TimePerPlate);
  // The result in the caller's frame; PackingResult() holds it from then on. A second call changes nothing.
  const TCircleNestRst& ResultTranslation();
  void StopPacking() noexcept { FStopFlag.store(true, std::memory_order_relaxed); }

  // Places all circles on the shortest piece of the plate's width, as on a strip of the plate's height, and returns the
  // length used, from the plate's edge to the far side of the last circle; nothing if no method places them all, or if
  // no size or no start pair is in play.
  // - Choose the plate wide: bisection looks below the length of the bottom-left fill from the first start pair, which
  //   is too short where that fill leaves circles out, and a width of twice the expected length costs nothing.
  // - TimePerPlate in milliseconds, not cut to whole seconds. Part of it is for the workers of each method; what is
  //   left goes into the look-ahead, on this thread, which ends by itself once no start pair gives a packing shorter by
  //   a thousandth. The bisection of one worker ends after ten seconds even so. StopPacking does not reach it, a run
  //   token and FClassStop do.
  // - Lengths are found to one drawing unit by bisection: scale small plates up.
  std::optional<double> StripPacking(int TimePerPlate, TStripMethod Method);

  // Sum of the true areas of the result over the area of the working plate.
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

  // Positions of the sizes by radius, largest first, equal ones in the caller's order.
  static std::vector<int> SortCircles(const std::vector<double>& Radii);
  // The circles that one plate takes: the mean of those that fill 0.8 of its area if the largest come first and if the
  // smallest do.
  int EstimateCount() const;
  // Appends the pairs of sizes that can stand in the bottom corners; a second call appends them again.
  void GenerateInitConfig();
  // The centres at distance R + R1 from P1 and R + R2 from P2: none, one where the two are a diameter apart within
  // 1e-6, or two, the first left of the way from P1 to P2.
  static int GetCircleCenter(double R, double R1, double R2, const TPoint2D& P1, const TPoint2D& P2, TPoint2D& I1,
                             TPoint2D& I2);
  // All corner positions of the sizes in Idx with circles left, in the order of Idx; none once stopped. Bottom corners
  // are never tried, top corners only WithCorners: an empty packing has no position without. A position that touches
  // all there is has the hole degree minus infinity and is placed if no other is left.
  TPosibleCPList GeneratePosibleCP(const std::vector<int>& Idx, const std::vector<int>& Remaining,
                                   const TCircleNestRst& Rst, bool WithCorners) const;
  // What the last circle of Rst changes: candidates in its way and of used up sizes go, values rise, positions next to
  // it are appended.
  void UpdatePosibleCP(const std::vector<int>& Idx, const std::vector<int>& Remaining, const TCircleNestRst& Rst,
                       TPosibleCPList& CPs) const;
  // Places candidates until none is left and returns the occupancy, Occu being that of Rst. Runs to its end, whatever
  // the flags say.
  double GreedyPacking(const std::vector<int>& Idx, std::vector<int>& Remaining, TCircleNestRst& Rst, double Occu,
                       TPosibleCPList& CPs) const;
  // The same, but where the best value is below Threshold each candidate is followed by a whole greedy pass, and the
  // one whose pass fills most is placed. A pass that places all circles is the answer at once. Stopped, it takes the
  // best candidate so far and returns.
  double GreedyPackingEx(const std::vector<int>& Idx, std::vector<int>& Remaining, TCircleNestRst& Rst, double Occu,
                         double Threshold, TPosibleCPList& CPs) const;
  // Keeps Rst if Occu is strictly above the best.
  void UpdateResult(double Occu, const TCircleNestRst& Rst);
  // Empties the upper 30 % of the best result and fills them anew with look-ahead.
  void TailRePack();
  // Fills what is free in Rst with look-ahead.
  void FillRest(TCircleNestRst& Rst);
  // Ascending centre Y, equal ones in their order.
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
  // The true areas of the circles over the area of the working plate.
  double Occupancy(const TCircleNestRst& Rst) const;
  // The height that the circles in play would fill without loss.
  double HeightByArea() const;
  // Bottom-left fill, size by size in the order of Idx: each circle goes to the candidate with the least Y, then the
  // least X; what finds no candidate is left out. Appends to Rst and returns the used height. Ends by itself only; a
  // stop flag keeps candidates from it, so that a stopped fill is short.
  double PackingWithY(const std::vector<int>& Idx, const std::vector<int>& Remaining, TCircleNestRst& Rst) const;
  // Bisects the height of the plate between Low and High down to one drawing unit: greedy runs from Rst and its
  // candidates CPs; Rst becomes the last one that placed all circles and else stays. Returns the used height of Rst,
  // -4294967295.0 if it is empty. The candidates are those of the full height, so that a circle may stand above the
  // height tried: what counts is the height returned. Between two heights a stop ends the search. The plate's height is
  // restored on every way out; nothing else may use this object meanwhile.
  double BinaryPacking(const std::vector<int>& Idx, const std::vector<int>& Remaining, TCircleNestRst& Rst,
                       const TPosibleCPList& CPs, double Occu, double High, double Low);
  // Time, the object's flag, the process-wide flag or the token of the run on this thread.
  bool Stopped() const noexcept;
  // Clears the flag; StopPacking() comes after the whole seconds, and never under a step limit.
  void StartTimer(int Milliseconds);

 private:
  using TWorkers = std::vector<std::unique_ptr<TMyPackingThread>>;
  // A packing under construction: its circles, the counts left, its occupancy.
  struct TStart {
    TCircleNestRst Rst;
    std::vector<int> Remaining;
    double Occu = 0;
  };

  TWorkers RunWorkers(double Param, int ThreadNum, TMainStrategy MainStrategy);
  TStart StartFrom(TCircleNestRst Rst) const;
  TStart StartAt(int Config) const;
  double Shorten(double Best);  // from the result of height Best to a shorter one, until nothing gets shorter
  void ExtendAndOffer(TCircleNestRst& Rst, bool WithCorners);
  double WidestOf(const std::vector<int>& Idx) const;

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
