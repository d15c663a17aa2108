#include "platenest/URectNest/MultiRectNest.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "BlockValues.h"
#include "MultiRectRules.h"
#include "ThreeBlockLayout.h"
#include "ThreeBlockScan.h"
#include "platenest/URectNest/Raster.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

using namespace detail;

namespace {

bool IsPositive(double Length) {
  return std::isfinite(Length) && Length > 0;
}

bool HasPositiveSides(const TVRect2D& Box) {
  return IsPositive(Box.Width()) && IsPositive(Box.Height());
}

TIntBox RasterBox(const TStackRect& Rect, int Idx) {
  const auto units = [](double side) { return Round<int>(std::min(side, kMostRasterSide)); };
  return {units(Rect.Width), units(Rect.Height), Idx, kUnlimitedAmount, 0};
}

}  // namespace

TMultiRectNest::TMultiRectNest(const TVRect2D& Plate, const TNestRectList& PartRects, double Gap, double MinURate,
                               bool ConstArea)
    : FMinRate(std::max(kLeastMinRate, MinURate)),
      FL(Plate.Width() + Gap),
      FW(Plate.Height() + Gap),
      FAllowance(Gap > 0 ? 2 * kGapAllowance : 0),
      FInitRect(PartRects) {
  const bool holdsAny = HasPositiveSides(Plate) && IsPositive(FL) && IsPositive(FW);
  if (!holdsAny) return;
  for (int i = 0; i < Size(FInitRect); ++i) {
    FInitRect[i].Idx = i;
    AddRect(FInitRect[i], Gap, ConstArea);
  }
}

TMultiRectNest::~TMultiRectNest() = default;

void TMultiRectNest::AddRect(const TNestRect& Rect, double Gap, bool ConstArea) {
  const TVRect2D box = Gap > 0 ? Rect.BoundBox.Inflate(Gap / 2 - kGapAllowance) : Rect.BoundBox;
  TStackRect rect{box.Width(), box.Height(), ConstArea ? Rect.Area : box.Area()};
  const bool isUsable = HasPositiveSides(Rect.BoundBox) && HasPositiveSides(box) && std::isfinite(rect.Worth);
  if (!isUsable) rect = {};
  FRect.push_back(rect);
  FDemand.push_back(isUsable ? std::max(Rect.Amount, 0) : 0);
  FUnlimited.push_back(isUsable ? kUnlimitedAmount : 0);
  FTotalArea += FDemand.back() * rect.Width * rect.Height;
}

// Not before it is needed: the raster can take longer than all the rest.
void TMultiRectNest::PrepareScan() {
  if (FScan) return;
  TIntBoxList boxes;
  for (const TStackRect& rect : FRect) boxes.push_back(RasterBox(rect, Size(boxes)));
  const int length = Trunc<int>(FL);
  const int width = Trunc<int>(FW);
  const TRaster raster(length, width, boxes, true, false);
  const TPointLimits limits = PointLimits(FL, FW, Size(FRect));
  FScan =
      std::make_unique<TThreeBlockScan>(length, width, Thinned(raster.RasterL, limits.L),
                                        Thinned(raster.RasterW, limits.W), kEqualRate * FL * FW, TBlockValues(FRect));
}

double TMultiRectNest::ShapeRectNestWithAmt(TNestedRects& ResultList, int& Status) {
  if (FRect.empty() || kLeastDemandRate * FL * FW > FTotalArea) {
    ResultList.clear();
    Status = 2;
    return 0;
  }
  PrepareScan();
  FScan->Calc(FDemand);
  TNestedRects list;
  double worth = 0;
  try {
    worth = TryCandidates(list);
  } catch (...) {
    std::throw_with_nested(TNestError("Error In FUNC[TMultiRectNest.ShapeRectNestWithAmt]"));
  }
  ResultList = std::move(list);
  const double usage = worth / FL / FW;
  Status = IsPoor(usage) ? 1 : 0;
  return usage;
}

// A candidate that the demand suffices for ends the trials.
double TMultiRectNest::TryCandidates(TNestedRects& Best) const {
  const TThreeBlockLayout layout(*FScan, FInitRect, FAllowance);
  double bestValue = 0;
  for (const TRectInfo& info : FScan->Candidates()) {
    if (info.Value <= 0) break;
    TTrial trial = layout.AddParts(info, FDemand);
    if (info.Value + trial.Dec > bestValue) {
      bestValue = info.Value + trial.Dec;
      Best = std::move(trial.List);
    }
    if (trial.Dec >= 0 || RectNestStopped()) break;
  }
  return bestValue;
}

double TMultiRectNest::ShapeRectNest(TNestedRects& ResultList, bool& Success) {
  TNestedRects list;
  double worth = 0;
  if (!FRect.empty()) {
    PrepareScan();
    if (FScan->Calc(FUnlimited) > 0)
      list = TThreeBlockLayout(*FScan, FInitRect, FAllowance).LayOut(FScan->Candidates().front());
  }
  for (const TNestedRect& item : list) worth += FRect[item.Part.Idx].Worth;
  const double usage = list.empty() ? 0 : worth / FL / FW;
  ResultList = std::move(list);
  Success = !IsPoor(usage);
  return usage;
}

const TBlockCounts& TMultiRectNest::Counts() const {
  static const TBlockCounts none;
  return FScan ? FScan->Blocks().Counts() : none;
}

}  // namespace platenest
