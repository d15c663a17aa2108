#include "BlockValues.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "MultiRectRules.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Knapsack.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

Int64 GetCode(Int64 A, Int64 B) {
  return A * kCodeFactor + B;
}

double CountAlong(double Len, double Side) {
  return std::trunc(Len / Side);
}

TBlockValues::TBlockValues(std::vector<TStackRect> Rects) : FRects(std::move(Rects)), FAmounts(FRects.size()) {}

void TBlockValues::SetDemand(std::vector<int> Amounts) {
  FAmounts = std::move(Amounts);
}

double TBlockValues::H1(double Len, int Code) const {
  const auto code = TStackCode::Of(Code);
  return CountAlong(Len, SideX(code)) * Worth(code.Index);
}

double TBlockValues::H2(double Len, int Code) const {
  const auto code = TStackCode::Of(Code);
  return CountAlong(Len, SideY(code)) * Worth(code.Index);
}

double TBlockValues::G(int X, int Y, std::vector<int>& Used) {
  if (X < 1 || Y < 1) return 0;
  const Int64 key = GetCode(X, Y);
  if (const auto known = FNestDict.find(key); known != FNestDict.end()) {
    ++FCounts.MemoHits;
    return known->second.Area;
  }
  FillStacks(X, Y, true, FRows);
  FillStacks(Y, X, false, FColumns);
  const bool direct = FColumns.Value < FRows.Value;
  const TStacks& best = direct ? FRows : FColumns;
  TNestedInfo info{X, Y, static_cast<double>(best.Value), direct, {}};
  for (int item = 0; item < Size(best.Codes); ++item)
    info.Place.insert(info.Place.end(), best.Counts[item], best.Codes[item]);
  SortBy(info.Place, Sign<int>);
  Take(best, Used);
  ++FCounts.Blocks;
  FNestDict.emplace(key, std::move(info));
  return static_cast<double>(best.Value);
}

void TBlockValues::FillStacks(int Along, int Across, bool Direct, TStacks& Stacks) {
  for (auto* list : {&Stacks.Codes, &Stacks.PerStack, &Stacks.Weights, &Stacks.Limits}) list->clear();
  Stacks.Values.clear();
  for (int i = 0; i < RectCount(); ++i) {
    if (FAmounts[i] == 0) continue;
    for (const bool isTurned : {false, true}) AddItem(Along, Across, Direct, {i, isTurned}, Stacks);
  }
  ++FCounts.Knapsacks;
  Stacks.Value = TKnapsackSolver::SolveMultiKnapsack(Stacks.Weights, Stacks.Values, TItemLimits(Stacks.Limits), Across,
                                                     Stacks.Counts);
}

// Whole stacks only: a size with fewer copies than fill one is left out, however well a few of them would fit.
void TBlockValues::AddItem(int Along, int Across, bool Direct, TStackCode Code, TStacks& Stacks) const {
  const double sideAlong = Direct ? SideX(Code) : SideY(Code);
  const double sideAcross = Direct ? SideY(Code) : SideX(Code);
  if (sideAlong > Along || sideAcross > Across) return;
  const double perStack = CountAlong(Along, sideAlong);
  const int amount = FAmounts[Code.Index];
  if (perStack > amount) return;
  Stacks.Codes.push_back(Code.Code());
  Stacks.PerStack.push_back(Trunc<int>(perStack));
  Stacks.Weights.push_back(Ceil<int>(sideAcross));
  Stacks.Values.push_back(Ceil<Int64>(Direct ? H1(Along, Code.Code()) : H2(Along, Code.Code())));
  Stacks.Limits.push_back(amount / Stacks.PerStack.back());
}

// Both orientations of one size may have been chosen up to the whole amount, hence the minimum.
void TBlockValues::Take(const TStacks& Stacks, std::vector<int>& Used) {
  for (int item = 0; item < Size(Stacks.Codes); ++item) {
    const int index = TStackCode::Of(Stacks.Codes[item]).Index;
    const Int64 wanted = Int64{Stacks.Counts[item]} * Stacks.PerStack[item];
    const int taken = static_cast<int>(std::min<Int64>(FAmounts[index], wanted));
    Used[index] += taken;
    FAmounts[index] -= taken;
  }
}

void TBlockValues::GiveBack(std::vector<int>& Used) {
  for (int i = 0; i < RectCount(); ++i) FAmounts[i] += std::exchange(Used[i], 0);
}

const TNestedInfo* TBlockValues::Find(int X, int Y) const {
  if (X < 1 || Y < 1) return nullptr;
  const auto known = FNestDict.find(GetCode(X, Y));
  return known == FNestDict.end() ? nullptr : &known->second;
}

}  // namespace platenest::detail
