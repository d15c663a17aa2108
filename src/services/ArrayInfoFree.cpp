#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "ArrayInfoRow.h"
#include "ArrayInfoRules.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/MinHeap.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/services/arrayInfo.h"

namespace platenest {

using namespace detail;

namespace {

constexpr double kPi = std::numbers::pi;

TNestError ErrorOf(const char* Kind, const char* Operation, const char* Reason) {
  return TNestError(std::string("[") + Kind + "] TArrayInfoAlgo." + Operation + ": " + Reason);
}

bool IsUsable(const TPoint2D& Vector) {
  return std::isfinite(Vector.X) && std::isfinite(Vector.Y) && std::isfinite(Vector.Mag());
}

TVRect2D ModelBox(const TPaths& NFP) {
  return TPathUtils::BoundBox(NFP).ToRect(1.0) * kModelPerUnit;
}

TPoint2D NearestOfEdge(const TVLine2D& Edge) {
  double t = 0;
  Edge.SegmentDistanceTo(Origin2D, t);
  return Edge.EvalPoint(t);
}

// Copies of the first vector that reach across the box on the axes on which it has a component.
int CopiesAcross(const TVRect2D& Bound, const TPoint2D& First, const char* Operation) {
  const bool xIsZero = TMathUtils::CompareFloat(First.X, 0, kOnAxis) == 0;
  const bool yIsZero = TMathUtils::CompareFloat(First.Y, 0, kOnAxis) == 0;
  const double inWidth = std::floor(Bound.Width() / std::fabs(First.X));
  const double inHeight = std::floor(Bound.Height() / std::fabs(First.Y));
  if (xIsZero) return RowCopies(inHeight, Operation);
  if (yIsZero) return RowCopies(inWidth, Operation);
  return RowCopies(std::min(inWidth, inHeight), Operation);
}

bool IsAngle(double Angle, double Wanted) {
  return TMathUtils::CompareFloat(Angle, Wanted, kSameDirection) == 0;
}

// Copies on either side of the middle one that may reach the ray at Angle from the row. The signed tangent makes the
// row too short for directions past a quarter turn, down to no copies; they may then lead into a neighbour's neighbour.
int CopiesToRay(const TVRect2D& Bound, double Step, double Angle, const char* Operation) {
  if (IsAngle(Angle, kPi / 2) || IsAngle(Angle, 3 * kPi / 2))
    return RowCopies(std::floor(Bound.Width() / (2 * Step)), Operation);
  return RowCopies(std::floor((Bound.Width() / 2 + Bound.Height() / (2 * std::tan(Angle))) / Step), Operation);
}

// V plus Step as often as that makes it shorter. Far away it jumps close first. The bound on single steps is out of
// reach but where Step is lost in the rounding of V.
TPoint2D ShortenedBy(TPoint2D V, const TPoint2D& Step) {
  constexpr int kFewSteps = 64;
  constexpr double kUncountable = 9007199254740992.0;
  const double steps = std::ceil(-(V / Step.Mag()).DotMul(Step / Step.Mag()) - 0.5);
  if (!(steps < kUncountable)) throw ErrorOf("Error", "ToUnit2ndArrayTrans", "the first vector is too short");
  if (steps > kFewSteps) V += Step * (steps - 1);
  for (int i = 0; i < 2 * kFewSteps && (V + Step).Mag() < V.Mag(); ++i) V += Step;
  return V;
}

// Raises one coordinate of V by First or its opposite, whichever leads up, until it is not negative.
TPoint2D RaisedAboveZero(TPoint2D V, const TPoint2D& First, double TPoint2D::*Coordinate) {
  const TPoint2D up = First.*Coordinate < 0 ? -First : First;
  while (V.*Coordinate < 0) V += up;
  return V;
}

TIntPoint MiddleOf(const TIntPoint& A, const TIntPoint& B) {
  const TPoint2D sum{static_cast<double>(A.X) + static_cast<double>(B.X),
                     static_cast<double>(A.Y) + static_cast<double>(B.Y)};
  return TPathUtils::CreateIntPoint(sum / 2.0, 1.0);
}

TNullable<TIntPoint> FirstMeeting(const TVPoint2DList& Points, const TVLine2DList& Lines) {
  if (!Points.empty()) return {true, TPathUtils::CreateIntPoint(Points.front(), 1.0)};
  if (!Lines.empty()) return {true, TPathUtils::CreateIntPoint(Lines.front().StartPoint, 1.0)};
  return {};
}

// In whole path units again: at the size of large drawings the way through drawing units would leave the sides of the
// box beside the paths that run on them.
TVPolyline2D UnitBox(const TVRect2D& Bound) {
  const TVRect2D box = Bound * kPathScale;
  return TVPolyline2D(TVRect2D::FromBounds(RoundHalfEven(box.Top), RoundHalfEven(box.Left), RoundHalfEven(box.Bottom),
                                           RoundHalfEven(box.Right)));
}

}  // namespace

TPair<TPoint2D, TPoint2D> TArrayInfoAlgo::CalcArrayInfo(TPaths& NFP, bool XDir, bool YDir, bool Separate, double Tol) {
  if (XDir && YDir) return CalcArrayInfoOnXY(NFP, Separate);
  if (XDir) return CalcArrayInfoOnX(NFP, Separate, Tol);
  if (YDir) return CalcArrayInfoOnY(NFP, Separate, Tol);
  return DoCalcArrayInfo(NFP, Tol);
}

TPair<TPoint2D, TPoint2D> TArrayInfoAlgo::DoCalcArrayInfo(TPaths& NFP, double Tol) {
  if (NFP.empty()) throw ErrorOf("Error", "DoCalcArrayInfo", "NFP为空");
  const TPoint2D first = Calc1stArrayTrans(NFP.front());
  return {first, CalcBest2ndArrayTrans(NFP, first, Tol)};
}

TPair<TPoint2D, TPoint2D> TArrayInfoAlgo::CalcArrayInfoOnX(TPaths& NFP, bool Separate, double Tol) {
  const TPoint2D first{CalcArrayTransX(TVHPolygonList(), NFP, 0, Separate), 0};
  return {first, CalcBest2ndArrayTrans(NFP, first, Tol)};
}

TPair<TPoint2D, TPoint2D> TArrayInfoAlgo::CalcArrayInfoOnY(TPaths& NFP, bool Separate, double Tol) {
  const TPoint2D first{0, CalcArrayTransY(TVHPolygonList(), NFP, 0, Separate)};
  return {first, CalcBest2ndArrayTrans(NFP, first, Tol)};
}

TPoint2D TArrayInfoAlgo::Calc1stArrayTrans(const TPath& path) {
  TMinHeap<TPoint2D> concave;
  TMinHeap<TPoint2D> nearest;
  const int count = Size(path);
  for (int i = 0; i + 1 < count; ++i) {
    const TPoint2D previous = TPathUtils::CreatePoint2D(path[i == 0 ? count - 1 : i - 1], kPathScale);
    const TPoint2D current = TPathUtils::CreatePoint2D(path[i], kPathScale);
    const TPoint2D next = TPathUtils::CreatePoint2D(path[TMathUtils::CycInc(i, 0, count - 1)], kPathScale);
    if (TMathUtils::FloatLess(TPoint2DUtils::TriangleArea(previous, current, next, true), 0, kConcaveArea))
      concave.Add(current, current.Mag());
    const TPoint2D near = NearestOfEdge({current, next});
    nearest.Add(near, near.Mag());
  }
  std::vector<TPoint2D> candidates;
  while (Size(candidates) < kConcaveCandidates && concave.Count() > 0) candidates.push_back(concave.Pop());
  do candidates.push_back(nearest.Pop());
  while (Size(candidates) < kCandidates && nearest.Count() > 0);
  ChooseBestArrayTrans(candidates, 1, path, {path});
  const TPoint2D best = candidates.front();
  return std::abs(TPoint2DUtils::Quadrant(best)) <= 2 ? best : -best;
}

TPoint2D TArrayInfoAlgo::CalcNearest1stArrayTrans(const TPath& path) {
  TPoint2D best;
  double least = kNothingNearer;
  for (std::size_t i = 0; i < path.size(); ++i) {
    const TVLine2D edge{TPathUtils::CreatePoint2D(path[i], kPathScale),
                        TPathUtils::CreatePoint2D(path[i + 1 == path.size() ? 0 : i + 1], kPathScale)};
    double t = 0;
    const double distance = edge.SegmentDistanceTo(Origin2D, t);
    if (distance >= least) continue;
    least = distance;
    best = edge.EvalPoint(t);
  }
  return best;
}

TPoint2D TArrayInfoAlgo::CalcFarthest1stArrayTrans(const TPath& path) {
  TPoint2D best;
  double largest = kNothingFarther;
  for (const TIntPoint& vertex : path) {
    const TPoint2D point = TPathUtils::CreatePoint2D(vertex, kPathScale);
    if (point.Mag() <= largest) continue;
    largest = point.Mag();
    best = point;
  }
  return best;
}

void TArrayInfoAlgo::ChooseBestArrayTrans(std::vector<TPoint2D>& candidates, int count, const TPath& path,
                                          const TPaths& paths) {
  TMinHeap<TPoint2D> byArea;
  for (const TPoint2D& candidate : candidates) {
    const TPaths both = UnitePair(paths, path, candidate, "ChooseBestArrayTrans");
    byArea.Add(candidate, std::fabs(TPathUtils::Area(both)));
  }
  candidates.clear();
  while (Size(candidates) < count && byArea.Count() > 0) candidates.push_back(byArea.Pop());
}

TPoint2D TArrayInfoAlgo::CalcBest2ndArrayTrans(TPaths& NFP, const TPoint2D& ArrayTrans1, double Tol) {
  constexpr const char* kOperation = "CalcBest2ndArrayTrans";
  if (!IsUsable(ArrayTrans1) || ArrayTrans1.IsZeroLength(kNoVector))
    throw TArgumentError("[Error] TArrayInfoAlgo.CalcBest2ndArrayTrans: ArrayTrans1参数错误");
  const TPaths paths = CounterClockwiseForRow(NFP, kOperation);
  const TVRect2D bound = ModelBox(NFP);
  const int count = bound.IsValid() ? CopiesAcross(bound, ArrayTrans1, kOperation) : 0;
  TPaths group = UniteRow(paths, count, ArrayTrans1, TRowForm::CopiesClip, kOperation);
  TPathUtils::SetIsClockwise(group, false, false);
  TNullable<TIntPoint> best = CalcBest2ndArrayTransWithGroupNFP(group, ArrayTrans1, Tol, bound);
  if (best.IsNull()) best = CalcBest2ndArrayTransWithGroupNFP2(group, ArrayTrans1, Tol, bound);
  if (best.IsNull()) throw ErrorOf("ERROR", kOperation, "无法计算合理的结果");
  return ToUnit2ndArrayTrans(ArrayTrans1, TPathUtils::CreatePoint2D(best.Value, kPathScale));
}

TNullable<TIntPoint> TArrayInfoAlgo::CalcBest2ndArrayTransWithGroupNFP(const TPaths& group, const TPoint2D& ArrayTrans1,
                                                                       double Tol, const TVRect2D& bound) {
  const double angle = -ArrayTrans1.Angle();
  TNullable<TIntPoint> best;
  const auto judge = [&](const TIntPoint& Point) { UpdateBest2ndArrayTrans(Point, best, Tol, bound, angle); };
  // Both axes hang on the Y component, so a first vector along X never tries the Y axis, on which the row of a part
  // with a hollow may have its nearest free place; vertices and middles stand in for it.
  if (TMathUtils::CompareFloat(ArrayTrans1.Y, 0, Tol) != 0) {
    judge(TPathUtils::CreateIntPoint(TMathUtils::Max(TPathUtils::CalcXByY(group, 0, true, 0)), 0));
    judge(TPathUtils::CreateIntPoint(0, TMathUtils::Max(TPathUtils::CalcYByX(group, 0, true, 0))));
  }
  for (const TPath& path : group) {
    for (std::size_t j = 0; j + 1 < path.size(); ++j) judge(path[j]);
    for (std::size_t j = 0; j + 1 < path.size(); ++j) judge(MiddleOf(path[j], path[j + 1]));
  }
  if (best.HasValue) best.Value = TPathUtils::Rotate(best.Value, -angle);
  return best;
}

TNullable<TIntPoint> TArrayInfoAlgo::CalcBest2ndArrayTransWithGroupNFP2(const TPaths& group, const TPoint2D&, double,
                                                                        const TVRect2D& bound) {
  const TVPolyline2D box = UnitBox(bound);
  for (const TVPolyline2D& polyline : TPathUtils::CreatePolylines(group, 1.0)) {
    TVPoint2DList points;
    TVLine2DList lines;
    box.CrossWith(polyline, points, lines);
    const TNullable<TIntPoint> meeting = FirstMeeting(points, lines);
    if (meeting.HasValue) return meeting;
  }
  return {};
}

void TArrayInfoAlgo::UpdateBest2ndArrayTrans(const TIntPoint& point, TNullable<TIntPoint>& best, double Tol,
                                             const TVRect2D& bound, double Angle) {
  if (!bound.IsPointIn(TPathUtils::CreatePoint2D(point, kPathScale), kInBound)) return;
  if (point.X == 0 && point.Y == 0) return;
  const TIntPoint turned = TPathUtils::Rotate(point, Angle);
  if (best.HasValue) {
    const double across = std::fabs(static_cast<double>(turned.Y));
    const int order = TMathUtils::CompareFloat(across, std::fabs(static_cast<double>(best.Value.Y)), Tol);
    if (order > 0 || (order == 0 && std::abs(turned.X) >= std::abs(best.Value.X))) return;
  }
  best = {true, turned};
}

TPoint2D TArrayInfoAlgo::ToUnit2ndArrayTrans(const TPoint2D& first, const TPoint2D& second) {
  if (!IsUsable(first) || !IsUsable(second) || first.IsZeroLength(kNoVector))
    throw TArgumentError("[Error] TArrayInfoAlgo.ToUnit2ndArrayTrans: a vector is zero or not finite");
  const TPoint2D v = ShortenedBy(ShortenedBy(second, first), -first);
  const double angle = v.Angle();
  if (first.X == 0) {
    const bool turned = TMathUtils::IsInRange(angle, kPi / 2, 3 * kPi / 2, false, true);
    return RaisedAboveZero(turned ? -v : v, first, &TPoint2D::Y);
  }
  if (first.Y == 0) {
    const bool turned = TMathUtils::IsInRange(angle, kPi, 2 * kPi, true, false);
    return RaisedAboveZero(turned ? -v : v, first, &TPoint2D::X);
  }
  return angle < kPi ? v : -v;
}

TPoint2D TArrayInfoAlgo::Calc2ndArrayTrans(const TPaths& NFP, const TPoint2D& ArrayTrans1, const TPoint2D& Dir) {
  constexpr const char* kOperation = "Calc2ndArrayTrans";
  if (NFP.empty()) throw ErrorOf("Error", kOperation, "NFP为空");
  if (ArrayTrans1.IsZeroLength(kNoVector) || !IsUsable(ArrayTrans1))
    throw ErrorOf("Error", kOperation, "ArrayTrans1参数错误");
  if (Dir.IsZeroLength(kNoVector) || !IsUsable(Dir)) throw ErrorOf("Error", kOperation, "Dir参数错误");
  const double a1 = ArrayTrans1.Angle();
  const TPoint2D u{ArrayTrans1.Mag(), 0};
  const double a2 = Dir.RotateBy(-a1).Angle();
  if (IsAngle(a2, 0) || IsAngle(a2, kPi) || IsAngle(a2, 2 * kPi))
    throw ErrorOf("Error", kOperation, "2个阵列位移方向相同");
  TPaths turned = TPathUtils::Rotate(NFP, -a1);
  const TPaths paths = CounterClockwiseForRow(turned, kOperation);
  const TVRect2D bound = ModelBox(turned);
  const int count = bound.IsValid() ? std::max(CopiesToRay(bound, u.X, a2, kOperation), 0) : 0;
  TPaths group = UniteRow(paths, count, u, TRowForm::CopiesClip, kOperation);
  TPathUtils::SetIsClockwise(group, false, false);
  const Int64 farthest = TMathUtils::Max(TPathUtils::CalcXByY(TPathUtils::Rotate(group, -a2), 0, true, 0));
  if (farthest <= 0) throw ErrorOf("ERROR", kOperation, "无法计算合理的结果");
  return TPoint2D{static_cast<double>(farthest) * kModelPerUnit, 0}.RotateBy(a1 + a2);
}

}  // namespace platenest
