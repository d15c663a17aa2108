#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "FiveblockPoints.h"
#include "platenest/URectNest/RectRecords.h"
#include "platenest/foundation/Clock.h"

namespace platenest::detail {

// Why a search must end: the process was told to stop, or the time is up. Time counts once it was started.
class TFiveblockBudget {
 public:
  explicit TFiveblockBudget(int TimeLimit) : FTimeLimit(TimeLimit) {}

  void Start() { FSW.Start(); }
  int Seconds() const { return FTimeLimit; }
  bool IsTimeOver() const { return FSW.ElapsedMs() / 1000 > FTimeLimit; }
  bool IsSpent() const { return RectNestStopped() || IsTimeOver(); }

 private:
  TStopwatch FSW;
  int FTimeLimit;
};

// The larger of the two homogeneous grids of A by B on L by W.
Int64 GetLowerBound(Int64 L, Int64 W, Int64 A, Int64 B);

struct TFiveblockBest {
  Int64 Count = 0;
  TCutPoint Cut{0, 0, 0, 0, 1};
};

// The best of a plate's homogeneous grid and its guillotine cuts, both blocks of a cut filled by their own grids.
// Nothing if the budget is spent.
std::optional<TFiveblockBest> SolveByOneGuillotineCut(const TFiveblockPoints& Points, int A, int B,
                                                      const TFiveblockBudget& Budget);

// The memoised search for the best recursive division of a plate into two blocks or into five around a centre block
//
//        +------+-----------+
//        |  0   |     1     |     lengths x1, L - x1 above, x2, L - x2 below;
//        |      +-----+-----+     widths  y1, W - y1 at the left, y2, W - y2 at the right
//        +------+  2  |     |
//        |   3        |  4  |
//        +------------+-----+
//
// after Morabito and Morales (1998) and Birgin, Morabito and Nishihara (2005), between the homogeneous grid as lower
// and Barnes' bound as upper bound of every block. A plate in the table is a pair of points, the length first, which is
// not below the width; turned plates share a cell.
class TFiveblockSearch {
 public:
  TFiveblockSearch(const TFiveblockPoints& Points, int A, int B, int NMax, const TFiveblockBudget& Budget);

  // The count of the whole plate, nothing if the budget was spent on the way; the table is worthless then. N is the
  // level of the first cut. From NMax on the blocks of a cut are worth their lower bounds; before it they are searched
  // themselves, one level further.
  std::optional<int> Solve(int N);

  // Barnes' bound of the whole plate.
  int UpperBound() const { return FCells[RootCell()].Upper; }
  // The division found for the plate L by W, both points and L >= W.
  TCutPoint CutOf(int L, int W) const;

 private:
  static constexpr int kProven = -1;

  // 32 bytes.
  struct TCell {
    int Depth;                          // level at which it was solved last; NMax before, kProven if for good
    int Upper;                          // Barnes' bound
    int Lower;                          // best count known
    std::array<std::int32_t, 4> Cut{};  // X1, X2, Y1, Y2 of that count
    bool ReachedLimit = true;           // the count rests on a cut-off by depth
    bool Homo = true;                   // the count is that of the homogeneous grid

    int LocalUpper() const { return Depth == kProven ? Lower : Upper; }
  };

  // A width at which a five-block cut may begin or end.
  struct TWidth {
    Int64 Waste;   // area that two blocks beside it lose at least
    int Position;  // of the width
    int Length;    // the width itself
    int Rest;      // position of the plate's width less this one
  };

  // A run of widths in the arena.
  struct TRange {
    std::size_t First = 0;
    std::size_t Count = 0;
  };

  enum class TCutKind : std::uint8_t { Five, Vertical, Horizontal, None };

  // One plate on the way from the whole plate down to the block that is being solved.
  struct TFrame {
    std::size_t Cell;
    int Row;  // positions of length and width
    int Column;
    int N;
    int Best;
    int Upper;
    Int64 Spare;  // area that a cut which beats Best may lose

    TCutKind Kind = TCutKind::Five;
    bool HasX1 = false;
    bool IsTwin = false;  // X1 and X2 lie as far from the two ends of the plate
    TRasterWalk WalkX1;   // walks the guillotine cuts too
    TRasterWalk WalkX2;
    int X1 = 0;  // positions of the cut
    int X2 = 0;
    int Y1 = 0;
    int Y2 = 0;
    TRange Widths;  // the raster of the width without its ends
    TRange Below;   // Y1 and Y2 that X1 leaves
    TRange Above;
    TRange Y1s;  // those that X1 and X2 leave
    TRange Y2s;
    std::size_t AtY1 = 0;  // the next pair of them
    std::size_t AtY2 = 0;
    std::size_t AboveY1 = 0;  // the first of Y2s above the Y1 at work
    Int64 LeastWaste = 0;     // of Y2s

    int Blocks = 0;  // of the cut at work
    int Block = 0;   // the next one to weigh
    int Lo = 0;      // sum of what the blocks are known to hold
    int Up = 0;      // and of what they can hold
    std::array<std::size_t, 5> BlockCell{};
    std::array<int, 5> OldLower{};
    std::array<int, 5> OldUpper{};
  };

  enum class TOutcome : std::uint8_t { Solved, Descended, Spent };

  std::size_t CellAt(int First, int Second) const;
  std::size_t RootCell() const { return CellAt(FPoints.Rows() - 1, FPoints.Columns() - 1); }
  int Length(int Position) const { return FPoints.Length(Position); }
  int& Worth(int Row, int Column) {
    return FWorth[static_cast<std::size_t>(Row) * FColumns + static_cast<std::size_t>(Column)];
  }
  void SetWorth(int Row, int Column, int Value);
  void FillTable();
  void RateBlocks(bool ByLowerBound);
  bool IsSpent(int Steps);

  bool Open(std::size_t Cell, int N);
  void Close();
  TOutcome Continue();
  Int64 Spare(const TFrame& F) const;

  bool NextCut(TFrame& F);
  bool NextGuillotine(TFrame& F, int Whole);
  bool NextFive(TFrame& F);
  bool NextY2(TFrame& F);
  bool NextLengths(TFrame& F);
  bool NextX1(TFrame& F);
  bool NextX2(TFrame& F);
  void KeepRaster(TFrame& F);
  TRange Keep(TRange From, std::size_t To, Int64 Most, int BlockLength, bool ByRest);
  std::span<const TWidth> In(TRange Range) const { return {FArena.data() + Range.First, Range.Count}; }

  void BeginCut(TFrame& F);
  void CountAtLimit(TFrame& F);
  bool WeighBlocks(TFrame& F);
  void Improve(TFrame& F, int Count);
  std::array<std::int32_t, 4> LengthsOf(const TFrame& F) const;

  const TFiveblockPoints& FPoints;
  const TFiveblockBudget& FBudget;
  const Int64 FA;
  const Int64 FB;
  const Int64 FUnit;  // area of a rectangle
  const int FNMax;
  const std::size_t FColumns;
  bool FSpent = false;
  std::vector<TCell> FCells;
  // What a block can be worth at most in a cut, by positions of its length and width, whichever is larger. It never
  // rises, so that a cut dropped for it would be dropped later too.
  std::vector<int> FWorth;
  std::vector<TFrame> FFrames;
  std::vector<TWidth> FArena;  // the widths of all frames, on top of each other
  std::size_t FArenaTop = 0;
  int FSteps = 0;
};

}  // namespace platenest::detail
