#include "NfpChecks.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "CheckTools.h"
#include "NfpShapes.h"
#include "platenest/foundation/ClipperAdapter.h"
#include "platenest/foundation/LineIntersector.h"

namespace platenest::detail {

namespace {

// Contours that cross more often are refused without a look at how deep.
constexpr int kMostCrossings = 1000;
// How far contours may cross, along their whole length: what rounding to the grid can do to contours that touch.
constexpr double kTouch = 2;  // path units

std::string ContourPlace(int PartIndex, int ContourIndex) {
  if (ContourIndex == 0) return Joined("/parts/", PartIndex, "/outline");
  return Joined("/parts/", PartIndex, "/holes/", ContourIndex - 1);
}

// Whether the points are within the limits.
bool CheckCoordinates(const PolygonRing& AContour, const std::string& Place, FaultList& Faults) {
  if (Size(AContour) > limits::kVertices) {
    Faults.AddLimit(Place, Joined("must have at most ", limits::kVertices, " points, found ", Size(AContour)));
    return false;
  }
  for (int i = 0; i < Size(AContour); ++i) {
    for (int axis = 0; axis < 2; ++axis) {
      const double v = AContour[i][axis];
      const std::string place = Joined(Place, "/", i, "/", axis);
      if (!std::isfinite(v)) {
        Faults.AddInput("range", place, "must be a finite number");
        return false;
      }
      if (std::fabs(v) <= limits::kLargestCoordinate) continue;
      Faults.AddLimit(place, Joined("must be from ", -limits::kLargestCoordinate, " to ", limits::kLargestCoordinate,
                                    ", found ", v));
      return false;
    }
  }
  return true;
}

// Whether there are enough points for a shape or, with Least 2, for a line.
bool CheckPoints(const PolygonRing& AContour, int Least, const std::string& Place, FaultList& Faults) {
  if (!CheckCoordinates(AContour, Place, Faults)) return false;
  const int count = Size(PathOf(AContour));
  if (count >= Least) return true;
  Faults.AddInput("entries", Place, Joined("must have at least ", Least, " different points, found ", count));
  return false;
}

// Whether a contour can be worked with at all.
bool CheckContour(const PolygonRing& AContour, const std::string& Place, FaultList& Faults) {
  if (!CheckPoints(AContour, 3, Place, Faults)) return false;
  if (ClipperLib::Area(PathOf(AContour)) != 0) return true;
  Faults.AddInput("shape", Place, "must enclose an area");
  return false;
}

void CheckBoxSize(const PolygonRing& Outline, const std::string& Place, FaultList& Faults) {
  const TVRect2D box = TPathUtils::BoundBox(PathOf(Outline)).ToRect(kPathScale);
  for (const double side : {box.Right - box.Left, box.Top - box.Bottom})
    CheckNumber(side, kSizeRule, Fixed(Place), Faults);
}

double FilledArea(const TPaths& Paths, ClipperLib::PolyFillType Fill) {
  TClipper clipper;
  clipper.AddPaths(Paths, ClipperLib::ptSubject, true);
  TPaths filled;
  clipper.Execute(ClipperLib::ctUnion, filled, Fill, Fill);
  return TPathUtils::Area(filled);
}

// Every point is wound around once or not at all: what the directions of the contours say is what they fill.
bool IsCleanlyFilled(const TPaths& Paths, ClipperLib::PolyFillType Fill) {
  const double difference = std::fabs(TPathUtils::Area(Paths)) - FilledArea(Paths, Fill);
  return std::fabs(difference) <= kTouch * TPathUtils::TotalLength(Paths);
}

// The crossings of all contours of a part, and which contour each edge belongs to.
class TCrossings {
 public:
  explicit TCrossings(const TPaths& Paths) {
    TVLine2DList edges;
    for (int c = 0; c < Size(Paths); ++c) {
      for (std::size_t i = 0; i < Paths[c].size(); ++i) {
        const TIntPoint& end = Paths[c][(i + 1) % Paths[c].size()];
        edges.push_back(
            {TPathUtils::CreatePoint2D(Paths[c][i], kPathScale), TPathUtils::CreatePoint2D(end, kPathScale)});
        FContours.push_back(c);
      }
    }
    TLineIntersector sweep(std::move(edges), false);
    sweep.FindInterSect(kMostCrossings);
    FHits = sweep.Intersections();
  }

