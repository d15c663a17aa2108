#include "platenest/UCircleNest/CirclePacking.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

#include "CornerPlacement.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/StopToken.h"

namespace platenest {

namespace {

constexpr double kFillEstimate = 0.8;     // of the plate's area, for the estimate of what one plate takes
constexpr double kWidestPair = 0.65;      // of the plate's width: two radii of a start pair
constexpr double kKeptHeight = 0.7;       // of the plate's height: what the second run over the top leaves alone
constexpr int kLargePlateCount = 200;     // circles on one plate from which blocks are tried first
constexpr double kLookAheadAlways = 1.0;  // threshold on the hole degree, which stays below 1
constexpr int kMsPerSecond = 1000;

int ClampToInt(Int64 V) {
  return static_cast<int>(std::min<Int64>(V, std::numeric_limits<int>::max()));
}

// The plate by its sizes, turned by a quarter and grown by the gap; empty if it holds nothing.
TVRect2D WorkingPlate(const TVRect2D& Plate, double Gap) {
  const TVRect2D working = TVRect2D::FromSize(Plate.Height() + Gap, Plate.Width() + Gap);
  const bool usable = std::isfinite(working.Area()) && Plate.Width() > 0 && Plate.Height() > 0 && working.Width() > 0 &&
                      working.Height() > 0;
  return usable ? working : TVRect2D();
}

}  // namespace

TCirclePacking::TCirclePacking(const TVRect2D& ARect, double Gap, std::vector<double> CircleRadiusList,
                               std::vector<int> CircleNumList)
    : FRect(WorkingPlate(ARect, Gap)),
      FGap(Gap),
      FCircleRadiusList(std::move(CircleRadiusList)),
      FCircleNumList(std::move(CircleNumList)) {
  FCircleNumList.resize(FCircleRadiusList.size(), 0);
  for (int i = 0; i < Size(FCircleRadiusList); ++i) {
    double& r = FCircleRadiusList[i];
    const bool usable = std::isfinite(r) && r > 0 && r + Gap / 2 > 0;
    if (!usable) r = 0;
    FCircleNumList[i] = usable ? std::max(FCircleNumList[i], 0) : 0;
    FCircleAreaList.push_back(std::numbers::pi * r * r);
  }
  const std::vector<int> sorted = SortCircles(FCircleRadiusList);
  for (double& r : FCircleRadiusList) r += Gap / 2;
  Int64 amount = 0;
  for (const int i : sorted) {
    if (FCircleNumList[i] == 0 || FRect.Width() == 0) continue;
    const double across = 2 * FCircleRadiusList[i];
    if (fGreat(across, FRect.Width()) || fGreat(across, FRect.Height())) continue;
    FCircleIdxList.push_back(i);
    amount += FCircleNumList[i];
  }
  FCircleAmount = ClampToInt(amount);
  FRstCntEvaluate = EstimateCount();
}

TCirclePacking::TCirclePacking(const TCirclePacking& Other)
    : FRect(Other.FRect),
      FGap(Other.FGap),
      FCircleRadiusList(Other.FCircleRadiusList),
      FCircleNumList(Other.FCircleNumList),
      FCircleIdxList(Other.FCircleIdxList),
      FCircleAreaList(Other.FCircleAreaList),
      FCircleAmount(Other.FCircleAmount),
      FInitConfigList(Other.FInitConfigList),
      FPackingResult(Other.FPackingResult),
      FThreadLimit(Other.FThreadLimit),
      FStepLimit(Other.FStepLimit) {}

TCirclePacking::~TCirclePacking() = default;

std::vector<int> TCirclePacking::SortCircles(const std::vector<double>& Radii) {
  std::vector<int> order(Radii.size());
  std::iota(order.begin(), order.end(), 0);
  SortBy(order, [&Radii](int A, int B) { return Sign(Radii[B], Radii[A]); });
  return order;
}

double TCirclePacking::WidestOf(const std::vector<int>& Idx) const {
  double widest = 0;
  for (const int idx : Idx) widest = std::max(widest, FCircleRadiusList[idx]);
  return widest;
}

int TCirclePacking::EstimateCount() const {
  const auto walk = [this](auto First, auto Last) {
    const double room = kFillEstimate * FRect.Area();
    double area = 0;
    Int64 count = 0;
    for (auto idx = First; idx != Last; ++idx) {
      area += FCircleNumList[*idx] * FCircleAreaList[*idx];
      count += FCircleNumList[*idx];
      if (area > room) return count - Ceil<Int64>((area - room) / FCircleAreaList[*idx]);
    }
    return count;
  };
  return ClampToInt(
      (walk(FCircleIdxList.begin(), FCircleIdxList.end()) + walk(FCircleIdxList.rbegin(), FCircleIdxList.rend())) / 2);
}

void TCirclePacking::GenerateInitConfig() {
  const double width = FRect.Width();
  const double height = FRect.Height();
  for (int i = 0; i < Size(FCircleIdxList); ++i) {
    const int idx1 = FCircleIdxList[i];
    if (FCircleNumList[idx1] <= 0) continue;
    const double r1 = FCircleRadiusList[idx1];
    for (int j = FCircleNumList[idx1] < 2 ? i + 1 : i; j < Size(FCircleIdxList); ++j) {
      const int idx2 = FCircleIdxList[j];
      const double r2 = FCircleRadiusList[idx2];
      const double both = r1 + r2;
      if (!(both <= kWidestPair * width)) continue;
      const double restX = width - both;
      const double restY = height - both;
      if (fSmall(restX * restX + restY * restY, both * both)) continue;
      if (FCircleNumList[idx2] == 0) continue;
      const bool side = !fSmall(restX * restX, 4 * r1 * r2);
      const double y1 = side ? r1 : r2 + std::sqrt(2 * width * both - width * width);
      FInitConfigList.push_back({{idx1, r1, y1}, {idx2, width - r2, r2}});
    }
  }
}

void TCirclePacking::UpdateResult(double Occu, const TCircleNestRst& Rst) {
  if (!(Occu > FOccuRate)) return;
  FOccuRate = Occu;
  FPackingResult = Rst;
}

void TCirclePacking::TailRePack() {
  TCircleNestRst kept;
  for (const TCornerPlacement& placed : FPackingResult)
    if (placed.Center.Y < kKeptHeight * FRect.Height()) kept.push_back(placed);
  ExtendAndOffer(kept, true);
}

void TCirclePacking::FillRest(TCircleNestRst& Rst) {
  ExtendAndOffer(Rst, false);
}

void TCirclePacking::ExtendAndOffer(TCircleNestRst& Rst, bool WithCorners) {
  std::vector<int> remaining = FCircleNumList;
  double area = 0;
  for (const TCornerPlacement& placed : Rst) {
    --remaining[placed.CircleIdx];
    area += FCircleAreaList[placed.CircleIdx];
  }
  TPosibleCPList candidates = GeneratePosibleCP(FCircleIdxList, remaining, Rst, WithCorners);
  const double occu =
      GreedyPackingEx(FCircleIdxList, remaining, Rst, area / FRect.Area(), kLookAheadAlways, candidates);
  UpdateResult(occu, Rst);
}

void TCirclePacking::SortByY(TCircleNestRst& Rst) {
  SortBy(Rst, [](const TCornerPlacement& A, const TCornerPlacement& B) { return Sign(A.Center.Y, B.Center.Y); });
}

const TCircleNestRst& TCirclePacking::ResultTranslation() {
  if (!FIsChanged)
    for (TCornerPlacement& placed : FPackingResult)
      placed.Center = {placed.Center.Y - FGap / 2, placed.Center.X - FGap / 2};
  FIsChanged = true;
  return FPackingResult;
}

bool TCirclePacking::Stopped() const noexcept {
  const detail::TStepCount* steps = detail::CurrentStepCount();
  return FStopFlag.load(std::memory_order_relaxed) || FClassStop.load(std::memory_order_relaxed) ||
         RunStopRequested() || (steps != nullptr && steps->Spent());
}

void TCirclePacking::StartTimer(int Milliseconds) {
  FTimerThread.reset();
  FStopFlag.store(false, std::memory_order_relaxed);
  if (FStepLimit > 0) return;
  const int seconds = Milliseconds / kMsPerSecond;
  if (seconds <= 0) return StopPacking();  // the thread of a timer would let the run begin
  FTimerThread = std::make_unique<TEventTimer>(seconds, [this] { StopPacking(); });
}

void TCirclePacking::Packing([[maybe_unused]] int PackingLevel, int TimePerPlate) {
  if (FCircleIdxList.empty()) return;
  FTimeLimit = TimePerPlate;
  if (FRstCntEvaluate > kLargePlateCount) {
    StartTimer(FTimeLimit);
    LargePlateNest();
    if (!FPackingResult.empty()) return;
  }
  GenerateInitConfig();
  if (FInitConfigList.empty()) return;
  StartTimer(FTimeLimit);
  PackingMultiThread(kLookAheadAlways, WorkerCount(), 1);
  const detail::TStepScope steps(FStepLimit);
  TailRePack();
  CheckLastPlate();
}

}  // namespace platenest
