#include "platenest/URectNest/RSKF.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "RskfBoxes.h"
#include "RskfPass.h"
#include "RskfRebuild.h"
#include "RskfRules.h"
#include "RskfTables.h"
#include "platenest/URectNest/BarnesBound.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

using namespace detail;

namespace {

int PowerOfTen(int Digit) {
  return Digit > 0 ? Trunc<int>(std::pow(10.0, Digit)) : 1;
}

bool IsProper(const TVRect2D& Plate) {
  return std::isfinite(Plate.Width()) && std::isfinite(Plate.Height()) && Plate.Width() > 0 && Plate.Height() > 0;
}

// The plate with its gap, at the origin without it; without an inside where nothing can be nested.
TVRect2D PlateWithGap(const TVRect2D& Plate, double Gap) {
  if (!IsProper(Plate) || !std::isfinite(Gap)) return TVRect2D();
  const TVRect2D grown = Plate.Translate({-Plate.Left, -Plate.Bottom}).Inflate(Gap / 2);
  return IsProper(grown) ? grown : TVRect2D();
}

}  // namespace

TRSKF::TRSKF(const TVRect2D& APlate, const TNestRectList& ARects, double AGap, int Digit, bool WeightedProblem)
    : FDigit(Digit),
      FWeightedProblem(WeightedProblem),
      FGap(std::isfinite(AGap) ? AGap : 0),
      FAmp(PowerOfTen(Digit)),
      FRects(ARects),
      FPlate(PlateWithGap(APlate, AGap)) {
  CreateAmplifiedRectInfo(FAmp);
}

TRSKF::TRSKF(const TVRect2D& APlate, const TNestRectList& ARects, double AGap, double ATimeLimit, int Digit,
             bool WeightedProblem)
    : TRSKF(APlate, ARects, AGap, Digit, WeightedProblem) {
  if (ATimeLimit > 0) FTimeLimit = (ATimeLimit + kGraceSeconds) * kMsPerSecond;
}

TRSKF::TRSKF(const TVRect2D& APlate, const TNestRectList& ARects, double AGap, double ABudgetMs, TStopwatch& ASW,
             int Digit)
    : TRSKF(APlate, ARects, AGap, Digit, /*WeightedProblem=*/false) {
  FSW = &ASW;
  FTimeLimit = ABudgetMs;
}

TRSKF::~TRSKF() = default;

void TRSKF::CreateAmplifiedRectInfo(int Amp) {
  FAmp = Amp;
  FCongruent = false;
  FIntRects.clear();
  FRasterBoxes.clear();
  TRskfUnits units{Amp, FGap};
  FL = Trunc<int>(units.ToUnits(FPlate.Width()));
  FW = Trunc<int>(units.ToUnits(FPlate.Height()));
  FIntGap = units.IntGap = Ceil<int>(units.ToUnits(FGap / 2));
  if (FW > FL) {
    std::swap(FL, FW);
    FPlateRotate = true;
  }

  const double shortSide = FPlateRotate ? FPlate.Width() : FPlate.Height();
  for (int i = 0; i < Size(FRects); ++i) {
    FRects[i].Idx = i;
    const auto box = IntBoxOf(FRects[i], i, units, shortSide, FWeightedProblem);
    if (box) FIntRects.push_back(*box);
  }
  CheckAmountLimit();
}

void TRSKF::CheckAmountLimit() {
  FAmountLimit = std::any_of(FIntRects.begin(), FIntRects.end(),
                             [this](const TIntBox& box) { return BarnesBound(FL, FW, box.A, box.B) > box.Amount; });
}

void TRSKF::CombineCongruentRects(bool ACanRotate) {
  if (FCongruent) return;
  MergeCongruentBoxes(FIntRects, FRasterBoxes, ACanRotate, FWeightedProblem);
  FCongruent = true;
}

void TRSKF::GenerateRectInfowithRaster(const TRaster& Raster, bool ACanRotate) {
  TRskfPieceRows rows = PieceRowsOf(FIntRects, Raster, ACanRotate);
  Z = std::move(rows.Rows);
  U = std::move(rows.Columns);
  T = std::move(rows.Boxes);
}

bool TRSKF::RSkfCoreAlg(const TRaster& Raster, int& BestCol, int& BestRow, TRskfTables& Tables) {
  TRskfBudget budget(*FSW, FTimeLimit);
  TRskfCell best;
  if (!RunBoundedPass({Raster, FIntRects, Z, U, T}, budget, Tables, best)) return false;
  BestCol = best.Column;
  BestRow = best.Row;
  Demands.resize(FIntRects.size());
  const TWord* const used = Tables.Used.At(best.Row, best.Column);
  for (int b = 0; b < Size(FIntRects); ++b) Demands[b] = Tables.Packing.CountOf(used, b);
  return true;
}

bool TRSKF::URSKFCoreAlg(const TRaster& Raster, int& BestCol, int& BestRow, TRskfTables& Tables) {
  TRskfBudget budget(*FSW, FTimeLimit);
  TRskfCell best;
  if (!RunUnboundedPass({Raster, FIntRects, Z, U, T}, budget, Tables, best)) return false;
  BestCol = best.Column;
  BestRow = best.Row;
  return true;
}

bool TRSKF::GetNestResult(int BestCol, int BestRow, const TRskfTables& Tables, const TRaster& Raster,
                          TNestedRects& List) {
  if (BestCol == 0 || BestRow == 0) return true;
  TNestedRects drawn;
  TRskfRebuild({Raster, FIntRects, Z, U, T}, Tables, {FAmp, FGap, FIntGap, FPlateRotate}, FRects, FRasterBoxes)
      .Draw({BestCol, BestRow}, drawn);
  if (CheckExcess(drawn)) return false;
  List.AddRange(drawn);
  return true;
}

bool TRSKF::CheckExcess(const TNestedRects& List) const {
  std::vector<int> left;
  left.reserve(FRects.size());
  for (const TNestRect& rect : FRects) left.push_back(rect.Amount);
  for (const TNestedRect& placed : List)
    if (--left[placed.Part.Idx] < 0) return true;
  return false;
}

}  // namespace platenest
