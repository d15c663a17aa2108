#include "platenest/colgen/RectNestProblem.h"

#include <algorithm>
#include <utility>

#include "platenest/foundation/Compare.h"

namespace platenest {

namespace {

constexpr int kAtLeast = 1;
constexpr double kLeastDual = 1e-5;     // up to here a row counts as without price
constexpr double kUnpricedWorth = 1.0;  // what it is worth then

bool Smaller(const TVRect2D& Rect, const TVRect2D& Plate) {
  return fGreat(std::max(Plate.Width(), Plate.Height()), std::max(Rect.Width(), Rect.Height()), kDefaultTol) &&
         fGreat(std::min(Plate.Width(), Plate.Height()), std::min(Rect.Width(), Rect.Height()), kDefaultTol);
}

TNestRectList MainRows(const TNestRectList& ARects, const TVRect2D& APlate) {
  TNestRectList rows;
  for (int i = 0; i < Size(ARects); ++i) {
    const TNestRect& rect = ARects[static_cast<std::size_t>(i)];
    if (!Smaller(rect.BoundBox, APlate) || rect.Amount <= 0) continue;
    rows.push_back(rect);
    rows.back().Idx = i;
  }
  return rows;
}

TNestRectList SubRows(const TNestRectList& ARects, const TIntegerDynArray& ARowDict, const TIntegerDynArray& ANumVec) {
  NestAssert(ARowDict.size() == ANumVec.size());
  TNestRectList rows;
  for (std::size_t i = 0; i < ANumVec.size(); ++i) {
    if (ANumVec[i] <= 0) continue;
    NestAssert(ARowDict[i] >= 0 && ARowDict[i] < Size(ARects));
    rows.push_back(ARects[static_cast<std::size_t>(ARowDict[i])]);
    rows.back().Amount = ANumVec[i];
  }
  return rows;
}

TDoubleDynArray DemandOf(const TNestRectList& ARows) {
  TDoubleDynArray demand;
  for (const TNestRect& row : ARows) demand.push_back(row.Amount);
  return demand;
}

}  // namespace

template class TBCPProblem<TRectPattern>;

TRectNestProblem::TRectNestProblem(TNestRectList ARows, const TVRect2D& APlate, double AGap, bool IsMainProb)
    : TBCPProblem(DemandOf(ARows), TIntegerDynArray(ARows.size(), kAtLeast), IsMainProb),
      FRects(std::move(ARows)),
      FPlate(APlate),
      FGap(AGap) {}

TRectNestProblem::TRectNestProblem(const TNestRectList& ARects, const TVRect2D& APlate, double AGap)
    : TRectNestProblem(MainRows(ARects, APlate), APlate, AGap, /*IsMainProb=*/true) {}

TRectNestProblem::TRectNestProblem(const TNestRectList& ARects, const TVRect2D& APlate, double AGap,
                                   const TIntegerDynArray& ARowDict, const TIntegerDynArray& ANumVec)
    : TRectNestProblem(SubRows(ARects, ARowDict, ANumVec), APlate, AGap, /*IsMainProb=*/false) {
  for (std::size_t i = 0; i < ANumVec.size(); ++i) {
    if (ANumVec[i] > 0) FRowDict.push_back(ARowDict[i]);
  }
}

TRectNestProblem::~TRectNestProblem() = default;

void TRectNestProblem::SetDualCost(const TDoubleDynArray& AWVec, double Amp) {
  NestAssert(AWVec.size() == FRects.size());
  for (std::size_t i = 0; i < AWVec.size(); ++i)
    FRects[i].Area = AWVec[i] > kLeastDual ? AWVec[i] * Amp : kUnpricedWorth;
}

double TRectNestProblem::GetDefaultDualCost(int AIdx) const {
  NestAssert(AIdx >= 0 && AIdx < Size(FRects));
  return FRects[static_cast<std::size_t>(AIdx)].BoundBox.Area();
}

std::unique_ptr<TBCPProblem<TRectPattern>> TRectNestProblem::GetSubBCPProblem(const TIntegerDynArray& ARowDict,
                                                                              const TIntegerDynArray& ANumVec) const {
  return std::make_unique<TRectNestProblem>(FRects, FPlate, FGap, ARowDict, ANumVec);
}

}  // namespace platenest
