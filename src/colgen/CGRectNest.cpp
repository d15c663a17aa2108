#include "platenest/colgen/CGRectNest.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "PlateSizes.h"
#include "platenest/foundation/Host.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

bool GenerationStopped() {
  return RectNestStopped() || ColumnGenerationTerminated.load(std::memory_order_relaxed);
}

// Rows that are still to be placed, with their positions in the full list.
struct TWork {
  TNestRectList Rects;
  TIntegerDynArray Indices;

  void Append(const TWork& Other) {
    Rects.insert(Rects.end(), Other.Rects.begin(), Other.Rects.end());
    Indices.insert(Indices.end(), Other.Indices.begin(), Other.Indices.end());
  }
  void Erase(int Row) {
    Rects.erase(Rects.begin() + Row);
    Indices.erase(Indices.begin() + Row);
  }
};

TWork WholeWork(const TNestRectList& ARects) {
  TWork work{ARects, TIntegerDynArray(ARects.size())};
  std::iota(work.Indices.begin(), work.Indices.end(), 0);
  return work;
}

// Moves what the plate cannot hold, last to first.
void SetAside(const TVRect2D& Plate, TWork& Work, TWork& Aside) {
  for (int row = Size(Work.Rects) - 1; row >= 0; --row) {
    const auto at = static_cast<std::size_t>(row);
    if (Plate.Holds90(Work.Rects[at].BoundBox) != -1) continue;
    Aside.Rects.push_back(Work.Rects[at]);
    Aside.Indices.push_back(Work.Indices[at]);
    Work.Erase(row);
  }
}

bool LiesOn(const TRectSolution& Solution, const TVRect2D& Plate) {
  return detail::SamePlate(Solution.GetSubSolution(0).Key->Plate(), Plate);
}

// The copies of a pattern that can be kept whole, at most Copies. Takes them off Rest.
int TakeWhole(const TRectPattern& Pattern, int Copies, std::vector<Int64>& Rest) {
  std::vector<Int64> used(Rest.size());
  for (const TNestedRect& item : Pattern.NestedRects()) ++used[static_cast<std::size_t>(item.Part.Idx)];
  Int64 whole = Copies;
  for (std::size_t row = 0; row < used.size(); ++row)
    if (used[row] > 0) whole = std::min(whole, std::max<Int64>(Rest[row], 0) / used[row]);
  for (std::size_t row = 0; row < used.size(); ++row) Rest[row] -= whole * used[row];
  return static_cast<int>(whole);
}

TRectPattern Trimmed(const TRectPattern& Pattern, std::vector<Int64>& Rest) {
  TNestedRects kept;
  for (int i = Pattern.NestedRects().Count() - 1; i >= 0; --i) {
    const TNestedRect& item = Pattern.NestedRects().At(i);
    Int64& rest = Rest[static_cast<std::size_t>(item.Part.Idx)];
    if (rest <= 0) continue;
    --rest;
    kept.push_back(item);
  }
  kept.Reverse();
  return {std::move(kept), Pattern.Plate()};
}

}  // namespace

TCGRectNest::TCGRectNest(const TNestRectList* ARects, const TNestSpaceList* APlates, double AGap)
    : FRects(ARects), FPlates(APlates), FGap(AGap) {}

TRectSolutionFifo& TCGRectNest::ColumnPool() {
  static TRectSolutionFifo pool;
  return pool;
}

void TCGRectNest::Initialize() {
  ColumnPool().Clear();
}

void TCGRectNest::AddIntialSolution(TRectSolution ASolution) {
  ColumnPool().Push(std::move(ASolution));
}

bool TCGRectNest::RunRectNest(double ATimeLimit, TRectSolution& ASolution) {
  TRectSolution solution;
  const bool ran =
      FPlates->Count() > 1 ? RunSequentialMultiPlate(ATimeLimit, solution) : RunUniPlate(ATimeLimit, solution);
  ASolution = std::move(solution);
  return ran && ASolution.Count() > 0;
}

bool TCGRectNest::RunUniPlate(double ATimeLimit, TRectSolution& ASolution) {
  if (FPlates->empty()) return false;
  const TNestSpace& plate = FPlates->First();
  TWork work = WholeWork(*FRects);
  TWork tooLarge;
  SetAside(plate.Space, work, tooLarge);
  if (work.Rects.empty()) return false;
  const bool solved = SolvePlate(work.Rects, plate, ATimeLimit > 0 ? ATimeLimit : 600.0, ASolution);
  ReturnSpace(ASolution, plate.Ratio);
  ReturnExcessiveRects(work.Rects, ASolution);
  return solved;
}

