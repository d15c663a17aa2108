#pragma once

#include <atomic>
#include <span>
#include <utility>
#include <vector>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Nullable.h"
#include "platenest/foundation/Paths.h"
#include "platenest/foundation/Polyline.h"

// What rests on no-fit polygons: the lattice that repeats a part, the place of a label on it, the place where a round
// gripper holds it. Lengths are in drawing units, paths in path units (kPathScale), angles in radians; y points up.
//
// Nothing here has state but the counter of TLabelInPartAlgo; all operations may run on any number of threads, as far
// as they do not share arguments that they change. A failure to place is a result, not an error. Errors are TNestError
// and leave the out arguments alone; those of TNFPCalculator pass through.
namespace platenest {

template <class A, class B>
using TPair = std::pair<A, B>;

// Lattice vectors of a part: copies that are moved by i * first + j * second keep clear of each other.
//
// All is read off the no-fit polygon of the shape around a copy of itself: the origin lies inside it, and a copy may
// stand where its translation is not strictly inside. NFP is that polygon, outline first, filled where its winding is
// not zero; CalcNFP makes one. Where a shape comes along, an empty NFP is computed from Shape and Offset.
//
// Clearance: paths have five decimals and their cleaning may take up to 2.5e-4 off an outline, so copies may overlap by
// about that much; a greater Offset keeps them apart. A vector that touches keeps the whole row clear, since a
// connected shape that is clear of its copy at v is clear of those at 2v, 3v, ... (Hopf 1937); of a shape in several
// pieces only the copy at v itself is looked at. Likewise the second vector is only looked at against the row of the
// first one through the origin: the nearest free place (Separate false) may leave the row after the next one in the way
// of very slanted, long shapes in wide rows.
//
// Errors of this class where no other text is told: TArgumentError for a vector that gives no row (zero where the
// formula divides, not finite), for rows of more than kMaxRowCopies to either side and for paths beyond
// kMaxRowCoordinate.
//
// Cost: that of the no-fit polygon, if it is not given; one union of at most 2n + 1 copies of NFP, where n copies of
// the first vector reach across its box; the rest is linear in the points. The union is quadratic in n where all copies
// lie upon each other: 10000 of them take minutes.
class PLATENEST_API TArrayInfoAlgo {
 public:
  TArrayInfoAlgo() = delete;

  static constexpr int kMaxRowCopies = 1'000'000;
  static constexpr Int64 kMaxRowCoordinate = Int64{1} << 61;  // path units, of the whole row

  // ---- No-fit polygons of a shape around itself, grown by Offset (shrunk if negative), the outline first.
  // CalcNFP around an equal copy; the others around a copy that stays on its own box centre: turned by half a turn, or
  // reflected left to right (MirrorY, in the vertical line) or top to bottom (MirrorX). Offset becomes path units by
  // truncation.
  static void CalcNFP(const TVHPolygonList& Shape, double Offset, TPaths& NFP);
  static void CalcNFPWhenRotate180(const TVHPolygonList& Shape, double Offset, TPaths& NFP);
  static void CalcNFPWhenMirrorX(const TVHPolygonList& Shape, double Offset, TPaths& NFP);
  static void CalcNFPWhenMirrorY(const TVHPolygonList& Shape, double Offset, TPaths& NFP);

