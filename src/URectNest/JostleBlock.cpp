#include "JostleBlock.h"

#include "platenest/foundation/Compare.h"

namespace platenest::detail {

TJostleBlock::TJostleBlock(const TNestedRect& ANestedRect) : Rect(ANestedRect.Part), IsRotate(ANestedRect.IsRotate) {
  AddRect(ANestedRect);
}

void TJostleBlock::AddRect(const TNestedRect& ANestedRect) {
  ContainedRects.push_back(ANestedRect);
  BoundBox.ExpandInPlace(ANestedRect.BoundBox());
  ++Col;
  Row = 1;
}

void TJostleBlock::AddBlock(const TJostleBlock& ABlock) {
  ContainedRects.AddRange(ABlock.ContainedRects);
  BoundBox.ExpandInPlace(ABlock.BoundBox);
  ++Row;
}

void TJostleBlock::Translate(const TPoint2D& APoint) {
  for (TNestedRect& item : ContainedRects) item.Trans = item.Trans + APoint;
  BoundBox = BoundBox.Translate(APoint);
}

void TJostleBlock::Clear() {
  ContainedRects.clear();
  BoundBox = TVRect2D::InvalidRect;
  Row = 0;
  Col = 0;
}

void JostleWithinBlock(TJostleBlock& Block, double Gap) {
  Block.ContainedRects.Sort([](const TNestedRect& A, const TNestedRect& B) {
    return fEqual(A.Trans.Y, B.Trans.Y) ? Sign(A.Trans.X, B.Trans.X) : Sign(A.Trans.Y, B.Trans.Y);
  });
  const double w = Block.Rect.BoundBox.Width();
  const double h = Block.Rect.BoundBox.Height();
  const double stepX = (Block.IsRotate ? h : w) + Gap;
  const double stepY = (Block.IsRotate ? w : h) + Gap;
  const double offset = Block.IsRotate ? h : 0;
  for (int k = 0; k < Block.ContainedRects.Count(); ++k) {
    const int row = k / Block.Col;
    const int col = k % Block.Col;
    Block.ContainedRects[k].Trans = {col * stepX + Block.BoundBox.Left + offset, row * stepY + Block.BoundBox.Bottom};
  }
  Block.BoundBox = Block.ContainedRects.BoundBox();
}

}  // namespace platenest::detail
