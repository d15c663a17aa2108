// The strip form: all circles are to stand, on as little of the plate's height as can be. Heights are those of the
// working frame, which runs along the width of the caller's plate.

#include <algorithm>
#include <limits>
#include <numbers>
#include <optional>

#include "CornerPlacement.h"
#include "PackingThread.h"
#include "platenest/foundation/StopToken.h"

namespace platenest {

namespace {

constexpr double kClosestHeights = 1.0;         // drawing units: bisection goes no closer
constexpr double kShorterBy = 0.001;            // of the best height: the least gain that Shorten looks for
constexpr double kLookAheadAlways = 1.0;        // threshold on the hole degree, which never exceeds 1
constexpr double kBottomLeftShare = 0.1;        // of the time, where other ways follow
constexpr double kBisectionShare = 0.2;         // of the time; the rest is for the look-ahead
constexpr double kEmptyHeight = -4294967295.0;  // BinaryPacking's answer without circles

// The top edge of a plate, back in place on every way out.
class TTopGuard {
 public:
  explicit TTopGuard(TVRect2D& Rect) : FRect(Rect), FTop(Rect.Top) {}
  ~TTopGuard() { FRect.Top = FTop; }
  TTopGuard(const TTopGuard&) = delete;
  TTopGuard& operator=(const TTopGuard&) = delete;

 private:
  TVRect2D& FRect;
  double FTop;
};

// A stop token of this thread that is set when a part of the time is over; without limit it never is by itself.
class TShareOfTime {
 public:
  TShareOfTime(double Milliseconds, bool Unlimited) : FToken(CurrentStopToken()), FScope(&FToken) {
    if (!Unlimited) FTimer.emplace(Milliseconds / 1000, [this] { FToken.RequestStop(); });
  }

