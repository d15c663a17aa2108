#include "platenest/URectNest/CoEdge.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "platenest/foundation/GeometryLog.h"
#include "platenest/foundation/Polyline.h"
#include "platenest/foundation/RTree.h"

namespace platenest {

namespace {

constexpr double kContactMargin = 0.01;
constexpr double kSearchTol = 1e-6;
constexpr int kTreeNodeCapacity = 8;

}  // namespace

void OutputNestedRects(const TNestedRects& NestedRects, std::string_view FileName) {
  TVPolyline2DList contours;
  contours.reserve(NestedRects.size());
  for (const TNestedRect& item : NestedRects) {
    TVPolyline2D contour(item.IsRotate ? item.BoundBox() : item.Part.BoundBox.Translate(item.Trans));
    const TPoint2D first = contour.First();
    contour.push_back(first);
    contours.push_back(contour);
  }
  TGeometryLog::OutputDebugGeometry(contours, FileName);
}

double CalcCoedgeLength(const TNestedRects& NestedRects) {
  std::vector<TVRect2D> boxes;
  boxes.reserve(NestedRects.size());
  TRTree<int> tree(kTreeNodeCapacity);
  for (const TNestedRect& item : NestedRects) {
    boxes.push_back(item.BoundBox().Inflate(kContactMargin));
    tree.Insert(Size(boxes) - 1, boxes.back());
  }
  double length = 0;
  for (int i = 0; i < Size(boxes); ++i) {
    const TVRect2D& box = boxes[static_cast<std::size_t>(i)];
    for (const int j : tree.Search(box, kSearchTol)) {
      if (j == i) continue;
      const TVRect2D common = boxes[static_cast<std::size_t>(j)].Intersect(box);
      if (common.IsValid()) length += std::max(common.Width(), common.Height());
    }
  }
  return length;
}

}  // namespace platenest
