#include "platenest/colgen/RectPattern.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "PlateSizes.h"
#include "platenest/foundation/Compare.h"

namespace platenest {

namespace {

// Below it two usages count as equal.
constexpr double kUsageTolerance = 0.001;

const TRectPattern& AsPattern(const TBCPVariable& AVar) {
  const auto* const pattern = dynamic_cast<const TRectPattern*>(&AVar);
  NestAssert(pattern != nullptr);
  return *pattern;
}

}  // namespace

template class TBCPSolution<TRectPattern>;

TRectPattern::TRectPattern(TNestedRects ANestedRects, const TVRect2D& APlate)
    : FNestedRects(std::move(ANestedRects)), FPlate(APlate) {
  UpdateUsage();
}

TRectPattern::~TRectPattern() = default;

std::unique_ptr<TRectPattern> TRectPattern::CreateEmpty() {
  return std::unique_ptr<TRectPattern>(new TRectPattern);
}

void TRectPattern::UpdateUsage() {
  ConstructColumn();
  CalcUsage();
}

void TRectPattern::CalcUsage() {
  FTotalArea = 0;
  for (const TNestedRect& item : FNestedRects) FTotalArea += item.Part.BoundBox.Area();
  FUsage = detail::UsedShare(FTotalArea, FPlate);
}

void TRectPattern::ConstructColumn() {
  int highest = 0;
  for (const TNestedRect& item : FNestedRects) {
    if (item.Part.Idx < 0) throw TArgumentError("[Error] TRectPattern.UpdateUsage: negative index of a part");
    highest = std::max(highest, item.Part.Idx);
  }
  FColumn.assign(static_cast<std::size_t>(highest) + 1, 0.0);
  for (const TNestedRect& item : FNestedRects) FColumn[static_cast<std::size_t>(item.Part.Idx)] += 1.0;
}

std::unique_ptr<TBCPVariable> TRectPattern::Clone() const {
  return std::make_unique<TRectPattern>(FNestedRects, FPlate);
}

double TRectPattern::GetObjCoeff() const {
  return 1.0;
}

double TRectPattern::GetActualCost() const {
  return FUsage;
}

bool TRectPattern::IsSameWith(const TBCPVariable& AVar) const {
  const TRectPattern& other = AsPattern(AVar);
  return std::fabs(other.FUsage - FUsage) < kUsageTolerance && detail::SamePlate(FPlate, other.FPlate) &&
         FColumn == other.FColumn;
}

int TRectPattern::Compare(const TBCPVariable& Left, const TBCPVariable& Right) const {
  return Sign(AsPattern(Right).FUsage, AsPattern(Left).FUsage);
}

TDoubleDynArray TRectPattern::GetColumn(int AVecSize) const {
  NestAssert(AVecSize >= Size(FColumn));
  TDoubleDynArray column = FColumn;
  column.resize(static_cast<std::size_t>(AVecSize));
  return column;
}

}  // namespace platenest