 private:
  TStopToken FToken;
  TStopTokenScope FScope;
  std::optional<TEventTimer> FTimer;
};

// The index of the candidate that lies lowest, then leftmost, the first of equals; -1 for no candidates.
int Lowest(const TPosibleCPList& CPs) {
  int best = -1;
  double bestX = std::numeric_limits<double>::infinity();
  double bestY = bestX;
  for (int i = 0; i < Size(CPs); ++i) {
    const TPoint2D& center = CPs[i].CP.Center;
    if (!(center.Y < bestY || (center.Y == bestY && center.X < bestX))) continue;
    best = i;
    bestX = center.X;
    bestY = center.Y;
  }
  return best;
}

}  // namespace

double TCirclePacking::UsedHeight(const TCircleNestRst& Rst) const {
  double height = 0;
  for (const TCornerPlacement& circle : Rst)
    height = std::max(height, circle.Center.Y + FCircleRadiusList[circle.CircleIdx]);
  return height;
}

double TCirclePacking::Occupancy(const TCircleNestRst& Rst) const {
  double area = 0;
  for (const TCornerPlacement& circle : Rst) area += FCircleAreaList[circle.CircleIdx];
  return area / FRect.Area();
}

double TCirclePacking::HeightByArea() const {
  double area = 0;
  for (const int t : FCircleIdxList)
    area += std::numbers::pi * FCircleRadiusList[t] * FCircleRadiusList[t] * FCircleNumList[t];
  return area / FRect.Width();
}

double TCirclePacking::PackingWithY(const std::vector<int>& Idx, const std::vector<int>& Remaining,
                                    TCircleNestRst& Rst) const {
  std::vector<int> counts(Remaining.size(), 0);
  for (const int t : Idx) {
    const std::vector<int> alone{t};
    counts[t] = Remaining[t];
    TPosibleCPList candidates = GeneratePosibleCP(alone, counts, Rst, false);
    for (int left = Remaining[t]; left > 0; --left) {
      const int choice = Lowest(candidates);
      if (choice >= 0) Rst.push_back(candidates[choice].CP);
      if (left > 1) UpdatePosibleCP(alone, counts, Rst, candidates);
      if (choice < 0 && candidates.empty()) break;
    }
    counts[t] = 0;
  }
  return UsedHeight(Rst);
}

double TCirclePacking::BinaryPacking(const std::vector<int>& Idx, const std::vector<int>& Remaining,
                                     TCircleNestRst& Rst, const TPosibleCPList& CPs, double Occu, double High,
                                     double Low) {
  const TTopGuard guard(FRect);
  TCircleNestRst best;
  TCircleNestRst trial;
  std::vector<int> remaining;
  TPosibleCPList candidates;
  // A hundredth of the difference is never above the difference: only the absolute bound ends the search.
  while (High - Low > std::max((High - Low) / 100, kClosestHeights) && !Stopped()) {
    const double mid = (Low + High) / 2;
    FRect.Top = mid;
    trial = Rst;
    remaining = Remaining;
    candidates = CPs;
    GreedyPacking(Idx, remaining, trial, Occu, candidates);
    const bool complete = Size(trial) == FCircleAmount;
    if (complete) best.swap(trial);
    (complete ? High : Low) = mid;
  }
  if (!best.empty()) Rst = std::move(best);
  return Rst.empty() ? kEmptyHeight : UsedHeight(Rst);
}

double TCirclePacking::TakeShortest(int ThreadNum, int MainStrategy, double Best) {
  const TWorkers workers = RunWorkers(kNoLookAhead, ThreadNum, TMainStrategy{MainStrategy});
  for (const auto& worker : workers) {
    if (!(worker->LenSPP() < Best)) continue;
    Best = worker->LenSPP();
    FPackingResult = worker->PackingResult();
    FOccuRate = Occupancy(FPackingResult);
  }
  return Best;
}

// Spends what is left of the time: start pair after start pair, the greedy with look-ahead on a plate that is shorter
// than the best packing. A look-ahead that places all circles ends the trial at once, so that most of it is many greedy
// passes with a third circle of their own. Returns the shorter height, at last Best.
double TCirclePacking::Shorten(double Best) {
  const TTopGuard guard(FRect);
  const detail::TStepScope steps(FStepLimit);
  const double least = HeightByArea();
  const int configs = Size(FInitConfigList);
  int failed = 0;
  for (int i = 0; failed < configs && !Stopped(); i = (i + 1) % configs) {
    for (bool shorter = true; shorter && !Stopped();) {
      FRect.Top = Best - std::max(kClosestHeights, Best * kShorterBy);
      if (FRect.Top < least) return Best;
      TStart trial = StartAt(i);
      TPosibleCPList candidates = GeneratePosibleCP(FCircleIdxList, trial.Remaining, trial.Rst, false);
      GreedyPackingEx(FCircleIdxList, trial.Remaining, trial.Rst, trial.Occu, kLookAheadAlways, candidates);
      const double height = UsedHeight(trial.Rst);
      shorter = Size(trial.Rst) == FCircleAmount && height < Best;
      failed = shorter ? 0 : failed + 1;
      if (!shorter) continue;
      Best = height;
      FPackingResult = std::move(trial.Rst);
    }
  }
  return Best;
}

std::optional<double> TCirclePacking::StripPacking(int TimePerPlate, TStripMethod Method) {
  if (FCircleIdxList.empty()) return std::nullopt;
  GenerateInitConfig();
  if (FInitConfigList.empty()) return std::nullopt;
  const TShareOfTime whole(TimePerPlate, FStepLimit > 0);
  double length = kNoLength;
  if (Method != TStripMethod::Bisection) {
    const bool alone = Method == TStripMethod::BottomLeft;
    const TShareOfTime share(alone ? TimePerPlate : TimePerPlate * kBottomLeftShare, FStepLimit > 0);
    length = TakeShortest(WorkerCount(), static_cast<int>(TMainStrategy::InitConfigStrip), length);
  }
  if (Method != TStripMethod::BottomLeft) {
    const TShareOfTime share(TimePerPlate * kBisectionShare, FStepLimit > 0);
    length = TakeShortest(WorkerCount(), static_cast<int>(TMainStrategy::BinarySearchStrip), length);
  }
  if (length == kNoLength) return std::nullopt;
  if (Method != TStripMethod::BottomLeft) length = Shorten(length);
  return length - FGap;
}

}  // namespace platenest
