#include <algorithm>
#include <cmath>
#include <string>

#include "ArrayInfoRow.h"
#include "ArrayInfoRules.h"
#include "UsableShape.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/PolyOffsetter.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/services/NFP.h"
#include "platenest/services/arrayInfo.h"

namespace platenest {

using namespace detail;

namespace {

enum class TAxis { X, Y };
using TMakeNfp = void (*)(const TVHPolygonList&, double, TPaths&);

void RequireOffset(double Offset) {
  if (!IsUsable(Offset)) throw TArgumentError("[Error] TArrayInfoAlgo.CalcNFP: Offset is not finite or too large");
}

// The operations that take one outline read the first path, and an offset does not promise that this is it.
void PutOutlineFirst(TPaths& Paths) {
  const auto outline = std::max_element(Paths.begin(), Paths.end(), [](const TPath& A, const TPath& B) {
    return ClipperLib::Area(A) < ClipperLib::Area(B);
  });
  if (outline != Paths.end()) std::rotate(Paths.begin(), outline, outline + 1);
}

void GrownNfp(const TVHPolygonList& Sub, const TVHPolygonList& Obj, double Offset, TPaths& NFP) {
  RequireOffset(Offset);
  const TNFP result = TNFPCalculator::CalcNFP(Sub, Obj, false, ntComplete, "", "");
  NFP = TPolyOffsetter::OffsetPathsToPaths(*result.NFP, Trunc(Offset * kPathScale), kSquareJoin, kArcStep);
  PutOutlineFirst(NFP);
}

TPoint2D BoxCenter(const TVHPolygonList& Shape) {
  TVRect2D box = TVRect2D::InvalidRect;
  for (const TVHPolygon& polygon : Shape)
    for (const TVPolyline2D& contour : polygon) box.ExpandInPlace(contour.BoundBox());
  return box.Center();
}

template <class Move>
TVHPolygonList Moved(const TVHPolygonList& Shape, Move PointMove) {
  TVHPolygonList clone = Shape;
  for (TVHPolygon& polygon : clone)
    for (TVPolyline2D& contour : polygon)
      for (TPoint2D& point : contour) point = PointMove(point);
  return clone;
}

const TPaths& GivenOrMade(const TPaths& NFP, const TVHPolygonList& Shape, double Offset, TMakeNfp Make, TPaths& Made) {
  if (!NFP.empty()) return NFP;
  Make(Shape, Offset, Made);
  return Made;
}

TPair<double, double> Scan(TAxis Axis, TMakeNfp Make, Int64 Tol, const TVHPolygonList& Shape, const TPaths& NFP,
                           double Offset, bool Separate) {
  TPaths made;
  const TPaths& paths = GivenOrMade(NFP, Shape, Offset, Make, made);
  return TArrayInfoAlgo::CalcArrayTranss(
      Axis == TAxis::X ? TPathUtils::CalcXByY(paths, 0, true, Tol) : TPathUtils::CalcYByX(paths, 0, true, Tol),
      Separate);
}

// The paths of the row that reaches across the scan line of Axis. Its component across that line is divided by with its
// sign, so a negative one gives no paths.
TPaths RowAcross(TAxis Axis, TMakeNfp Make, const char* Operation, const TVHPolygonList& Shape,
                 const TPoint2D& ArrayTransVec, const TPaths& NFP, double Offset) {
  TPaths made;
  const TPaths& paths = GivenOrMade(NFP, Shape, Offset, Make, made);
  const TIntRect box = TPathUtils::BoundBox(paths);
  const double extent = static_cast<double>(Axis == TAxis::X ? box.Height() : box.Width()) * kModelPerUnit;
  const double step = Axis == TAxis::X ? ArrayTransVec.Y : ArrayTransVec.X;
  if (step == 0 || !std::isfinite(ArrayTransVec.X) || !std::isfinite(ArrayTransVec.Y))
    throw TArgumentError("[Error] TArrayInfoAlgo." + std::string(Operation) + ": ArrayTransVec参数错误");
  const int count = box.IsValid() ? RowCopies(std::floor(extent / step), Operation) : 0;
  return UniteRow(paths, count, ArrayTransVec, TRowForm::AllSubjects, Operation);
}

}  // namespace

void TArrayInfoAlgo::CalcNFP(const TVHPolygonList& Shape, double Offset, TPaths& NFP) {
  GrownNfp(Shape, Shape, Offset, NFP);
}

void TArrayInfoAlgo::CalcNFPWhenRotate180(const TVHPolygonList& Shape, double Offset, TPaths& NFP) {
  const TPoint2D c = BoxCenter(Shape);
  GrownNfp(Moved(Shape, [&](const TPoint2D& P) { return -(P - c) + c; }), Shape, Offset, NFP);
}

void TArrayInfoAlgo::CalcNFPWhenMirrorX(const TVHPolygonList& Shape, double Offset, TPaths& NFP) {
  const TPoint2D c = BoxCenter(Shape);
  GrownNfp(Moved(Shape, [&](const TPoint2D& P) { return TPoint2D{P.X, 2 * c.Y - P.Y}; }), Shape, Offset, NFP);
}

void TArrayInfoAlgo::CalcNFPWhenMirrorY(const TVHPolygonList& Shape, double Offset, TPaths& NFP) {
  const TPoint2D c = BoxCenter(Shape);
  GrownNfp(Moved(Shape, [&](const TPoint2D& P) { return TPoint2D{2 * c.X - P.X, P.Y}; }), Shape, Offset, NFP);
}

double TArrayInfoAlgo::CalcArrayTransX(const TVHPolygonList& Shape, const TPaths& NFP, double Offset, bool Separate) {
  return Scan(TAxis::X, CalcNFP, Separate ? 0 : kNearScanTol, Shape, NFP, Offset, Separate).first;
}

double TArrayInfoAlgo::CalcArrayTransY(const TVHPolygonList& Shape, const TPaths& NFP, double Offset, bool Separate) {
  return Scan(TAxis::Y, CalcNFP, Separate ? 0 : kNearScanTol, Shape, NFP, Offset, Separate).first;
}

TPair<double, double> TArrayInfoAlgo::CalcArrayTransXRotate180(const TVHPolygonList& Shape, const TPaths& NFP,
                                                               double Offset, bool Separate) {
  return Scan(TAxis::X, CalcNFPWhenRotate180, 0, Shape, NFP, Offset, Separate);
}

TPair<double, double> TArrayInfoAlgo::CalcArrayTransYRotate180(const TVHPolygonList& Shape, const TPaths& NFP,
                                                               double Offset, bool Separate) {
  return Scan(TAxis::Y, CalcNFPWhenRotate180, 0, Shape, NFP, Offset, Separate);
}

TPair<double, double> TArrayInfoAlgo::CalcArrayTransXMirror(const TVHPolygonList& Shape, const TPaths& NFP,
                                                            double Offset, bool Separate) {
  return Scan(TAxis::X, CalcNFPWhenMirrorY, 0, Shape, NFP, Offset, Separate);
}

TPair<double, double> TArrayInfoAlgo::CalcArrayTransYMirror(const TVHPolygonList& Shape, const TPaths& NFP,
                                                            double Offset, bool Separate) {
  return Scan(TAxis::Y, CalcNFPWhenMirrorX, 0, Shape, NFP, Offset, Separate);
}

double TArrayInfoAlgo::Calc2ndArrayTransX(const TVHPolygonList& Shape, const TPoint2D& ArrayTransVec, const TPaths& NFP,
                                          double Offset, bool Separate) {
  const TPaths row = RowAcross(TAxis::X, CalcNFP, "Calc2ndArrayTransX", Shape, ArrayTransVec, NFP, Offset);
  return CalcArrayTransX(Shape, row, Offset, Separate);
}

double TArrayInfoAlgo::Calc2ndArrayTransY(const TVHPolygonList& Shape, const TPoint2D& ArrayTransVec, const TPaths& NFP,
                                          double Offset, bool Separate) {
  const TPaths row = RowAcross(TAxis::Y, CalcNFP, "Calc2ndArrayTransY", Shape, ArrayTransVec, NFP, Offset);
  return CalcArrayTransY(Shape, row, Offset, Separate);
}

TPair<double, double> TArrayInfoAlgo::Calc2ndArrayTransXRotate180(const TVHPolygonList& Shape,
                                                                  const TPoint2D& ArrayTransVec, const TPaths& NFP,
                                                                  double Offset, bool Separate) {
  const TPaths row =
      RowAcross(TAxis::X, CalcNFPWhenRotate180, "Calc2ndArrayTransXRotate180", Shape, ArrayTransVec, NFP, Offset);
  return CalcArrayTransXRotate180(Shape, row, Offset, Separate);
}

TPair<double, double> TArrayInfoAlgo::Calc2ndArrayTransYRotate180(const TVHPolygonList& Shape,
                                                                  const TPoint2D& ArrayTransVec, const TPaths& NFP,
                                                                  double Offset, bool Separate) {
  const TPaths row =
      RowAcross(TAxis::Y, CalcNFPWhenRotate180, "Calc2ndArrayTransYRotate180", Shape, ArrayTransVec, NFP, Offset);
  return CalcArrayTransYRotate180(Shape, row, Offset, Separate);
}

TPair<double, double> TArrayInfoAlgo::Calc2ndArrayTransXMirror(const TVHPolygonList& Shape,
                                                               const TPoint2D& ArrayTransVec, const TPaths& NFP,
                                                               double Offset, bool Separate) {
  const TPaths row =
      RowAcross(TAxis::X, CalcNFPWhenMirrorY, "Calc2ndArrayTransXMirror", Shape, ArrayTransVec, NFP, Offset);
  return CalcArrayTransXMirror(Shape, row, Offset, Separate);
}

TPair<double, double> TArrayInfoAlgo::Calc2ndArrayTransYMirror(const TVHPolygonList& Shape,
                                                               const TPoint2D& ArrayTransVec, const TPaths& NFP,
                                                               double Offset, bool Separate) {
  const TPaths row =
      RowAcross(TAxis::Y, CalcNFPWhenMirrorX, "Calc2ndArrayTransYMirror", Shape, ArrayTransVec, NFP, Offset);
  return CalcArrayTransYMirror(Shape, row, Offset, Separate);
}

void TArrayInfoAlgo::CalcGroupNFP(const TPaths& Paths, int Count, const TPoint2D& Vector, TPaths& Group) {
  Group = UniteRow(Paths, Count, Vector, TRowForm::AllSubjects, "CalcGroupNFP");
}

TPair<double, double> TArrayInfoAlgo::CalcArrayTranss(std::span<const Int64> Crossings, bool Separate) {
  if (Separate)
    return {kModelPerUnit * static_cast<double>(TMathUtils::Max(Crossings)),
            kModelPerUnit * std::fabs(static_cast<double>(TMathUtils::Min(Crossings)))};
  double positive = kFarAway;
  double negative = -kFarAway;
  for (const Int64 crossing : Crossings) {
    const double c = static_cast<double>(crossing);
    if (c > 0) positive = std::min(positive, c);
    if (c < 0) negative = std::max(negative, c);
  }
  if (positive == kFarAway)
    positive = 0;
  else if (negative == -kFarAway)
    negative = 0;
  return {kModelPerUnit * positive, kModelPerUnit * std::fabs(negative)};
}

TPoint2D TArrayInfoAlgo::CalcArrayTrans(const TPaths& NFP, int Type_, bool Separate) {
  const TVHPolygonList noShape;
  switch (Type_) {
    case 0:
      return NFP.empty() ? Origin2D : CalcNearest1stArrayTrans(NFP.front());
    case 1:
      return {CalcArrayTransX(noShape, NFP, 0, Separate), 0};
    case 2:
      return {0, CalcArrayTransY(noShape, NFP, 0, Separate)};
    case 3:
      return NFP.empty() ? Origin2D : CalcFarthest1stArrayTrans(NFP.front());
    default:
      throw TArgumentError("[Error] TArrayInfoAlgo.CalcArrayTrans: 类型参数错误");
  }
}

TPair<TPoint2D, TPoint2D> TArrayInfoAlgo::CalcArrayInfoOnXY(const TPaths& NFP, bool Separate) {
  const TVHPolygonList noShape;
  const TPoint2D a{CalcArrayTransX(noShape, NFP, 0, Separate), 0};
  const TPoint2D b{0, Calc2ndArrayTransY(noShape, a, NFP, 0, Separate)};
  const TPoint2D c{0, CalcArrayTransY(noShape, NFP, 0, Separate)};
  const TPoint2D d{Calc2ndArrayTransX(noShape, c, NFP, 0, Separate), 0};
  if (std::fabs(a.X * b.Y) <= std::fabs(d.X * c.Y)) return {a, b};
  return {d, c};
}

}  // namespace platenest
