#include "RskfDrivers.h"

#include "RskfBoxes.h"
#include "RskfRasterRules.h"
#include "RskfTables.h"
#include "platenest/URectNest/RSKF.h"
#include "platenest/foundation/Host.h"

namespace platenest {

using namespace detail;

double detail::PlacedArea(const TNestedRects& List) {
  double area = 0;
  for (const TNestedRect& item : List) area += item.Part.BoundBox.Area();
  return area;
}

double TRSKF::RunMultiRectNest(TNestedRects& AResultList, bool ACanRotate, bool ANormalPattern) {
  TNestedRects placed;
  if (!FIntRects.empty() && FL > 0 && FW > 0) {
    if (FTimeLimit > 0 && !FSW->IsRunning()) *FSW = TStopwatch::StartNew();
    TRaster raster;
    if (PrepareRaster(raster, ACanRotate, ANormalPattern)) NestOnRaster(raster, placed);
    if (!placed.empty()) TryFilling(placed);
  }
  AResultList.AddRange(placed);
  return FPlate.Area() > 0 ? PlacedArea(AResultList) / FPlate.Area() : 0;
}

bool TRSKF::PrepareRaster(TRaster& Raster, bool ACanRotate, bool ANormalPattern) {
  if (FCongruent) CreateAmplifiedRectInfo(FAmp);  // an earlier run took pieces out of the boxes
  const double factor = TimeFactor(FTimeLimit, Size(FIntRects));
  for (;;) {
    const Int64 freeBytes = FreePhysicalMemory();
    if (CanBuildRaster(FL, FW, freeBytes)) {
      Raster.Initialize(FL, FW, FIntRects, ACanRotate, ANormalPattern);
      CombineCongruentRects(ACanRotate);
      if (IsRasterAccepted({Raster.SizeL, Raster.SizeW, Size(FIntRects), FAmountLimit}, freeBytes, factor)) break;
    }
    CreateAmplifiedRectInfo(CoarserAmplification(FAmp));
    if (FL < 1 || FW < 1 || RectNestStopped()) return false;
  }
  GenerateRectInfowithRaster(Raster, ACanRotate);
  return true;
}

void TRSKF::NestOnRaster(const TRaster& Raster, TNestedRects& List) {
  TRskfTables tables;
  int column = 0;
  int row = 0;
  const bool isDone =
      FAmountLimit ? RSkfCoreAlg(Raster, column, row, tables) : URSKFCoreAlg(Raster, column, row, tables);
  if (isDone) GetNestResult(column, row, tables, Raster, List);
}

bool TRSKF::CheckResidual(const TRaster& Raster, int BestCol, int BestRow) const {
  const auto holdsMore = [&](int length, int width) {
    for (int k = 0; k < Size(Z) && Raster.RasterW[Z[k]] <= width; ++k) {
      for (int m = 0; m < Size(U[k]) && Raster.RasterL[U[k][m]] <= length; ++m)
        if (Demands[T[k][m]] < FIntRects[T[k][m]].Amount) return true;
    }
    return false;
  };
  return holdsMore(FL - Raster.RasterL[BestCol], FW) || holdsMore(FL, FW - Raster.RasterW[BestRow]);
}

bool TRSKF::IsStopped() const {
  return RectNestStopped() || (FTimeLimit > 0 && FSW->ElapsedMs() >= FTimeLimit);
}

}  // namespace platenest