  bool IsEmpty() const { return FHits.empty(); }
  bool AreTooMany() const { return Size(FHits) >= kMostCrossings; }
  // A crossing as a fault of the later one of its contours.
  void Tell(int PartIndex, FaultList& Faults) const {
    const TLineHit& hit = FHits.front();
    const auto [first, second] = std::minmax(FContours[hit.Line1], FContours[hit.Line2]);
    const std::string near = Joined(" near [", hit.Point.X, ", ", hit.Point.Y, "]");
    const std::string what = first == second ? "crosses itself" : "crosses " + ContourPlace(PartIndex, first);
    Faults.AddInput("shape", ContourPlace(PartIndex, second), what + near);
  }

 private:
  std::vector<int> FContours;
  std::vector<TLineHit> FHits;
};

// Names the contour that is wrong although no two edges cross.
void TellWrongContour(const TPaths& Paths, int PartIndex, FaultList& Faults) {
  for (int c = 0; c < Size(Paths); ++c)
    if (!IsCleanlyFilled({Paths[c]}, ClipperLib::pftNonZero))
      return Faults.AddInput("shape", ContourPlace(PartIndex, c), "crosses or repeats itself");
  for (int c = 1; c < Size(Paths); ++c)
    if (!IsCleanlyFilled({Paths[0], Paths[c]}, ClipperLib::pftPositive))
      return Faults.AddInput("shape", ContourPlace(PartIndex, c), "must lie inside the outline");
  Faults.AddInput("shape", Joined("/parts/", PartIndex, "/holes"), "must not overlap each other");
}

void CheckContours(const Part& APart, int Index, FaultList& Faults) {
  const TPaths paths = PathsOf(APart);
  const TCrossings crossings(paths);
  if (!crossings.AreTooMany() && IsCleanlyFilled(paths, ClipperLib::pftPositive)) return;
  if (crossings.IsEmpty()) return TellWrongContour(paths, Index, Faults);
  crossings.Tell(Index, Faults);
}

std::vector<std::string_view> IdsOf(const std::vector<Part>& Parts) {
  std::vector<std::string_view> ids;
  for (const Part& part : Parts) ids.push_back(part.Id);
  return ids;
}

std::string NamesNoPart(const Job& AJob, std::string_view Id) {
  return Joined("names no part, found ", Quoted(Id), NearMiss(Id, IdsOf(AJob.Parts)));
}

void CheckIdList(const Job& AJob, const std::vector<std::string>& Ids, std::string_view Member, FaultList& Faults) {
  std::unordered_map<std::string_view, bool> seen;  // look-up only
  for (const Part& part : AJob.Parts) seen.emplace(part.Id, false);
  for (int i = 0; i < Size(Ids); ++i) {
    const std::string place = Ids.size() == 1 ? Joined("/", Member) : Joined("/", Member, "/", i);
    const auto found = seen.find(Ids[i]);
    if (found == seen.end()) {
      Faults.AddInput("choice", place, NamesNoPart(AJob, Ids[i]));
    } else if (std::exchange(found->second, true)) {
      Faults.AddInput("duplicate-id", place, Joined(Quoted(Ids[i]), " stands twice in the list"));
    }
  }
}

void CheckVertexProducts(const Job& AJob, const std::vector<TPairOfParts>& Pairs, FaultList& Faults) {
  std::vector<Int64> counts;
  for (const Part& part : AJob.Parts) counts.push_back(VertexCount(part));
  for (const auto& [fixed, moving] : Pairs) {
    if (counts[fixed] * counts[moving] <= limits::kVertexProduct) continue;
    return Faults.AddLimit(Joined("/parts/", moving),
                           Joined("has ", counts[moving], " points, times the ", counts[fixed], " of /parts/", fixed,
                                  " more than the ", limits::kVertexProduct, " that a pair may have"));
  }
}

void CheckPairs(const Job& AJob, FaultList& Faults) {
  const Int64 count = PairCount(AJob);
  if (count > limits::kPairs)
    return Faults.AddLimit("/parts", Joined("must make at most ", limits::kPairs, " pairs, found ", count));
  const std::vector<TPairOfParts> pairs = PairsOf(AJob);
  if (pairs.empty() && !AJob.Parts.empty() && !Faults.Knows("/fixed") && !Faults.Knows("/moving"))
    Faults.AddInput("entries", "/parts", "must make at least 1 pair of two parts");
  CheckVertexProducts(AJob, pairs, Faults);
}

}  // namespace

void FindSubjectFaults(const Job& AJob, FaultList& Faults) {
  if (AJob.Parts.empty()) return;
  if (SubjectOf(AJob)) return;
  if (AJob.PartId.empty())
    return Faults.AddInput("missing", "/part", Joined("must name one of the ", Size(AJob.Parts), " parts"));
  Faults.AddInput("choice", "/part", NamesNoPart(AJob, AJob.PartId));
}

void FindShapeFaults(const Part& APart, int Index, FaultList& Faults) {
  if (APart.Outline.empty()) {
    if (!APart.Holes.empty()) Faults.AddInput("conflict", Joined("/parts/", Index, "/holes"), "need an `outline`");
    return;
  }
  const std::string place = ContourPlace(Index, 0);
  if (APart.Width != 0 || APart.Height != 0)
    return Faults.AddInput("conflict", place, "must not stand beside `width` and `height`");
  if (Size(APart.Holes) > limits::kHoles)
    return Faults.AddLimit(Joined("/parts/", Index, "/holes"),
                           Joined("must have at most ", limits::kHoles, " entries, found ", Size(APart.Holes)));
  // No pair of three points and more is under the limit of the product.
  if (VertexCount(APart) > limits::kVertexProduct / 3)
    return Faults.AddLimit(Joined("/parts/", Index), Joined("must have at most ", limits::kVertexProduct / 3,
                                                            " points in all its contours, found ", VertexCount(APart)));
  bool isSound = CheckContour(APart.Outline, place, Faults);
  if (isSound) CheckBoxSize(APart.Outline, place, Faults);
  for (int i = 0; i < Size(APart.Holes); ++i)
    isSound &= CheckContour(APart.Holes[i], ContourPlace(Index, i + 1), Faults);
  if (isSound && !Faults.Knows(Joined("/parts/", Index))) CheckContours(APart, Index, Faults);
}

void FindLineFaults(const std::vector<PolygonRing>& Lines, std::string_view Member, FaultList& Faults) {
  const std::string place = Joined("/", Member);
  if (Size(Lines) > limits::kInnerLines)
    return Faults.AddLimit(place, Joined("must have at most ", limits::kInnerLines, " entries, found ", Size(Lines)));
  Int64 points = 0;
  for (int i = 0; i < Size(Lines) && !Faults.Full(); ++i) {
    points += Size(Lines[i]);
    CheckPoints(Lines[i], 2, Joined(place, "/", i), Faults);
  }
  if (points > limits::kVertices)
    Faults.AddLimit(place, Joined("must have at most ", limits::kVertices, " points in all, found ", points));
}

void FindPairFaults(const Job& AJob, FaultList& Faults) {
  if (QualityName(AJob.Quality).empty())
    Faults.AddInput("choice", "/quality", Joined("must be one of ", Listed(kQualityNames)));
  CheckIdList(AJob, AJob.Fixed, "fixed", Faults);
  CheckIdList(AJob, AJob.Moving, "moving", Faults);
  CheckPairs(AJob, Faults);
}

}  // namespace platenest::detail
