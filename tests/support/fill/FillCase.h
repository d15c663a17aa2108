#pragma once

#include <array>
#include <functional>
#include <string>

#include "platenest/URectNest/RectRecords.h"

namespace platenest::test {

// A job of many sizes on one plate, which begins at the origin. Idx of a part is its position and Area the worth of one
// copy: the stated one, or the box's area.
struct TFillCase {
  TVRect2D Plate;
  TNestRectList Parts;
  double Gap = 0;
  bool Weighted = false;   // worth is stated
  bool Unlimited = false;  // amounts are above what the plate can hold
  bool CanTurn = true;
  bool NormalPattern = false;
  int Digit = 0;  // decimals for the nester that counts in whole units
};

enum class TFillMethod { Smart, Raster, Rskf, BigFirst };
inline constexpr std::array kFillMethods = {TFillMethod::Smart, TFillMethod::Raster, TFillMethod::Rskf,
                                            TFillMethod::BigFirst};
const char* NameOf(TFillMethod Method);

// More copies of the part than the plate can hold.
int BeyondPlate(const TVRect2D& Plate, double Gap, double Width, double Height);

// A job out of whole numbers: Pick(n) gives one from 0 to n - 1. Plates and sizes are whole thousandths (metres),
// units, tenths, or whole millimetres in inches; amounts reach 70000; some sizes equal or exceed the plate, some are
// below a twentieth of its short side.
TFillCase MakeFillCase(const std::function<int(int)>& Pick);

// One nester as it is; Seconds is its own budget, 0 for none. Raster turns freely and gives nothing where turning is
// forbidden; the last two may turn then all the same, where they fill what their pass left and on tall plates. BigRect
// is the part that BigFirst begins with.
TNestedRects RunFill(TFillMethod Method, const TFillCase& Case, double Seconds, int BigRect = 0);

// The same with a clock that every reading moves and little free memory, so that no case takes long and all give the
// same answer on every machine.
TNestedRects RunFillSmall(TFillMethod Method, const TFillCase& Case);

double WorthOf(const TNestedRects& Layout, const TFillCase& Case);

// The most that any layout can be worth: parts of the largest worth per grown area first, cut where the plate is full.
double WorthBound(const TFillCase& Case);

// What is wrong with a layout as one sentence, empty if nothing: place, gap, amounts, turning, and worth above the
// bound.
std::string FillFault(const TNestedRects& Layout, const TFillCase& Case);
// The same with what the nester is free to do.
std::string FillFault(TFillMethod Method, const TNestedRects& Layout, TFillCase Case);

// The case as text, for the report of a fault.
std::string TextOf(const TFillCase& Case);

}  // namespace platenest::test
