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

// 1 to the left, -1 to the right.
int SideOf(const TSide& Side, const TIntPoint& Point) {
  const TWide turn = Turn(Side.A, Side.B, Point);
  return (turn > 0) - (turn < 0);
}

bool CrossProperly(const TSide& S, const TSide& T) {
  return SideOf(S, T.A) * SideOf(S, T.B) < 0 && SideOf(T, S.A) * SideOf(T, S.B) < 0;
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

// Whether the inside of the other polygon lies to the left of a stretch from A to B that no vertex of it interrupts.
bool InsideIsLeft(const TIntPoint& A, const TIntPoint& B, const TPaths& Other, const std::vector<TSide>& Sides) {
  const TIntPoint middle{(A.X + B.X) / 2, (A.Y + B.Y) / 2};
  const TPlace place = PlaceOf(middle, Other);
  if (place != TPlace::Border) return place == TPlace::Inside;
  return std::any_of(Sides.begin(), Sides.end(), [&](const TSide& t) {
    const TWide along =
        static_cast<TWide>(B.X - A.X) * (t.B.X - t.A.X) + static_cast<TWide>(B.Y - A.Y) * (t.B.Y - t.A.Y);
    return along > 0 && IsOnSegment(middle, t.A, t.B);
  });
}

bool AnyStretchInside(const std::vector<TSide>& Sides, const TIntRect& Box, const TPaths& Other,
                      const std::vector<TSide>& OtherSides) {
  return std::any_of(Sides.begin(), Sides.end(), [&](const TSide& side) {
    TPath stops = side.Cuts;
    stops.insert(stops.end(), {side.A, side.B});
    const auto way = [&](const TIntPoint& p) { return std::abs(p.X - side.A.X) + std::abs(p.Y - side.A.Y); };
    SortBy(stops, [&](const TIntPoint& p, const TIntPoint& q) { return (way(p) > way(q)) - (way(p) < way(q)); });
    for (std::size_t i = 0; i + 1 < stops.size(); ++i) {
      if (stops[i] == stops[i + 1] || !Reaches(Box, stops[i], stops[i + 1])) continue;
      if (InsideIsLeft(stops[i], stops[i + 1], Other, OtherSides)) return true;
    }
    return false;
  });
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
// other polygon or along its border in the same direction. At twice the size the middle of a stretch is a whole point.
bool Overlaps(const TPaths& A, const TPaths& B) {
  const TPaths polygons[] = {Scaled(A, 2), Scaled(B, 2)};
  const TIntRect a = TPathUtils::BoundBox(polygons[0]);
  const TIntRect b = TPathUtils::BoundBox(polygons[1]);
  const TIntRect common{std::max(a.Left, b.Left), std::min(a.Right, b.Right), std::min(a.Top, b.Top),
                        std::max(a.Bottom, b.Bottom)};
  if (common.Left >= common.Right || common.Bottom >= common.Top) return false;
  std::vector<TSide> first = SidesIn(common, polygons[0]);
  std::vector<TSide> second = SidesIn(common, polygons[1]);
  if (CutOrCross(first, second)) return true;
  return AnyStretchInside(first, common, polygons[1], second) || AnyStretchInside(second, common, polygons[0], first);
}

bool OverlapsAt(const TPaths& Static, const TPaths& Dynamic, const TIntPoint& At) {
  return Overlaps(Static, Moved(Dynamic, At));
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