// What was set aside once comes back after every later plate, with the amount that it had then: a part that a later
// plate has taken is placed again, beyond its amount.
bool TCGRectNest::RunSequentialMultiPlate(double ATimeLimit, TRectSolution& ASolution) {
  constexpr int kEndlessStock = 99999;
  TWork work = WholeWork(*FRects);
  TWork aside;
  const TStopwatch watch = TStopwatch::StartNew();
  for (const TNestSpace& plate : *FPlates) {
    if (GenerationStopped()) break;
    SetAside(plate.Space, work, aside);
    TRectSolution current;
    if (!work.Rects.empty()) {
      const double budget = ATimeLimit > 0 ? std::ceil(ATimeLimit - watch.ElapsedMs() / 1000) : 60.0;
      const TNestSpace endless(plate.Space, kEndlessStock, plate.IsUdf);
      if (!(budget > 0) || !SolvePlate(work.Rects, endless, budget, current)) break;
      ReturnSpace(current, plate.Ratio);
      ReturnExcessiveRects(work.Rects, current);
      ReturnRects(work.Rects, work.Indices, current);
    }
    work.Append(aside);
    ASolution.AddBCPSolution(current);
    if (work.Rects.empty()) break;
  }
  return true;
}

bool TCGRectNest::SolvePlate(const TNestRectList& ARects, const TNestSpace& ASpace, double ATimeLimit,
                             TRectSolution& ASolution) {
  const std::unique_ptr<TBCPRectNest> nest = CreateBCPRectNest(ARects, ASpace);
  const bool solved = nest->Solve(ASolution, ATimeLimit);
  for (TRectSolution& other : nest->TakeOtherPlates()) FOtherPlateSolutions.push_back(std::move(other));
  return solved;
}

std::unique_ptr<TBCPRectNest> TCGRectNest::CreateBCPRectNest(const TNestRectList& ARects, const TNestSpace& ASpace) {
  if (ARects.size() != FRects->size()) return std::make_unique<TBCPRectNest>(ARects, ASpace, FGap, nullptr);
  auto nest = std::make_unique<TBCPRectNest>(ARects, ASpace, FGap, &ColumnPool());
  for (std::size_t i = FOtherPlateSolutions.size(); i-- > 0;) {
    if (!LiesOn(FOtherPlateSolutions[i], ASpace.Space)) continue;
    nest->AddColumnList(FOtherPlateSolutions[i]);
    FOtherPlateSolutions.erase(FOtherPlateSolutions.begin() + static_cast<std::ptrdiff_t>(i));
  }
  for (TRectSolution arrived; ColumnPool().Pop(arrived);) {
    if (arrived.Count() == 0) continue;
    if (LiesOn(arrived, ASpace.Space))
      nest->AddColumnList(arrived);
    else
      FOtherPlateSolutions.push_back(std::move(arrived));
  }
  return nest;
}

void TCGRectNest::CheckAmount(const TRectSolution& ASolution, const TNestRectList& ARects) const {
  TDoubleDynArray sum(ARects.size());
  for (const auto& pair : ASolution) {
    const TDoubleDynArray column = pair.Key->GetColumn(Size(ARects));
    for (std::size_t row = 0; row < sum.size(); ++row) sum[row] += column[row];
  }
  sum.resize(FRects->size());
  for (std::size_t row = 0; row < sum.size(); ++row)
    if (Round(sum[row] - (*FRects)[row].Amount) != 0) TCerr::W("AmountError");
}

// The cost counts the last plate by its used part, and its ceiling is the number of plates.
void TCGRectNest::ReturnSpace(TRectSolution& ASolution, int ANum) {
  Int64 excess = Ceil<Int64>(ASolution.GetCSPCost()) - ANum;
  for (int i = ASolution.Count() - 1; i >= 0 && excess > 0; --i) {
    const TRectSolution::TSubSolution& pair = ASolution.GetSubSolution(i);
    const int count = pair.Value;
    if (count > excess) ASolution.AddSubSolution(*pair.Key, static_cast<int>(count - excess));
    ASolution.Delete(i);
    excess -= count;
  }
}

void TCGRectNest::ReturnExcessiveRects(const TNestRectList& ARects, TRectSolution& ASolution) {
  std::vector<Int64> rest(ARects.size());
  std::transform(ARects.begin(), ARects.end(), rest.begin(), [](const TNestRect& rect) { return rect.Amount; });
  TRectSolution solution;
  for (const auto& pair : ASolution) {
    int copies = pair.Value;
    if (const int whole = TakeWhole(*pair.Key, copies, rest); whole > 0) {
      solution.AddSubSolution(*pair.Key, whole);
      copies -= whole;
    }
    for (; copies > 0; --copies) solution.AddSubSolution(std::make_unique<TRectPattern>(Trimmed(*pair.Key, rest)), 1);
  }
  solution.MergeSameSolution();
  ASolution = std::move(solution);
}

void TCGRectNest::ReturnRects(TNestRectList& ARects, TIntegerDynArray& AIdxList, TRectSolution& ASolution) {
  for (int i = 0; i < ASolution.Count(); ++i) {
    TRectSolution::TSubSolution& pair = ASolution.GetSubSolution(i);
    for (TNestedRect& item : pair.Key->NestedRects()) {
      const auto row = static_cast<std::size_t>(item.Part.Idx);
      ARects[row].Amount -= pair.Value;
      item.Part.Idx = AIdxList[row];
    }
    pair.Key->UpdateUsage();
  }
  for (int row = Size(ARects) - 1; row >= 0; --row) {
    if (ARects[static_cast<std::size_t>(row)].Amount != 0) continue;
    ARects.erase(ARects.begin() + row);
    AIdxList.erase(AIdxList.begin() + row);
  }
}

}  // namespace platenest
