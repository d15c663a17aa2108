#include "SmartPass.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

// Beyond kDefaultTol by far, so that no contact is missed.
constexpr double kNearMargin = 1e-3;

TVRect2D Turned(const TVRect2D& Box) {
  return TVRect2D::FromSize(Box.Height(), Box.Width());
}

// The common length of A and B where they meet along X, bounds taken from Low and High.
double SharedLength(double LowA, double HighA, double LowB, double HighB) {
  return std::min({HighA - LowB, HighB - LowA, HighA - LowA, HighB - LowB});
}

double ContactLength(const TVRect2D& A, const TVRect2D& R) {
  double length = 0;
  const bool meetsInY = fEqual(R.Bottom, A.Top) || fEqual(R.Top, A.Bottom);
  if (meetsInY && R.Left < A.Right && R.Right > A.Left) length += SharedLength(A.Left, A.Right, R.Left, R.Right);
  const bool meetsInX = fEqual(R.Right, A.Left) || fEqual(R.Left, A.Right);
  if (meetsInX && R.Bottom < A.Top && R.Top > A.Bottom) length += SharedLength(A.Bottom, A.Top, R.Bottom, R.Top);
  return length;
}

bool AreNear(const TVRect2D& A, const TVRect2D& B) {
  return A.Left <= B.Right + kNearMargin && A.Right >= B.Left - kNearMargin && A.Bottom <= B.Top + kNearMargin &&
         A.Top >= B.Bottom - kNearMargin;
}

bool Faces(const TVRect2D& A, const TVRect2D& B, double Gap) {
  return fGreat(A.Top + Gap, B.Bottom) && fGreat(B.Top + Gap, A.Bottom);
}

// Moved rectangles by their right sides, the outermost last.
double FurthestLeft(const TVRect2D& Box, const std::vector<TVRect2D>& Moved, double Gap) {
  const auto faces = [&](const TVRect2D& Other) { return Faces(Box, Other, Gap); };
  double distance = Box.Left;
  const auto first = std::find_if(Moved.rbegin(), Moved.rend(), faces);
  if (first != Moved.rend()) distance = std::min(distance, CanLeftDis(Box, *first, Gap) - Gap);
  if (distance > kSmartFarAway - Gap && !std::all_of(Moved.begin(), Moved.end(), faces)) distance = kSmartFarAway - Gap;
  return distance;
}

}  // namespace

TVRect2D SmartGrown(const TVRect2D& Box, double Gap) {
  const TVRect2D grown = TVRect2D::FromSize(Box.Width(), Box.Height()).Inflate(Gap / 2);
  return grown.Translate(-grown.GetBottomLeft());
}

TVRect2D SmartPlaced(const TNestedRect& Item) {
  const TVRect2D box = TVRect2D::FromSize(Item.Part.BoundBox.Width(), Item.Part.BoundBox.Height());
  return (Item.IsRotate ? Turned(box) : box).Translate(Item.Trans);
}

double CanLeftDis(const TVRect2D& A, const TVRect2D& B, double Gap) {
  return Faces(A, B, Gap) ? A.Left - B.Right : kSmartFarAway;
}

void ShiftLeft(TNestedRects& List, double Gap) {
  std::vector<TVRect2D> moved;
  moved.reserve(List.size());
  for (TNestedRect& item : List) {
    if (!fEqual(item.Trans.X, 0)) {
      const double distance = FurthestLeft(SmartPlaced(item), moved, Gap);
      if (distance > 0) item.Trans.X -= distance;
    }
    const TVRect2D box = SmartPlaced(item);
    const auto isFurther = [](const TVRect2D& A, const TVRect2D& B) { return A.Right < B.Right; };
    moved.insert(std::upper_bound(moved.begin(), moved.end(), box, isFurther), box);
  }
}

TSmartPass::TSmartPass(const TNestRectList& Parts, const std::vector<bool>& Locked, const TVRect2D& Plate, double Gap,
                       double Least)
    : FParts(Parts), FLocked(Locked), FPlate(Plate), FGap(Gap), FLeast(Least), FFit(Least) {
  FBoxes.reserve(Parts.size());
  for (const TNestRect& part : Parts) FBoxes.push_back(SmartGrown(part.BoundBox, Gap));
}

