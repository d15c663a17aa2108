#include "Shapes.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "Contours.h"
#include "platenest/foundation/Random.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

using test::Uniform;

constexpr double kTurn = 2 * std::numbers::pi;

int Whole(int Low, int High) {
  return Low + Random(High - Low + 1);
}

TIntPoint At(double X, double Y) {
  return {Round(X * kPathScale), Round(Y * kPathScale)};
}
TIntPoint Polar(double Radius, double Angle) {
  return At(Radius * std::cos(Angle), Radius * std::sin(Angle));
}

// Points in the order of their directions from the middle.
TPath HullOf(TPath Points) {
  std::ranges::rotate(Points,
                      std::ranges::min_element(Points, {}, [](const TIntPoint& p) { return std::pair(p.X, p.Y); }));
  Points.push_back(Points.front());
  TPath hull;
  for (const TIntPoint& p : Points) {
    while (hull.size() > 1 && Turn(hull[hull.size() - 2], hull.back(), p) <= 0) hull.pop_back();
    hull.push_back(p);
  }
  hull.pop_back();
  return hull;
}

TPath Convex(int Edges, double Size) {
  const double flat = Uniform(0.3, 1);
  TPath points;
  for (int i = 0; i < Edges; ++i) {
    const double angle = (i + Uniform(0, 0.9)) * kTurn / Edges;
    points.push_back(At(Size / 2 * std::cos(angle), flat * Size / 2 * std::sin(angle)));
  }
  return HullOf(std::move(points));
}

TPath Star(int Edges, double Size) {
  TPath points;
  const double step = kTurn / Edges;
  for (int i = 0; i < Edges; ++i) {
    const double radius = Size / 2 * (i % 2 == 0 ? Uniform(0.7, 1) : Uniform(0.2, 0.6));
    points.push_back(Polar(radius, (i + Uniform(0, 0.7)) * step));
  }
  return points;
}

// The unit of shapes on the grid: as large as Size allows, but whole.
double GridUnit(double Size, int Units) {
  return std::max(1.0, std::floor(Size / Units));
}

TPath OnGrid(const std::vector<std::array<int, 2>>& Corners, double Unit) {
  TPath path;
  for (const auto& corner : Corners) path.push_back(At(corner[0] * Unit, corner[1] * Unit));
  return path;
}

TPath Comb(int Edges, double Size) {
  const int teeth = std::max(2, Edges / 4);
  const int depth = Whole(2, 8);
  std::vector<std::array<int, 2>> corners;
  int x = 0;
  for (int i = 0; i < teeth; ++i) {
    const int height = 1 + depth + Whole(0, 3);
    const int next = x + Whole(1, 3);
    corners.insert(corners.end(), {{x, height}, {next, height}});
    x = next;
    if (i + 1 == teeth) break;
    const int gap = Whole(1, 3);
    const int floor = Whole(1, 2);
    corners.insert(corners.end(), {{x, floor}, {x + gap, floor}});
    x += gap;
  }
  corners.insert(corners.end(), {{x, 0}, {0, 0}});
  std::reverse(corners.begin(), corners.end());
  return OnGrid(corners, GridUnit(Size, x));
}

// Columns of unequal reach up and down; neighbours share at least one unit of height.
TPath Staircase(int Edges, double Size) {
  const int columns = std::max(2, Edges / 4);
  std::vector<std::array<int, 2>> lower;
  std::vector<std::array<int, 2>> upper;
  int x = 0;
  int low = 0;
  int high = Whole(1, 6);
  for (int i = 0; i < columns; ++i) {
    const int next = x + Whole(1, 3);
    lower.insert(lower.end(), {{x, low}, {next, low}});
    upper.insert(upper.end(), {{x, high}, {next, high}});
    x = next;
    const int shared = Whole(low, high - 1);
    low = shared - Whole(0, 3);
    high = shared + 1 + Whole(0, 3);
  }
  lower.insert(lower.end(), upper.rbegin(), upper.rend());
  const TPath path = OnGrid(lower, GridUnit(Size, x));
  TPath bends;
  for (std::size_t i = 0; i < path.size(); ++i)
    if (Turn(path[(i + path.size() - 1) % path.size()], path[i], Next(path, i)) != 0) bends.push_back(path[i]);
  return bends;
}

TPath Gear(int Edges, double Size) {
  const int teeth = std::max(3, Edges / 4);
  const double outer = Size / 2;
  const double inner = outer * Uniform(0.7, 0.99);
  const double start = Uniform(0, kTurn);
  TPath points;
  for (int i = 0; i < teeth; ++i) {
    const double angle = start + i * kTurn / teeth;
    const double step = kTurn / teeth / 4;
    points.push_back(Polar(inner, angle));
    points.push_back(Polar(outer, angle + step * 0.8));
    points.push_back(Polar(outer, angle + step * 1.8));
    points.push_back(Polar(inner, angle + step * 2.6));
  }
  return points;
}

