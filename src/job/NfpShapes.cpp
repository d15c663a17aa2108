#include "NfpShapes.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <unordered_map>
#include <utility>

namespace platenest::detail {

namespace {

// Positions of the parts that a list of ids names; all for an empty one.
std::vector<int> NamedParts(const std::vector<Part>& Parts, const std::vector<std::string>& Ids) {
  std::vector<int> positions;
  if (Ids.empty()) {
    positions.resize(Parts.size());
    std::iota(positions.begin(), positions.end(), 0);
    return positions;
  }
  std::unordered_map<std::string, int> known;  // look-up only
  for (int i = 0; i < Size(Parts); ++i) known.emplace(Parts[i].Id, i);
  for (const std::string& id : Ids)
    if (const auto found = known.find(id); found != known.end()) positions.push_back(found->second);
  return positions;
}

TIntPoint OnGrid(const PolygonPoint& P) {
  return TPathUtils::CreateIntPoint(TPoint2D{P[0], P[1]}, kPathScale);
}

}  // namespace

std::vector<TPairOfParts> PairsOf(const Job& AJob) {
  const bool skipsItself = AJob.Inside && (AJob.Fixed.empty() || AJob.Moving.empty());
  const std::vector<int> movingParts = NamedParts(AJob.Parts, AJob.Moving);
  std::vector<TPairOfParts> pairs;
  for (const int fixed : NamedParts(AJob.Parts, AJob.Fixed))
    for (const int moving : movingParts)
      if (fixed != moving || !skipsItself) pairs.push_back({fixed, moving});
  return pairs;
}

Int64 PairCount(const Job& AJob) {
  const Int64 fixed = AJob.Fixed.empty() ? Size(AJob.Parts) : Size(AJob.Fixed);
  return fixed * (AJob.Moving.empty() ? Size(AJob.Parts) : Size(AJob.Moving));
}

std::optional<int> SubjectOf(const Job& AJob) {
  if (AJob.PartId.empty()) return AJob.Parts.size() == 1 ? std::optional(0) : std::nullopt;
  const auto part = std::ranges::find(AJob.Parts, AJob.PartId, &Part::Id);
  if (part == AJob.Parts.end()) return std::nullopt;
  return static_cast<int>(part - AJob.Parts.begin());
}

std::vector<PolygonRing> ContoursOf(const Part& APart) {
  if (APart.Outline.empty()) return {{{0, 0}, {APart.Width, 0}, {APart.Width, APart.Height}, {0, APart.Height}}};
  std::vector<PolygonRing> contours{APart.Outline};
  contours.insert(contours.end(), APart.Holes.begin(), APart.Holes.end());
  for (PolygonRing& contour : contours) {
    const auto same = [](const PolygonPoint& A, const PolygonPoint& B) { return OnGrid(A) == OnGrid(B); };
    contour.erase(std::unique(contour.begin(), contour.end(), same), contour.end());
    while (contour.size() > 1 && same(contour.front(), contour.back())) contour.pop_back();
  }
  return contours;
}

Int64 VertexCount(const Part& APart) {
  if (APart.Outline.empty()) return 4;
  Int64 count = Size(APart.Outline);
  for (const PolygonRing& hole : APart.Holes) count += Size(hole);
  return count;
}

TVHPolygon ShapeOf(const Part& APart) {
  TVHPolygon shape;
  for (const PolygonRing& contour : ContoursOf(APart)) {
    TVPolyline2D line;
    for (const PolygonPoint& point : contour) line.push_back({point[0], point[1]});
    shape.push_back(std::move(line));
  }
  shape.IsRectangle = APart.Outline.empty();
  shape.SetIsClockwise(false);
  return shape;
}

TVHPolygon ClosedShapeOf(const Part& APart) {
  TVHPolygon shape = ShapeOf(APart);
  for (TVPolyline2D& contour : shape) contour.push_back(TPoint2D(contour.front()));
  return shape;
}

TPath PathOf(const PolygonRing& AContour) {
  TPath path;
  for (const PolygonPoint& point : AContour) {
    const TIntPoint grid = OnGrid(point);
    if (path.empty() || path.back() != grid) path.push_back(grid);
  }
  while (path.size() > 1 && path.front() == path.back()) path.pop_back();
  return path;
}

TPaths PathsOf(const std::vector<PolygonRing>& Contours) {
  TPaths paths;
  for (const PolygonRing& contour : Contours) paths.push_back(PathOf(contour));
  return paths;
}

TPaths PathsOf(const Part& APart) {
  TPaths paths = PathsOf(ContoursOf(APart));
  TPathUtils::SetIsClockwise(paths, false);
  return paths;
}

std::vector<std::vector<TPoint2D>> PointsOf(const std::vector<PolygonRing>& Contours) {
  std::vector<std::vector<TPoint2D>> lists;
  for (const PolygonRing& contour : Contours) {
    auto& points = lists.emplace_back();
    for (const PolygonPoint& point : contour) points.push_back({point[0], point[1]});
  }
  return lists;
}

double AreaOf(const Part& APart) {
  return TPathUtils::Area(PathsOf(APart)) / (kPathScale * kPathScale);
}

std::vector<PolygonRing> ContoursOf(const TPaths& Paths) {
  std::vector<PolygonRing> contours;
  for (const TPath& path : Paths) {
    PolygonRing& contour = contours.emplace_back();
    for (const TIntPoint& point : path) {
      const TPoint2D unit = TPathUtils::CreatePoint2D(point, kPathScale);
      contour.push_back({unit.X, unit.Y});
    }
  }
  return contours;
}

}  // namespace platenest::detail