  // ---- Along an axis: how far a copy has to go. Pairs hold the way in the positive direction first and the length of
  // the way in the negative direction second, both of the (turned, mirrored) copy from where the recipes above put it.
  // 0 says that there is no array along this axis.
  //
  // Separate false takes the nearest crossings of the axis with NFP, so that a shape may nest into its own hollows;
  // Separate true the outermost ones, beyond the whole extent of NFP. CalcArrayTransX and Y without Separate also see
  // edges that pass the axis within 20 path units.
  static double CalcArrayTransX(const TVHPolygonList& Shape, const TPaths& NFP, double Offset, bool Separate);
  static double CalcArrayTransY(const TVHPolygonList& Shape, const TPaths& NFP, double Offset, bool Separate);
  static TPair<double, double> CalcArrayTransXRotate180(const TVHPolygonList& Shape, const TPaths& NFP, double Offset,
                                                        bool Separate);
  static TPair<double, double> CalcArrayTransYRotate180(const TVHPolygonList& Shape, const TPaths& NFP, double Offset,
                                                        bool Separate);
  static TPair<double, double> CalcArrayTransXMirror(const TVHPolygonList& Shape, const TPaths& NFP, double Offset,
                                                     bool Separate);
  static TPair<double, double> CalcArrayTransYMirror(const TVHPolygonList& Shape, const TPaths& NFP, double Offset,
                                                     bool Separate);

  // The same clear of a whole row of shapes, spaced by ArrayTransVec. The row gets as many copies as its Y component
  // (X for the Y forms) needs to cross the box of NFP; the sign of that component counts: a negative one gives no row
  // at all, and the answer is that without ArrayTransVec if a Shape is there and an error of TNFPCalculator otherwise.
  static double Calc2ndArrayTransX(const TVHPolygonList& Shape, const TPoint2D& ArrayTransVec, const TPaths& NFP,
                                   double Offset, bool Separate);
  static double Calc2ndArrayTransY(const TVHPolygonList& Shape, const TPoint2D& ArrayTransVec, const TPaths& NFP,
                                   double Offset, bool Separate);
  static TPair<double, double> Calc2ndArrayTransXRotate180(const TVHPolygonList& Shape, const TPoint2D& ArrayTransVec,
                                                           const TPaths& NFP, double Offset, bool Separate);
  static TPair<double, double> Calc2ndArrayTransYRotate180(const TVHPolygonList& Shape, const TPoint2D& ArrayTransVec,
                                                           const TPaths& NFP, double Offset, bool Separate);
  static TPair<double, double> Calc2ndArrayTransXMirror(const TVHPolygonList& Shape, const TPoint2D& ArrayTransVec,
                                                        const TPaths& NFP, double Offset, bool Separate);
  static TPair<double, double> Calc2ndArrayTransYMirror(const TVHPolygonList& Shape, const TPoint2D& ArrayTransVec,
                                                        const TPaths& NFP, double Offset, bool Separate);

  // The union of Paths moved by k * Vector for k from -Count to Count, every path closed by its first point. A negative
  // Count gives no paths.
  static void CalcGroupNFP(const TPaths& Paths, int Count, const TPoint2D& Vector, TPaths& Group);
  // The two ways from crossings in path units. Separate true: the largest one, with its sign, and the size of the
  // smallest one; (0, 0) without any. Separate false: the nearest on each side of 0; a side without crossing gives 0,
  // but with no positive one the missing negative one gives 8.5e302, so an empty list gives (0, 8.5e302).
  static TPair<double, double> CalcArrayTranss(std::span<const Int64> Crossings, bool Separate);

  // One lattice vector of NFP by Type_. 0: the nearest place on its first path. 1: (CalcArrayTransX, 0).
  // 2: (0, CalcArrayTransY). 3: the farthest vertex of its first path. Others: "[Error] TArrayInfoAlgo.CalcArrayTrans:
  // 类型参数错误". 0 and 3 give (0, 0) without paths.
  static TPoint2D CalcArrayTrans(const TPaths& NFP, int Type_, bool Separate);
  // Both vectors along the axes, the X one first: rows, then columns of rows, or the other way round; the smaller cell
  // wins, rows of equals.
  static TPair<TPoint2D, TPoint2D> CalcArrayInfoOnXY(const TPaths& NFP, bool Separate);

  // ---- Along free directions, in the manner of a lattice reduction. The cell is the length of the first vector times
  // the distance of the second one from its line. Tol is one number for two units: drawing units where a component of
  // the first vector is compared with 0, path units where distances from the row are compared.

