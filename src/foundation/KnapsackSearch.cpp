#include "KnapsackSearch.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

#include "platenest/foundation/Errors.h"

namespace platenest::detail {

namespace {

constexpr Int64 kMaxTableBytes = Int64{1} << 30;
constexpr Int64 kCellsPerState = 12;  // a state costs as much time as this many cells of the row

// The fractional fill of what a state leaves free, for rooms that fall from call to call.
class TRoomBound {
 public:
  TRoomBound(std::span<const TKnapsackItem> Items, Int64 PiecesOfFirst, Int64 Room)
      : FItems(Items), FPiecesOfFirst(PiecesOfFirst) {
    while (FWhole < Size(FItems) && FWeight + Pieces(FWhole) * FItems[FWhole].Weight <= Room) {
      FWeight += Pieces(FWhole) * FItems[FWhole].Weight;
      FValue += Pieces(FWhole) * FItems[FWhole].Value;
      ++FWhole;
    }
  }

  bool CanReach(Int64 Value, Int64 Room) {
    while (FWeight > Room) {
      --FWhole;
      FWeight -= Pieces(FWhole) * FItems[FWhole].Weight;
      FValue -= Pieces(FWhole) * FItems[FWhole].Value;
    }
    if (Value <= FValue) return true;
    if (FWhole == Size(FItems)) return false;
    const TKnapsackItem& broken = FItems[FWhole];
    return TWide{Room - FWeight} * broken.Value >= TWide{Value - FValue} * broken.Weight;
  }

 private:
  Int64 Pieces(int Item) const { return Item == 0 ? FPiecesOfFirst : FItems[Item].Limit; }

