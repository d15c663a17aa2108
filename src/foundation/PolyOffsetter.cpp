#include "platenest/foundation/PolyOffsetter.h"

#include <cmath>
#include <string>

#include "platenest/foundation/PolylineTree.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

namespace {

// The filled region with outer contours counter-clockwise. The offsetter turns all paths round when the one that
// reaches highest is clockwise, and takes holes for outer contours where they run alike: not with these. Paths that
// enclose nothing stay, since a flat one can still grow.
TPaths OrientedRegion(const TPaths& Paths) {
  TClipper clipper;
  TPaths flat;
  for (const TPath& path : Paths) {
    if (path.size() < 3) continue;
    if (ClipperLib::Area(path) == 0)
      flat.push_back(path);
    else
      clipper.AddPath(path, ClipperLib::ptSubject, true);
  }
  TPaths region;
  clipper.Execute(ClipperLib::ctUnion, region, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
  TPathUtils::PathsAddRange(region, flat);
  return region;
}

}  // namespace

TPaths TPolyOffsetter::OffsetPathsToPaths(const TPaths& Paths, Int64 Delta, int JoinType, double ArcTol) {
  if (JoinType < ClipperLib::jtSquare || JoinType > ClipperLib::jtMiter)
    throw TArgumentError("[Error] TPolyOffsetter.OffsetPathsToPaths: unknown join type");
  const double delta = static_cast<double>(Delta);
  const double half = ArcTol / 2;
  const double mitreLimit = half > 0 && std::sin(half) > 0 ? 1 / std::sin(half) : 0;
  const double arcTolerance = half > 0 ? std::fabs(delta) * (1 - std::cos(half)) : 0;
  TClipperOffset offset(mitreLimit, arcTolerance);
  try {
    const TPaths region = OrientedRegion(Paths);
    offset.AddPaths(region, static_cast<ClipperLib::JoinType>(JoinType), ClipperLib::etClosedPolygon);
    TPaths result;
    offset.Execute(result, delta);
    return result;
  } catch (const ClipperLib::clipperException& error) {
    throw TRangeError(std::string("[Error] TPolyOffsetter.OffsetPathsToPaths: ") + error.what());
  }
}

TVHPolygonList TPolyOffsetter::OffsetHPolygon(const TVHPolygon& Polygon, double Delta, int JoinType, double ArcTol) {
  TVHPolygon oriented = Polygon;
  oriented.SetIsClockwise(false);
  TPaths paths;
  for (const TVPolyline2D& contour : oriented) paths.push_back(TPathUtils::CreatePath(contour, kPathScale));
  const TPaths result = OffsetPathsToPaths(paths, Round(Delta * kPathScale), JoinType, ArcTol);
  return TVPolyline2DTree(TPathUtils::CreatePolylines(result, kPathScale)).CreateHPolygons();
}

}  // namespace platenest
