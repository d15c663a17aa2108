#pragma once

#include <unordered_map>
#include <vector>

#include "platenest/foundation/Types.h"

// What blocks of whole stacks are worth. A stack is a row of equal rectangles along one side of the block, as many as
// that side holds; the stacks of a block are all rows or all columns.
namespace platenest::detail {

// Joins two numbers. From a million on the second one runs into the first, and two pairs may share a code.
Int64 GetCode(Int64 A, Int64 B);

// A size, the gap included.
struct TStackRect {
  double Width = 0;
  double Height = 0;
  double Worth = 0;  // of one copy
};

// One orientation of one size as a number: i for size i upright, -i - 1 for size i turned a quarter turn.
struct TStackCode {
  int Index = 0;
  bool IsTurned = false;

  static TStackCode Of(int Code) { return Code < 0 ? TStackCode{-Code - 1, true} : TStackCode{Code, false}; }
  int Code() const { return IsTurned ? -Index - 1 : Index; }
};

// A block and how it is best filled.
struct TNestedInfo {
  int X = 0;  // the block's sides
  int Y = 0;
  double Area = 0;         // the value
  bool Direct = false;     // filled by rows along x, stacked along y; otherwise by columns along y, stacked along x
  std::vector<int> Place;  // a code for each stack, ascending
};

// The work done so far.
struct TBlockCounts {
  Int64 Blocks = 0;  // distinct ones
  Int64 Knapsacks = 0;
  Int64 MemoHits = 0;
};

// The values of blocks under the demand that is left, each remembered by its sides alone.
class TBlockValues {
 public:
  explicit TBlockValues(std::vector<TStackRect> Rects);

  // Copies left of each size; none below 0.
  void SetDemand(std::vector<int> Amounts);
  // The value of a block of X by Y, 0 with a side below 1. A block that is new takes its copies from the demand and
  // adds them to Used. One that is known has the value it had under the demand of that time and takes nothing, so that
  // sums of values can exceed what the demand allows: this is what keeps a scan cheap.
  double G(int X, int Y, std::vector<int>& Used);
  // Adds Used to the demand and clears it.
  void GiveBack(std::vector<int>& Used);

  // What is remembered under the code of a block, which may be another block with that code. nullptr for nothing, and
  // with a side below 1.
  const TNestedInfo* Find(int X, int Y) const;
  // What a row of the size and orientation of Code is worth along a side of Len on the x axis, and a column on the y
  // axis.
  double H1(double Len, int Code) const;
  double H2(double Len, int Code) const;
  double SideX(TStackCode Code) const { return Code.IsTurned ? FRects[Code.Index].Height : FRects[Code.Index].Width; }
  double SideY(TStackCode Code) const { return Code.IsTurned ? FRects[Code.Index].Width : FRects[Code.Index].Height; }
  double Worth(int Index) const { return FRects[Index].Worth; }
  int RectCount() const { return Size(FRects); }
  const TBlockCounts& Counts() const { return FCounts; }

 private:
  // A knapsack of stacks, and its answer.
  struct TStacks {
    std::vector<int> Codes;
    std::vector<int> PerStack;
    std::vector<int> Weights;
    std::vector<Int64> Values;
    std::vector<int> Limits;
    std::vector<int> Counts;
    Int64 Value = 0;
  };

  void FillStacks(int Along, int Across, bool Direct, TStacks& Stacks);
  void AddItem(int Along, int Across, bool Direct, TStackCode Code, TStacks& Stacks) const;
  void Take(const TStacks& Stacks, std::vector<int>& Used);

  std::vector<TStackRect> FRects;
  std::vector<int> FAmounts;
  std::unordered_map<Int64, TNestedInfo> FNestDict;
  TStacks FRows;  // both kept for their memory
  TStacks FColumns;
  TBlockCounts FCounts;
};

// How many rectangles of Side a length of Len holds, without tolerance.
double CountAlong(double Len, double Side);

}  // namespace platenest::detail
