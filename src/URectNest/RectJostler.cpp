#include "platenest/URectNest/RectJostler.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "BottomLine.h"
#include "JostleBlock.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/RTree.h"
#include "platenest/foundation/Sort.h"

namespace platenest {

namespace {

using detail::TJostleBlock;
using TBlocks = std::vector<TJostleBlock>;

// Off the gap, so that rectangles exactly one gap apart do not stand in each other's way.
constexpr double kGapSlack = 1e-5;
// How much wider than the gap the hole between two neighbours of a block may be.
constexpr double kHole = 0.1;
constexpr int kTreeNodeCapacity = 8;

// The boxes that no block has taken yet, under their positions in the list.
class TFreeBoxes {
 public:
  explicit TFreeBoxes(double Gap) : FReach(kHole + Gap) {}

  void Add(const TVRect2D& Box) {
    FTree.Insert(Size(FBoxes), Box);
    FBoxes.push_back(Box);
  }
  bool IsFree(int Index) const { return FTree.Contains(Index); }
  void Take(int Index) { FTree.Remove(Index); }

  // Takes First and, from each box taken to its neighbours, all that Joins(box, neighbour's box, neighbour) accepts;
  // each of these goes to Add. Explicit stack, so long rows need no deep calls.
  template <class Joins, class Add>
  void Flood(int First, Joins DoesJoin, Add AddTaken) {
    Take(First);
    std::vector<int> stack{First};
    std::vector<int> hits;
    while (!stack.empty()) {
      const TVRect2D& box = FBoxes[stack.back()];
      stack.pop_back();
      hits.clear();
      FTree.Search(box.Inflate(FReach), hits, kDefaultTol);
      for (const int hit : hits) {
        if (!DoesJoin(box, FBoxes[hit], hit)) continue;
        AddTaken(hit);
        Take(hit);
        stack.push_back(hit);
      }
    }
  }