  // With both flags CalcArrayInfoOnXY, with one of them the first vector on that axis, with none DoCalcArrayInfo. But
  // for the first of these NFP is set counter-clockwise in place, see CalcBest2ndArrayTrans.
  static TPair<TPoint2D, TPoint2D> CalcArrayInfo(TPaths& NFP, bool XDir, bool YDir, bool Separate, double Tol);
  // The first vector from Calc1stArrayTrans of the first path, then the best second one. Without paths:
  // "[Error] TArrayInfoAlgo.DoCalcArrayInfo: NFP为空".
  static TPair<TPoint2D, TPoint2D> DoCalcArrayInfo(TPaths& NFP, double Tol);
  static TPair<TPoint2D, TPoint2D> CalcArrayInfoOnX(TPaths& NFP, bool Separate, double Tol);
  static TPair<TPoint2D, TPoint2D> CalcArrayInfoOnY(TPaths& NFP, bool Separate, double Tol);

  // A short vector to the border of a counter-clockwise outline, in the upper half plane: the nearest concave vertex or
  // the nearest point of an edge, whichever lets two outlines share more. The last vertex and the closing edge are not
  // looked at. A path of fewer than two points raises the error of an empty heap.
  static TPoint2D Calc1stArrayTrans(const TPath& path);
  // The nearest point of any edge, the farthest vertex; the first of equals, (0, 0) for an empty path.
  static TPoint2D CalcNearest1stArrayTrans(const TPath& path);
  static TPoint2D CalcFarthest1stArrayTrans(const TPath& path);
  // Keeps the count candidates at which path covers most of paths, from best to worst.
  static void ChooseBestArrayTrans(std::vector<TPoint2D>& candidates, int count, const TPath& path,
                                   const TPaths& paths);

  // The vector that leads to the place nearest to the row of ArrayTrans1 and clear of it, reduced by
  // ToUnit2ndArrayTrans. Without such a place: "[ERROR] TArrayInfoAlgo.CalcBest2ndArrayTrans: 无法计算合理的结果".
  //
  // NFP is set counter-clockwise in place, holes the other way; a caller that hands over a clockwise one may get
  // another answer from its next call of Calc1stArrayTrans.
  static TPoint2D CalcBest2ndArrayTrans(TPaths& NFP, const TPoint2D& ArrayTrans1, double Tol);
  // The second vector as a multiple of Dir: the outermost place on that ray. Checked in this order: NFP is not empty
  // ("…: NFP为空"), ArrayTrans1 and Dir are longer than 1e-12 and finite ("…: ArrayTrans1参数错误", "…: Dir参数错误"),
  // they differ by more than 1e-6 radians ("…: 2个阵列位移方向相同"). No place: "[ERROR] …: 无法计算合理的结果".
  //
  // The row takes in what reaches the ray for directions from 0 to a quarter turn off the line of ArrayTrans1, counted
  // counter-clockwise from either of its ends. Past a quarter turn it is too short, and copies may overlap where the
  // angle to the row is small; reflect shape and vectors in the row's line for those.
  static TPoint2D Calc2ndArrayTrans(const TPaths& NFP, const TPoint2D& ArrayTrans1, const TPoint2D& Dir);
  // The representative of second modulo first of least length, then turned so that it lies in the half plane above the
  // X axis; with first on the Y axis (X axis) it has no negative Y (no negative X). A first vector up to 1e-12 or more
  // than 2^53 times shorter than second, or a vector that is not finite, raises TNestError.
  static TPoint2D ToUnit2ndArrayTrans(const TPoint2D& first, const TPoint2D& second);

