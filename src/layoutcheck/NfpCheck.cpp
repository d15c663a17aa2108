#include "platenest/layoutcheck/NfpCheck.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "EnclosedPlaces.h"
#include "PathTools.h"
#include "TextOf.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Types.h"

namespace platenest {

namespace {

using detail::Clipped;
using detail::Grown;
using detail::Meet;

// Area that rounding may leave where paths touch: this much for each unit of their length.
constexpr double kSliver = 2;
// Area that shapes may share and still fit. Of a shrunk shape, in square Tol, for overlaps just above Tol; of a grown
// one, in square path units, for rounding: the tip of a needle shares no more than a few dozen.
constexpr double kSharedShrunk = 0.05;
constexpr double kSharedGrown = 10;
// Half the least width, in Tol, of a piece that is wrong by area.
constexpr double kAreaDepth = 2;
// How far beside the boundary a lost place is looked for, in Tol: just beyond what may be wrong, and where a gross
// fault would show.
constexpr double kBeside[] = {4, 400};

// One size of the moving shape against the fixed one.
class TTrial {
 public:
  TTrial(const TNfpQuestion& Question, double Growth, double MostShared)
      : FQuestion(Question),
        FMoving(Grown(Question.Moving, Growth)),
        FFixedBox(TPathUtils::BoundBox(Question.Fixed)),
        FMostShared(MostShared) {}

  // Whether the shape may stand there.
  bool Fits(const TIntPoint& Place) const {
    if (FMoving.empty()) return true;
    const TPaths moved = TPathUtils::Translate(FMoving, TPathUtils::CreatePointL2D(Place));
    const bool meets = Meet(TPathUtils::BoundBox(moved), FFixedBox);
    if (!meets) return !FQuestion.IsInside;
    const auto type = FQuestion.IsInside ? ClipperLib::ctDifference : ClipperLib::ctIntersection;
    return TPathUtils::Area(Clipped(moved, FQuestion.Fixed, type)) <= FMostShared;
  }

