#include "platenest/URectNest/RectRecords.h"

#include <numbers>

namespace platenest {

double TNestSpace::TotalArea() const {
  return static_cast<double>(static_cast<TExtended>(Space.Area()) * Ratio);
}

TVRect2D TNestedRect::BoundBox() const {
  const double width = Part.BoundBox.Width();
  const double height = Part.BoundBox.Height();
  const TVRect2D box = IsRotate ? TVRect2D::FromBounds(width, -height, 0, 0) : TVRect2D::FromSize(width, height);
  return box.Translate(Trans);
}

TVRect2D TNestedRects::BoundBox() const {
  TVRect2D box = TVRect2D::InvalidRect;
  for (const TNestedRect& item : *this) {
    const TVRect2D part = item.IsRotate ? item.Part.BoundBox.Rotate(std::numbers::pi / 2) : item.Part.BoundBox;
    box.ExpandInPlace(part.Translate(item.Trans));
  }
  return box;
}

}  // namespace platenest
