#pragma once

#include "LatticeDepth.h"
#include "platenest/services/arrayInfo.h"

// What the tests of arrays share: the forms along the axes and the copies that they move.
namespace platenest::test {

// The shape mirrored by the signs of Scale, about the centre of its box.
inline TVHPolygonList AboutBoxCenter(TVHPolygonList Shape, const TPoint2D& Scale) {
  const TPoint2D c = Shape.front().front().BoundBox().Center();
  for (TVPolyline2D& contour : Shape.front())
    for (TPoint2D& point : contour) point = {c.X + Scale.X * (point.X - c.X), c.Y + Scale.Y * (point.Y - c.Y)};
  Shape.front().SetIsClockwise(false);
  return Shape;
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

// The twelve operations along the axes, by pairs of first and second vector.
inline const std::vector<TAxisForm> kAxisForms = [] {
  using A = TArrayInfoAlgo;
  return std::vector<TAxisForm>{
      {"X", A::CalcNFP, OneWay<A::CalcArrayTransX>, OneWay<A::Calc2ndArrayTransX>, {1, 0}, {1, 1}},
      {"Y", A::CalcNFP, OneWay<A::CalcArrayTransY>, OneWay<A::Calc2ndArrayTransY>, {0, 1}, {1, 1}},
      {"X180", A::CalcNFPWhenRotate180, A::CalcArrayTransXRotate180, A::Calc2ndArrayTransXRotate180, {1, 0}, {-1, -1}},
      {"Y180", A::CalcNFPWhenRotate180, A::CalcArrayTransYRotate180, A::Calc2ndArrayTransYRotate180, {0, 1}, {-1, -1}},
      {"XMirror", A::CalcNFPWhenMirrorY, A::CalcArrayTransXMirror, A::Calc2ndArrayTransXMirror, {1, 0}, {-1, 1}},
      {"YMirror", A::CalcNFPWhenMirrorX, A::CalcArrayTransYMirror, A::Calc2ndArrayTransYMirror, {0, 1}, {1, -1}}};
}();

// Deepest overlap of the copies that the form puts on its axis, beside the shape and beside a row of it.
inline double AxisFormDepth(const TAxisForm& Form, const TVHPolygonList& Shape, bool Separate) {
  const TPaths fixed = PathsOf(Shape);
  const TPaths copy = PathsOf(AboutBoxCenter(Shape, Form.Copy));
  TPaths nfp;
  Form.MakeNfp(Shape, 0, nfp);
  const auto [ahead, back] = Form.First({}, nfp, 0, Separate);
  const TPoint2D row = Form.Axis.X == 0 ? TPoint2D{TArrayInfoAlgo::CalcArrayTransX(Shape, {}, 0, true), 0}
                                        : TPoint2D{0, TArrayInfoAlgo::CalcArrayTransY(Shape, {}, 0, true)};
  const auto [aheadOfRow, backOfRow] = Form.Second({}, row, nfp, 0, Separate);
  const double depth =
      std::max(DepthAt(fixed, copy, ahead * Form.Axis), RowDepth(fixed, copy, row, aheadOfRow * Form.Axis));
  if (Form.MakeNfp == TArrayInfoAlgo::CalcNFP) return depth;
  return std::max({depth, DepthAt(fixed, copy, -back * Form.Axis), RowDepth(fixed, copy, row, -backOfRow * Form.Axis)});
}

}  // namespace platenest::test