 private:
  const TNfpQuestion& FQuestion;
  const TPaths FMoving;
  const TIntRect FFixedBox;
  const double FMostShared;  // square path units
};

struct TEdge {
  TIntPoint Start;
  TIntPoint End;
};

// At most Most edges, evenly spread over the list of all.
std::vector<TEdge> SomeEdges(const TPaths& Region, int Most) {
  std::vector<TEdge> edges;
  for (const TPath& path : Region)
    for (std::size_t i = 0; i < path.size(); ++i) edges.push_back({path[i], path[(i + 1) % path.size()]});
  const int count = Size(edges);
  if (count <= Most) return edges;
  std::vector<TEdge> some;
  for (int i = 0; i < Most; ++i) some.push_back(edges[static_cast<std::size_t>(Int64{i} * count / Most)]);
  return some;
}

TIntPoint MiddleOf(const TEdge& Edge) {
  return {Edge.Start.X + (Edge.End.X - Edge.Start.X) / 2, Edge.Start.Y + (Edge.End.Y - Edge.Start.Y) / 2};
}

// The point at Distance from the middle of an edge, to its left for a positive one: inside what the paths enclose.
std::optional<TIntPoint> Beside(const TEdge& Edge, double Distance) {
  const auto dx = static_cast<double>(Edge.End.X - Edge.Start.X);
  const auto dy = static_cast<double>(Edge.End.Y - Edge.Start.Y);
  const double length = std::hypot(dx, dy);
  if (length == 0) return std::nullopt;
  const TIntPoint middle = MiddleOf(Edge);
  return TIntPoint{middle.X + Round(-dy / length * Distance), middle.Y + Round(dx / length * Distance)};
}

bool IsWithin(const TPaths& Region, const TIntPoint& Place) {
  int winding = 0;
  for (const TPath& path : Region) {
    const int side = ClipperLib::PointInPolygon(Place, path);
    if (side == 0) continue;
    winding += ClipperLib::Orientation(path) ? 1 : -1;
  }
  return winding != 0;
}

// No edge of the region comes nearer to Place than Distance.
bool IsClear(const TPaths& Region, const TIntPoint& Place, double Distance) {
  const TPoint2D place{static_cast<double>(Place.X), static_cast<double>(Place.Y)};
  for (const TPath& path : Region) {
    TVPolyline2D line;
    for (const TIntPoint& point : path) line.push_back({static_cast<double>(point.X), static_cast<double>(point.Y)});
    TPoint2D nearest;
    if (line.DistTo(place, nearest) < Distance) return false;
  }
  return true;
}

std::string PlaceText(const TIntPoint& Place) {
  const TPoint2D point = TPathUtils::CreatePoint2D(Place, kPathScale);
  return detail::TextOf("[", point.X, ", ", point.Y, "]");
}

bool WindsOnce(const TPaths& Region) {
  TClipper clipper;
  clipper.AddPaths(Region, ClipperLib::ptSubject, true);
  TPaths filled;
  clipper.Execute(ClipperLib::ctUnion, filled, ClipperLib::pftPositive, ClipperLib::pftPositive);
  return std::fabs(TPathUtils::Area(Region) - TPathUtils::Area(filled)) <= kSliver * TPathUtils::TotalLength(Region);
}

std::string CheckBoundary(const TNfpQuestion& Question, const std::vector<TEdge>& Edges, double Tol) {
  const TTrial shrunk(Question, -Tol, kSharedShrunk * Tol * Tol);
  for (const TEdge& edge : Edges)
    for (const TIntPoint& place : {edge.Start, MiddleOf(edge)})
      if (!shrunk.Fits(place))
        return (Question.IsInside ? "the moving part sticks out at " : "the parts overlap at ") + PlaceText(place);
  return "";
}

std::string CheckLosses(const TNfpQuestion& Question, const TPaths& Region, const std::vector<TEdge>& Edges,
                        double Tol) {
  const TTrial grown(Question, Tol, kSharedGrown);
  for (const TEdge& edge : Edges) {
    for (const double beside : kBeside) {
      const std::optional<TIntPoint> place = Beside(edge, (Question.IsInside ? -1 : 1) * beside * Tol);
      if (!place || IsWithin(Region, *place) == Question.IsInside || !IsClear(Region, *place, 2 * Tol)) continue;
      if (grown.Fits(*place)) return "the moving part would fit at " + PlaceText(*place);
    }
  }
  return "";
}

Int64 PointCount(const TPaths& Shape) {
  Int64 count = 0;
  for (const TPath& path : Shape) count += Size(path);
  return count;
}

// A place that Enclosing encloses and Enclosed does not, more than Depth away from both borders.
std::optional<TIntPoint> DeepIn(const TPaths& Enclosing, const TPaths& Enclosed, double Depth) {
  const TPaths deep = Grown(Clipped(Enclosing, Enclosed, ClipperLib::ctDifference), -Depth);
  return deep.empty() ? std::nullopt : std::optional(deep.front().front());
}

std::string CheckArea(const TNfpQuestion& Question, const TPaths& Region, const TNfpCheckOptions& Options) {
  const TPaths truth = detail::EnclosedPlaces(Question);
  const double depth = kAreaDepth * Options.Tol;
  const auto missing = DeepIn(truth, Region, depth);
  const auto surplus = DeepIn(Region, truth, depth);
  if (const auto& wrong = Question.IsInside ? surplus : missing)
    return (Question.IsInside ? "the moving part sticks out at " : "the parts overlap at ") + PlaceText(*wrong);
  const auto& lost = Question.IsInside ? missing : surplus;
  return lost && Options.IsFull ? "the moving part would fit at " + PlaceText(*lost) : "";
}

}  // namespace

std::string CheckNfp(const TNfpQuestion& Question, const TPaths& Region, const TNfpCheckOptions& Options) {
  if (Region.empty() && !Question.IsInside) return "there is no polygon";
  if (!WindsOnce(Region)) return "the paths overlap, or turn the wrong way";
  // Two places for each edge: a corner and the middle, or two beside it.
  const std::vector<TEdge> edges = SomeEdges(Region, std::max(1, Options.MostSamples / 2));
  std::string fault = CheckBoundary(Question, edges, Options.Tol);
  if (fault.empty() && Options.IsFull) fault = CheckLosses(Question, Region, edges, Options.Tol);
  const bool isSmall = PointCount(Question.Fixed) * PointCount(Question.Moving) <= Options.MostContacts;
  return fault.empty() && isSmall ? CheckArea(Question, Region, Options) : fault;
}

}  // namespace platenest
