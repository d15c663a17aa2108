#pragma once

#include <algorithm>
#include <utility>

#include "RskfBoxes.h"
#include "RskfTables.h"
#include "platenest/URectNest/RSKF.h"
#include "platenest/URectNest/Raster.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

inline constexpr int kAnyAmount = 1'000'000;
// Where plates lie, which plays no part. Moved back, sizes may carry noise, and the raster must have the same.
inline const TPoint2D kElsewhere{7, -3};

inline TNestRect Part(int Amount, double Width, double Height, double Worth = 0, int Idx = 0) {
  TNestRect part(Amount, Idx, TVRect2D::FromSize(Width, Height));
  part.Area = Worth;
  return part;
}

struct TRskfJob {
  double Width = 0;
  double Height = 0;
  TNestRectList Parts;
  bool CanRotate = true;
  double Gap = 0;
  int Digit = 0;
  int Amp = 1;  // units per plate unit to end at, as after coarsening
  bool Weighted = false;

  TVRect2D Plate() const { return TVRect2D::FromSize(Width, Height); }
  TVRect2D PlateElsewhere() const { return Plate().Translate(kElsewhere); }
};

// A nester on a raster of its own, whose steps a test takes one by one.
struct TRskfProbe : TRSKF {
  explicit TRskfProbe(const TRskfJob& Job)
      : TRSKF(Job.PlateElsewhere(), Job.Parts, Job.Gap, 0, Job.Digit, Job.Weighted) {
    Prepare(Job);
  }
  // Under the caller's watch and budget.
  TRskfProbe(const TRskfJob& Job, double BudgetMs, TStopwatch& SW)
      : TRSKF(Job.PlateElsewhere(), Job.Parts, Job.Gap, BudgetMs, SW, Job.Digit) {
    Prepare(Job);
  }
  using TRSKF::CheckExcess, TRSKF::GetNestResult;

  bool Pass(bool Bounded) {
    return Bounded ? RSkfCoreAlg(Raster, Column, Row, Tables) : URSKFCoreAlg(Raster, Column, Row, Tables);
  }
  Int64 Value() const { return Tables.F.At(Row, Column); }
  TNestedRects Layout() {
    TNestedRects list;
    GetNestResult(Column, Row, Tables, Raster, list);
    return list;
  }

  TIntBoxList Boxes;
  TRaster Raster;
  int Column = 0;
  int Row = 0;
  detail::TRskfTables Tables;

 private:
  void Prepare(const TRskfJob& Job) {
    CreateAmplifiedRectInfo(Job.Amp);
    detail::TRskfUnits units{Job.Amp, Job.Gap};
    units.IntGap = Ceil<int>(units.ToUnits(Job.Gap / 2));
    const TVRect2D plate = Job.PlateElsewhere().Translate({-kElsewhere.X, -kElsewhere.Y}).Inflate(Job.Gap / 2);
    const auto [shortSide, longSide] = std::minmax({plate.Width(), plate.Height()});
    for (int i = 0; i < Size(Job.Parts); ++i)
      if (const auto box = detail::IntBoxOf(Job.Parts[i], i, units, shortSide, Job.Weighted)) Boxes.push_back(*box);
    Raster = TRaster(Trunc<int>(units.ToUnits(longSide)), Trunc<int>(units.ToUnits(shortSide)), Boxes, Job.CanRotate,
                     /*UseNormal=*/false);
    CombineCongruentRects(Job.CanRotate);
    GenerateRectInfowithRaster(Raster, Job.CanRotate);
  }
};

}  // namespace platenest
