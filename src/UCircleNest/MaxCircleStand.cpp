#include <algorithm>
#include <cmath>
#include <vector>

#include "StandRows.h"
#include "platenest/UCircleNest/MaxCirclePacking.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Knapsack.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

using detail::kHexStep;
using detail::kSqrt3;
using detail::TRowWidth;

constexpr double kFitTol = 1e-9;  // pitches that a stack may pass its length by
constexpr double kLeastQuad = 3.464101615138;
constexpr double kMostQuad = 4.0;
constexpr double kSquareQuad = 3.732050807569;  // a quad from here on has square steps
constexpr double kPerPitch = 1000;              // lengths of rows become whole thousandths
constexpr double kCapacityBonus = 0.4;          // thousandths

// Row kinds, and the best stack of them by an unbounded knapsack. Any stack is filled up with the first kind.
class TRowKinds {
 public:
  struct TStack {
    Int64 Value = 0;
    std::vector<int> Counts;
  };

  void Add(double Length, int Value) {
    FLengths.push_back(Length);
    FWeights.push_back(Ceil(Length * kPerPitch));
    FValues.push_back(Value);
  }

  // Whole thousandths let through a stack that is up to 0.0009 pitches too long, so its true length decides: when it
  // does not fit, the best of those that do takes its place.
  TStack Best(double Length) const {
    const Int64 capacity = Round(Length * kPerPitch + kCapacityBonus);
    const TStack best = Solve(capacity);
    return Fits(best.Counts, Length) ? best : BestThatFits(capacity, Length);
  }

 private:
  bool Fits(const std::vector<int>& Counts, double Length) const {
    double height = 0;
    for (int i = 0; i < Size(Counts); ++i) height += Counts[i] * FLengths[i];
    return height <= Length + kFitTol;
  }

  TStack Solve(Int64 Capacity) const {
    TStack stack;
    stack.Value = TKnapsackSolver::SolveInfiniteKnapsack(FWeights, FValues, Capacity, stack.Counts);
    return stack;
  }

  // A stack that leaves a thousandth free fits, because its rows were rounded up. Only one that fills the capacity can
  // be better.
  TStack BestThatFits(Int64 Capacity, double Length) const {
    TStack best = Solve(Capacity - 1);
    TStack trial = {0, std::vector<int>(FWeights.size())};
    Descend(Size(FWeights) - 1, Capacity, Length, trial, best);
    return best;
  }

  // All stacks by counts of the kinds from Kind down, without branches that cannot pass the best one.
  void Descend(int Kind, Int64 Room, double Length, TStack& Trial, TStack& Best) const {
    if (Kind < 0) {
      if (Trial.Value > Best.Value && Fits(Trial.Counts, Length)) Best = Trial;
      return;
    }
    const Int64 before = Trial.Value;
    const Int64 most = Room / FWeights[Kind];
    for (Int64 count = most; count >= (Kind == 0 ? most : 0); --count) {
      const Int64 room = Room - count * FWeights[Kind];
      Trial.Counts[Kind] = static_cast<int>(count);
      Trial.Value = before + count * FValues[Kind];
      if (Trial.Value + Promise(Kind - 1, room) > Best.Value) Descend(Kind - 1, room, Length, Trial, Best);
    }
    Trial.Counts[Kind] = 0;
    Trial.Value = before;
  }

  // No less than what the kinds up to Kind can add in Room.
  Int64 Promise(int Kind, Int64 Room) const {
    Int64 most = 0;
    for (int i = 0; i <= Kind; ++i) most = std::max(most, Room * FValues[i] / FWeights[i]);
    return most;
  }

  std::vector<double> FLengths;
  std::vector<int> FWeights;
  std::vector<Int64> FValues;
};

// Loose rows: the height of a quad, to the end of doubles from above, so that it is never too flat. Without a change
// of sign the flattest quad stands.
double QuadHeight(double Rest, double (*Ref)(double, double)) {
  double low = kLeastQuad;
  double high = kMostQuad;
  if (Ref(low, Rest) >= 0) return low;
  for (double mid = (low + high) / 2; mid > low && mid < high; mid = (low + high) / 2)
    (Ref(mid, Rest) < 0 ? low : high) = mid;
  return high;
}

void TakeCounts(TPlaceInfo& Info, const std::vector<int>& Counts) {
  Info.ChooseTypeNum = {};
  std::ranges::copy(Counts, Info.ChooseTypeNum.begin());
}

Int64 TakeLooseStack(TPlaceInfo& Info, const TRowWidth& Width, double Length, double Quad) {
  Info.RestWid = Quad;
  Info.SPecAdj = 2 * std::sqrt(1 - Width.Rest * Width.Rest);
  TRowKinds kinds;
  kinds.Add(kSqrt3, 2 * Width.Count - 1);
  kinds.Add(Info.RestWid, 4 * Width.Count - 1);
  kinds.Add(Info.SPecAdj, 2 * Width.Count);
  const TRowKinds::TStack stack = kinds.Best(Length);
  TakeCounts(Info, stack.Counts);
  return stack.Value;
}

