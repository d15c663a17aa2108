#include "platenest/colgen/SVCBPRGNestSingle.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "StripStates.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

constexpr double kThousandths = 1000;          // to a plate unit
constexpr double kMostSide = 2e6;              // plate units; keeps raster indices within 8 MB a side
constexpr Int64 kMostLength = 2'000'000;       // raster units
constexpr Int64 kMostFinePoints = 10'000'000;  // raster points squared up to which tenths are used
constexpr Int64 kMostStates = 60'000'000;      // 960 MB
constexpr int kMostSizes = 100;                // in one pass
constexpr double kAreaToAUnitOfValue = 100;    // raster units squared
constexpr double kMostTotalValue = 4e18;       // two of them can be added
constexpr int kFine = 10;                      // raster units to a plate unit
constexpr int kCoarse = 1;

bool UsableSide(double Side) {
  return std::isfinite(Side) && Side > 0 && Side <= kMostSide;
}

Int64 Thousandths(double Length) {
  return Round(Length * kThousandths);
}

TRaster RasterOf(int X, int Y, const TIntBoxList& Boxes) {
  return TRaster(std::max(X, Y), std::min(X, Y), Boxes, /*AllowRotate=*/true, /*UseNormal=*/true);
}

bool Fits(const TIntBox& Box, int L, int W) {
  return std::max(Box.A, Box.B) <= L && std::min(Box.A, Box.B) <= W;
}

// Both sides of what fits the plate, L not below W.
std::vector<int> GetRectsWidth(const TIntBoxList& Boxes, int L, int W) {
  std::vector<int> widths;
  for (const TIntBox& box : Boxes) {
    if (!Fits(box, L, W)) continue;
    widths.push_back(box.A);
    widths.push_back(box.B);
  }
  SortBy(widths, Sign<int>);
  widths.erase(std::unique(widths.begin(), widths.end()), widths.end());
  return widths;
}

struct TPass {
  std::vector<detail::TStripPlacement> Placed;
  int X = 0;  // the corner beyond which nothing lies
  int Y = 0;
};

TPass CalNest(const TIntBoxList& Boxes, const TRaster& Raster, TStripValueCounts& Counts) {
  const std::vector<int> widths = GetRectsWidth(Boxes, Raster.RasterL.back(), Raster.RasterW.back());
  if (widths.empty() || Int64{Raster.SizeL} * Raster.SizeW > kMostStates) return {};
  const detail::TStripTable table(Boxes, Raster, widths);
  if (RectNestStopped()) return {};
  detail::TStripStates states(Boxes, Raster, table);
  states.Run();
  ++Counts.Passes;
  Counts.Knapsacks += table.Knapsacks();
  Counts.Strips += table.Count();
  Counts.States += states.Spread();
  return {states.GenerateNestedRects(), states.BestX(), states.BestY()};
}

}  // namespace

TSVCBPRGNestSingle::TSVCBPRGNestSingle(const TVRect2D& APlate, const TNestRectList& ARects, double AGap,
                                       bool SpecificValue)
    : HasValue(SpecificValue), FRectsIn(ARects), FSizes(ARects.size()) {
  if (!UsableSide(APlate.Width()) || !UsableSide(APlate.Height()) || !(std::fabs(AGap) <= kMostSide)) return;
  FPlateIn = {Thousandths(APlate.Width()), Thousandths(APlate.Height())};
  FGapIn = Thousandths(AGap);
  FIsRotated = FPlateIn.Height > FPlateIn.Width;
  if (FIsRotated) std::swap(FPlateIn.Width, FPlateIn.Height);
  for (std::size_t i = 0; i < FRectsIn.size(); ++i) {
    TNestRect& rect = FRectsIn[i];
    const double width = rect.BoundBox.Width();
    const double height = rect.BoundBox.Height();
    if (UsableSide(width) && UsableSide(height)) FSizes[i] = {Thousandths(width), Thousandths(height)};
    if (!Usable(rect, FSizes[i])) rect.Amount = 0;
    rect.BoundBox = TVRect2D::FromSize(static_cast<double>(FSizes[i].Width) / kThousandths,
                                       static_cast<double>(FSizes[i].Height) / kThousandths);
  }
  ChooseScale();
}

bool TSVCBPRGNestSingle::Usable(const TNestRect& Rect, const TSize& RectSize) const {
  const Int64 shortSide = std::min(RectSize.Width, RectSize.Height);
  return Rect.Amount > 0 && shortSide > 0 && shortSide + FGapIn > 0;
}

// The length that a side takes with its gap, rounded up. Whole arithmetic, so that 33.3 is 333 tenths and not one more.
int TSVCBPRGNestSingle::Slot(Int64 Side) const {
  return static_cast<int>((Side + FGapIn + UnitSize() - 1) / UnitSize());
}

TSVCBPRGNestSingle::TMyPlate TSVCBPRGNestSingle::MyPlate() const {
  const auto whole = [this](Int64 side) { return static_cast<int>(std::max<Int64>(side + FGapIn, 0) / UnitSize()); };
  return {whole(FPlateIn.Width), whole(FPlateIn.Height)};
}

