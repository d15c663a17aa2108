#include "FillCase.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <vector>

#include "platenest/URectNest/MultiRectNest.h"
#include "platenest/URectNest/RSKF.h"
#include "platenest/URectNest/RectNestSmart.h"
#include "platenest/foundation/Clock.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Host.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest::test {

namespace {

struct TScale {
  double PerUnit;  // whole numbers behind one unit of length
  int Digit;
};
constexpr std::array kScales = {TScale{1000, 3}, TScale{1, 0}, TScale{10, 1}, TScale{25.4, 2}};

using TPick = std::function<int(int)>;

int PickSide(const TPick& Pick, int Long, int Short) {
  const int kind = Pick(12);
  if (kind == 0) return Pick(2) == 0 ? Long : Short;
  if (kind == 1) return Long + 1 + Pick(Long);
  if (kind == 2) return std::max(2, Short / 25 + Pick(Short / 25 + 1));
  return std::max(1, Short / 16) + Pick(std::max(1, Long * 7 / 10));
}

int PickAmount(const TPick& Pick) {
  const int kind = Pick(8);
  if (kind == 0) return 1;
  if (kind == 1) return 99 + Pick(4);
  if (kind == 2) return 1 + Pick(1000);
  return kind == 3 ? 65530 + Pick(4471) : 1 + Pick(12);
}

// Worth that follows the area, that follows nothing, that is the same for all, and that truncates to 0.
double PickWorth(const TPick& Pick, double Area) {
  const int kind = Pick(8);
  if (kind == 0) return Pick(1000);
  if (kind == 1) return 250;
  return kind == 2 ? Pick(100) / 100.0 : std::floor(Area * (60 + Pick(80)) / 100);
}

bool Fits(const TNestRect& Part, const TFillCase& Case) {
  const double w = Part.BoundBox.Width(), h = Part.BoundBox.Height();
  const double l = Case.Plate.Width() + kDefaultTol, b = Case.Plate.Height() + kDefaultTol;
  return (w <= l && h <= b) || (Case.CanTurn && w <= b && h <= l);
}

}  // namespace

const char* NameOf(TFillMethod Method) {
  constexpr std::array names = {"smart", "raster", "rskf", "bigfirst"};
  return names[static_cast<std::size_t>(Method)];
}

int BeyondPlate(const TVRect2D& Plate, double Gap, double Width, double Height) {
  const double copies = (Plate.Width() + Gap) * (Plate.Height() + Gap) / ((Width + Gap) * (Height + Gap));
  return Floor(std::min(copies, 1e6)) + 1;
}

TFillCase MakeFillCase(const TPick& Pick) {
  const TScale scale = kScales[static_cast<std::size_t>(Pick(kScales.size()))];
  TFillCase made;
  made.Digit = Pick(6) == 0 ? 0 : scale.Digit;
  made.CanTurn = Pick(5) != 0;
  made.Weighted = Pick(2) == 0;
  made.Unlimited = Pick(5) == 0;
  made.NormalPattern = Pick(3) == 0;
  int length = 60 + Pick(1500);
  int width = std::max(40, length - Pick(length * 4 / 5));
  if (Pick(3) == 0) std::swap(length, width);
  made.Plate = TVRect2D::FromSize(length / scale.PerUnit, width / scale.PerUnit);
  if (Pick(2) == 0) made.Gap = Pick(20) / scale.PerUnit;
  const int longer = std::max(length, width), shorter = std::min(length, width);
  const int count = 1 + Pick(8);
  for (int i = 0; i < count; ++i) {
    const int a = PickSide(Pick, longer, shorter), b = PickSide(Pick, longer, shorter);
    const double w = a / scale.PerUnit, h = b / scale.PerUnit;
    const int amount = PickAmount(Pick);
    TNestRect part(made.Unlimited ? BeyondPlate(made.Plate, made.Gap, w, h) : amount, i, TVRect2D::FromSize(w, h));
    part.Area = made.Weighted ? PickWorth(Pick, 1.0 * a * b) : w * h;
    made.Parts.push_back(part);
  }
  return made;
}