 private:
  double FReach;
  std::vector<TVRect2D> FBoxes;
  TRTree<int> FTree{kTreeNodeCapacity};
};

void CheckRect(const TNestedRect& Item) {
  const TVRect2D& part = Item.Part.BoundBox;
  const bool isFinite = std::isfinite(part.Left) && std::isfinite(part.Bottom) && std::isfinite(part.Width()) &&
                        std::isfinite(part.Height()) && std::isfinite(Item.Trans.X) && std::isfinite(Item.Trans.Y);
  if (!isFinite || part.Width() <= 0 || part.Height() <= 0)
    throw TArgumentError("[Error] TRectJostler.TryJostle: a rectangle is not finite or has no inside");
}

void CheckArguments(const TNestedRects& Rects, const TVRect2D& Plate, double Gap, double Tol) {
  for (const TNestedRect& item : Rects) CheckRect(item);
  const double extent = std::fabs(Plate.Left) + std::fabs(Plate.Bottom) + Plate.Width() + Plate.Height();
  if (!std::isfinite(extent) || Plate.Width() <= 0 || Plate.Height() <= 0)
    throw TArgumentError("[Error] TRectJostler.TryJostle: the plate is not finite or has no inside");
  if (!std::isfinite(Gap) || !std::isfinite(Tol) || Tol < 0)
    throw TArgumentError("[Error] TRectJostler.TryJostle: the gap or the tolerance is not usable");
}

TBlocks FindHorizontal(const TNestedRects& Rects, double Gap) {
  TFreeBoxes boxes(Gap);
  for (const TNestedRect& item : Rects) boxes.Add(item.BoundBox());
  TBlocks blocks;
  for (int i = 0; i < Rects.Count(); ++i) {
    if (!boxes.IsFree(i)) continue;
    TJostleBlock block(Rects[i]);
    const auto joins = [&](const TVRect2D& Box, const TVRect2D& Other, int Hit) {
      return Rects[Hit].Part.Idx == block.Rect.Idx && fEqual(Other.Top, Box.Top) && fEqual(Other.Bottom, Box.Bottom) &&
             Rects[Hit].IsRotate == block.IsRotate;
    };
    boxes.Flood(i, joins, [&](int Hit) { block.AddRect(Rects[Hit]); });
    blocks.push_back(std::move(block));
  }
  return blocks;
}

// Rows of equal width that differ in their number of columns stay apart: of narrow rectangles, one more may fit in
// between where the others have holes.
void FindVertical(TBlocks& Blocks, double Gap) {
  TFreeBoxes boxes(Gap);
  for (const TJostleBlock& block : Blocks) boxes.Add(block.BoundBox);
  for (int i = 0; i < Size(Blocks); ++i) {
    if (!boxes.IsFree(i)) continue;
    TJostleBlock& block = Blocks[i];
    const auto joins = [&](const TVRect2D& Box, const TVRect2D& Other, int Hit) {
      return fEqual(Other.Left, Box.Left) && fEqual(Other.Right, Box.Right) && Blocks[Hit].Rect.Idx == block.Rect.Idx &&
             Blocks[Hit].IsRotate == block.IsRotate && Blocks[Hit].Col == block.Col;
    };
    boxes.Flood(i, joins, [&](int Hit) {
      block.AddBlock(Blocks[Hit]);
      Blocks[Hit].Clear();
    });
  }
  std::erase_if(Blocks, [](const TJostleBlock& Block) { return Block.ContainedRects.empty(); });
}

TBlocks MakeBlocks(const TNestedRects& Rects, double Gap, bool AlignSameHor, bool AlignSameVert) {
  TBlocks blocks = AlignSameHor ? FindHorizontal(Rects, Gap) : TBlocks(Rects.begin(), Rects.end());
  if (AlignSameVert) FindVertical(blocks, Gap);
  if (!AlignSameHor && !AlignSameVert) return blocks;
  for (TJostleBlock& block : blocks) JostleWithinBlock(block, Gap);
  return blocks;
}

// Ascending by First, and by Second where that is equal within 1e-6.
void SortByBounds(TBlocks& Blocks, double TVRect2D::*First, double TVRect2D::*Second) {
  SortBy(Blocks, [=](const TJostleBlock& A, const TJostleBlock& B) {
    const TVRect2D& a = A.BoundBox;
    const TVRect2D& b = B.BoundBox;
    return fEqual(a.*First, b.*First) ? Sign(a.*Second, b.*Second) : Sign(a.*First, b.*First);
  });
}

void DropAll(TBlocks& Blocks, detail::TBottomLine Line, double Tol) {
  for (TJostleBlock& block : Blocks) Line.DropBlock(block, Tol);
}

void JostleBlocks(TBlocks& Blocks, const TVRect2D& Plate, double Gap, double Tol) {
  SortByBounds(Blocks, &TVRect2D::Left, &TVRect2D::Bottom);
  DropAll(Blocks, {{Plate.GetBottomLeft(), Plate.GetTopLeft()}, Gap, false}, Tol);
  SortByBounds(Blocks, &TVRect2D::Bottom, &TVRect2D::Left);
  DropAll(Blocks, {{Plate.GetBottomLeft(), Plate.GetBottomRight()}, Gap, true}, Tol);
}

}  // namespace

bool TRectJostler::TryJostle(const TNestedRects& OriRects, TNestedRects& NewRects, const TVRect2D& APlate, double AGap,
                             bool AlignSameHor, bool AlignSameVert, double ATol) {
  if (OriRects.empty()) return false;
  CheckArguments(OriRects, APlate, AGap, ATol);
  const double gap = AGap > 0 ? AGap - kGapSlack : 0;
  const TPoint2D corner = APlate.GetBottomLeft();
  // Half a gap beyond the plate's edge the edge acts like a neighbour.
  const TVRect2D plate = (corner == Origin2D ? APlate : APlate.Translate(-corner)).Inflate(gap / 2);
  TBlocks blocks = MakeBlocks(OriRects, gap, AlignSameHor, AlignSameVert);
  for (int pass = 0; pass < 2; ++pass) JostleBlocks(blocks, plate, gap, ATol);
  TNestedRects result;
  result.reserve(OriRects.size());
  for (const TJostleBlock& block : blocks) result.AddRange(block.ContainedRects);
  const bool isComplete = result.Count() == OriRects.Count();
  NewRects = std::move(result);
  return isComplete;
}

}  // namespace platenest
