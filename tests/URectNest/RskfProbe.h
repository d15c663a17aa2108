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
};

// A nester on a raster of its own, whose steps a test takes one by one.
struct TRskfProbe : TRSKF {
  explicit TRskfProbe(const TRskfJob& Job)
      : TRSKF(Job.Plate().Translate({7, -3}), Job.Parts, Job.Gap, 0, Job.Digit, Job.Weighted) {
    Prepare(Job);
  }
  // Under the caller's watch and budget.
  TRskfProbe(const TRskfJob& Job, double BudgetMs, TStopwatch& SW)
      : TRSKF(Job.Plate(), Job.Parts, Job.Gap, BudgetMs, SW, Job.Digit) {
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
    const detail::TRskfUnits scale{Job.Amp, Job.Gap};
    const int width = Trunc<int>(scale.ToUnits(Job.Width + Job.Gap));
    const int height = Trunc<int>(scale.ToUnits(Job.Height + Job.Gap));
    const detail::TRskfUnits units{Job.Amp, Job.Gap, Ceil<int>(scale.ToUnits(Job.Gap / 2)), height > width};
    for (int i = 0; i < Size(Job.Parts); ++i) {
      const double shortSide = std::min(Job.Width, Job.Height) + Job.Gap;
      if (const auto box = detail::IntBoxOf(Job.Parts[i], i, units, shortSide, Job.Weighted)) Boxes.push_back(*box);
    }
    Raster = TRaster(std::max(width, height), std::min(width, height), Boxes, Job.CanRotate, false);
    CombineCongruentRects(Job.CanRotate);
    GenerateRectInfowithRaster(Raster, Job.CanRotate);
  }
};

}  // namespace platenest
