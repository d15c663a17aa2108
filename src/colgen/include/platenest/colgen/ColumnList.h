#pragma once

#include "platenest/URectNest/RectRecords.h"
#include "platenest/uBCPBase/BCPTypes.h"

// A plain form of results for hosts: layouts with the number of plates that carry each. Lengths are plate units. One
// object for one thread at a time, reading included.
namespace platenest {

struct PLATENEST_API TOneColumn {
  TNestedRects Pattern;
  TVRect2D Plate;
  int Number = 0;       // plates that carry it
  double UsedArea = 0;  // of the items' boxes, as they were when this was made

  TOneColumn() = default;
  TOneColumn(const TNestedRects& APattern, const TVRect2D& APlate, int ANum);

  // Made anew from layout, plate and number.
  TOneColumn Clone() const { return TOneColumn(Pattern, Plate, Number); }
  // Every Part.Idx becomes ADict[Part.Idx]. TRangeError for one outside ADict, nothing changed then.
  void ConvertIndexBy(const TIntegerDynArray& ADict);
  // As many copies of every index on a plate of the same size, turned by a quarter or not, with used areas less than
  // 0.001 apart. Where the items lie and how many plates there are plays no part.
  bool IsSameAs(const TOneColumn& AColumn) const;
};

class PLATENEST_API TColumnList : public TListOf<TOneColumn> {
 public:
  using TListOf::TListOf;

  // Deep, each column by its Clone; Usage of the copy is computed anew.
  TColumnList Clone() const;
  // Copies on all plates by index, for RectCount of them. TRangeError for an item beyond.
  TIntegerDynArray NumVec(int RectCount) const;
  // The number of plates, the one with the smallest used area counted by its used part. 0 if empty.
  double PlateUsed() const;
  // The used part of that plate. 2.0, above every real usage, if there is none or it has no area.
  double LastPlateUsage() const;
  void SortByUsedArea();  // descending
  // Sorts by used area, then joins each column with the one before it if they are the same; same columns with another
  // one between them stay apart.
  void MergeSameColumn();
  // The area of all plates but the one with the smallest used area, and the area of all parts, those on that plate
  // included. Computed at the first call and kept: what is changed in the list later does not show.
  double Usage(double& SumPartsArea) const;
  // Negative if this list is the better one, by parts to plate area as Usage has them; 0 if as good. Lists with exactly
  // the same area of parts compare by plate area; a plate area of 0 counts as the best ratio.
  int CompareTo(const TColumnList& AColumnList) const;

 private:
  const TOneColumn* Emptiest() const;

  mutable bool FUsageValid = false;
  mutable double FSumPartsArea = 0;
  mutable double FUsage = 0;
};

}  // namespace platenest
