#pragma once

#include <algorithm>
#include <cmath>

#include "ExactMinkowski.h"
#include "OverlapDepth.h"
#include "Region.h"
#include "platenest/services/arrayInfo.h"

// Judges lattices and rows by the oracle: how deep copies overlap, in drawing units.
namespace platenest::test {

// What cleaning and the rounding of paths may cost.
inline constexpr double kAllowedDepth = 5e-4;

inline TIntPoint UnitsOf(const TPoint2D& Vector) {
  return TPathUtils::CreateIntPoint(Vector, kPathScale);
}

inline double DepthAt(const TPaths& Fixed, const TPaths& Moving, const TPoint2D& At) {
  const TPaths moved = TPathUtils::Translate(Moving, TPathUtils::CreatePointL2D(UnitsOf(At)));
  const TIntRect a = TPathUtils::BoundBox(Fixed);
  const TIntRect b = TPathUtils::BoundBox(moved);
  if (a.Right <= b.Left || b.Right <= a.Left || a.Top <= b.Bottom || b.Top <= a.Bottom) return 0;
  const double depth = OverlapArea(Fixed, moved) == 0 ? 0 : OverlapDepth(Fixed, moved);
  if (depth <= kAllowedDepth) return depth;
  // Common slivers of less than a path unit may be taken for wide ones, but nothing is deeper than its way out is long.
  const TPaths forbidden = ForbiddenRegion(Fixed, Moving);
  const TIntPoint at = UnitsOf(At);
  if (PlaceOf(at, forbidden) != TPlace::Inside) return 0;
  return std::min(depth, DistanceToBorder(at, forbidden) / kPathScale);
}

// Deepest overlap of the part with its copies on the lattice from -3 to 3; copies on opposite sides are alike.
inline double LatticeDepth(const TPaths& Part, const TPair<TPoint2D, TPoint2D>& Lattice) {
  double deepest = 0;
  for (int i = -3; i <= 3; ++i)
    for (int j = 0; j <= 3; ++j)
      if (j > 0 || i > 0) deepest = std::max(deepest, DepthAt(Part, Part, i * Lattice.first + j * Lattice.second));
  return deepest;
}

// Deepest overlap of Moving at At with the row of Fixed along Step.
inline double RowDepth(const TPaths& Fixed, const TPaths& Moving, const TPoint2D& Step, const TPoint2D& At) {
  double deepest = 0;
  for (int k = -3; k <= 3; ++k) deepest = std::max(deepest, DepthAt(Fixed, Moving, At - k * Step));
  return deepest;
}

inline double CellArea(const TPair<TPoint2D, TPoint2D>& Lattice) {
  return std::fabs(Lattice.first.CrossMul(Lattice.second));
}

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

}  // namespace platenest::test