// Both edges of the band have their vertices in the same directions, so they cannot meet where the band is a fraction
// of the way between two turns.
TPath Spiral(int Edges, double Size) {
  const int steps = std::max(16, Edges / 2);
  const double turns = std::min(4.0, steps / 14.0);
  const double pitch = Size / 2 / (turns + 1);
  const double width = pitch * Uniform(0.3, 0.6);
  const double start = Uniform(0, kTurn);
  TPath outer;
  TPath inner;
  for (int i = 0; i <= steps; ++i) {
    const double around = turns * i / steps;
    const double radius = pitch * (1 + around);
    outer.push_back(Polar(radius, start + around * kTurn));
    inner.push_back(Polar(radius - width, start + around * kTurn));
  }
  outer.insert(outer.end(), inner.rbegin(), inner.rend());
  return outer;
}

TPaths NearParallel(int Edges, double Size, unsigned Seed) {
  TPath base;
  {
    const TRandomScope shared(Seed / 2);
    const int corners = Whole(3, 6);
    const double start = Uniform(0, 1);
    for (int i = 0; i < corners; ++i) base.push_back(Polar(500, (start + i + Uniform(0, 0.5)) * kTurn / corners));
  }
  const double scale = Size / 1000;
  const int pieces = std::max(2, Edges / static_cast<int>(base.size()));
  TPath points;
  for (std::size_t i = 0; i < base.size(); ++i) {
    const TIntPoint& a = base[i];
    const TIntPoint& b = Next(base, i);
    for (int k = 0; k < pieces; ++k) {
      const double t = k == 0 ? 0 : (k + Uniform(-0.3, 0.3)) / pieces;
      const double x = static_cast<double>(a.X) + t * static_cast<double>(b.X - a.X);
      const double y = static_cast<double>(a.Y) + t * static_cast<double>(b.Y - a.Y);
      points.push_back({Round(x * scale) + Whole(-2, 2), Round(y * scale) + Whole(-2, 2)});
    }
  }
  return {points};
}

TPath Slit(int Edges, double Size) {
  const int slits = std::max(1, Edges / 4 - 1);
  const double height = Size * Uniform(0.3, 1);
  TPath points{At(0, 0), At(Size, 0), At(Size, height)};
  for (int i = slits; i >= 1; --i) {
    const TIntPoint mouth = At((i + Uniform(-0.3, 0.3)) * Size / (slits + 1), height);
    const Int64 width = Random(2) == 0 ? Whole(1, 5) : Round(Uniform(1e-4, 0.02) * Size / slits * kPathScale) + 1;
    const TIntPoint floor = At(0, height * Uniform(0.1, 0.9));
    const Int64 slant = Random(2) == 0 ? 0 : Round(Uniform(-0.15, 0.15) * Size / (slits + 1) * kPathScale);
    points.push_back({mouth.X + width, mouth.Y});
    points.push_back({mouth.X + width + slant, floor.Y});
    points.push_back({mouth.X + slant, floor.Y});
    points.push_back(mouth);
  }
  points.push_back(At(0, height));
  return points;
}

TPaths Holed(int Edges, double Size, unsigned) {
  const int around = std::max(6, Edges / 3);
  TPaths polygon(1);
  for (int i = 0; i < around; ++i) {
    polygon[0].push_back(Polar(Size / 2 * Uniform(0.92, 1), (i + Uniform(0, 0.5)) * kTurn / around));
  }
  const int perHole = std::max(4, Edges / 6);
  const double cell = Size / 2 * 0.5;
  for (int i = 0; i < 4; ++i) {
    TPath hole = Random(2) == 0 ? Star(perHole, cell * 0.9) : Convex(perHole, cell * 0.9);
    const TIntPoint centre = At((i % 2 - 0.5) * cell, (i / 2 - 0.5) * cell);
    hole = Moved({hole}, centre).front();
    std::reverse(hole.begin(), hole.end());
    if (hole.size() > 2 && (i == 0 || Random(3) > 0)) polygon.push_back(std::move(hole));
  }
  return polygon;
}

TPath LShape(int, double Size) {
  const int w = Whole(2, 8), h = Whole(2, 8), a = Whole(1, w - 1), b = Whole(1, h - 1);
  return OnGrid({{0, 0}, {w, 0}, {w, b}, {a, b}, {a, h}, {0, h}}, GridUnit(Size, 8));
}

