#include "ValueCorrection.h"

#include <cmath>

#include "PlateSizes.h"

namespace platenest::detail {

namespace {

constexpr double kAreaPower = 1.05;

double SumOfValues(const TNestRectList& Rects) {
  double sum = 0;
  for (const TNestRect& rect : Rects) sum += rect.Area;
  return sum;
}

}  // namespace

double NewValue(const TNestRect& ARect, double ARate) {
  return std::pow(ARect.BoundBox.Area(), kAreaPower) / ARate;
}

double PatternUsedRate(const TRectPattern& APattern, double AGap) {
  double used = 0;
  for (const TNestedRect& item : APattern.NestedRects()) used += item.Part.BoundBox.Inflate(AGap / 2).Area();
  return UsedShare(used, APattern.Plate().Inflate(AGap / 2));
}

void RectUpdate(const TRectSolution& ASolution, TNestRectList& ARects, const TNestRectList& ARectsIn, double AGap) {
  const TNestRectList entry = ARects;
  for (int k = 0; k + 1 < ASolution.Count(); ++k) {
    const TRectPattern& pattern = *ASolution.GetSubSolution(k).Key;
    const TDoubleDynArray used = pattern.GetColumn(Size(ARects));
    const double rate = PatternUsedRate(pattern, AGap);
    for (std::size_t i = 0; i < ARects.size() && rate > 0; ++i) {
      const double amount = ARectsIn[i].Amount;
      const double value = entry[i].Area;
      if (amount > 0) ARects[i].Area = ((amount - used[i]) * value + used[i] * value / rate) / amount;
    }
  }
  const double scale = SumOfValues(ARects) > 0 ? SumOfValues(entry) / SumOfValues(ARects) : 1;
  for (std::size_t i = 0; i < ARects.size(); ++i) {
    ARects[i].Amount = ARectsIn[i].Amount;
    ARects[i].Area *= scale;
  }
}

}  // namespace platenest::detail
