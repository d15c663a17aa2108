#include "platenest/layoutcheck/PartCheck.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "PathTools.h"
#include "TextOf.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Types.h"

namespace platenest {

namespace {

using detail::Clipped;
using detail::Grown;
using detail::Meet;
using detail::TextOf;

constexpr int kMostSteps = 40;        // of the shortest vectors to each side
constexpr int kMostReductions = 200;  // far more than vectors within the limits need
// How much too near a copy at a corner may pass, as shares of the tolerance and, where the gap is far larger, of the
// gap.
constexpr double kArcOfTol = 0.05;
constexpr double kArcOfGap = 1e-7;
constexpr double kLeastStep = 1e-5;  // drawing units
// Area that shapes may share and still keep apart, in square path units: a few units along an edge's rounding.
constexpr double kShared = 100;
constexpr double kMostLength = 1e12;  // path units, of vectors and places

double Cross(const TPoint2D& A, const TPoint2D& B) {
  return A.X * B.Y - A.Y * B.X;
}

double Dot(const TPoint2D& A, const TPoint2D& B) {
  return A.X * B.X + A.Y * B.Y;
}

// The shortest vectors of the same lattice (Lagrange 1773). At least 60 degrees lie between them.
TLattice Reduced(TLattice Lattice) {
  auto& [first, second] = Lattice;
  for (int i = 0; i < kMostReductions; ++i) {
    if (Dot(second, second) < Dot(first, first)) std::swap(first, second);
    if (!(Dot(first, first) > 0)) break;
    const double times = std::nearbyint(Dot(first, second) / Dot(first, first));
    if (times == 0) break;
    second = second - first * times;
  }
  return Lattice;
}

bool IsUsable(const TPoint2D& Vector) {
  return std::fabs(Vector.X) * kPathScale <= kMostLength && std::fabs(Vector.Y) * kPathScale <= kMostLength;
}

std::string PointText(const TPoint2D& P) {
  return TextOf("[", P.X, ", ", P.Y, "]");
}

// How many steps of Length reach across Reach, in a lattice whose vectors stand at 60 degrees or more.
int StepsAcross(double Reach, double Length) {
  constexpr double kSine60 = 0.8660254037844386;
  const double steps = std::ceil(Reach / (Length * kSine60));
  return steps < kMostSteps ? static_cast<int>(steps) : kMostSteps;
}

// Whether a piece of the segment lies inside the box and not just on its border (Liang, Barsky 1984).
bool PassesThrough(const TPoint2D& From, const TPoint2D& To, const TPlacedBox& Box) {
  const TPoint2D way = To - From;
  const double ways[] = {-way.X, way.X, -way.Y, way.Y};
  const double rooms[] = {From.X - Box.Left, Box.Right - From.X, From.Y - Box.Bottom, Box.Top - From.Y};
  double enter = 0;
  double leave = 1;
  for (int side = 0; side < 4; ++side) {
    if (ways[side] == 0 && rooms[side] <= 0) return false;
    if (ways[side] < 0) enter = std::max(enter, rooms[side] / ways[side]);
    if (ways[side] > 0) leave = std::min(leave, rooms[side] / ways[side]);
  }
  return enter < leave;
}

TPath PathOf(const TPlacedBox& Box) {
  const TPoint2D corners[] = {
      {Box.Left, Box.Bottom}, {Box.Right, Box.Bottom}, {Box.Right, Box.Top}, {Box.Left, Box.Top}};
  TPath path;
  for (const TPoint2D& corner : corners) path.push_back(TPathUtils::CreateIntPoint(corner, kPathScale));
  return path;
}

double DistanceToEdge(const TIntPoint& Place, const TIntPoint& Start, const TIntPoint& End) {
  const TPoint2D way{static_cast<double>(End.X - Start.X), static_cast<double>(End.Y - Start.Y)};
  const TPoint2D off{static_cast<double>(Place.X - Start.X), static_cast<double>(Place.Y - Start.Y)};
  const double square = Dot(way, way);
  const double at = square > 0 ? std::clamp(Dot(off, way) / square, 0.0, 1.0) : 0;
  const TPoint2D rest = off - way * at;
  return std::hypot(rest.X, rest.Y);
}

}  // namespace

double TLattice::CellArea() const {
  return std::fabs(Cross(First, Second));
}

std::string CheckLattice(const TPaths& Part, const TLattice& Lattice, double Gap, double Tol) {
  if (!IsUsable(Lattice.First) || !IsUsable(Lattice.Second)) return "a vector is too long";
  if (!(Lattice.CellArea() > 0)) return "the vectors span no cell";
  const TLattice shortest = Reduced(Lattice);
  if (!(std::hypot(shortest.First.X, shortest.First.Y) >= kLeastStep)) return "copies lie on each other";
  const TPaths grown = Grown(Part, (Gap - Tol) * kPathScale, ClipperLib::jtRound,
                             std::max(kArcOfTol * Tol, kArcOfGap * Gap) * kPathScale);
  if (grown.empty()) return "";
  const TIntRect box = TPathUtils::BoundBox(grown);
  const double reach = (std::hypot(box.Width(), box.Height()) + kPathScale) / kPathScale;
  const int across = StepsAcross(reach, std::hypot(shortest.First.X, shortest.First.Y));
  const int up = StepsAcross(reach, std::hypot(shortest.Second.X, shortest.Second.Y));
  for (int j = 0; j <= up; ++j) {
    for (int i = j == 0 ? 1 : -across; i <= across; ++i) {
      const TPoint2D move = shortest.First * i + shortest.Second * j;
      const TPaths copy =
          TPathUtils::Translate(Part, TPathUtils::CreatePointL2D(TPathUtils::CreateIntPoint(move, kPathScale)));
      if (!Meet(TPathUtils::BoundBox(copy), box)) continue;
      if (TPathUtils::Area(Clipped(grown, copy, ClipperLib::ctIntersection)) > kShared)
        return "the copy at " + PointText(move) + (Gap > 0 ? " is too near" : " overlaps the part");
    }
  }
  return "";
}

std::string CheckLabel(const TPaths& Part, const std::vector<std::vector<TPoint2D>>& Lines, const TPlacedBox& Label,
                       double Margin, double Tol) {
  const double room = Margin - Tol;
  const TPlacedBox box{Label.Left - room, Label.Bottom - room, Label.Right + room, Label.Top + room};
  if (!box.IsProper()) return Label.IsProper() ? "" : "the label has no proper box";
  for (const double side : {box.Left, box.Bottom, box.Right, box.Top})
    if (!(std::fabs(side) * kPathScale <= kMostLength)) return "the label lies outside the part";
  if (TPathUtils::Area(Clipped({PathOf(box)}, Part, ClipperLib::ctDifference)) > kShared)
    return "the label with its margin does not lie inside the part";
  for (const auto& line : Lines)
    for (std::size_t i = 0; i + 1 < line.size(); ++i)
      if (PassesThrough(line[i], line[i + 1], box))
        return "the label with its margin meets the inner line from " + PointText(line[i]) + " to " +
               PointText(line[i + 1]);
  return "";
}

std::string CheckDisc(const TPaths& Part, const TPoint2D& Center, double Radius, double Tol) {
  if (!IsUsable(Center)) return "the disc lies outside the part";
  const TIntPoint center = TPathUtils::CreateIntPoint(Center, kPathScale);
  int winding = 0;
  for (const TPath& path : Part)
    if (ClipperLib::PointInPolygon(center, path) != 0) winding += ClipperLib::Orientation(path) ? 1 : -1;
  if (winding == 0) return "the centre lies outside the part";
  for (const TPath& path : Part)
    for (std::size_t i = 0; i < path.size(); ++i)
      if (DistanceToEdge(center, path[i], path[(i + 1) % path.size()]) < (Radius - Tol) * kPathScale)
        return "the disc sticks out of the part";
  return "";
}

}  // namespace platenest