TNestedRects RunFill(TFillMethod Method, const TFillCase& Case, double Seconds, int BigRect) {
  TNestedRects layout;
  if (Method == TFillMethod::Smart) {
    TRectNestSmart nest(Case.Plate, Case.Parts, Case.Gap, 0.9);
    if (!Case.CanTurn) nest.LockTurns(std::vector<bool>(Case.Parts.size(), true));
    bool success = false;
    nest.OutNest(layout, success);
  } else if (Method == TFillMethod::Raster) {
    if (!Case.CanTurn) return layout;
    TMultiRectNest nest(Case.Plate, Case.Parts, Case.Gap, 0.9, Case.Weighted);
    int status = 0;
    bool success = false;
    if (Case.Unlimited)
      nest.ShapeRectNest(layout, success);
    else
      nest.ShapeRectNestWithAmt(layout, status);
  } else {
    TRSKF nest(Case.Plate, Case.Parts, Case.Gap, Seconds, Case.Digit, Case.Weighted);
    if (Method == TFillMethod::Rskf)
      nest.RunMultiRectNest(layout, Case.CanTurn, Case.NormalPattern);
    else
      nest.RunBigFirstNest(layout, BigRect, Case.CanTurn, Case.NormalPattern);
  }
  return layout;
}

TNestedRects RunFillSmall(TFillMethod Method, const TFillCase& Case) {
  // The greedy nest reads the clock once a pass, the raster program several times a cell.
  const double step = Method == TFillMethod::Smart ? 2000 : 0.01;
  double now = 0;
  const TClockScope clock([&now, step] { return now += step; });
  const TFreeMemoryScope memory([] { return Int64{2} << 20; });
  return RunFill(Method, Case, 1, Size(Case.Parts) - 1);
}

double WorthOf(const TNestedRects& Layout, const TFillCase& Case) {
  double worth = 0;
  for (const TNestedRect& item : Layout) worth += Case.Parts[static_cast<std::size_t>(item.Part.Idx)].Area;
  return worth;
}

double WorthBound(const TFillCase& Case) {
  const auto grown = [&](const TNestRect& part) {
    return (part.BoundBox.Width() + Case.Gap) * (part.BoundBox.Height() + Case.Gap);
  };
  TNestRectList parts;
  for (const TNestRect& part : Case.Parts)
    if (Fits(part, Case)) parts.push_back(part);
  SortBy(parts, [&](const TNestRect& a, const TNestRect& b) { return Sign(b.Area * grown(a), a.Area * grown(b)); });
  double room = (Case.Plate.Width() + Case.Gap) * (Case.Plate.Height() + Case.Gap);
  double worth = 0;
  for (const TNestRect& part : parts) {
    const double copies = std::min<double>(part.Amount, room / grown(part));
    worth += copies * part.Area;
    room -= copies * grown(part);
  }
  return worth;
}

std::string FillFault(const TNestedRects& Layout, const TFillCase& Case) {
  const std::string fault = CheckRectLayout(Layout, Case.Plate, Case.Gap, Case.Parts);
  if (!fault.empty()) return fault;
  if (!Case.CanTurn && std::any_of(Layout.begin(), Layout.end(), [](const TNestedRect& item) { return item.IsRotate; }))
    return "a part is turned";
  const double worth = WorthOf(Layout, Case), bound = WorthBound(Case);
  if (worth <= bound * (1 + 1e-9) + kDefaultTol) return "";
  std::ostringstream text;
  text << "the layout is worth " << worth << ", more than the bound of " << bound;
  return text.str();
}

std::string FillFault(TFillMethod Method, const TNestedRects& Layout, TFillCase Case) {
  Case.CanTurn = Case.CanTurn || Method == TFillMethod::Rskf || Method == TFillMethod::BigFirst;
  return FillFault(Layout, Case);
}

std::string TextOf(const TFillCase& Case) {
  std::ostringstream text;
  text << Case.Plate.Width() << " x " << Case.Plate.Height() << ", gap " << Case.Gap << ", digit " << Case.Digit
       << (Case.Weighted ? ", worth stated" : "") << (Case.Unlimited ? ", unlimited" : "")
       << (Case.CanTurn ? "" : ", no turning") << (Case.NormalPattern ? ", normal pattern" : "") << ", parts";
  for (const TNestRect& part : Case.Parts)
    text << ' ' << part.BoundBox.Width() << 'x' << part.BoundBox.Height() << '*' << part.Amount << '@' << part.Area;
  return text.str();
}

}  // namespace platenest::test
