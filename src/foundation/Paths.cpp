#include "platenest/foundation/Paths.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

using ClipperLib::cInt;
__extension__ using Int128 = __int128;

template <class Move>
TPath Mapped(const TPath& Path, Move PointMove) {
  TPath result;
  result.reserve(Path.size());
  for (const TIntPoint& point : Path) result.push_back(PointMove(point));
  return result;
}

template <class Move>
TPaths Mapped(const TPaths& Paths, Move PointMove) {
  TPaths result;
  result.reserve(Paths.size());
  for (const TPath& path : Paths) result.push_back(Mapped(path, PointMove));
  return result;
}

void ExpandInPlace(TIntRect& Box, const TPath& Path) {
  for (const TIntPoint& point : Path) {
    Box.Left = std::min<Int64>(Box.Left, point.X);
    Box.Right = std::max<Int64>(Box.Right, point.X);
    Box.Top = std::max<Int64>(Box.Top, point.Y);
    Box.Bottom = std::min<Int64>(Box.Bottom, point.Y);
  }
}

void OrientPath(TPath& Path, bool Clockwise) {
  const double area = ClipperLib::Area(Path);
  if (area != 0 && (area < 0) != Clockwise) ClipperLib::ReversePath(Path);
}

// Numerator / Denominator to nearest, ties to even.
Int64 RoundedQuotient(Int128 Numerator, Int128 Denominator) {
  if (Denominator < 0) {
    Numerator = -Numerator;
    Denominator = -Denominator;
  }
  Int128 quotient = Numerator / Denominator;
  Int128 rest = Numerator % Denominator;
  if (rest < 0) {
    rest += Denominator;
    --quotient;
  }
  const Int128 other = Denominator - rest;
  if (rest > other || (rest == other && quotient % 2 != 0)) ++quotient;
  return static_cast<Int64>(quotient);
}

// A scan line at Level on the axis Across; what is reported are coordinates on the axis Along.
template <cInt TIntPoint::*Along, cInt TIntPoint::*Across>
struct TScan {
  cInt Level;
  cInt Low;  // the band
  cInt High;

  bool Meets(const TIntPoint& A, const TIntPoint& B) const {
    return std::min(A.*Across, B.*Across) <= High && std::max(A.*Across, B.*Across) >= Low;
  }
  bool Holds(const TIntPoint& A, const TIntPoint& B) const {
    return std::min(A.*Across, B.*Across) >= Low && std::max(A.*Across, B.*Across) <= High;
  }
  // The coordinate where the edge is nearest to the line; A and B differ on the axis Across.
  Int64 Nearest(const TIntPoint& A, const TIntPoint& B) const {
    const auto [low, high] = std::minmax(A.*Across, B.*Across);
    const Int128 rise = static_cast<Int128>(B.*Across) - A.*Across;
    const Int128 climbed = static_cast<Int128>(std::clamp(Level, low, high)) - A.*Across;
    const Int128 run = static_cast<Int128>(B.*Along) - A.*Along;
    return RoundedQuotient(A.*Along * rise + run * climbed, rise);
  }

  template <class Visit>
  void ForEachEdge(const TPaths& Paths, bool Closed, Visit VisitEdge) const {
    for (const TPath& path : Paths) {
      if (path.size() < 2) continue;
      for (std::size_t i = 1; i < path.size(); ++i) VisitIfMet(path[i - 1], path[i], VisitEdge);
      if (Closed) VisitIfMet(path.back(), path.front(), VisitEdge);
    }
  }
  template <class Visit>
  void VisitIfMet(const TIntPoint& A, const TIntPoint& B, Visit VisitEdge) const {
    if (Meets(A, B) && A != B) VisitEdge(A, B);
  }

  std::vector<Int64> Crossings(const TPaths& Paths, bool Closed) const {
    std::size_t count = 0;
    ForEachEdge(Paths, Closed, [&](const TIntPoint& A, const TIntPoint& B) { count += Holds(A, B) ? 2 : 1; });
    std::vector<Int64> crossings;
    crossings.reserve(count);
    ForEachEdge(Paths, Closed, [&](const TIntPoint& A, const TIntPoint& B) {
      if (Holds(A, B)) {
        crossings.push_back(A.*Along);
        crossings.push_back(B.*Along);
      } else {
        crossings.push_back(Nearest(A, B));
      }
    });
    return crossings;
  }
};

TIntPoint Turned(const TIntPoint& P, double Cosine, double Sine) {
  const double x = static_cast<double>(P.X);
  const double y = static_cast<double>(P.Y);
  return TPathUtils::CreateIntPoint(TPoint2D{x * Cosine - y * Sine, x * Sine + y * Cosine}, 1.0);
}

}  // namespace

TVRect2D TIntRect::ToRect(double Scale) const {
  if (!IsValid()) return TVRect2D::InvalidRect;
  return TVRect2D::FromBounds(static_cast<double>(Top) / Scale, static_cast<double>(Left) / Scale,
                              static_cast<double>(Bottom) / Scale, static_cast<double>(Right) / Scale);
}

TIntPoint TPathUtils::CreateIntPoint(const TPoint2D& Point, double Scale) {
  return {Round<cInt>(Point.X * Scale), Round<cInt>(Point.Y * Scale)};
}