  std::span<const TKnapsackItem> FItems;
  Int64 FPiecesOfFirst;
  int FWhole = 0;  // the items before this one fit with all their pieces
  Int64 FWeight = 0;
  Int64 FValue = 0;
};

}  // namespace

TWide FractionalValue(std::span<const TKnapsackItem> Items, Int64 Capacity) {
  TWide value = 0;
  for (const TKnapsackItem& item : Items) {
    if (item.Limit > Capacity / item.Weight) return value + TWide{Capacity} * item.Value / item.Weight;
    value += TWide{item.Limit} * item.Value;
    Capacity -= item.Limit * item.Weight;
  }
  return value;
}

void DivideByCommonWeight(std::span<TKnapsackItem> Items, Int64& Capacity) {
  Int64 divisor = 0;
  for (const TKnapsackItem& item : Items) divisor = std::gcd(divisor, item.Weight);
  if (divisor < 2) return;
  for (TKnapsackItem& item : Items) item.Weight /= divisor;
  Capacity /= divisor;
}

TKnapsackSearch::TKnapsackSearch(std::vector<TKnapsackItem> Items, Int64 Capacity)
    : FItems(std::move(Items)), FCapacity(Capacity) {}

Int64 TKnapsackSearch::Run() {
  FReachable = GreedyValue();
  DropItems();
  DropRoom();
  DivideByCommonWeight(FItems, FCapacity);
  FUpperBound = static_cast<Int64>(FractionalValue(FItems, FCapacity));
  FStates.push_back({0, 0, -1});
  for (int item = 0; item < Size(FItems) && !FStates.empty() && WantedValue() <= FUpperBound; ++item) RunItem(item);
  return FBest;
}

void TKnapsackSearch::AddCounts(std::vector<Int64>& Counts) const {
  const auto add = [&](int pass) { Counts[FItems[FPasses[pass].Item].Index] += FPasses[pass].Pieces; };
  int taken = FBestTaken;
  if (FBestCell >= 0) {
    Int64 cell = FBestCell;
    for (int rowPass = FBestRowPasses - 1; rowPass >= 0; --rowPass) {
      if (!FRow->Taken(rowPass, cell)) continue;
      add(FFirstRowPass + rowPass);
      cell -= FPasses[FFirstRowPass + rowPass].Weight;
    }
    const Int64 weight = FStates.front().Weight + cell;
    taken = std::ranges::lower_bound(FStates, weight, {}, &TState::Weight)->Taken;
  }
  for (; taken >= 0; taken = FTaken[taken].Before) add(FTaken[taken].Pass);
}

Int64 TKnapsackSearch::GreedyValue() const {
  Int64 best = 0;
  for (int first = 0; first < Size(FItems); ++first) best = std::max(best, GreedyValueAfterOne(first));
  return best;
}

Int64 TKnapsackSearch::GreedyValueAfterOne(int First) const {
  Int64 room = FCapacity - FItems[First].Weight;
  Int64 value = FItems[First].Value;
  for (int i = 0; i < Size(FItems); ++i) {
    const TKnapsackItem& item = FItems[i];
    if (item.Weight > room) continue;
    const Int64 pieces = std::min(item.Limit - (i == First ? 1 : 0), room / item.Weight);
    room -= pieces * item.Weight;
    value += pieces * item.Value;
  }
  return value;
}

bool TKnapsackSearch::CanWin(const TKnapsackItem& Item) const {
  return Item.Value + FractionalValue(FItems, FCapacity - Item.Weight) >= WantedValue();
}

void TKnapsackSearch::DropItems() {
  std::vector<TKnapsackItem> kept;
  std::ranges::copy_if(FItems, std::back_inserter(kept), [this](const TKnapsackItem& item) { return CanWin(item); });
  FItems.swap(kept);
}

// What no piece can fill.
void TKnapsackSearch::DropRoom() {
  TWide total = 0;
  for (const TKnapsackItem& item : FItems) total += TWide{item.Limit} * item.Weight;
  FCapacity = static_cast<Int64>(std::min<TWide>(FCapacity, total));
}

Int64 TKnapsackSearch::WantedValue() const {
  return std::max(FReachable, FBest + 1);
}

void TKnapsackSearch::RunItem(int Item) {
  const TKnapsackItem& item = FItems[Item];
  if (!CanWin(item)) return;
  Int64 left = item.Limit;
  for (Int64 chunk = 1; left > 0 && !FStates.empty(); chunk *= 2) {
    const Int64 pieces = std::min(chunk, left);
    left -= pieces;
    RunPass({Item, pieces, pieces * item.Weight, pieces * item.Value}, left);
  }
  NoteBest();
}

void TKnapsackSearch::RunPass(const TPass& Pass, Int64 PiecesLeft) {
  const Int64 room = FCapacity - FStates.front().Weight;
  if (Pass.Weight > room) return;
  FPasses.push_back(Pass);
  if (FRow) {
    CheckMemory(0, FRow->CellCount(), FRow->PassCount() + 1);
    FRow->RunPass(Pass.Weight, Pass.Value);
    return;
  }
  MergeStates(Pass, PiecesLeft);
  if (Size(FStates) > room / kCellsPerState) SwitchToRow(FItems[Pass.Item]);
}

// Both lists, the states as they are and those that take the pass as well, in rising weight. At equal weight and value
// the state without the pass comes first and dominates.
void TKnapsackSearch::MergeStates(const TPass& Pass, Int64 PiecesLeft) {
  CheckMemory(2 * Size(FStates), 0, 0);
  const Int64 wanted = WantedValue();
  TRoomBound bound(std::span<const TKnapsackItem>(FItems).subspan(Pass.Item), PiecesLeft,
                   FCapacity - FStates.front().Weight);
  FMerged.clear();
  Int64 highest = -1;
  const auto isWorthKeeping = [&](Int64 weight, Int64 value) {
    if (value <= highest) return false;
    highest = value;
    return bound.CanReach(wanted - value, FCapacity - weight);
  };
  const auto take = [&](const TState& state) {
    const Int64 weight = state.Weight + Pass.Weight;
    const Int64 value = state.Value + Pass.Value;
    if (!isWorthKeeping(weight, value)) return;
    FMerged.push_back({weight, value, Size(FTaken)});
    FTaken.push_back({state.Taken, Size(FPasses) - 1});
  };
  auto from = FStates.begin();
  for (const TState& state : FStates) {
    for (; from->Weight + Pass.Weight < state.Weight; ++from) take(*from);
    if (from->Weight + Pass.Weight == state.Weight && from->Value + Pass.Value > state.Value) take(*from++);
    if (isWorthKeeping(state.Weight, state.Value)) FMerged.push_back(state);
  }
  for (; from != FStates.end() && from->Weight + Pass.Weight <= FCapacity; ++from) take(*from);
  FStates.swap(FMerged);
}

void TKnapsackSearch::SwitchToRow(const TKnapsackItem& Item) {
  const Int64 base = FStates.front().Weight;
  const Int64 cells = FCapacity - base + 1;
  CheckMemory(0, cells, 0);
  FRow.emplace(cells, ScaleFrom(Item, cells));
  FFirstRowPass = Size(FPasses);
  for (std::size_t i = 0; i < FStates.size(); ++i)
    FRow->Fill(FStates[i].Weight - base, i + 1 < FStates.size() ? FStates[i + 1].Weight - base : cells,
               FStates[i].Value);
}

// Pieces from Item on are worth at most Item's value per weight. Over the whole row that is the spread more than the
// slope counts, so whoever falls short of the wanted value by more than the spread does not reach it.
TKnapsackScale TKnapsackSearch::ScaleFrom(const TKnapsackItem& Item, Int64 Cells) const {
  const Int64 slope = FItems.back().Value / FItems.back().Weight;
  const TWide spread = (TWide{Item.Value} * Cells + Item.Weight - 1) / Item.Weight - TWide{slope} * Cells;
  const TWide lowest = WantedValue() - spread - 1;
  if (lowest <= 0) return {0, 0, FUpperBound};
  return {slope, static_cast<Int64>(lowest), FUpperBound};
}

// At the end of an item only, so that which of its passes reached the value first plays no part.
void TKnapsackSearch::NoteBest() {
  if (FRow && FRow->BestValue() >= WantedValue()) {
    FBest = FRow->BestValue();
    FBestCell = FRow->BestCell();
    FBestRowPasses = FRow->PassCount();
  } else if (!FRow && !FStates.empty() && FStates.back().Value > FBest) {
    FBest = FStates.back().Value;
    FBestTaken = FStates.back().Taken;
  }
}

void TKnapsackSearch::CheckMemory(Int64 States, Int64 Cells, Int64 Passes) const {
  const TWide states = TWide{States} * (2 * sizeof(TState)) + (TWide{States} + std::ssize(FTaken)) * sizeof(TTaken);
  const TWide row = TWide{Cells} * sizeof(Int64) + TWide{Cells / 8 + 8} * Passes;
  if (states + row > kMaxTableBytes)
    throw TRangeError("[Error] TKnapsackSolver: the tables would take more than 1 GiB");
}

}  // namespace platenest::detail