  // ---- The search on the border of a row, in path units; bound is the box of NFP in drawing units.
  // The candidate nearest to the row's axis, then least far along it: where the border crosses the axes through the
  // origin (skipped for first vectors along X), its vertices, the middles of its edges. Nothing outside bound counts.
  static TNullable<TIntPoint> CalcBest2ndArrayTransWithGroupNFP(const TPaths& group, const TPoint2D& ArrayTrans1,
                                                                double Tol, const TVRect2D& bound);
  // Where bound itself first meets the border: a crossing, else the start of a common piece, counted along bound from
  // its top left corner clockwise.
  static TNullable<TIntPoint> CalcBest2ndArrayTransWithGroupNFP2(const TPaths& group, const TPoint2D& ArrayTrans1,
                                                                 double Tol, const TVRect2D& bound);
  // Judges one candidate, with Angle what turns the row onto the X axis. best stays turned by it.
  static void UpdateBest2ndArrayTrans(const TIntPoint& point, TNullable<TIntPoint>& best, double Tol,
                                      const TVRect2D& bound, double Angle);
};

// Where a rectangular label fits on a part, clear of its inner lines, with as much margin as four rounds of bisection
// find. LayerLines holds the outline and its holes; its first line must repeat its first point, which is not asked of
// the others. InnerLines are kept clear by 0.01 and may be open or closed, but an open one blocks also between its two
// ends.
class PLATENEST_API TLabelInPartAlgo {
 public:
  TLabelInPartAlgo() = delete;

  // Calls of DoCalcLabelPosInPart since the library was loaded.
  static std::atomic<Int64> CalcCount;

  // Upright first, then turned by a quarter about the label's own centre; a turned label never displaces an upright one
  // that fits, whatever their margins. TransVec moves the label from where it stands. False, with the out arguments
  // unset, if neither fits, the first line is open or a margin is negative.
  static bool CalcLabelPosInPart(const TVPolyline2DList& LayerLines, const TVPolyline2DList& InnerLines,
                                 const TVRect2D& LabelRect, double Offset, bool& DoesRotate, TPoint2D& TransVec);
  // The margin reached all round, or -1: Offset + k / 16 of the way from Offset to half the part's smaller extent, with
  // k from 0 to 15. Fails as TNFPCalculator does, for instance for lines without area, and as ExpandLine. Cost: the
  // inner-fit region of a rectangle for at most 5 sizes and, if there are inner lines, as many outer no-fit polygons.
  static double DoCalcLabelPosInPart(const TVPolyline2DList& LayerLines, const TVPolyline2DList& InnerLines,
                                     const TVRect2D& LabelRect, double Offset, TPoint2D& TransVec);
  // The band of a line, delta to either side, with squared corners; always that of the closed line. No band:
  // "[ERROR] TLabelInPartAlgo.SetOpenLineClosed: 图形计算错误"; numbers that TNFPCalculator would refuse:
  // TArgumentError.
  static TVHPolygon ExpandLine(const TVPolyline2D& line, double delta);
  // The translations at which the label lies in the parts and off the inner shapes, at ntConcaveHull; empty if none.
  // The inner shapes are asked for, and may fail, even where the label fits nowhere in the parts.
  static void CalcNFP(const TVHPolygonList& parts, const TVHPolygonList& inner, const TVHPolygonList& label,
                      TPaths& NFP);
  // A place near the middle of the longer extent: on the line across it the first crossing in the order of the paths,
  // else the vertex nearest to that line. (0, 0) without paths.
  static TPoint2D ChoosePosInNFP(const TPaths& NFP);
};

// Where a round sucker holds a part: at the centroid if the disc lies strictly inside there, else at the nearest point
// where it does. Only the first contour is asked whether it repeats its first point: if it does not, the part counts as
// open whatever its holes are, and there is no place.
class PLATENEST_API TSuckerInPartAlgo {
 public:
  TSuckerInPartAlgo() = delete;

  // TransVec is the centre of the sucker, unset where no place is found. A radius that is not finite, or coordinates
  // that TNFPCalculator would refuse, raise TArgumentError. A negative radius grows the part. Cost: one offset.
  static bool CalcSuckerPosInPart(const TVHPolygon& PartShape, double SuckerRadius, TPoint2D& TransVec);
  // The point on the contours nearest to point, the first of equals. TRangeError without a point in the first contour.
  static TPoint2D CalcNearestPt(const TVHPolygonList& list, const TPoint2D& point);
};

}  // namespace platenest
