#pragma once

#include "Rects.h"
#include "RskfTables.h"
#include "platenest/URectNest/RSKF.h"
#include "platenest/URectNest/Raster.h"

namespace platenest {

inline constexpr int kAnyAmount = 1'000'000;

struct TRskfJob {
  double Width = 0;
  double Height = 0;
  TNestRectList Parts;
  double Gap = 0;
  int Digit = 0;
  double TimeLimit = 0;
  bool Weighted = false;
  bool CanRotate = true;

  TVRect2D Plate() const { return TVRect2D::FromSize(Width, Height); }
};

// A nester whose steps a test takes one by one. Where its plate lies plays no part.
struct TRskfProbe : TRSKF {
  explicit TRskfProbe(const TRskfJob& Job)
      : TRSKF(Job.Plate().Translate({7, -3}), Job.Parts, Job.Gap, Job.TimeLimit, Job.Digit, Job.Weighted) {}
  // Under the caller's watch and budget.
  TRskfProbe(const TRskfJob& Job, double BudgetMs, TStopwatch& SW)
      : TRSKF(Job.Plate(), Job.Parts, Job.Gap, BudgetMs, SW, Job.Digit) {}
  using TRSKF::CheckExcess, TRSKF::CheckResidual, TRSKF::CreateAmplifiedRectInfo;

  bool Prepare(bool CanRotate = true) { return PrepareRaster(Raster, CanRotate, /*ANormalPattern=*/false); }
  bool Pass(bool Bounded) {
    return Bounded ? RSkfCoreAlg(Raster, Column, Row, Tables) : URSKFCoreAlg(Raster, Column, Row, Tables);
  }
  Int64 Value() const { return Tables.F.At(Row, Column); }
  TNestedRects Layout() {
    TNestedRects list;
    GetNestResult(Column, Row, Tables, Raster, list);
    return list;
  }

  TRaster Raster;
  int Column = 0;
  int Row = 0;
  detail::TRskfTables Tables;
};

}  // namespace platenest
