#pragma once

#include <optional>
#include <vector>

#include "platenest/foundation/Paths.h"
#include "platenest/foundation/Polyline.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

// Parts of a job as shapes, and the pairs or the part that it asks for.
namespace platenest::detail {

// Positions in the list of parts.
struct TPairOfParts {
  int Fixed;
  int Moving;
};

// All pairs in the order of the answer; unknown ids are left out. Where the job names no parts on one side, a part is
// not asked for within itself.
std::vector<TPairOfParts> PairsOf(const Job& AJob);

// At least as many as there are pairs: with a part itself, whether it is asked for or not.
Int64 PairCount(const Job& AJob);

// The position of the part that a job about one part means; nothing if that is not clear.
std::optional<int> SubjectOf(const Job& AJob);

// The contours of a part, the outer one first, each without points that fall onto their former one on the grid of path
// units. The contour of a rectangle has four points.
std::vector<PolygonRing> ContoursOf(const Part& APart);
Int64 VertexCount(const Part& APart);

TVHPolygon ShapeOf(const Part& APart);
// The same with the first point of each contour repeated at its end.
TVHPolygon ClosedShapeOf(const Part& APart);
// In path units: outer contour counter-clockwise, holes clockwise.
TPaths PathsOf(const Part& APart);

// A contour as path, without points that fall onto their former one. The coordinates are finite and within the limits.
TPath PathOf(const PolygonRing& AContour);
TPaths PathsOf(const std::vector<PolygonRing>& Contours);
// Points as the checkers and pictures have them.
std::vector<std::vector<TPoint2D>> PointsOf(const std::vector<PolygonRing>& Contours);
// The area of a part less its holes, drawing units squared.
double AreaOf(const Part& APart);
// Path units to drawing units, to five decimals exactly.
std::vector<PolygonRing> ContoursOf(const TPaths& Paths);

}  // namespace platenest::detail
