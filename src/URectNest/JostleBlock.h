#pragma once

#include "platenest/URectNest/RectRecords.h"

namespace platenest::detail {

// Placed rectangles of one size and turn that move together: Row rows of Col columns.
struct TJostleBlock {
  TNestedRects ContainedRects;
  TNestRect Rect;                             // of the rectangle that started the block
  TVRect2D BoundBox = TVRect2D::InvalidRect;  // of all contained rectangles
  int Row = 0;
  int Col = 0;
  bool IsRotate = false;

  TJostleBlock() = default;
  explicit TJostleBlock(const TNestedRect& ANestedRect);

  // One more column of a single row.
  void AddRect(const TNestedRect& ANestedRect);
  // One more row; the other block must have as many columns, else the grid would not close.
  void AddBlock(const TJostleBlock& ABlock);
  void Translate(const TPoint2D& APoint);
  void Clear();
};

// Lays the rectangles as a grid with Gap between them, from the lower left corner of the block. The new box respects
// the position of Part.BoundBox: a rectangle that does not begin at the origin will be dropped where it is drawn, not
// where its Trans lies.
void JostleWithinBlock(TJostleBlock& Block, double Gap);

}  // namespace platenest::detail