TPath TPathUtils::CreatePath(const TVPoint2DList& Polyline, double Scale) {
  TPath path;
  path.reserve(Polyline.size());
  for (const TPoint2D& point : Polyline) path.push_back(CreateIntPoint(point, Scale));
  if (path.size() > 1 && Polyline.front() == Polyline.back()) path.pop_back();
  while (path.size() > 1 && path.front() == path.back()) path.pop_back();
  return path;
}

TVPolyline2D TPathUtils::CreatePolyline(const TPath& Path, double Scale) {
  TVPolyline2D polyline;
  polyline.reserve(Path.size());
  for (const TIntPoint& point : Path) polyline.push_back(CreatePoint2D(point, Scale));
  return polyline;
}

TVPolyline2DList TPathUtils::CreatePolylines(const TPaths& Paths, double Scale) {
  TVPolyline2DList polylines;
  polylines.reserve(Paths.size());
  for (const TPath& path : Paths) polylines.push_back(CreatePolyline(path, Scale));
  return polylines;
}

TVHPolygon TPathUtils::CreateHPolygon(const TPaths& Paths, double Scale) {
  TVHPolygon polygon;
  if (Paths.empty()) return polygon;
  std::size_t outer = 0;
  double largest = -1;
  for (std::size_t i = 0; i < Paths.size(); ++i) {
    const double area = std::fabs(ClipperLib::Area(Paths[i]));
    if (area > largest) {
      largest = area;
      outer = i;
    }
  }
  polygon.reserve(Paths.size());
  polygon.push_back(CreatePolyline(Paths[outer], Scale));
  for (std::size_t i = 0; i < Paths.size(); ++i)
    if (i != outer) polygon.push_back(CreatePolyline(Paths[i], Scale));
  return polygon;
}

TIntRect TPathUtils::BoundBox(const TPath& Path) {
  TIntRect box;
  ExpandInPlace(box, Path);
  return box;
}

TIntRect TPathUtils::BoundBox(const TPaths& Paths) {
  TIntRect box;
  for (const TPath& path : Paths) ExpandInPlace(box, path);
  return box;
}

double TPathUtils::Area(const TPaths& Paths, int Mode) {
  double sum = 0;
  for (const TPath& path : Paths) {
    const double area = ClipperLib::Area(path);
    sum += Mode == 1 ? std::fabs(area) : area;
  }
  return sum;
}

double TPathUtils::TotalLength(const TPaths& Paths) {
  double sum = 0;
  for (const TPath& path : Paths) {
    for (std::size_t i = 0; i < path.size(); ++i) {
      const TIntPoint& to = path[i + 1 == path.size() ? 0 : i + 1];
      sum += TPoint2D{static_cast<double>(to.X - path[i].X), static_cast<double>(to.Y - path[i].Y)}.Mag();
    }
  }
  return sum;
}

void TPathUtils::PathsAddRange(TPaths& Paths, const TPaths& MorePaths) {
  Paths.insert(Paths.end(), MorePaths.begin(), MorePaths.end());
}

void TPathUtils::PathsAddRange(TPaths& Paths, TPaths&& MorePaths) {
  Paths.insert(Paths.end(), std::make_move_iterator(MorePaths.begin()), std::make_move_iterator(MorePaths.end()));
}

void TPathUtils::ConnectHeadTail(TPaths& Paths) {
  for (TPath& path : Paths) {
    if (path.empty() || path.front() == path.back()) continue;
    const TIntPoint first = path.front();
    path.push_back(first);
  }
}

void TPathUtils::SetIsClockwise(TPaths& Paths, bool Clockwise, bool AllSame) {
  for (std::size_t i = 0; i < Paths.size(); ++i) OrientPath(Paths[i], AllSame || i == 0 ? Clockwise : !Clockwise);
}

TPath TPathUtils::Translate(const TPath& Path, const TPointL2D& Vector) {
  return Mapped(Path, [&Vector](const TIntPoint& P) { return CreateIntPoint(P.X + Vector.X, P.Y + Vector.Y); });
}

TPaths TPathUtils::Translate(const TPaths& Paths, const TPointL2D& Vector) {
  return Mapped(Paths, [&Vector](const TIntPoint& P) { return CreateIntPoint(P.X + Vector.X, P.Y + Vector.Y); });
}

TIntPoint TPathUtils::Rotate(const TIntPoint& IntPoint, double Angle) {
  return Turned(IntPoint, std::cos(Angle), std::sin(Angle));
}

TPaths TPathUtils::Rotate(const TPaths& Paths, double Angle) {
  const double cosine = std::cos(Angle);
  const double sine = std::sin(Angle);
  return Mapped(Paths, [=](const TIntPoint& P) { return Turned(P, cosine, sine); });
}

TPaths TPathUtils::Zoom(const TPaths& Paths, double Factor) {
  return Mapped(Paths, [Factor](const TIntPoint& P) {
    return CreateIntPoint(TPoint2D{static_cast<double>(P.X), static_cast<double>(P.Y)}, Factor);
  });
}

std::vector<Int64> TPathUtils::CalcXByY(const TPaths& Paths, Int64 Y, bool Flag, Int64 Tol) {
  return TScan<&TIntPoint::X, &TIntPoint::Y>{Y, Y - Tol, Y + Tol}.Crossings(Paths, Flag);
}

std::vector<Int64> TPathUtils::CalcYByX(const TPaths& Paths, Int64 X, bool Flag, Int64 Tol) {
  return TScan<&TIntPoint::Y, &TIntPoint::X>{X, X - Tol, X + Tol}.Crossings(Paths, Flag);
}

}  // namespace platenest