TPath UShape(int, double Size) {
  const int w = Whole(3, 9), h = Whole(2, 8), left = Whole(1, w - 2), gap = Whole(1, w - 1 - left);
  const int floor = Whole(1, h - 1), right = Whole(floor + 1, 9);
  return OnGrid(
      {{0, 0}, {w, 0}, {w, right}, {left + gap, right}, {left + gap, floor}, {left, floor}, {left, h}, {0, h}},
      GridUnit(Size, 9));
}

using TMaker = TPaths (*)(int Edges, double Size, unsigned Seed);

struct TKind {
  const char* Name;
  bool IsOnGrid;
  TMaker Make;
};

template <TPath (*Make)(int Edges, double Size)>
TPaths Outline(int Edges, double Size, unsigned) {
  return {Make(Edges, Size)};
}

// In the order of TShapeKind.
constexpr TKind kKinds[] = {
    {"convex", false, Outline<Convex>},      {"star", false, Outline<Star>},    {"comb", true, Outline<Comb>},
    {"staircase", true, Outline<Staircase>}, {"gear", false, Outline<Gear>},    {"spiral", false, Outline<Spiral>},
    {"near-parallel", false, NearParallel},  {"slit", false, Outline<Slit>},    {"holed", false, Holed},
    {"L shape", true, Outline<LShape>},      {"U shape", true, Outline<UShape>}};

const TKind& KindOf(TShapeKind Kind) {
  return kKinds[static_cast<std::size_t>(Kind)];
}

void TurnQuarters(TPaths& Polygon, int Quarters) {
  for (TPath& contour : Polygon)
    for (TIntPoint& p : contour)
      for (int i = 0; i < Quarters; ++i) p = TIntPoint(-p.Y, p.X);
}

TPaths MakePolygon(TShapeKind Kind, int Edges, double Size, unsigned Seed) {
  const TRandomScope scope(Seed * 16ULL + static_cast<unsigned>(Kind));
  TPaths polygon = KindOf(Kind).Make(std::max(8, Edges), Size, Seed);
  if (KindOf(Kind).IsOnGrid) TurnQuarters(polygon, Random(4));
  return polygon;
}

}  // namespace

const char* NameOf(TShapeKind Kind) {
  return KindOf(Kind).Name;
}

TVHPolygon MakeShape(TShapeKind Kind, int Edges, double Size, unsigned Seed) {
  return PartOf(MakePolygon(Kind, Edges, Size, Seed));
}

TShapePair MakePair(int MostEdges, unsigned Seed) {
  TShapeKind kinds[2];
  int edges[2];
  double sizes[2];
  {
    const TRandomScope scope(Seed * 16ULL + 15);
    const double size = std::pow(10, Uniform(1, 2.9));
    for (int i = 0; i < 2; ++i) {
      kinds[i] = kShapeKinds[static_cast<std::size_t>(Random(static_cast<int>(kShapeKinds.size())))];
      edges[i] = Whole(8, std::max(8, MostEdges));
      sizes[i] = size * Uniform(0.2, 1);
    }
    if (Random(10) == 0) kinds[1] = kinds[0];
  }
  return {MakeShape(kinds[0], edges[0], sizes[0], 2 * Seed), MakeShape(kinds[1], edges[1], sizes[1], 2 * Seed + 1),
          kinds[0], kinds[1]};
}

TJigsaw MakeJigsaw(TShapeKind Kind, int Edges, double Size, double Grow, unsigned Seed) {
  TPaths part = MakePolygon(Kind, Edges, Size, Seed);
  part.resize(1);
  const TRandomScope scope(Seed * 16ULL + 14);
  const TIntPoint place{Whole(-500, 500) * 100000LL, Whole(-500, 500) * 100000LL};
  TPaths hole = Moved(part, place);
  if (Grow > 0) {
    TClipperOffset offset;
    offset.AddPaths(hole, ClipperLib::jtMiter, ClipperLib::etClosedPolygon);
    TPaths grown;
    offset.Execute(grown, Grow * kPathScale);
    // Where a slit closes there are islands in the hole; the hole is their outline, the contour of largest area.
    hole = {*std::ranges::max_element(grown, {}, [](const TPath& path) { return ClipperLib::Area(path); })};
  }
  const TIntRect box = TPathUtils::BoundBox(hole);
  const Int64 rim = Round(Uniform(0.05, 0.3) * Size * kPathScale);
  TPaths plate{{{box.Left - rim, box.Bottom - rim},
                {box.Right + rim, box.Bottom - rim},
                {box.Right + rim, box.Top + rim},
                {box.Left - rim, box.Top + rim}}};
  std::reverse(hole.front().begin(), hole.front().end());
  plate.push_back(hole.front());
  return {PartOf(part), PartOf(plate), TPathUtils::CreatePoint2D(place, kPathScale)};
}

}  // namespace platenest
