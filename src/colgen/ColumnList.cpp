#include "platenest/colgen/ColumnList.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "PlateSizes.h"
#include "platenest/foundation/Compare.h"

namespace platenest {

namespace {

// Below it two used areas count as equal.
constexpr double kAreaTolerance = 0.001;

constexpr double kNoLastPlate = 2.0;

std::vector<int> SortedIndices(const TNestedRects& Pattern) {
  std::vector<int> indices;
  indices.reserve(Pattern.size());
  for (const TNestedRect& item : Pattern) indices.push_back(item.Part.Idx);
  SortBy(indices, Sign<int>);
  return indices;
}

void CheckIndex(int Idx, std::size_t Count) {
  if (Idx < 0 || static_cast<std::size_t>(Idx) >= Count)
    throw TRangeError("[Error] TColumnList: index of a part out of range");
}

double Ratio(double Parts, double Plates) {
  return Plates > 0 ? Parts / Plates : std::numeric_limits<double>::infinity();
}

}  // namespace

TOneColumn::TOneColumn(const TNestedRects& APattern, const TVRect2D& APlate, int ANum)
    : Pattern(APattern), Plate(APlate), Number(ANum) {
  for (const TNestedRect& item : Pattern) UsedArea += item.Part.BoundBox.Area();
}

void TOneColumn::ConvertIndexBy(const TIntegerDynArray& ADict) {
  for (const TNestedRect& item : Pattern) CheckIndex(item.Part.Idx, ADict.size());
  for (TNestedRect& item : Pattern) item.Part.Idx = ADict[static_cast<std::size_t>(item.Part.Idx)];
}

bool TOneColumn::IsSameAs(const TOneColumn& AColumn) const {
  return std::fabs(AColumn.UsedArea - UsedArea) < kAreaTolerance && detail::SamePlate(Plate, AColumn.Plate) &&
         Pattern.size() == AColumn.Pattern.size() && SortedIndices(Pattern) == SortedIndices(AColumn.Pattern);
}

TColumnList TColumnList::Clone() const {
  TColumnList copy;
  copy.reserve(size());
  for (const TOneColumn& column : *this) copy.push_back(column.Clone());
  return copy;
}

TIntegerDynArray TColumnList::NumVec(int RectCount) const {
  TIntegerDynArray counts(static_cast<std::size_t>(std::max(RectCount, 0)));
  for (const TOneColumn& column : *this) {
    for (const TNestedRect& item : column.Pattern) {
      CheckIndex(item.Part.Idx, counts.size());
      counts[static_cast<std::size_t>(item.Part.Idx)] += column.Number;
    }
  }
  return counts;
}

// The first of those with the smallest used area.
const TOneColumn* TColumnList::Emptiest() const {
  const auto least = std::min_element(begin(), end(),
                                      [](const TOneColumn& a, const TOneColumn& b) { return a.UsedArea < b.UsedArea; });
  return least == end() ? nullptr : &*least;
}

double TColumnList::PlateUsed() const {
  const TOneColumn* const last = Emptiest();
  if (last == nullptr) return 0.0;
  Int64 plates = 0;
  for (const TOneColumn& column : *this) plates += column.Number;
  return static_cast<double>(plates - 1) + detail::UsedShare(last->UsedArea, last->Plate);
}

double TColumnList::LastPlateUsage() const {
  const TOneColumn* const last = Emptiest();
  return last == nullptr || last->Plate.Area() == 0 ? kNoLastPlate : last->UsedArea / last->Plate.Area();
}

void TColumnList::SortByUsedArea() {
  Sort([](const TOneColumn& left, const TOneColumn& right) { return Sign(right.UsedArea, left.UsedArea); });
}

void TColumnList::MergeSameColumn() {
  SortByUsedArea();
  for (int i = Count() - 1; i >= 1; --i) {
    if (!At(i).IsSameAs(At(i - 1))) continue;
    At(i - 1).Number += At(i).Number;
    erase(begin() + i);
  }
}

double TColumnList::Usage(double& SumPartsArea) const {
  if (!FUsageValid) {
    FSumPartsArea = 0;
    FUsage = 0;
    for (const TOneColumn& column : *this) {
      FSumPartsArea += column.Number * column.UsedArea;
      FUsage += column.Number * column.Plate.Area();
    }
    if (const TOneColumn* const last = Emptiest()) FUsage -= last->Plate.Area();
    FUsageValid = true;
  }
  SumPartsArea = FSumPartsArea;
  return FUsage;
}

int TColumnList::CompareTo(const TColumnList& AColumnList) const {
  double ownParts = 0;
  double otherParts = 0;
  const double ownArea = Usage(ownParts);
  const double otherArea = AColumnList.Usage(otherParts);
  if (ownParts == otherParts) return Sign(ownArea, otherArea);
  return Sign(Ratio(otherParts, otherArea), Ratio(ownParts, ownArea));
}

}  // namespace platenest
