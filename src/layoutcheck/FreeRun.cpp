#include "FreeRun.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "platenest/foundation/Types.h"

// The largest rectangle of two histograms that stand back to back. The run is halved again and again; from the middle
// outward the room to both sides only shrinks, along the lower arm as along the upper one. A rectangle ends in one
// entry of each arm, and each of its two sides is set by one of them:
//
//      upper arm    |   +---       both by the same arm: the other arm reaches as far as it allows; two pointers
//            +---   |   |          one by each arm: (upper.Reach - lower.Reach) * (right - left) is such that a farther
//      ------|------|---|------    entry of one arm never favours a farther entry of the other; the best partners are
//            |      |   +---       monotone and halving the rows finds them
//      lower |arm   |
namespace platenest::detail {

namespace {

// The farthest point reached while the sides stay where they are.
struct TArmEntry {
  double Reach;
  double Left;
  double Right;
};

using TArm = std::vector<TArmEntry>;

TPlacedBox Between(const TArmEntry& Lower, const TArmEntry& Upper) {
  return {std::max(Lower.Left, Upper.Left), Lower.Reach, std::min(Lower.Right, Upper.Right), Upper.Reach};
}

class TRunSearch {
 public:
  TRunSearch(std::span<const TFreeStep> Steps, double End, TPlacedBox& Best)
      : FSteps(Steps), FEnd(End), FBest(Best), FBestArea(Best.Area()) {}

  void Halve(int First, int Past) {
    if (!MayWin(First, Past)) return;
    if (Past - First == 1) return Offer({FSteps[First].Left, StartOf(First), FSteps[First].Right, StartOf(Past)});
    const int middle = First + (Past - First) / 2;
    FLower.clear();
    FUpper.clear();
    for (int i = middle - 1; i >= First; --i) Extend(FLower, FSteps[i], FSteps[i].From);
    for (int i = middle; i < Past; ++i) Extend(FUpper, FSteps[i], StartOf(i + 1));
    Across();
    Halve(First, middle);
    Halve(middle, Past);
  }

 private:
  // For a lower entry the upper ones, First up to before Past, of which each sets one side while the lower sets the
  // other.
  struct TWindow {
    int First;
    int Past;
  };

  double StartOf(int Step) const { return Step < Size(FSteps) ? FSteps[Step].From : FEnd; }

  bool MayWin(int First, int Past) const {
    double left = std::numeric_limits<double>::infinity();
    double right = -left;
    for (int i = First; i < Past; ++i) {
      left = std::min(left, FSteps[i].Left);
      right = std::max(right, FSteps[i].Right);
    }
    return (StartOf(Past) - StartOf(First)) * (right - left) > FBestArea;
  }

  void Offer(const TPlacedBox& Box) {
    if (Box.Area() <= FBestArea) return;
    FBest = Box;
    FBestArea = Box.Area();
  }

  static void Extend(TArm& Arm, const TFreeStep& Step, double Reach) {
    const double left = Arm.empty() ? Step.Left : std::max(Arm.back().Left, Step.Left);
    const double right = Arm.empty() ? Step.Right : std::min(Arm.back().Right, Step.Right);
    if (!Arm.empty() && Arm.back().Left == left && Arm.back().Right == right)
      Arm.back().Reach = Reach;
    else
      Arm.push_back({Reach, left, right});
  }

  void Across() {
    OfferBothFromLower();
    OfferBothFromUpper();
    FWindows = FLeftFromUpper;
    Mixed(0, Size(FUpper), 0, Size(FLower));
    FWindows = FRightFromUpper;
    Mixed(0, Size(FUpper), 0, Size(FLower));
  }

  // Sets the windows of the mixed pairs on the way.
  void OfferBothFromLower() {
    FLeftFromUpper.resize(FLower.size());
    FRightFromUpper.resize(FLower.size());
    int pastLeft = 0;  // upper entries that leave the left side to the lower one
    int pastRight = 0;
    for (int i = 0; i < Size(FLower); ++i) {
      while (pastLeft < Size(FUpper) && FUpper[pastLeft].Left <= FLower[i].Left) ++pastLeft;
      while (pastRight < Size(FUpper) && FUpper[pastRight].Right >= FLower[i].Right) ++pastRight;
      if (const int both = std::min(pastLeft, pastRight); both > 0) Offer(Between(FLower[i], FUpper[both - 1]));
      const int either = std::max(pastLeft, pastRight);
      FLeftFromUpper[i] = {pastLeft, either};
      FRightFromUpper[i] = {pastRight, either};
    }
  }

  void OfferBothFromUpper() {
    int past = 0;  // lower entries that leave both sides to the upper one
    for (const TArmEntry& upper : FUpper) {
      while (past < Size(FLower) && FLower[past].Left <= upper.Left && FLower[past].Right >= upper.Right) ++past;
      if (past > 0) Offer(Between(FLower[past - 1], upper));
    }
  }

  // Windows shift outward from row to row. The rows whose window holds all columns First to Past form a full block; the
  // rows before and behind them go on to the two halves of the columns.
  void Mixed(int First, int Past, int Row, int PastRow) {
    while (Row < PastRow && FWindows[Row].Past <= First) ++Row;
    while (PastRow > Row && FWindows[PastRow - 1].First >= Past) --PastRow;
    if (!BlockMayWin(First, Past, Row, PastRow)) return;
    int full = Row;
    while (full < PastRow && FWindows[full].Past < Past) ++full;
    int pastFull = full;
    while (pastFull < PastRow && FWindows[pastFull].First <= First) ++pastFull;
    Block(First, Past, full, pastFull);
    if (Past - First == 1) return;
    const int middle = First + (Past - First) / 2;
    Mixed(First, middle, Row, full);
    Mixed(middle, Past, Row, full);
    Mixed(First, middle, pastFull, PastRow);
    Mixed(middle, Past, pastFull, PastRow);
  }

  // The widest room and the farthest reaches among these rows and columns.
  bool BlockMayWin(int First, int Past, int Row, int PastRow) const {
    if (First >= Past || Row >= PastRow) return false;
    const TPlacedBox nearest = Between(FLower[Row], FUpper[First]);
    return nearest.Width() * (FUpper[Past - 1].Reach - FLower[PastRow - 1].Reach) > FBestArea;
  }

  // A block of rows and columns that are all each other's mixed partners: a farther row has its best column no farther.
  void Block(int First, int Past, int Row, int PastRow) {
    if (!BlockMayWin(First, Past, Row, PastRow)) return;
    const int middle = Row + (PastRow - Row) / 2;
    int best = First;
    double bestArea = -1;
    for (int column = First; column < Past; ++column) {
      const double area = Between(FLower[middle], FUpper[column]).Area();
      if (area <= bestArea) continue;
      bestArea = area;
      best = column;
    }
    Offer(Between(FLower[middle], FUpper[best]));
    Block(best, Past, Row, middle);
    Block(First, best + 1, middle + 1, PastRow);
  }

  std::span<const TFreeStep> FSteps;
  double FEnd;
  TPlacedBox& FBest;
  double FBestArea;
  TArm FLower;  // from the middle outward
  TArm FUpper;
  std::vector<TWindow> FLeftFromUpper;
  std::vector<TWindow> FRightFromUpper;
  std::vector<TWindow> FWindows;
};

}  // namespace

void FindLargestAcross(std::span<const TFreeStep> Steps, double End, TPlacedBox& Best) {
  if (!Steps.empty()) TRunSearch(Steps, End, Best).Halve(0, Size(Steps));
}

}  // namespace platenest::detail