double TSmartPass::Nest(int Form, TNestedRects& ResultList) {
  Reset(Form);
  ResultList.clear();
  double sum = 0;
  TPlacement placement;
  while (!RectNestStopped() && ChoosePartAndPlate(placement)) {
    ResultList.emplace_back(FParts[placement.Part], placement.IsRotate, placement.Point);
    FPlaced.push_back(SmartPlaced(ResultList.back()));
    sum += FBoxes[placement.Part].Area();
    TakeOne(placement.Part);
  }
  ResultList.Sort([](const TNestedRect& A, const TNestedRect& B) { return Sign(A.Trans.X, B.Trans.X); });
  ShiftLeft(ResultList, FGap);
  return sum / FPlate.Area();
}

void TSmartPass::Reset(int Form) {
  FFit.SetForm(Form);
  FFree.Reset(FPlate);
  FPlaced.clear();
  FAmounts.clear();
  FTrials.clear();
  for (int i = 0; i < Size(FParts); ++i) {
    FAmounts.push_back(FParts[i].Amount);
    if (FAmounts[i] == 0) continue;
    const double width = FBoxes[i].Width();
    const double height = FBoxes[i].Height();
    FTrials.push_back({width, height, i, false});
    // A turned square is never better than the unturned one.
    const bool isLocked = i < Size(FLocked) && FLocked[i];
    if (!isLocked && width != height) FTrials.push_back({height, width, i, true});
  }
}

TVRect2D TSmartPass::WorkBox(int Part, bool IsRotate) const {
  return IsRotate ? Turned(FBoxes[Part]) : FBoxes[Part];
}

// The fit of a free rectangle depends on its size and the parts that are left alone, so it is computed once. First of
// equals wins; nothing with a fit of 0 or below is placed, even if it would fit.
int TSmartPass::BestFree() {
  int best = -1;
  double bestFit = 0.0;
  const std::span<TFreeRect> items = FFree.Items();
  FFreeSeen += Size(items);
  for (int i = 0; i < Size(items); ++i) {
    TFreeRect& free = items[i];
    if (!free.IsJudged) free.Choice = FFit.Choose(free.Box.Width(), free.Box.Height(), FTrials);
    free.IsJudged = true;
    if (free.Choice.Fit <= bestFit) continue;
    bestFit = free.Choice.Fit;
    best = i;
  }
  return best;
}

bool TSmartPass::ChoosePartAndPlate(TPlacement& Placement) {
  const int chosen = BestFree();
  if (chosen < 0) return false;
  const TFreeRect& free = FFree.Items()[chosen];
  const TVRect2D box = WorkBox(free.Choice.Part, free.Choice.IsRotate);
  const TLean lean = ChooseLean(free.Box, box);
  Placement = {free.Choice.Part, free.Choice.IsRotate, lean.Point};
  FFree.Place(chosen, box.Translate(lean.Point), lean.Corner, FLeast);
  return true;
}

void TSmartPass::TakeOne(int Part) {
  if (FAmounts[Part] < 0 || --FAmounts[Part] > 0) return;
  std::erase_if(FTrials, [Part](const TSmartTrial& Trial) { return Trial.Part == Part; });
  for (TFreeRect& free : FFree.Items())
    if (free.Choice.Part == Part) free.IsJudged = false;
}

TSmartPass::TLean TSmartPass::ChooseLean(const TVRect2D& Free, const TVRect2D& Box) {
  FNear.clear();
  std::copy_if(FPlaced.begin(), FPlaced.end(), std::back_inserter(FNear),
               [&](const TVRect2D& Placed) { return AreNear(Placed, Free); });
  const double right = Free.Right - Box.Width();
  const double top = Free.Top - Box.Height();
  const std::array<TLean, 4> leans = {
      {{{Free.Left, Free.Bottom}, 2}, {{right, Free.Bottom}, 3}, {{right, top}, 0}, {{Free.Left, top}, 1}}};
  TLean best = leans[0];
  double bestLength = GetLength(Box.Translate(best.Point));
  for (const TLean& lean : std::span(leans).subspan(1)) {
    const double length = GetLength(Box.Translate(lean.Point));
    if (!fGreat(length, bestLength)) continue;
    bestLength = length;
    best = lean;
  }
  return best;
}

// Contact with the edges of the plate and with rectangles placed so far. Those count in their real size, so with a gap
// as a rule only the plate's edges do.
double TSmartPass::GetLength(const TVRect2D& Box) const {
  double length = 0;
  if (fEqual(Box.Left, 0)) length += Box.Height();
  if (fEqual(Box.Bottom, 0)) length += Box.Width();
  if (fEqual(Box.Right, FPlate.Right)) length += Box.Height();
  if (fEqual(Box.Top, FPlate.Top)) length += Box.Width();
  for (const TVRect2D& placed : FNear) length += ContactLength(Box, placed);
  return length;
}

}  // namespace platenest::detail
