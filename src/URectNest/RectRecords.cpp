#include "platenest/URectNest/RectRecords.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

int SumOfRatios(int First, int Second) {
  const Int64 sum = Int64{First} + Second;
  if (sum > std::numeric_limits<int>::max())
    throw TRangeError("[Error] TNestSpaceList.MergeSameSize: too many plates of one size");
  return static_cast<int>(sum);
}

double ValuedArea(const TNestSpace& Space) {
  return std::pow(Space.Space.Area(), 1.2) * std::sqrt(static_cast<double>(Space.Ratio));
}

}  // namespace

double TNestSpace::TotalArea() const {
  return static_cast<double>(static_cast<TExtended>(Space.Area()) * Ratio);
}

int TNestSpaceList::AvgRatio(int EndIndex) const {
  const int last = std::min(EndIndex, Count() - 1);
  if (last < 0) return 0;
  Int64 sum = 0;
  for (int i = 0; i <= last; ++i) sum += At(i).Ratio;
  return Round<int>(static_cast<double>(sum) / (last + 1));
}

Int64 TNestSpaceList::TotalRatio() const {
  Int64 sum = 0;
  for (const TNestSpace& item : *this) sum += item.Ratio;
  return sum;
}

bool TNestSpaceList::HasMultiRatio(bool IncludeUdf) const {
  return std::any_of(begin(), end(),
                     [&](const TNestSpace& item) { return item.Ratio > 1 && (IncludeUdf || !item.IsUdf); });
}

bool TNestSpaceList::HasUdf() const {
  return std::any_of(begin(), end(), [](const TNestSpace& item) { return item.IsUdf; });
}

void TNestSpaceList::InsertBegin(const TNestSpaceList& AList) {
  TNestSpaceList joined = AList;
  joined.AddRange(*this);
  *this = std::move(joined);
}

TNestSpaceList TNestSpaceList::MergeSameSize() const {
  TNestSpaceList merged;
  for (const TNestSpace& item : *this) {
    const auto same = std::find_if(merged.begin(), merged.end(), [&](const TNestSpace& other) {
      return item.Space.SizeEquals(other.Space, kDefaultTol);
    });
    if (same == merged.end()) {
      merged.push_back(item);
      continue;
    }
    const int ratio = SumOfRatios(same->Ratio, item.Ratio);
    *same = item;
    same->Ratio = ratio;
  }
  return merged;
}

void TNestSpaceList::MergeSameSizeInPlace() {
  *this = MergeSameSize();
}

int TNestSpaceList::CompareByArea(const TNestSpace& Left, const TNestSpace& Right) {
  return Sign(Right.Space.Area(), Left.Space.Area());
}

int TNestSpaceList::CompareByTotalArea(const TNestSpace& Left, const TNestSpace& Right) {
  return Sign(Right.Space.Area() * Right.Ratio, Left.Space.Area() * Left.Ratio);
}

int TNestSpaceList::CompareByValuedArea(const TNestSpace& Left, const TNestSpace& Right) {
  if (Left.Ratio > 0 && Right.Ratio > 0) {
    const double left = ValuedArea(Left);
    const double right = ValuedArea(Right);
    if (std::fabs(left - right) > 0.001) return Sign(right, left);
  }
  return CompareByArea(Left, Right);
}

TVRect2D TNestedRect::BoundBox() const {
  const double width = Part.BoundBox.Width();
  const double height = Part.BoundBox.Height();
  const TVRect2D box = IsRotate ? TVRect2D::FromBounds(width, -height, 0, 0) : TVRect2D::FromSize(width, height);
  return box.Translate(Trans);
}

TVRect2D TNestedRects::BoundBox() const {
  TVRect2D box = TVRect2D::InvalidRect;
  for (const TNestedRect& item : *this) {
    const TVRect2D part = item.IsRotate ? item.Part.BoundBox.Rotate(std::numbers::pi / 2) : item.Part.BoundBox;
    box.ExpandInPlace(part.Translate(item.Trans));
  }
  return box;
}

}  // namespace platenest
