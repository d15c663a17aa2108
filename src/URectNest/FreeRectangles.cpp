#include "FreeRectangles.h"

#include <algorithm>
#include <array>
#include <bit>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/Types.h"

namespace platenest::detail {

namespace {

constexpr double kRelationTol = 1e-13;
// A placed box this near to a free rectangle touches it.
constexpr double kTouch = 0.0001;
// How far corners are moved outward, along both axes, before they are looked up in the other box.
constexpr double kCornerStep = 0.01;
// How much of a free rectangle may stick out of a larger one that still replaces it, on each side.
constexpr double kHeldMargin = 1.0;

// Bit k: corner k of Of, moved outward, lies in In. Corners from the lower left one counter-clockwise.
unsigned CornersInside(const TVRect2D& Of, const TVRect2D& In) {
  const TVRect2D grown = Of.Inflate(kCornerStep);
  const bool left = grown.Left >= In.Left - kDefaultTol && grown.Left <= In.Right + kDefaultTol;
  const bool right = grown.Right >= In.Left - kDefaultTol && grown.Right <= In.Right + kDefaultTol;
  const bool bottom = grown.Bottom >= In.Bottom - kDefaultTol && grown.Bottom <= In.Top + kDefaultTol;
  const bool top = grown.Top >= In.Bottom - kDefaultTol && grown.Top <= In.Top + kDefaultTol;
  return unsigned{left && bottom} | unsigned{right && bottom} << 1 | unsigned{right && top} << 2 |
         unsigned{left && top} << 3;
}

// Names one or two neighbouring corners by the first of them, counter-clockwise.
int LowestCorner(unsigned Mask) {
  return (Mask & 9) == 9 ? 3 : std::countr_zero(Mask);
}

int ExactCornerInside(const TVRect2D& Free, const TVRect2D& Box) {
  if (Box.IsPointIn(Free.GetBottomLeft(), kDefaultTol)) return 0;
  if (Box.IsPointIn(Free.GetBottomRight(), kDefaultTol)) return 1;
  return Box.IsPointIn(Free.GetTopRight(), kDefaultTol) ? 2 : 3;
}

bool IsApart(const TVRect2D& Free, const TVRect2D& Grown) {
  return Grown.Left - Free.Right > kRelationTol || Free.Left - Grown.Right > kRelationTol ||
         Grown.Bottom - Free.Top > kRelationTol || Free.Bottom - Grown.Top > kRelationTol;
}

bool IsWithin(const TVRect2D& Inner, const TVRect2D& Outer) {
  return Inner.Left >= Outer.Left - kRelationTol && Inner.Right <= Outer.Right + kRelationTol &&
         Inner.Bottom >= Outer.Bottom - kRelationTol && Inner.Top <= Outer.Top + kRelationTol;
}

// Larger holds Free, or at least Shrunk, which is Free a unit smaller on all sides. A rectangle narrower than two units
// is inside out then and may look apart from a larger one that holds it; if such rectangles stayed, their number would
// double with each placement on small plates.
bool Holds(const TVRect2D& Larger, const TVRect2D& Free, const TVRect2D& Shrunk) {
  return IsWithin(Shrunk, Larger) && (!IsApart(Larger, Shrunk) || IsWithin(Free, Larger));
}

}  // namespace

TVecContact VecRelation(const TVRect2D& Free, const TVRect2D& Box) {
  switch (Free.RelationWithRectangle(Box.Inflate(kTouch), kRelationTol)) {
    case rrArgumentInside:
      return {vrBoxInside};
    case rrReceiverInside:
      return {vrFreeInside};
    case rrDisjoint:
      return {vrNone};
    case rrOverlap:
      break;
  }
  const unsigned boxCorners = CornersInside(Box, Free);
  const unsigned freeCorners = CornersInside(Free, Box);
  if (std::has_single_bit(freeCorners))
    return {vrCorner, boxCorners != 0 ? std::countr_zero(boxCorners) : ExactCornerInside(Free, Box)};
  if (boxCorners != 0) return {vrPoke, LowestCorner(boxCorners)};
  if (freeCorners != 0) return {vrSide, LowestCorner(freeCorners)};
  return {vrCross, Box.Height() > Free.Height() ? 1 : 0};
}

// The pieces around a box, by its corner that lies in the free rectangle (vrCorner), the first of two such corners
// (vrPoke), the first of the free rectangle's corners that it covers (vrSide), or its direction (vrCross).
std::span<const TFreeRectangles::TSide> TFreeRectangles::SidesOf(TVecContact Contact) {
  static constexpr std::array<std::array<TSide, 2>, 4> kAroundCorner = {
      {{sdBelow, sdLeft}, {sdBelow, sdRight}, {sdRight, sdAbove}, {sdLeft, sdAbove}}};
  static constexpr std::array<std::array<TSide, 3>, 4> kAroundPoke = {{{sdBelow, sdLeft, sdRight},
                                                                       {sdBelow, sdRight, sdAbove},
                                                                       {sdRight, sdAbove, sdLeft},
                                                                       {sdLeft, sdAbove, sdBelow}}};
  static constexpr std::array<TSide, 4> kBesideSide = {sdAbove, sdLeft, sdBelow, sdRight};
  static constexpr std::array<std::array<TSide, 2>, 2> kAroundCross = {{{sdBelow, sdAbove}, {sdLeft, sdRight}}};
  switch (Contact.Relation) {
    case vrCorner:
      return kAroundCorner[Contact.Corner];
    case vrPoke:
      return kAroundPoke[Contact.Corner];
    case vrSide:
      return std::span(kBesideSide).subspan(Contact.Corner, 1);
    case vrCross:
      return kAroundCross[Contact.Corner];
    default:
      return {};
  }
}

void TFreeRectangles::Reset(const TVRect2D& Plate) {
  FItems.clear();
  FItems.push_back({.Box = Plate, .Area = Plate.Area(), .Choice = {}});
}

void TFreeRectangles::Place(int Chosen, const TVRect2D& Box, int Corner, double Least) {
  FKept.clear();
  FPieces.clear();
  AddPieces(FItems[Chosen], -1, Box, SidesOf({vrCorner, Corner}), Least);
  const TVRect2D grown = Box.Inflate(kTouch);
  for (int i = 0; i < Size(FItems); ++i) {
    if (i == Chosen) continue;
    TFreeRect& free = FItems[i];
    if (!IsApart(free.Box, grown)) {
      AddPieces(free, i, Box, SidesOf(VecRelation(free.Box, Box)), Least);
      continue;
    }
    free.Origin = i;
    free.IsNew = false;
    FKept.push_back(free);
  }
  Merge();
  DropHeldPieces();
}

// A piece never reaches beyond the rectangle it is cut from, even if the box only comes near to that.
void TFreeRectangles::AddPieces(const TFreeRect& Free, int Origin, const TVRect2D& Box, std::span<const TSide> Sides,
                                double Least) {
  for (const TSide side : Sides) {
    TFreeRect piece = Free;
    if (side == sdLeft) piece.Box.Right = std::min(Free.Box.Right, Box.Left);
    if (side == sdRight) piece.Box.Left = std::max(Free.Box.Left, Box.Right);
    if (side == sdBelow) piece.Box.Top = std::min(Free.Box.Top, Box.Bottom);
    if (side == sdAbove) piece.Box.Bottom = std::max(Free.Box.Bottom, Box.Top);
    if (piece.Box.Width() < Least || piece.Box.Height() < Least) continue;
    piece.Area = piece.Box.Area();
    piece.Origin = Origin;
    piece.IsNew = true;
    piece.IsJudged = Free.IsJudged && piece.Box.Width() == Free.Box.Width() && piece.Box.Height() == Free.Box.Height();
    FPieces.push_back(piece);
  }
}

// The order that a stable sort by area would give to the pieces of the chosen rectangle, followed by all others, whole
// or cut, in list order. What is kept is sorted already.
void TFreeRectangles::Merge() {
  SortBy(FPieces, [](const TFreeRect& A, const TFreeRect& B) { return Sign(B.Area, A.Area); });
  FItems.clear();
  std::merge(
      FKept.begin(), FKept.end(), FPieces.begin(), FPieces.end(), std::back_inserter(FItems),
      [](const TFreeRect& A, const TFreeRect& B) { return A.Area != B.Area ? A.Area > B.Area : A.Origin < B.Origin; });
}

// Only pieces can be held anew: of two rectangles that are kept, neither was held by the other before, and a piece
// lies in a rectangle that was in the list. Pieces that are dropped still hold others.
void TFreeRectangles::DropHeldPieces() {
  const auto isHeld = [this](int Index) {
    const TVRect2D& free = FItems[Index].Box;
    const TVRect2D shrunk = free.Inflate(-kHeldMargin);
    return std::any_of(FItems.begin(), FItems.begin() + Index,
                       [&](const TFreeRect& Larger) { return Holds(Larger.Box, free, shrunk); });
  };
  for (int i = Size(FItems) - 1; i > 0; --i)
    if (FItems[i].IsNew && isHeld(i)) FItems.erase(FItems.begin() + i);
}

}  // namespace platenest::detail
