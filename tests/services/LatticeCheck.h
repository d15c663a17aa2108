#pragma once

#include "LatticeDepth.h"
#include "platenest/services/arrayInfo.h"

// What the tests of arrays share: the forms along the axes and the copies that they move.
namespace platenest::test {

// The shape mirrored by the signs of Scale, about the centre of its box.
inline TVHPolygonList AboutBoxCenter(const TVHPolygonList& Shape, const TPoint2D& Scale) {
  TVRect2D box = TVRect2D::InvalidRect;
  for (const TVPolyline2D& contour : Shape.front()) box.ExpandInPlace(contour.BoundBox());
  const TPoint2D c = box.Center();
  TVHPolygonList moved = Shape;
  for (TVPolyline2D& contour : moved.front())
    for (TPoint2D& point : contour) point = {c.X + Scale.X * (point.X - c.X), c.Y + Scale.Y * (point.Y - c.Y)};
  moved.front().SetIsClockwise(false);
  return moved;
}

inline TPaths PathsOf(const TVHPolygonList& Shape) {
  return PolygonOf(Shape.front());
}

using TFirst = TPair<double, double>(const TVHPolygonList&, const TPaths&, double, bool);
using TSecond = TPair<double, double>(const TVHPolygonList&, const TPoint2D&, const TPaths&, double, bool);

// A form that tells one way only, as a pair without a way back.
template <auto Form, class... Args>
TPair<double, double> OneWay(Args... Arguments) {
  return {Form(Arguments...), 0};
}

struct TAxisForm {
  const char* Name;
  void (*MakeNfp)(const TVHPolygonList&, double, TPaths&);
  TFirst* First;
  TSecond* Second;
  TPoint2D Axis;
  TPoint2D Copy;  // what the copy is to the shape, as signs about the centre of its box
};

using TArray = TArrayInfoAlgo;

// The twelve operations along the axes, by pairs of first and second vector.
inline const TAxisForm kAxisForms[] = {
    {"X", TArray::CalcNFP, OneWay<TArray::CalcArrayTransX>, OneWay<TArray::Calc2ndArrayTransX>, {1, 0}, {1, 1}},
    {"Y", TArray::CalcNFP, OneWay<TArray::CalcArrayTransY>, OneWay<TArray::Calc2ndArrayTransY>, {0, 1}, {1, 1}},
    {"XRotate180",
     TArray::CalcNFPWhenRotate180,
     TArray::CalcArrayTransXRotate180,
     TArray::Calc2ndArrayTransXRotate180,
     {1, 0},
     {-1, -1}},
    {"YRotate180",
     TArray::CalcNFPWhenRotate180,
     TArray::CalcArrayTransYRotate180,
     TArray::Calc2ndArrayTransYRotate180,
     {0, 1},
     {-1, -1}},
    {"XMirror",
     TArray::CalcNFPWhenMirrorY,
     TArray::CalcArrayTransXMirror,
     TArray::Calc2ndArrayTransXMirror,
     {1, 0},
     {-1, 1}},
    {"YMirror",
     TArray::CalcNFPWhenMirrorX,
     TArray::CalcArrayTransYMirror,
     TArray::Calc2ndArrayTransYMirror,
     {0, 1},
     {1, -1}},
};

// Deepest overlap of the copies that the form puts on its axis, beside the shape and beside a row of it.
inline double AxisFormDepth(const TAxisForm& Form, const TVHPolygonList& Shape, bool Separate) {
  const TPaths fixed = PathsOf(Shape);
  const TPaths copy = PathsOf(AboutBoxCenter(Shape, Form.Copy));
  TPaths nfp;
  Form.MakeNfp(Shape, 0, nfp);
  const auto [ahead, back] = Form.First({}, nfp, 0, Separate);
  const TPoint2D row = Form.Axis.X == 0 ? TPoint2D{TArray::CalcArrayTransX(Shape, {}, 0, true), 0}
                                        : TPoint2D{0, TArray::CalcArrayTransY(Shape, {}, 0, true)};
  const auto [aheadOfRow, backOfRow] = Form.Second({}, row, nfp, 0, Separate);
  const double depth =
      std::max(DepthAt(fixed, copy, ahead * Form.Axis), RowDepth(fixed, copy, row, aheadOfRow * Form.Axis));
  if (Form.MakeNfp == TArray::CalcNFP) return depth;
  return std::max({depth, DepthAt(fixed, copy, -back * Form.Axis), RowDepth(fixed, copy, row, -backOfRow * Form.Axis)});
}

}  // namespace platenest::test
