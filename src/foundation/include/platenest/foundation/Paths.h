#pragma once

#include <concepts>
#include <limits>
#include <vector>

#include "platenest/foundation/ClipperAdapter.h"
#include "platenest/foundation/Polyline.h"

// The integer world: contours of 64-bit points, drawing units times kPathScale, without repeated first point unless
// ConnectHeadTail put it there. Everything is linear in the points, takes its arguments by reference and returns new
// objects; no operation changes an argument that is not named as changed. Coordinates are expected below 2^62, the
// bound of Clipper. Nothing here raises but the conversions from double, which raise TRangeError for NaN and for what
// does not fit 64 bits. Empty input gives empty output.
// No state; safe on any thread.
namespace platenest {

using TIntPoint = ClipperLib::IntPoint;
using TPath = ClipperLib::Path;
using TPaths = ClipperLib::Paths;

inline constexpr double kPathScale = 100000;  // path units per drawing unit

// Integer bounding box. The default one is empty: IsValid rejects it, and it vanishes in a union.
struct TIntRect {
  Int64 Left = std::numeric_limits<Int64>::max() / 2;
  Int64 Right = std::numeric_limits<Int64>::min() / 2;
  Int64 Top = std::numeric_limits<Int64>::min() / 2;
  Int64 Bottom = std::numeric_limits<Int64>::max() / 2;

  bool IsValid() const { return Left <= Right && Bottom <= Top; }
  Int64 Width() const { return Right - Left; }
  Int64 Height() const { return Top - Bottom; }
  // The bounds divided by Scale; TVRect2D::InvalidRect for an empty box.
  PLATENEST_API TVRect2D ToRect(double Scale) const;

  friend bool operator==(const TIntRect&, const TIntRect&) = default;
};

class PLATENEST_API TPathUtils {
 public:
  TPathUtils() = delete;

  // From two integers; a double does not compile here, it must come through the other form.
  template <std::integral A, std::integral B>
  static TIntPoint CreateIntPoint(A X, B Y) {
    return {static_cast<ClipperLib::cInt>(X), static_cast<ClipperLib::cInt>(Y)};
  }
  // The only door from a drawing coordinate to a path coordinate: Point times Scale, to nearest with ties to even.
  static TIntPoint CreateIntPoint(const TPoint2D& Point, double Scale);
  // The only door back: the integer divided by Scale.
  static TPoint2D CreatePoint2D(const TIntPoint& IntPoint, double Scale) {
    return {static_cast<double>(IntPoint.X) / Scale, static_cast<double>(IntPoint.Y) / Scale};
  }
  static TPointL2D CreatePointL2D(const TIntPoint& IntPoint) { return {IntPoint.X, IntPoint.Y}; }

  // A repeated closing point is left out, also one that repeats the first point only after rounding.
  static TPath CreatePath(const TVPoint2DList& Polyline, double Scale);
  static TVPolyline2D CreatePolyline(const TPath& Path, double Scale);
  static TVPolyline2DList CreatePolylines(const TPaths& Paths, double Scale);
  // The path of largest absolute area (the first of equals) becomes the outer contour, the others follow in order:
  // Clipper does not promise that its first contour is the outline.
  static TVHPolygon CreateHPolygon(const TPaths& Paths, double Scale);
  static TPath Clone(const TPath& Path) { return Path; }
  static TPaths Clone(const TPaths& Paths) { return Paths; }

  static TIntRect BoundBox(const TPath& Path);
  static TIntRect BoundBox(const TPaths& Paths);
  // Summed Clipper areas in square path units. Mode 0: signed, so holes count down. Mode 1: absolute values.
  static double Area(const TPaths& Paths, int Mode = 0);
  // Summed perimeters in path units, closing edges included.
  static double TotalLength(const TPaths& Paths);

  static void PathsAddRange(TPaths& Paths, const TPaths& MorePaths);
  static void PathsAddRange(TPaths& Paths, TPaths&& MorePaths);
  // Appends the first point of every path whose last point differs from it.
  static void ConnectHeadTail(TPaths& Paths);
  // Reverses paths in place where needed. AllSame: all get the direction asked for, so that a hole would be filled by a
  // non-zero union. Otherwise the first path is the outer one and all others are holes of the opposite direction. A
  // path without area has no direction and stays.
  static void SetIsClockwise(TPaths& Paths, bool Clockwise, bool AllSame = false);

  static TPath Translate(const TPath& Path, const TPointL2D& Vector);
  static TPaths Translate(const TPaths& Paths, const TPointL2D& Vector);
  // Turned counter-clockwise about the origin by Angle radians, rounded to nearest.
  static TIntPoint Rotate(const TIntPoint& IntPoint, double Angle);
  static TPaths Rotate(const TPaths& Paths, double Angle);
  // Scaled about the origin, rounded to nearest.
  static TPaths Zoom(const TPaths& Paths, double Factor);

  // The x of every edge that meets the band from Y - Tol to Y + Tol, taken where the edge is nearest to the line at Y
  // and rounded to nearest (ties to even); an edge that lies in the band gives both its ends. With Tol 0 these are the
  // crossings with the line, touched vertices included. Order: paths, then edges; a vertex on the line comes once from
  // each of its edges. Flag: the edge from the last point to the first one counts. Edges of length 0 are skipped. The
  // arithmetic is exact.
  static std::vector<Int64> CalcXByY(const TPaths& Paths, Int64 Y, bool Flag, Int64 Tol);
  // The same for the y of a vertical line.
  static std::vector<Int64> CalcYByX(const TPaths& Paths, Int64 X, bool Flag, Int64 Tol);
};

}  // namespace platenest
