#include "OverlapDepth.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>

#include "platenest/foundation/Sort.h"

namespace platenest {

namespace {

constexpr double kRoundingOfOffset = 2;  // path units that a vertex may be off

struct TSide {
  TIntPoint A;
  TIntPoint B;
  TPath Cuts;  // vertices of the other polygon that lie on it
};

bool Reaches(const TIntRect& Box, const TIntPoint& A, const TIntPoint& B) {
  return BoxesMeet({Box.Left, Box.Bottom}, {Box.Right, Box.Top}, A, B);
}

std::vector<TSide> SidesIn(const TIntRect& Box, const TPaths& Polygon) {
  std::vector<TSide> sides;
  for (const TPath& contour : Polygon)
    for (std::size_t i = 0; i < contour.size(); ++i)
      if (Reaches(Box, contour[i], Next(contour, i))) sides.push_back({contour[i], Next(contour, i), {}});
  return sides;
}

bool CrossProperly(const TSide& S, const TSide& T) {
  const TWide a = Turn(S.A, S.B, T.A);
  const TWide b = Turn(S.A, S.B, T.B);
  if (a == 0 || b == 0 || (a > 0) == (b > 0)) return false;
  const TWide c = Turn(T.A, T.B, S.A);
  const TWide d = Turn(T.A, T.B, S.B);
  return c != 0 && d != 0 && (c > 0) != (d > 0);
}

void AddCut(TSide& Side, const TIntPoint& Point) {
  if (Point != Side.A && Point != Side.B && IsOnSegment(Point, Side.A, Side.B)) Side.Cuts.push_back(Point);
}

// True as soon as two sides cross; otherwise each side knows where the other polygon touches it.
bool CutOrCross(std::vector<TSide>& First, std::vector<TSide>& Second) {
  for (TSide& s : First) {
    for (TSide& t : Second) {
      if (!BoxesMeet(s.A, s.B, t.A, t.B)) continue;
      if (CrossProperly(s, t)) return true;
      AddCut(s, t.A);
      AddCut(s, t.B);
      AddCut(t, s.A);
      AddCut(t, s.B);
    }
  }
  return false;
}

TIntPoint Doubled(const TIntPoint& P) {
  return {2 * P.X, 2 * P.Y};
}

// All of the other polygon and its sides at twice the size, where the middle of two vertices is a whole point.
struct TDoubled {
  TPaths Polygon;
  std::vector<TSide> Sides;
};

TDoubled Double(const TPaths& Polygon, const std::vector<TSide>& Sides) {
  TDoubled result{Polygon, {}};
  for (TPath& contour : result.Polygon) std::transform(contour.begin(), contour.end(), contour.begin(), Doubled);
  for (const TSide& side : Sides) result.Sides.push_back({Doubled(side.A), Doubled(side.B), {}});
  return result;
}

// Whether the inside of the other polygon lies to the left of a stretch from A to B that no vertex of it interrupts.
bool InsideIsLeft(const TIntPoint& A, const TIntPoint& B, const TDoubled& Other) {
  const TIntPoint middle{A.X + B.X, A.Y + B.Y};
  const TPlace place = PlaceOf(middle, Other.Polygon);
  if (place != TPlace::Border) return place == TPlace::Inside;
  return std::any_of(Other.Sides.begin(), Other.Sides.end(), [&](const TSide& t) {
    if (!IsOnSegment(middle, t.A, t.B)) return false;
    const TWide along =
        static_cast<TWide>(B.X - A.X) * (t.B.X - t.A.X) + static_cast<TWide>(B.Y - A.Y) * (t.B.Y - t.A.Y);
    return along > 0;
  });
}

bool AnyStretchInside(std::vector<TSide>& Sides, const TIntRect& Box, const TDoubled& Other) {
  for (TSide& side : Sides) {
    TPath stops = std::move(side.Cuts);
    stops.push_back(side.A);
    stops.push_back(side.B);
    const TIntPoint start = side.A;
    SortBy(stops, [&](const TIntPoint& p, const TIntPoint& q) {
      const Int64 toP = std::abs(p.X - start.X) + std::abs(p.Y - start.Y);
      const Int64 toQ = std::abs(q.X - start.X) + std::abs(q.Y - start.Y);
      return (toP > toQ) - (toP < toQ);
    });
    stops.erase(std::unique(stops.begin(), stops.end()), stops.end());
    for (std::size_t i = 0; i + 1 < stops.size(); ++i) {
      if (Reaches(Box, stops[i], stops[i + 1]) && InsideIsLeft(stops[i], stops[i + 1], Other)) return true;
    }
  }
  return false;
}

// Slivers below a path unit turn inside out in the offset; a true rest keeps its distance from the border.
bool Survives(const TPaths& Region, double Inset) {
  TClipperOffset offset;
  offset.AddPaths(Region, ClipperLib::jtMiter, ClipperLib::etClosedPolygon);
  TPaths rest;
  offset.Execute(rest, -Inset);
  const auto isDeep = [&](const TIntPoint& p) {
    return PlaceOf(p, Region) != TPlace::Outside && DistanceToBorder(p, Region) >= Inset - kRoundingOfOffset;
  };
  return std::any_of(rest.begin(), rest.end(),
                     [&](const TPath& path) { return std::any_of(path.begin(), path.end(), isDeep); });
}

}  // namespace

// Where no sides cross, the insides meet if and only if some stretch of one border, cut at all contacts, runs in the
// other polygon or along its border in the same direction.
bool Overlaps(const TPaths& A, const TPaths& B) {
  const TIntRect a = TPathUtils::BoundBox(A);
  const TIntRect b = TPathUtils::BoundBox(B);
  const TIntRect common{std::max(a.Left, b.Left), std::min(a.Right, b.Right), std::min(a.Top, b.Top),
                        std::max(a.Bottom, b.Bottom)};
  if (common.Left >= common.Right || common.Bottom >= common.Top) return false;
  std::vector<TSide> first = SidesIn(common, A);
  std::vector<TSide> second = SidesIn(common, B);
  if (CutOrCross(first, second)) return true;
  return AnyStretchInside(first, common, Double(B, second)) || AnyStretchInside(second, common, Double(A, first));
}

bool OverlapsAt(const TPaths& Static, const TPaths& Dynamic, const TIntPoint& At) {
  return Overlaps(Static, TPathUtils::Translate(Dynamic, TPathUtils::CreatePointL2D(At)));
}

double OverlapDepth(const TPaths& A, const TPaths& B) {
  return InnerWidth(Clipped(A, B, ClipperLib::ctIntersection));
}

double DepthOutside(const TPaths& Plate, const TPaths& Part) {
  return InnerWidth(Clipped(Part, Plate, ClipperLib::ctDifference));
}

double InnerWidth(const TPaths& Region) {
  if (Region.empty()) return 0;
  double low = 0;
  double high = std::sqrt(std::max(0.0, TPathUtils::Area(Region)) / std::numbers::pi) + 1;
  while (high - low > 0.5) {
    const double middle = (low + high) / 2;
    (Survives(Region, middle) ? low : high) = middle;
  }
  return 2 * low / kPathScale;
}

}  // namespace platenest
