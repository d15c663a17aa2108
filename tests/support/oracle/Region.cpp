#include "Region.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace platenest {

namespace {

double DistanceToSegment(const TIntPoint& Point, const TIntPoint& A, const TIntPoint& B) {
  const double dx = static_cast<double>(B.X - A.X);
  const double dy = static_cast<double>(B.Y - A.Y);
  const double px = static_cast<double>(Point.X - A.X);
  const double py = static_cast<double>(Point.Y - A.Y);
  const double square = dx * dx + dy * dy;
  const double t = square > 0 ? std::clamp((px * dx + py * dy) / square, 0.0, 1.0) : 0.0;
  if (t == 0 || t == 1) return std::hypot(px - t * dx, py - t * dy);
  return std::abs(static_cast<double>(Turn(A, B, Point))) / std::sqrt(square);
}

bool Meet(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C, const TIntPoint& D) {
  if (!BoxesMeet(A, B, C, D)) return false;
  if (IsOnSegment(C, A, B) || IsOnSegment(D, A, B) || IsOnSegment(A, C, D) || IsOnSegment(B, C, D)) return true;
  return (Turn(A, B, C) > 0) != (Turn(A, B, D) > 0) && (Turn(C, D, A) > 0) != (Turn(C, D, B) > 0);
}

// Neighbours share one vertex and may share nothing else: the free end of neither lies on the other.
bool NeighboursFold(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C) {
  return IsOnSegment(C, A, B) || IsOnSegment(A, B, C);
}

}  // namespace

bool IsOnSegment(const TIntPoint& Point, const TIntPoint& A, const TIntPoint& B) {
  return BoxesMeet(Point, Point, A, B) && Turn(A, B, Point) == 0;
}

TPlace PlaceOf(const TIntPoint& Point, const TPaths& Region) {
  int winding = 0;
  for (const TPath& contour : Region) {
    for (std::size_t i = 0; i < contour.size(); ++i) {
      const TIntPoint& a = contour[i];
      const TIntPoint& b = Next(contour, i);
      if (IsOnSegment(Point, a, b)) return TPlace::Border;
      if (a.Y <= Point.Y && b.Y > Point.Y && Turn(a, b, Point) > 0) ++winding;
      if (b.Y <= Point.Y && a.Y > Point.Y && Turn(a, b, Point) < 0) --winding;
    }
  }
  return winding != 0 ? TPlace::Inside : TPlace::Outside;
}

double DistanceToBorder(const TIntPoint& Point, const TPaths& Region) {
  double nearest = std::numeric_limits<double>::infinity();
  for (const TPath& contour : Region) {
    for (std::size_t i = 0; i < contour.size(); ++i) {
      nearest = std::min(nearest, DistanceToSegment(Point, contour[i], Next(contour, i)));
    }
  }
  return nearest;
}

TPaths PolygonOf(const TVHPolygon& Part) {
  TPaths polygon;
  for (const TVPolyline2D& contour : Part) {
    TPath path = TPathUtils::CreatePath(contour, kPathScale);
    path.erase(std::unique(path.begin(), path.end()), path.end());
    if (path.size() > 2) polygon.push_back(std::move(path));
  }
  TPathUtils::SetIsClockwise(polygon, false);
  return polygon;
}

TVHPolygon PartOf(const TPaths& Polygon) {
  TVHPolygon part;
  for (const TPath& contour : Polygon) part.push_back(TPathUtils::CreatePolyline(contour, kPathScale));
  return part;
}

TPaths Scaled(TPaths Polygon, Int64 Factor) {
  for (TPath& contour : Polygon)
    for (TIntPoint& point : contour) point = {Factor * point.X, Factor * point.Y};
  return Polygon;
}

TPaths Negated(const TPaths& Polygon) {
  return Scaled(Polygon, -1);
}

TPaths Moved(const TPaths& Polygon, const TIntPoint& By) {
  return TPathUtils::Translate(Polygon, TPathUtils::CreatePointL2D(By));
}

TPaths Clipped(const TPaths& Subject, const TPaths& Clip, ClipperLib::ClipType Type) {
  TClipper clipper;
  clipper.AddPaths(Subject, ClipperLib::ptSubject, true);
  clipper.AddPaths(Clip, ClipperLib::ptClip, true);
  TPaths result;
  clipper.Execute(Type, result, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
  std::erase_if(result, [](const TPath& contour) { return contour.size() < 3; });
  return result;
}

TPaths Normalized(const TPaths& Region) {
  return Clipped(Region, {}, ClipperLib::ctUnion);
}

double RegionArea(const TPaths& Region) {
  return TPathUtils::Area(Normalized(Region)) / (kPathScale * kPathScale);
}

bool IsSimple(const TPaths& Polygon) {
  std::vector<std::array<TIntPoint, 2>> edges;
  for (const TPath& contour : Polygon) {
    if (contour.size() < 3) return false;
    for (std::size_t i = 0; i < contour.size(); ++i) {
      if (NeighboursFold(contour[i], Next(contour, i), contour[(i + 2) % contour.size()])) return false;
      edges.push_back({contour[i], Next(contour, i)});
    }
  }
  for (std::size_t i = 0; i < edges.size(); ++i) {
    for (std::size_t j = i + 1; j < edges.size(); ++j) {
      const bool neighbours = edges[i][1] == edges[j][0] || edges[j][1] == edges[i][0];
      if (!neighbours && Meet(edges[i][0], edges[i][1], edges[j][0], edges[j][1])) return false;
    }
  }
  return true;
}

}  // namespace platenest