void TSVCBPRGNestSingle::ChooseScale() {
  for (const int amt : {kFine, kCoarse}) {
    FAmt = amt;
    const TMyPlate plate = MyPlate();
    if (plate.X > kMostLength) continue;
    TIntBoxList boxes;
    for (int i = 0; i < Size(FRectsIn); ++i) {
      const int amount = FRectsIn[static_cast<std::size_t>(i)].Amount;
      if (amount > 0) boxes.push_back(IntBox(i, amount));
    }
    FRaster = RasterOf(plate.X, plate.Y, boxes);
    if (Int64{FRaster.SizeL} * FRaster.SizeL <= kMostFinePoints) return;
  }
}

TIntBox TSVCBPRGNestSingle::IntBox(int Position, int Amount) const {
  const TSize& size = FSizes[static_cast<std::size_t>(Position)];
  return TIntBox(Slot(size.Width), Slot(size.Height), Position, Amount, 0);
}

double TSVCBPRGNestSingle::ValueOf(int Position) const {
  if (HasValue) return FRectsIn[static_cast<std::size_t>(Position)].Area;
  const TSize& size = FSizes[static_cast<std::size_t>(Position)];
  const double unit = static_cast<double>(UnitSize());
  return static_cast<double>(size.Width) * static_cast<double>(size.Height) / (unit * unit * kAreaToAUnitOfValue);
}

// Values are cut so low that the sum of all copies that a plate can hold fits 64 bits twice.
TIntBoxList TSVCBPRGNestSingle::GenerateMyNestRects(const std::vector<int>& Amounts, const TMyPlate& Plate) const {
  TIntBoxList boxes;
  double leastArea = static_cast<double>(Plate.X) * Plate.Y + 1;
  for (int i = 0; i < Size(Amounts) && Size(boxes) < kMostSizes; ++i) {
    if (Amounts[static_cast<std::size_t>(i)] <= 0) continue;
    boxes.push_back(IntBox(i, Amounts[static_cast<std::size_t>(i)]));
    leastArea = std::min(leastArea, static_cast<double>(boxes.back().A) * boxes.back().B);
  }
  const double copies = static_cast<double>(Plate.X) * Plate.Y / leastArea;
  const double most = kMostTotalValue / std::max({copies, static_cast<double>(std::max(Plate.X, Plate.Y)), 1.0});
  for (TIntBox& box : boxes) {
    const double value = ValueOf(box.Idx);
    box.Area = value >= 1 ? Trunc(std::min(value, most)) : 0;
  }
  return boxes;
}

// From a slot whose lower left corner is (X, Y), in raster units of the turned plate, to the caller's plate. An
// unturned part lies at the left end of its slot, a turned one at the right end, where the last gap begins. Mirroring
// the plate on its diagonal, and a pass that stood upright, exchange the axes.
TNestedRect TSVCBPRGNestSingle::Placed(int Position, bool IsRotate, bool IsTurnedPass, Int64 X, Int64 Y) const {
  const TSize& size = FSizes[static_cast<std::size_t>(Position)];
  const Int64 shift = IsRotate ? UnitSize() * Slot(size.Height) - FGapIn - size.Height : 0;
  Int64 left = X * UnitSize() + (IsTurnedPass ? 0 : shift);
  Int64 bottom = Y * UnitSize() + (IsTurnedPass ? shift : 0);
  bool rotate = IsRotate != IsTurnedPass;
  if (FIsRotated) {
    std::swap(left, bottom);
    rotate = !rotate;
  }
  if (rotate) left += size.Height;
  TNestRect part = FRectsIn[static_cast<std::size_t>(Position)];
  part.Idx = Position;
  part.Area = ValueOf(Position);
  return TNestedRect(part, rotate,
                     {static_cast<double>(left) / kThousandths, static_cast<double>(bottom) / kThousandths});
}

void TSVCBPRGNestSingle::NestSinglePlate(TNestedRects& ANestResult) {
  FCounts = {};
  if (FRaster.SizeL == 0) return;
  std::vector<int> amounts;
  for (const TNestRect& rect : FRectsIn) amounts.push_back(rect.Amount);
  TMyPlate corner;
  TMyPlate rest = MyPlate();
  TRaster restRaster;
  const TRaster* raster = &FRaster;
  while (true) {
    const TIntBoxList boxes = GenerateMyNestRects(amounts, rest);
    const bool turned = rest.X < rest.Y;
    TPass pass = CalNest(boxes, *raster, FCounts);
    for (const detail::TStripPlacement& item : pass.Placed) {
      const int position = boxes[static_cast<std::size_t>(item.Box)].Idx;
      ANestResult.push_back(Placed(position, item.IsRotate, turned, corner.X + (turned ? item.Y : item.X),
                                   corner.Y + (turned ? item.X : item.Y)));
      --amounts[static_cast<std::size_t>(position)];
    }
    if (pass.Placed.empty() || RectNestStopped()) return;
    if (turned) std::swap(pass.X, pass.Y);
    corner = {corner.X + pass.X, corner.Y + pass.Y};
    rest = {rest.X - pass.X, rest.Y - pass.Y};
    restRaster = RasterOf(rest.X, rest.Y, GenerateMyNestRects(amounts, rest));
    raster = &restRaster;
  }
}

}  // namespace platenest