// Also tries a stack that starts with the rest row.
Int64 TakeTightStack(TPlaceInfo& Info, const TRowWidth& Width, double Length) {
  Info.RestDel = std::sqrt(1 - Width.Rest * Width.Rest);
  Info.RestWid = std::max(2 * Info.RestDel + 1, kSqrt3);
  Info.SPecAdj = kSqrt3 * Width.Rest + Info.RestDel;
  Info.SPecAdj2 = 0.5 * Width.Rest - kHexStep * Info.RestDel;
  TRowKinds kinds;
  kinds.Add(kSqrt3, 2 * Width.Count);
  kinds.Add(Info.SPecAdj, 2 * Width.Count + 1);
  kinds.Add(kSqrt3 + Info.RestWid, 4 * Width.Count + 1);
  kinds.Add(kSqrt3 + Info.SPecAdj, 4 * Width.Count + 2);
  TRowKinds::TStack stack = kinds.Best(Length);
  if (Info.RestWid < Length) {
    TRowKinds::TStack trial = kinds.Best(Length - Info.RestWid);
    trial.Value += 2 * Width.Count + 1;
    Info.NewState = trial.Value > stack.Value;
    if (Info.NewState) stack = std::move(trial);
  }
  TakeCounts(Info, stack.Counts);
  return stack.Value;
}

}  // namespace

void TMaxCirclePacking::TryMethodNew() {
  FTempInfo = {};
  FTempInfo.SquareMode = 3;
  FTempInfo.Direct = true;
  TryDirectX();
  FTempInfo.Direct = false;
  TryDirectY();
}

void TMaxCirclePacking::TryDirectX() {
  TryDirect(true);
}

void TMaxCirclePacking::TryDirectY() {
  TryDirect(false);
}

void TMaxCirclePacking::TryDirect(bool IsX) {
  const double length = (IsX ? FBound.Y : FBound.X) - 1;
  const int rowCount = IsX ? FIntX : FIntY;
  const double rest = IsX ? FFracX : FFracY;
  const auto offer = [&](std::uint8_t AddMode, double StandLength, int TopRow) {
    FTempInfo.AddMode = AddMode;
    FResult2 = CalcStandMode(StandLength, IsX);
    if (FResult2 > 0) Offer(FResult2 + TopRow);
  };
  const auto setGaps = [&](double Along, double Across) {
    FTempInfo.GapX = IsX ? Along : Across;
    FTempInfo.GapY = IsX ? Across : Along;
  };
  offer(1, length, 0);
  setGaps(0.5, kHexStep);
  offer(2, length - kHexStep, rest < 0.5 ? rowCount - 1 : rowCount);
  if (rest >= 0.5) return;
  const double staggered = length - std::sqrt(1 - rest * rest);
  setGaps(rest, staggered);
  offer(3, staggered, rowCount);
}

int TMaxCirclePacking::CalcStandMode(double Length, bool IsX) {
  const TRowWidth width = IsX ? TRowWidth{FIntX, FFracX} : TRowWidth{FIntY, FFracY};
  FTempInfo.NewState = false;
  FTempInfo.Spec = width.Rest > kHexStep;
  if (width.Rest >= 0.5 && !FTempInfo.Spec) return 0;
  const Int64 value = FTempInfo.Spec ? TakeTightStack(FTempInfo, width, Length)
                                     : TakeLooseStack(FTempInfo, width, Length, QuadHeight(width.Rest, CalcRef));
  return static_cast<int>(value) + width.Count;
}

// Half the height of a quad of height M against the height of its wall column up to the inner row; negative when the
// quad is too flat. F is the fraction of a pitch that a row leaves free, below 0.5.
double TMaxCirclePacking::CalcRef(double M, double F) {
  NestAssert(F < 0.5);
  const double sink = M / 2 - kHexStep;
  const double t = M >= kSquareQuad ? 0 : std::sqrt(1 - sink * sink);
  const double e = 1 - t + F;
  const double h = e < 1 ? std::sqrt(1 - e * e) : 0;
  return M / 2 - 1 - h - std::sqrt(1 - (0.5 + F) * (0.5 + F));
}

void TMaxCirclePacking::Add4() {
  const TRowWidth width = FPlaceInfo.Direct ? TRowWidth{FIntX, FFracX} : TRowWidth{FIntY, FFracY};
  for (const TPoint2D& p : FPlaceInfo.Spec ? TightStack(FPlaceInfo, width) : LooseStack(FPlaceInfo, width)) {
    const TPoint2D point = FPlaceInfo.Direct ? p : TPoint2D{p.Y, p.X};
    AddPoint(point.X + 0.5, point.Y + 0.5);
  }
}

}  // namespace platenest
