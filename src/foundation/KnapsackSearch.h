#pragma once

#include <optional>
#include <span>
#include <vector>

#include "KnapsackRow.h"
#include "platenest/foundation/Types.h"

// The bounded knapsack: binary splitting of the limits, a list of undominated states, and an upper bound by value per
// weight that drops every state which can no longer win.
namespace platenest::detail {

// For products of a value and a weight, and for sums of values before they are checked.
__extension__ using TWide = __int128;

struct TKnapsackItem {
  Int64 Weight = 0;  // 1 .. capacity
  Int64 Value = 0;   // above 0
  Int64 Limit = 0;   // 1 .. capacity / Weight
  int Index = 0;     // position in the caller's lists
};

// All items are ordered by falling value per weight, here and below.

// The value of filling Capacity with the items in their order, the last one by a fraction, rounded down. No choice of
// whole pieces is worth more.
TWide FractionalValue(std::span<const TKnapsackItem> Items, Int64 Capacity);

// By the greatest common divisor of the weights; the capacity is rounded down.
void DivideByCommonWeight(std::span<TKnapsackItem> Items, Int64& Capacity);

class TKnapsackSearch {
 public:
  // FractionalValue of the items is below 2^61.
  TKnapsackSearch(std::vector<TKnapsackItem> Items, Int64 Capacity);

  // The best value; see TKnapsackSolver for ties. TRangeError if the tables grow too large.
  Int64 Run();
  // After Run: adds the pieces of each item at its Index.
  void AddCounts(std::vector<Int64>& Counts) const;

 private:
  // Some pieces of one item, taken together or not at all.
  struct TPass {
    int Item;
    Int64 Pieces;
    Int64 Weight;
    Int64 Value;
  };
  // What a choice of pieces weighs and is worth, and the last pass that it took: index into FTaken, -1 for none.
  struct TState {
    Int64 Weight;
    Int64 Value;
    int Taken;
  };
  struct TTaken {
    int Before;  // index into FTaken, -1 for none
    int Pass;
  };

  Int64 GreedyValue() const;
  Int64 GreedyValueAfterOne(int First) const;
  bool CanWin(const TKnapsackItem& Item) const;
  void DropItems();
  void DropRoom();
  // The least value that still matters: one known to be reachable, and above the best answer found so far.
  Int64 WantedValue() const;
  void RunItem(int Item);
  void RunPass(const TPass& Pass, Int64 PiecesLeft);
  void MergeStates(const TPass& Pass, Int64 PiecesLeft);
  void SwitchToRow(const TKnapsackItem& Item);
  TKnapsackScale ScaleFrom(const TKnapsackItem& Item, Int64 Cells) const;
  void NoteBest();
  void CheckMemory(Int64 States, Int64 Cells, Int64 Passes) const;

  std::vector<TKnapsackItem> FItems;
  Int64 FCapacity;
  Int64 FUpperBound = 0;
  Int64 FReachable = 0;  // value of some choice, whichever items it uses

  std::vector<TPass> FPasses;
  std::vector<TState> FStates;  // weights and values both strictly rising
  std::vector<TState> FMerged;  // the list under construction; kept for its memory
  std::vector<TTaken> FTaken;

  // When the states become so many that cells are cheaper, passes run on a row whose cell 0 stands for the weight of
  // the lightest state.
  std::optional<TKnapsackRow> FRow;
  int FFirstRowPass = 0;

  Int64 FBest = 0;
  int FBestTaken = -1;     // found among the states: index into FTaken
  Int64 FBestCell = -1;    // found on the row: in this cell (otherwise -1),
  int FBestRowPasses = 0;  // after this many passes on it
};

}  // namespace platenest::detail
