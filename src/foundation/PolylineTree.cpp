#include "platenest/foundation/PolylineTree.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "PointRelation.h"

namespace platenest {

namespace {

bool BoxWithin(const TVRect2D& Inner, const TVRect2D& Outer) {
  return Inner.Left >= Outer.Left - kDefaultTol && Inner.Right <= Outer.Right + kDefaultTol &&
         Inner.Bottom >= Outer.Bottom - kDefaultTol && Inner.Top <= Outer.Top + kDefaultTol;
}

// The first vertex that is off the outline of Outer decides, else the first middle of an edge.
bool ContourWithin(const TVPolyline2D& Inner, const TVPolyline2D& Outer) {
  const std::span<const TPoint2D> vertices = Inner.Vertices();
  for (const double t : {0.0, 0.5}) {
    for (std::size_t i = 0; i < vertices.size(); ++i) {
      const TVLine2D edge{vertices[i], vertices[i + 1 == vertices.size() ? 0 : i + 1]};
      const int relation = detail::RelationWithContour(Outer, edge.EvalPoint(t), kDefaultTol);
      if (relation != 0) return relation > 0;
    }
  }
  return false;
}

}  // namespace

TVPolyline2DTree::TVPolyline2DTree(TVPolyline2DList Polylines) : FContours(std::move(Polylines)) {
  FContours.Sort(
      [](const TVPolyline2D& A, const TVPolyline2D& B) { return Sign(std::fabs(B.Area()), std::fabs(A.Area())); });
  while (!FContours.empty() && !(std::fabs(FContours.back().Area()) > 0)) FContours.pop_back();
  const std::size_t count = FContours.size();
  FDepth.assign(count, 0);
  FParent.assign(count, -1);
  std::vector<TVRect2D> boxes;
  for (const TVPolyline2D& contour : FContours) boxes.push_back(contour.BoundBox());
  std::vector<int> byLeft(count);
  std::iota(byLeft.begin(), byLeft.end(), 0);
  // What contains a contour is larger and begins at most the tolerance later.
  SortBy(byLeft, [&](int A, int B) { return Sign(boxes[A].Left, boxes[B].Left); });
  std::vector<int> active;
  std::size_t coming = 0;
  for (const int inner : byLeft) {
    const TVRect2D& box = boxes[inner];
    for (; coming < count && boxes[byLeft[coming]].Left <= box.Left + kDefaultTol; ++coming)
      active.push_back(byLeft[coming]);
    std::erase_if(active, [&](int Other) { return boxes[Other].Right < box.Left - kDefaultTol; });
    for (const int outer : active) {
      if (outer >= inner || !BoxWithin(box, boxes[outer]) || !ContourWithin(FContours[inner], FContours[outer]))
        continue;
      ++FDepth[inner];
      FParent[inner] = std::max(FParent[inner], outer);
    }
  }
}

TVHPolygonList TVPolyline2DTree::CreateHPolygons() const {
  TVHPolygonList result;
  std::vector<std::size_t> shapeOf(FContours.size());
  for (std::size_t i = 0; i < FContours.size(); ++i) {
    if (FDepth[i] % 2 == 0) {
      shapeOf[i] = result.size();
      result.push_back(TVHPolygon{FContours[i]});
    } else {
      shapeOf[i] = shapeOf[FParent[i]];
      result[shapeOf[i]].push_back(FContours[i]);
    }
  }
  return result;
}

}  // namespace platenest
