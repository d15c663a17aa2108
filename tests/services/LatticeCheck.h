#pragma once

#include "LatticeDepth.h"
#include "platenest/services/arrayInfo.h"

// What the tests of arrays share: the twelve forms along the axes and the copies that they move.
namespace platenest::test {

// The shape with every point moved by PointMove, about the centre of its box.
template <class Move>
TVHPolygonList AboutBoxCenter(const TVHPolygonList& Shape, Move PointMove) {
  TVRect2D box = TVRect2D::InvalidRect;
  for (const TVHPolygon& polygon : Shape)
    for (const TVPolyline2D& contour : polygon) box.ExpandInPlace(contour.BoundBox());
  TVHPolygonList moved = Shape;
  for (TVHPolygon& polygon : moved) {
    for (TVPolyline2D& contour : polygon)
      for (TPoint2D& point : contour) point = box.Center() + PointMove(point - box.Center());
    polygon.SetIsClockwise(false);
  }
  return moved;
}

inline TPaths PathsOf(const TVHPolygonList& Shape) {
  TPaths paths;
  for (const TVHPolygon& polygon : Shape) TPathUtils::PathsAddRange(paths, PolygonOf(polygon));
  return paths;
}

struct TAxisForm {
  const char* Name;
  void (*MakeNfp)(const TVHPolygonList&, double, TPaths&);
  TPair<double, double> (*First)(const TVHPolygonList&, const TPaths&, double, bool);
  TPair<double, double> (*Second)(const TVHPolygonList&, const TPoint2D&, const TPaths&, double, bool);
  TPoint2D Axis;
  TPoint2D (*PointMove)(const TPoint2D&);  // what the copy is to the shape, about the centre of its box
};

// The twelve operations along the axes, by pairs of first and second vector.
inline const TAxisForm kAxisForms[] = {
    {"X",
     TArrayInfoAlgo::CalcNFP,
     [](const TVHPolygonList& S, const TPaths& N, double O, bool P) {
       return TPair<double, double>(TArrayInfoAlgo::CalcArrayTransX(S, N, O, P), 0);
     },
     [](const TVHPolygonList& S, const TPoint2D& V, const TPaths& N, double O, bool P) {
       return TPair<double, double>(TArrayInfoAlgo::Calc2ndArrayTransX(S, V, N, O, P), 0);
     },
     {1, 0},
     [](const TPoint2D& P) { return P; }},
    {"Y",
     TArrayInfoAlgo::CalcNFP,
     [](const TVHPolygonList& S, const TPaths& N, double O, bool P) {
       return TPair<double, double>(TArrayInfoAlgo::CalcArrayTransY(S, N, O, P), 0);
     },
     [](const TVHPolygonList& S, const TPoint2D& V, const TPaths& N, double O, bool P) {
       return TPair<double, double>(TArrayInfoAlgo::Calc2ndArrayTransY(S, V, N, O, P), 0);
     },
     {0, 1},
     [](const TPoint2D& P) { return P; }},
    {"XRotate180",
     TArrayInfoAlgo::CalcNFPWhenRotate180,
     TArrayInfoAlgo::CalcArrayTransXRotate180,
     TArrayInfoAlgo::Calc2ndArrayTransXRotate180,
     {1, 0},
     [](const TPoint2D& P) { return -P; }},
    {"YRotate180",
     TArrayInfoAlgo::CalcNFPWhenRotate180,
     TArrayInfoAlgo::CalcArrayTransYRotate180,
     TArrayInfoAlgo::Calc2ndArrayTransYRotate180,
     {0, 1},
     [](const TPoint2D& P) { return -P; }},
    {"XMirror",
     TArrayInfoAlgo::CalcNFPWhenMirrorY,
     TArrayInfoAlgo::CalcArrayTransXMirror,
     TArrayInfoAlgo::Calc2ndArrayTransXMirror,
     {1, 0},
     [](const TPoint2D& P) {
       return TPoint2D{-P.X, P.Y};
     }},
    {"YMirror",
     TArrayInfoAlgo::CalcNFPWhenMirrorX,
     TArrayInfoAlgo::CalcArrayTransYMirror,
     TArrayInfoAlgo::Calc2ndArrayTransYMirror,
     {0, 1},
     [](const TPoint2D& P) {
       return TPoint2D{P.X, -P.Y};
     }},
};

// Deepest overlap of the copies that the form puts on its axis, beside the shape and beside a row of it.
inline double AxisFormDepth(const TAxisForm& Form, const TVHPolygonList& Shape, bool Separate) {
  const TPaths fixed = PathsOf(Shape);
  const TPaths copy = PathsOf(AboutBoxCenter(Shape, Form.PointMove));
  TPaths nfp;
  Form.MakeNfp(Shape, 0, nfp);
  const auto [ahead, back] = Form.First({}, nfp, 0, Separate);
  double depth = DepthAt(fixed, copy, ahead * Form.Axis);
  const bool hasWayBack = Form.MakeNfp != TArrayInfoAlgo::CalcNFP;
  if (hasWayBack) depth = std::max(depth, DepthAt(fixed, copy, -back * Form.Axis));
  const TPoint2D row = Form.Axis.X == 0 ? TPoint2D{TArrayInfoAlgo::CalcArrayTransX(Shape, {}, 0, true), 0}
                                        : TPoint2D{0, TArrayInfoAlgo::CalcArrayTransY(Shape, {}, 0, true)};
  const auto [aheadOfRow, backOfRow] = Form.Second({}, row, nfp, 0, Separate);
  depth = std::max(depth, RowDepth(fixed, copy, row, aheadOfRow * Form.Axis));
  return hasWayBack ? std::max(depth, RowDepth(fixed, copy, row, -backOfRow * Form.Axis)) : depth;
}

}  // namespace platenest::test
